"use strict";

const toldChanges = ["added", "changed", "deleted", "found"];

function countsText(counts) {
  return counts
    .map((count, i) => (count === 0 ? "" : `${count.toLocaleString("en")} ${toldChanges[i]}`))
    .filter((text) => text !== "")
    .join(", ");
}

const namedText = ({ named }) => (named ? `deployment ${named[0]} as ${named[1]}` : "");

const deploymentColumns = [
  {
    head: "Deployment",
    cell: (one) => link("changes", one.number, `${one.number}`),
    csv: (one) => one.number,
    class: "number",
  },
  { head: "When", cell: (one) => timeOf(one.time), class: "when" },
  { head: "Who", cell: (one) => one.who },
  { head: "With", cell: (one) => `${one.program} ${one.mode}` },
  { head: "Fields", optional: true, cell: (one) => countsText(one.fields) },
  { head: "Classes", optional: true, cell: (one) => countsText(one.classes) },
  { head: "Tags", optional: true, cell: (one) => one.tags.join(", ") },
  { head: "Names", optional: true, cell: namedText },
  { head: "Reason", optional: true, cell: (one) => one.reason, class: "text" },
];

async function changesPage() {
  let none = "The dictionary has no journal.";
  if (current.database === "") none = "Definition files have no history.";
  else if (current.deployments) none = "There was no deployment yet.";
  const options = { none, class: "stacked" };
  const list = tableOf("Deployments", deploymentColumns, await deploymentsOf(), options);
  return { title: "Changes", content: [make("h1", {}, "Changes"), beginNote(), list] };
}

function beginNote() {
  if (!current.begin) return null;
  const text = `The journal begins with number ${current.begin}: what was before is forgotten.`;
  return make("p", {}, text);
}

// --- One --------------------------------------------------------------------------------------

const signs = ["+", "~", "-", "="];
const signClasses = ["new", "changed", "missing", "kept"];

// A row for each line that `show` tells.
function changeRows(differences, path = [], rows = []) {
  const depth = path.length;
  for (const [kind, what, name, type, values, entries] of differences) {
    const own = [...path, name];
    rows.push({ depth, kind, what, name, path: own, text: type === "" ? "" : ` (${type})`, type });
    for (const [attribute, before, after] of values) {
      const text = `${attribute}: ${before || "none"} \u2192 ${after || "none"}`;
      const change = { path: own, attribute, before, after };
      rows.push({ depth: depth + 1, kind: 1, what: "", name: "", text, ...change });
    }
    changeRows(entries, own, rows);
  }
  return rows;
}

function changedName(row) {
  if (row.what === "class" && find("classes", row.name) !== undefined) return classLink(row.name);
  if (row.what !== "class" && row.what !== "" && find("fields", row.name) !== undefined)
    return fieldLink(row.name);
  return row.name;
}

function changeLine(row) {
  return indented(row.depth, `${signs[row.kind]} ${row.what} `, changedName(row), row.text);
}

const changeColumns = [
  {
    head: "Change",
    cell: changeLine,
    class: "name",
  },
];

const changeWords = ["added", "changed", "removed", "found"];
const takenColumns = [
  { head: "Change", cell: (row) => changeWords[row.kind] },
  { head: "Kind", cell: (row) => row.what || "attribute" },
  { head: "Path", cell: (row) => row.path.join(" > ") },
  { head: "Type", cell: (row) => row.type },
  { head: "Attribute", cell: (row) => row.attribute },
  { head: "Before", cell: (row) => row.before },
  { head: "After", cell: (row) => row.after },
];

async function differencesSection(one) {
  if (!one.deploys) return make("p", {}, "It deployed no definitions.");
  if (!one.file) {
    const text = `What it changed is not kept here; 'tav_dict show ${one.number}' tells it.`;
    return make("p", {}, text);
  }
  const told = await load(one.file, `${nameOfData(current)}/deployments/${one.number}`);
  const row = (item) => ({ class: signClasses[item.kind] });
  const options = { row, none: "No differences.", csv: takenColumns };
  return tableOf("Differences", changeColumns, changeRows(told), options);
}

function callOf(one) {
  try {
    return [one.program, ...JSON.parse(one.called)].join(" ");
  } catch {
    return one.program;
  }
}

function noDeploymentPage(number) {
  const title = `Deployment ${number}`;
  const text = "These pages tell of no deployment of this number in this database.";
  return { title, content: [make("h1", {}, title), make("p", {}, text), beginNote()] };
}

async function changePage(number) {
  const one = (await deploymentsOf()).find((each) => String(each.number) === number);
  if (!one) return noDeploymentPage(number);
  const about = facts([
    ["When", timeOf(one.time)],
    ["Who", one.who],
    ["Called", callOf(one)],
    ["Fields", countsText(one.fields)],
    ["Classes", countsText(one.classes)],
    ["Tags", one.tags.join(", ")],
    ["Names", namedText(one)],
    ["Reason", one.reason],
  ]);
  const title = `Deployment ${number}`;
  return { title, content: [make("h1", {}, title), about, await differencesSection(one)] };
}
