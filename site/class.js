"use strict";

// The tables of a class: {name, path, columns: [{column, path, type, length, text}]}. A column stands in the table of
// the entry around it, that of a BUF in its own.
function tablesOf(details) {
  const tables = details.table === "" ? [] : [{ name: details.table, path: [], columns: [] }];
  const around = [tables[0]];
  const path = [];
  for (const [depth, name, type, flat, table, column] of details.entries) {
    path.length = depth - 1;
    around.length = depth;
    path.push(name);
    let own = around.at(-1);
    if (table !== "") tables.push((own = { name: table, path: [...path], columns: [] }));
    const value = (wanted) => attributesOf(flat).find(([keyword]) => keyword === wanted)?.[1] ?? "";
    const about = { length: value("LENGTH"), text: unquoted(value("DESCR")) || textOfField(name) };
    const told = { column, path: [...path], type: current.types[type], ...about };
    if (column !== "") own?.columns.push(told);
    around.push(own);
  }
  return tables;
}

// --- Blame ------------------------------------------------------------------------------------

// The deployment behind each part, in the order of the definition; see blameAt.
function blameOf(details) {
  const all = details.blame ?? [];
  let next = 0;
  const take = () => (all.length === 1 ? all[0] : all[next++]);
  const thing = (attributes) => [take(), ...attributesOf(attributes).map(take)];
  return [thing(details.attributes), ...details.entries.map((entry) => thing(entry[3]))];
}

function blameLink(number) {
  if (number === undefined) return "";
  if (number === 0) return "before the journal";
  if (number < 0) return make("span", {}, link("changes", -number, `${-number}`), " (was there)");
  return link("changes", number, `${number}`);
}

const blameText = (number) =>
  number === undefined ? "" : number === 0 ? "before the journal" : Math.abs(number);

function blameSection(details) {
  const blame = blameOf(details);
  const rows = [];
  const add = (depth, name, flat, by) => {
    rows.push({ depth, text: name, by: by[0] });
    attributesOf(flat).forEach(([keyword, value], i) =>
      rows.push({ depth: depth + 1, text: `${keyword} = ${value}`, by: by[i + 1] }),
    );
  };
  add(0, details.name, details.attributes, blame[0]);
  details.entries.forEach(([depth, name, type, flat], i) =>
    add(depth, `${current.types[type]} ${name}`, flat, blame[i + 1]),
  );
  const columns = [
    {
      head: "Deployment",
      cell: (row) => blameLink(row.by),
      csv: (row) => blameText(row.by),
      class: "number",
    },
    {
      head: "Part",
      cell: (row) => indented(row.depth, row.text),
      csv: (row) => row.text,
      class: "name",
    },
  ];
  return folding("Who made which part what it is", () => [
    beginNote(),
    tableOf("Blame", columns, rows),
  ]);
}

function indented(depth, ...content) {
  const span = make("span", { class: "indented" }, content);
  span.style.marginInlineStart = `${Math.min(depth, 16) * 1.1}em`;
  return span;
}

async function historySection(details) {
  if (!current.deployments) return null;
  const all = await deploymentsOf();
  const own = new Set(details.history ?? []);
  const rows = all.filter((one) => own.has(one.number));
  return tableOf("History", deploymentColumns, rows, { class: "stacked" });
}

// --- Entries ----------------------------------------------------------------------------------

const entryKeywords = ["ORDER", "LENGTH", "CREATE", "MODIFY"];
const shownElsewhere = new Set([...entryKeywords, "DESCR", "SQL_TABLE", "SQL_COLUMN"]);

function textOfField(name) {
  const i = find("fields", name);
  return i === undefined ? "" : current.fields.texts[i];
}

function rowsOfEntries(details) {
  const blame = blameOf(details);
  const path = [];
  return details.entries.map(([depth, name, type, flat, table, column], i) => {
    path.length = depth - 1;
    path.push(name);
    const attributes = attributesOf(flat);
    const value = (wanted) => attributes.find(([keyword]) => keyword === wanted)?.[1] ?? "";
    const rest = attributes.filter(
      ([keyword, text]) => !shownElsewhere.has(keyword) && text !== "0",
    );
    return {
      i,
      depth,
      name,
      type: current.types[type],
      values: entryKeywords.map(value),
      path: path.join(" > "),
      text: unquoted(value("DESCR")),
      fieldText: textOfField(name),
      rest: rest.map(([keyword, text]) => `${keyword} = ${text}`).join("; "),
      table,
      column,
      by: blame[i + 1].reduce((a, b) => (Math.abs(b) > Math.abs(a) ? b : a)),
      isHolder: (details.entries[i + 1]?.[0] ?? 0) > depth,
    };
  });
}

