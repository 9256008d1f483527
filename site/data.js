"use strict";
// The data comes as scripts, which a page may load from a folder, too.

let site = { title: "", databases: [] };
let current = { database: "" }; // the database that is looked at, with its index once that is here

const received = new Map(); // texts that scripts have handed over, by name
const loading = new Map(); // promises by file

// Each file of data calls this.
function siteData(name, json) {
  if (name === "main") begin(JSON.parse(json));
  else received.set(name, json);
}

// The file's data. The file is gone when the pages were written anew meanwhile.
function load(file, name) {
  if (loading.has(file)) return loading.get(file);
  const promise = new Promise((resolve, reject) => {
    const script = make("script", { src: file });
    script.addEventListener("load", () => {
      const json = received.get(name);
      received.delete(name);
      script.remove();
      if (json === undefined) reject(new Error("no data"));
      else resolve(JSON.parse(json));
    });
    script.addEventListener("error", () => reject(new Error("cannot be loaded")));
    document.head.append(script);
  });
  loading.set(file, promise);
  promise.catch(() => askToLoadAgain());
  return promise;
}

function askToLoadAgain() {
  const again = make("button", { type: "button", click: () => location.reload() }, "Load again");
  document
    .getElementById("notice")
    .replaceChildren("The pages were written anew since this one was opened. ", again);
}

// --- A database -------------------------------------------------------------------------------

const nameOfData = (database) => database.database || "files";

async function openDatabase(database) {
  if (database.fields) return;
  Object.assign(database, await load(database.index, `${nameOfData(database)}/index`));
}

function positionsOf(names) {
  const positions = new Map();
  names.forEach((name, i) => positions.has(folded(name)) || positions.set(folded(name), i));
  return positions;
}

// The position of a name, or undefined.
function find(kind, name) {
  current[kind].positions ??= positionsOf(current[kind].names);
  return current[kind].positions.get(folded(name));
}

// The nearest class above that is there, "" for none.
function aboveOf(name) {
  for (let end = name.lastIndexOf("/"); end > 0; end = name.lastIndexOf("/", end - 1)) {
    const position = find("classes", name.slice(0, end));
    if (position !== undefined) return current.classes.names[position];
  }
  return "";
}

// Those of definition files come in the files' order.
function sortedClasses() {
  const keys = current.classes.names.map(folded);
  return keys.map((_, i) => i).sort((a, b) => (keys[a] < keys[b] ? -1 : keys[a] > keys[b] ? 1 : 0));
}

function subclassesOf(classes) {
  const found = new Map([["", []]]);
  for (const name of sortedClasses().map((i) => classes.names[i])) {
    const above = folded(aboveOf(name));
    if (!found.has(above)) found.set(above, []);
    found.get(above).push(name);
  }
  return found;
}

function below(name) {
  current.below ??= subclassesOf(current.classes);
  return current.below.get(folded(name)) ?? [];
}

// --- Details ----------------------------------------------------------------------------------

// FNV-1a, as the program distributes names over files.
function hashOf(text) {
  let hash = 0x811c9dc5;
  for (const byte of new TextEncoder().encode(text)) hash = Math.imul(hash ^ byte, 0x01000193);
  return hash >>> 0;
}

// What is told of a class or field; undefined where there is none of that name.
async function detailsOf(kind, name) {
  const key = (kind === "classes" ? "c" : "f") + folded(name);
  const number = hashOf(key) % current.details.length;
  const all = await load(current.details[number], `${nameOfData(current)}/details/${number}`);
  return all[kind].find((one) => folded(one.name) === folded(name));
}

// [name, deployment]: what a class or field of that name is called today, and since when.
function renamed(kind, name) {
  const left = current.left.find(([key]) => key === kind[0] + folded(name));
  const position = left && find(kind, left[1]);
  return position === undefined ? undefined : [current[kind].names[position], left[2]];
}

async function deploymentsOf() {
  if (!current.deployments) return [];
  return load(current.deployments, `${nameOfData(current)}/deployments`);
}
