"use strict";

const toldChanges = ["added", "changed", "deleted", "found"];

function countsText(counts) {
  return counts
    .map((count, i) => (count === 0 ? "" : `${count.toLocaleString("en")} ${toldChanges[i]}`))
    .filter((text) => text !== "")
    .join(", ");
}

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
  { head: "Reason", optional: true, cell: (one) => one.reason, class: "text" },
];

async function changesPage() {
  const none =
    current.database === ""
      ? "Definition files have no history."
      : "The dictionary has no journal.";
  const list = tableOf("Deployments", deploymentColumns, await deploymentsOf(), { none });
  return { title: "Changes", content: [make("h1", {}, "Changes"), list] };
}

// --- One --------------------------------------------------------------------------------------

const signs = ["+", "~", "-", "="];
const signClasses = ["new", "changed", "missing", "kept"];

// A row for each line that `show` tells.
function changeRows(differences, depth = 0, rows = []) {
  for (const [kind, what, name, type, values, entries] of differences) {
    rows.push({ depth, kind, what, name, text: type === "" ? "" : ` (${type})` });
    for (const [attribute, before, after] of values) {
      const text = `${attribute}: ${before || "none"} \u2192 ${after || "none"}`;
      rows.push({ depth: depth + 1, kind: 1, what: "", name: "", text });
    }
    changeRows(entries, depth + 1, rows);
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
    csv: (row) => `${"  ".repeat(row.depth)}${row.what} ${row.name}${row.text}`,
    class: "name",
  },
];

async function differencesSection(one) {
  if (!one.file) {
    const text = `What it changed is not kept here; 'tav_dict show ${one.number}' tells it.`;
    return make("p", {}, text);
  }
  const told = await load(one.file, `${nameOfData(current)}/deployments/${one.number}`);
  const row = (item) => ({ class: signClasses[item.kind] });
  return tableOf("Differences", changeColumns, changeRows(told), { row, none: "No differences." });
}

function callOf(one) {
  try {
    return [one.program, ...JSON.parse(one.called)].join(" ");
  } catch {
    return one.program;
  }
}

async function changePage(number) {
  const one = (await deploymentsOf()).find((each) => String(each.number) === number);
  if (!one) return missingPage("deployment", number);
  const about = facts([
    ["When", timeOf(one.time)],
    ["Who", one.who],
    ["Called", callOf(one)],
    ["Fields", countsText(one.fields)],
    ["Classes", countsText(one.classes)],
    ["Tags", one.tags.join(", ")],
    ["Reason", one.reason],
  ]);
  const title = `Deployment ${number}`;
  return { title, content: [make("h1", {}, title), about, await differencesSection(one)] };
}