// Hides what is inside an entry that is closed, rows that come later too.
function entryFolds(rows) {
  const closed = new Set();
  const elements = [];
  const refresh = (from) => {
    let shut = closed.has(from) || rows[from].isHidden ? rows[from].depth : Infinity;
    for (let i = from + 1; i < rows.length && rows[i].depth > rows[from].depth; ++i) {
      if (rows[i].depth <= shut) shut = Infinity;
      rows[i].isHidden = rows[i].depth > shut;
      if (!rows[i].isHidden && closed.has(i)) shut = rows[i].depth;
      if (elements[i]) elements[i].hidden = rows[i].isHidden;
    }
  };
  const button = (row) => {
    const toggle = make("button", { type: "button", class: "fold", "aria-expanded": "true" });
    toggle.setAttribute("aria-label", `Entries in ${shown(row.name)}`);
    toggle.addEventListener("click", () => {
      if (!closed.delete(row.i)) closed.add(row.i);
      toggle.setAttribute("aria-expanded", !closed.has(row.i));
      refresh(row.i);
    });
    return toggle;
  };
  const note = (row, element) => {
    elements[row.i] = element;
    element.hidden = row.isHidden ?? false;
  };
  return { button, note };
}

function entriesSection(details) {
  const rows = rowsOfEntries(details);
  const folds = entryFolds(rows);
  const name = (row) => {
    const fold = row.isHolder ? folds.button(row) : make("span", { class: "leaf" });
    const cell = indented(row.depth - 1, fold, fieldLink(row.name));
    cell.classList.add("entry");
    return cell;
  };
  const value = (k, head, kind) => ({ head, cell: (row) => row.values[k], class: kind });
  const columns = [
    { head: "Entry", cell: name, csv: (row) => row.name, class: "name" },
    { head: "Type", cell: (row) => row.type },
    { ...value(0, "Order", "number"), told: true },
    { ...value(1, "Length", "number"), told: true },
    value(2, "Create"),
    value(3, "Modify"),
    {
      head: "Table",
      cell: (row) => (row.table === "" ? "" : tableLink(row.table)),
      csv: (row) => row.table,
      class: "name",
    },
    { head: "Column", cell: (row) => row.column, class: "name" },
    {
      head: "Description",
      cell: (row) => row.text || (row.fieldText && make("span", { class: "none" }, row.fieldText)),
      csv: (row) => row.text || row.fieldText,
      class: "text",
    },
    { head: "Others", cell: (row) => row.rest, class: "text" },
  ];
  if (details.blame)
    columns.push({
      head: "Changed by",
      cell: (row) => blameLink(row.by),
      csv: (row) => blameText(row.by),
      class: "number",
    });
  columns.slice(4).forEach((column) => (column.optional = true));
  const taken = [...columns];
  taken.splice(1, 0, { head: "Path", cell: (row) => row.path });
  const section = tableOf("Entries", columns, rows, { csv: taken, class: "stacked" });
  return watchRows(section, rows, folds);
}

// Rows come in pieces: each is noted when it is there.
function watchRows(section, rows, folds) {
  const body = section.querySelector("tbody");
  if (!body) return section;
  let count = 0;
  const note = () => {
    for (
      ;
      count < rows.length && body.rows[count] && !body.rows[count].querySelector(".more");
      ++count
    ) {
      folds.note(rows[count], body.rows[count]);
    }
  };
  new MutationObserver(note).observe(body, { childList: true });
  note();
  return section;
}

// --- The page ---------------------------------------------------------------------------------

function placeInTree(name) {
  const steps = [];
  for (let at = aboveOf(name); at !== ""; at = aboveOf(at)) steps.unshift(at);
  if (steps.length === 0) return null;
  return make(
    "nav",
    { "aria-label": "Superclasses", class: "row" },
    steps.map((step) => [classLink(step), " \u203a "]),
    name,
  );
}

async function classPage(wanted) {
  const details = await detailsOf("classes", wanted);
  if (!details) return missingPage("class", wanted);
  const position = find("classes", details.name);
  const attributes = attributesOf(details.attributes).filter(([keyword]) => keyword !== "DESCR");
  const children = below(details.name);
  const columns = [{ head: "Class", cell: classLink, csv: (name) => name, class: "name" }];
  return {
    title: details.name,
    content: [
      placeInTree(details.name),
      heading("Class", details.name),
      description(current.classes.texts[position]),
      facts(attributes.map(([keyword, value]) => [keyword, unquoted(value)])),
      make(
        "div",
        { class: "wide", tabindex: "0", role: "region", "aria-label": "Picture" },
        picture(details, tablesOf(details)),
      ),
      entriesSection(details),
      children.length === 0
        ? null
        : folding(counted(children.length, "subclass", "subclasses"), () =>
            tableOf("Subclasses", columns, children),
          ),
      definitionSection(details),
      await historySection(details),
      details.blame ? blameSection(details) : null,
    ],
  };
}
