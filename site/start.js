"use strict";

const highestNumber = 16777215;

// Used and free numbers in turn: [first, last, isUsed]. Those from 1 on are left to predefined fields.
function stretches(numbers) {
  const found = [];
  let next = current.reserved + 1;
  for (const number of [...numbers].sort((a, b) => a - b)) {
    if (number < next) continue;
    if (number > next) found.push([next, number - 1, false]);
    const last = found.at(-1);
    if (last?.[2] && last[1] === number - 1) last[1] = number;
    else found.push([number, number, true]);
    next = number + 1;
  }
  if (next <= highestNumber) found.push([next, highestNumber, false]);
  return found;
}

// Wide gaps would leave no room for what is used: a stretch is as wide as its number has digits.
function strip(all) {
  const widths = all.map(([first, last]) => 1 + Math.log2(1 + last - first));
  const whole = widths.reduce((a, b) => a + b, 0);
  let x = 0;
  const boxes = all.map(([first, last, isUsed], i) => {
    const width = (widths[i] / whole) * 1000;
    const title = `${first} to ${last}: ${isUsed ? "used" : "free"}`;
    const box = draw("rect", { x, y: 0, width, height: 28, class: isUsed ? "used" : "free" });
    box.append(draw("title", {}, title));
    x += width;
    return box;
  });
  const used = all.filter((one) => one[2]).length;
  const label = `Field numbers: ${counted(used, "stretch", "stretches")} used`;
  const picture = {
    viewBox: "0 0 1000 28",
    preserveAspectRatio: "none",
    class: "strip",
    role: "img",
  };
  return draw(
    "svg",
    { ...picture, "aria-label": label },
    boxes.length > 2000 ? merged(all) : boxes,
  );
}

// Too many stretches to tell apart: how much of each slice is used.
function merged(all) {
  const slices = 500;
  const end = Math.max(...all.filter((one) => one[2]).map((one) => one[1]));
  const filled = new Float64Array(slices);
  for (const [first, last, isUsed] of all) {
    for (let n = first; isUsed && n <= last; ++n) filled[Math.floor(((n - 1) / end) * slices)]++;
  }
  return [...filled].map((count, i) => {
    const opacity = Math.min(1, (count * slices) / end);
    const box = { x: i * 2, y: 0, width: 2, height: 28, class: "used", "fill-opacity": opacity };
    return draw("rect", box);
  });
}

function numbersSection() {
  const all = stretches(current.fields.numbers);
  const free = all.filter((one) => !one[2]);
  const columns = [
    { head: "From", cell: (one) => one[0], class: "number" },
    { head: "To", cell: (one) => one[1], class: "number" },
    { head: "How many", cell: (one) => one[1] - one[0] + 1, class: "number" },
  ];
  const legend = make(
    "p",
    { class: "legend" },
    make("span", { class: "swatch used" }),
    "used ",
    make("span", { class: "swatch free" }),
    `free. A stretch is drawn the wider, the more digits its length has. Numbers up to ${current.reserved} are left to predefined fields.`,
  );
  return make(
    "section",
    {},
    make("h2", {}, "Field numbers"),
    strip(all),
    legend,
    folding("Free stretches", () => tableOf("Free numbers", columns, free)),
  );
}

// What is made when the reader opens it.
function folding(title, build, isOpen = false) {
  const box = make("details", {}, make("summary", {}, title));
  const append = () => box.append(...[build()].flat().filter((one) => one !== null));
  const open = () => box.open && box.children.length === 1 && append();
  box.addEventListener("toggle", open);
  box.open = isOpen;
  if (isOpen) append();
  return box;
}

// The last that changed fields or classes.
function lastOf(deployments) {
  const changes = (one) =>
    [...one.fields.slice(0, 3), ...one.classes.slice(0, 3)].some((n) => n > 0);
  return deployments.find(changes);
}

// When: of pages of the past.
function whenText() {
  const { at } = current;
  if (!at) return "";
  if (at === "0") return "As it was before the first deployment";
  return at[0] === "@" ? `As it was at ${at.slice(1)}` : `As it was after deployment ${at}`;
}

// On every page, printed ones too: which database, with links to the same page of the others, and when.
function whichContent() {
  const others = site.databases.filter((one) => one !== current);
  const place = location.hash.replace(/^#\/?(@[^/]*\/?)?/, "");
  const link = (one) => make("a", { href: `#/@${one.database}/${place}` }, one.database);
  return [
    others.length === 0 ? null : make("b", {}, `Database ${current.database}`),
    others.length === 0
      ? null
      : make(
          "span",
          {},
          "Others: ",
          others.map((one) => [link(one), " "]),
        ),
    whenText() === "" ? null : make("b", {}, whenText()),
  ];
}

async function startPage() {
  const last = lastOf(await deploymentsOf());
  const count = (kind, one, many) => link(kind, "", counted(current[kind].names.length, one, many));
  const isFiles = current.database === "";
  const about = facts([
    [isFiles ? "Definition files" : "Dictionary", current.dictionary],
    ["Database", current.database],
    ["Fields", count("fields", "field")],
    ["Classes", count("classes", "class", "classes")],
    ["Tables", count("tables", "table")],
    [
      "Last deployment",
      last &&
        make(
          "span",
          {},
          link("changes", last.number, `${last.number}`),
          ` of ${timeOf(last.time)} by ${last.who}`,
        ),
    ],
  ]);
  return {
    title: "",
    content: [make("h1", {}, site.title), about, classTree(), numbersSection()],
  };
}
