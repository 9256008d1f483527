"use strict";
// The pages of a field and of a table, and the lists of all.

function missingPage(kind, name) {
  const text = "There is none of this name here; it may have been dropped or renamed.";
  return {
    title: name,
    content: [
      heading(kind, name),
      make("p", {}, text),
      make("p", {}, link("search", name, "Search for it")),
    ],
  };
}

async function fieldPage(wanted) {
  const details = await detailsOf("fields", wanted);
  const i = find("fields", wanted);
  if (!details && i === undefined) return missingPage("field", wanted);
  const name = i === undefined ? details.name : current.fields.names[i];
  const columns = [
    { head: "Class", cell: ([owner]) => classLink(owner), csv: ([owner]) => owner, class: "name" },
    { head: "Path", cell: ([, ...path]) => path.join(" \u203a "), class: "name" },
  ];
  return {
    title: name,
    content: [
      heading("Field", name),
      i === undefined
        ? make("p", {}, "It is not defined here; classes use it nevertheless.")
        : fieldFacts(i),
      tableOf("Used by", columns, details?.users ?? [], { none: "No class uses it." }),
      await historySection(details ?? {}),
    ],
  };
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
    { head: "Path", cell: (one) => one.path.join(" \u203a "), class: "name" },
  ];
  const entry = table.path.length === 0 ? "" : table.path.join(" \u203a ");
  const about = facts([
    ["Class", classLink(owner)],
    ["Entry", entry],
  ]);
  return {
    title: name,
    content: [heading("Table", name), about, tableOf("Columns", columns, table.columns)],
  };
}

// --- Lists ------------------------------------------------------------------------------------

const indexes = (names) => names.map((_, i) => i);

function listPage(title, columns, count) {
  return { title, content: [make("h1", {}, title), tableOf(title, columns, indexes(count))] };
}

function fieldsPage() {
  const { names, numbers, types, texts } = current.fields;
  const columns = [
    { head: "Number", cell: (i) => numbers[i], class: "number" },
    { head: "Name", cell: (i) => fieldLink(names[i]), csv: (i) => names[i], class: "name" },
    { head: "Type", cell: (i) => current.types[types[i]] },
    { head: "Description", cell: (i) => texts[i], class: "text" },
  ];
  return listPage("Fields", columns, names);
}

function classesPage() {
  const { names, texts } = current.classes;
  const columns = [
    { head: "Name", cell: (i) => classLink(names[i]), csv: (i) => names[i], class: "name" },
    { head: "Description", cell: (i) => texts[i], class: "text" },
  ];
  return listPage("Classes", columns, names);
}

function tablesPage() {
  const { names, classes } = current.tables;
  const owner = (i) => current.classes.names[classes[i]];
  const columns = [
    { head: "Name", cell: (i) => tableLink(names[i]), csv: (i) => names[i], class: "name" },
    { head: "Class", cell: (i) => classLink(owner(i)), csv: owner, class: "name" },
  ];
  return listPage("Tables", columns, names);
}
