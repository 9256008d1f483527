"use strict";
// Long lists come in pieces: the next one when the reader comes near, or asks for it.

const piece = 100;
const waiting = new Set(); // lists that have more; print shows all

const nearEnd = new IntersectionObserver(
  (seen) => seen.forEach((one) => one.isIntersecting && one.target.showMore()),
  { rootMargin: "400px" },
);

// Appends what `build` makes of each item to the parent, and a button for the rest.
function appendPieces(parent, items, build, wrapButton = (button) => button, size = piece) {
  let next = 0;
  const button = make("button", { type: "button", class: "more" });
  const holder = wrapButton(button);
  const show = (count) => {
    const end = Math.min(items.length, next + count);
    const made = document.createDocumentFragment();
    for (; next < end; ++next) made.append(build(items[next], next));
    holder.before(made);
    button.textContent = `Show more (${(items.length - next).toLocaleString("en")} left)`;
    if (next < items.length) return;
    nearEnd.unobserve(button);
    waiting.delete(showAll);
    holder.remove();
  };
  const showAll = () => show(Infinity);
  parent.append(holder);
  button.showMore = () => show(size);
  button.addEventListener("click", button.showMore);
  if (items.length > size) {
    waiting.add(showAll);
    nearEnd.observe(button);
  }
  show(size);
}

addEventListener("beforeprint", () => [...waiting].forEach((showAll) => showAll()));

// A table with a heading above it and its rows to take along. A column is
// {head, cell(row) -> text or element, csv(row) -> text, optional: only where a row has a value}.
// options.csv: other columns of what is taken along; options.class "stacked": where the screen is
// narrow, a row is a block, in which values of columns that are optional or `told` stand behind the head.
function tableOf(title, offered, rows, options = {}) {
  const isFilled = (column) => rows.some((item) => (column.csv ?? column.cell)(item) !== "");
  const columns = offered.filter((column) => !column.optional || isFilled(column));
  const body = make("tbody");
  const row = (item) =>
    make(
      "tr",
      options.row?.(item) ?? {},
      columns.map((c) => cellOf(c, item)),
    );
  const whole = (button) => make("tr", {}, make("td", { colspan: columns.length }, button));
  const heads = columns.map((column) =>
    make("th", { scope: "col", class: column.class }, column.head),
  );
  const table = make("table", {}, make("thead", {}, make("tr", {}, heads)), body);
  appendPieces(body, rows, row, whole);
  const take = make(
    "button",
    {
      type: "button",
      class: "take",
      click: () => save(title, csvRows(options.csv ?? columns, rows)),
    },
    "CSV",
  );
  take.setAttribute("aria-label", `Take the list of ${title} along as CSV`);
  return make(
    "section",
    { class: options.class },
    make(
      "h2",
      {},
      `${title} `,
      make("span", { class: "count" }, rows.length.toLocaleString("en")),
      take,
    ),
    rows.length === 0
      ? make("p", { class: "none" }, options.none ?? "None.")
      : make("div", { class: "wide", tabindex: "0", role: "region", "aria-label": title }, table),
  );
}

function cellOf(column, item) {
  const content = column.cell(item);
  const isName = column.class === "name" && typeof content === "string";
  const attributes = {
    class: column.class,
    "data-head": (column.optional || column.told) && column.head,
  };
  return make("td", attributes, isName ? breakable(content) : content);
}

function csvRows(columns, rows) {
  const text = (column, row) => (column.csv ?? column.cell)(row);
  return [columns.map((c) => c.head), ...rows.map((row) => columns.map((c) => text(c, row)))];
}

function facts(pairs) {
  const given = pairs.filter(([, value]) => value !== "" && value !== undefined && value !== null);
  return make(
    "dl",
    {},
    given.map(([name, value]) => [make("dt", {}, name), make("dd", {}, value)]),
  );
}

// Paragraphs of a description.
function description(text) {
  return text === "" ? null : make("p", { class: "description" }, text);
}

function heading(kind, name) {
  return make(
    "h1",
    {},
    make("small", {}, kind),
    " ",
    make("span", { class: "name" }, breakable(name)),
  );
}
