"use strict";
// The pages of a field and of a table, and the lists of all.

function missingPage(kind, name) {
  const now = { class: () => renamed("classes", name), field: () => renamed("fields", name) }[
    kind
  ]?.();
  const text = now
    ? ["It is called ", link(kind, now[0]), " since deployment ", link("changes", now[1]), "."]
    : "There is none of this name here; it may have been dropped or renamed.";
  return {
    title: name,
    content: [
      heading(kind[0].toUpperCase() + kind.slice(1), name),
      make("p", {}, text),
      make("p", {}, link("search", name, "Search for it")),
    ],
  };
}

async function fieldPage(wanted) {
  const details = await detailsOf("fields", wanted);
  const i = find("fields", wanted);
  if (!details && i === undefined) return missingPage("field", wanted);
  const name = i === undefined ? details.users[0].at(-1) : current.fields.names[i];
  const own = { ...details, ...partsOfField(i) };
  const columns = [
    { head: "Class", cell: ([owner]) => classLink(owner), csv: ([owner]) => owner, class: "name" },
    { head: "Path", cell: ([, ...path]) => path.join(" \u203a "), class: "name", told: true },
  ];
  return {
    title: name,
    content: [
      heading("Field", name),
      i === undefined ? undefinedFacts(name) : fieldFacts(i),
      tableOf("Used by", columns, details?.users ?? [], {
        none: "No class uses it.",
        class: "stacked",
      }),
      await historySection(details ?? {}),
      own.blame ? blameSection(own) : null,
    ],
  };
}

// As blameSection takes them.
function partsOfField(i) {
  if (i === undefined) return {};
  const { names, numbers, types, texts } = current.fields;
  const text = texts[i] === "" ? [] : ["DESCR", texts[i]];
  const name = `${current.types[types[i]]} ${names[i]}`;
  return { name, attributes: ["ID", numbers[i], ...text], entries: [] };
}

function undefinedFacts(name) {
  const found = current.predefined?.find((row) => folded(row[0]) === folded(name));
  if (!found) return make("p", {}, "It is not defined here; classes use it nevertheless.");
  return facts([
    ["Type", found[2]],
    ["Number", `${found[1]}`],
    ["Predefined", "yes: every dictionary has it"],
  ]);
}

function fieldFacts(i) {
  const { numbers, types, flags, texts } = current.fields;
  const isPredefined = (flags[i] & 2) !== 0;
  return [
    description(texts[i]),
    facts([
      ["Type", current.types[types[i]]],
      ["Number", numbers[i].toString()],
      ["Predefined", isPredefined ? "yes" : ""],
    ]),
  ];
}

async function tablePage(wanted) {
  const i = find("tables", wanted);
  if (i === undefined) return missingPage("table", wanted);
  const name = current.tables.names[i];
  const owner = current.classes.names[current.tables.classes[i]];
  const details = await detailsOf("classes", owner);
  const table = tablesOf(details).find((one) => folded(one.name) === folded(name));
  const columns = [
    { head: "Column", cell: (one) => one.column, class: "name" },
    {
      head: "Field",
      cell: (one) => fieldLink(one.path.at(-1)),
      csv: (one) => one.path.at(-1),
      class: "name",
    },
    { head: "Type", cell: (one) => one.type },
    { head: "Length", optional: true, cell: (one) => one.length, class: "number" },
    { head: "Path", cell: (one) => one.path.join(" \u203a "), class: "name", told: true },
    { head: "Description", optional: true, cell: (one) => one.text, class: "text" },
  ];
  const entry = table.path.length === 0 ? "" : table.path.join(" \u203a ");
  const about = facts([
    ["Class", classLink(owner)],
    ["Entry", entry],
  ]);
  return {
    title: name,
    content: [
      heading("Table", name),
      about,
      tableOf("Columns", columns, table.columns, { class: "stacked" }),
    ],
  };
}

// --- Lists ------------------------------------------------------------------------------------

const indexes = (names) => names.map((_, i) => i);

function listPage(title, columns, rows) {
  const list = tableOf(title, columns, rows, { class: "stacked" });
  return { title, content: [make("h1", {}, title), list] };
}

const hidesKey = "tav site hides predefined";

// A box that hides predefined fields, and what it was at last.
function predefinedBox(count) {
  const box = make("input", { type: "checkbox" });
  box.checked = kept(hidesKey) === true;
  box.addEventListener("change", () => {
    keep(hidesKey, box.checked);
    show();
  });
  return make("p", {}, make("label", {}, box, ` Hide ${counted(count, "predefined field")}`));
}

// The predefined ones come last.
function fieldsPage() {
  const isPredefined = (i) => (current.fields.flags[i] & 2) !== 0;
  const all = indexes(current.fields.names);
  const own = all.filter((i) => !isPredefined(i));
  const others = all.filter(isPredefined);
  const rows = [...own, ...(kept(hidesKey) === true ? [] : others)];
  const list = tableOf("Fields", fieldColumns(isPredefined), rows, { class: "stacked" });
  const box = others.length === 0 ? null : predefinedBox(others.length);
  return { title: "Fields", content: [make("h1", {}, "Fields"), box, list] };
}

function fieldColumns(isPredefined) {
  const { names, numbers, types, texts, used } = current.fields;
  return [
    { head: "Number", cell: (i) => numbers[i], class: "number" },
    { head: "Name", cell: (i) => fieldLink(names[i]), csv: (i) => names[i], class: "name" },
    { head: "Type", cell: (i) => current.types[types[i]] },
    { head: "Used by", cell: (i) => `${used[i]}`, class: "number", told: true },
    { head: "Predefined", optional: true, cell: (i) => (isPredefined(i) ? "predefined" : "") },
    { head: "Description", cell: (i) => texts[i], class: "text" },
  ];
}

function classesPage() {
  const { names, texts } = current.classes;
  const columns = [
    { head: "Name", cell: (i) => classLink(names[i]), csv: (i) => names[i], class: "name" },
    { head: "Description", cell: (i) => texts[i], class: "text" },
  ];
  return listPage("Classes", columns, sortedClasses());
}

function tablesPage() {
  const { names, classes } = current.tables;
  const owner = (i) => current.classes.names[classes[i]];
  const columns = [
    { head: "Name", cell: (i) => tableLink(names[i]), csv: (i) => names[i], class: "name" },
    { head: "Class", cell: (i) => classLink(owner(i)), csv: owner, class: "name", told: true },
  ];
  return listPage("Tables", columns, indexes(names));
}
