"use strict";
// Texts of the dictionary are untrusted. They reach the page through these functions alone, as text,
// never as markup.

// Characters that would hide or reorder others: controls, and marks of direction.
const unseen =
  /[\u0000-\u0008\u000b-\u001f\u007f-\u009f\u061c\u200b-\u200f\u2028-\u202e\u2060-\u2069\ufeff]/g;

function codeOf(character) {
  const code = character.codePointAt(0).toString(16).toUpperCase().padStart(4, "0");
  return `\u27e8U+${code}\u27e9`;
}

function shown(text) {
  return String(text).replace(unseen, codeOf);
}

// As the dictionary folds names: the ASCII letters alone.
function folded(name) {
  return name.replace(/[A-Z]+/g, (letters) => letters.toLowerCase());
}

// A text as the language writes it, in quotes, with \n and \t.
function unquoted(value) {
  if (!/^".*"$/s.test(value)) return value;
  const real = { "\\n": "\n", "\\t": "\t" };
  return value.slice(1, -1).replace(/\\./gs, (pair) => real[pair] ?? pair);
}

function counted(count, one, many = one + "s") {
  return `${count.toLocaleString("en")} ${count === 1 ? one : many}`;
}

function timeOf(text) {
  return text.replace("T", " ").replace(/\.\d+Z$/, " UTC");
}

// --- Elements ---------------------------------------------------------------------------------

// make("a", {href: "..."}, "text", child, ...): texts become text nodes.
function make(tag, attributes = {}, ...children) {
  return fill(document.createElement(tag), attributes, children);
}

function draw(tag, attributes = {}, ...children) {
  return fill(document.createElementNS("http://www.w3.org/2000/svg", tag), attributes, children);
}

function fill(element, attributes, children) {
  for (const [name, value] of Object.entries(attributes)) {
    if (typeof value === "function") element.addEventListener(name, value);
    else if (value !== undefined && value !== false) element.setAttribute(name, value);
  }
  for (const child of children.flat(Infinity)) {
    if (child === null || child === undefined || child === "") continue;
    element.append(child instanceof Node ? child : document.createTextNode(shown(child)));
  }
  return element;
}

// A name that may go on in the next line behind a "_", "/" or ".", or amid a long word.
function breakable(name) {
  const pieces = shown(name).match(/[^_/.]{0,30}[_/.]|[^_/.]{1,30}/gsu) ?? [];
  return pieces.flatMap((text, i) => (i === 0 ? [text] : [make("wbr"), text]));
}

// --- Links ------------------------------------------------------------------------------------

// Only ever a place in this page: a name cannot become another address.
function placeOf(kind, name = "") {
  const steps = String(name).split("/").map(encodePart).join("/");
  const database = site.databases.length > 1 ? `@${current.database}/` : "";
  return `#/${database}${kind}${kind === "" || steps === "" || steps[0] === "/" ? "" : "/"}${steps}`;
}

function encodePart(text) {
  return encodeURIComponent(text.toWellFormed ? text.toWellFormed() : text);
}

function link(kind, name, text = name) {
  return make("a", { href: placeOf(kind, name) }, breakable(text));
}

const classLink = (name) => link("class", name);
const fieldLink = (name) => link("field", name);
const tableLink = (name) => link("table", name);

// --- Taking along -----------------------------------------------------------------------------

// A spreadsheet would run a cell that begins like a formula.
function csvCell(value) {
  const text = shown(value ?? "");
  const safe = /^[=+\-@\t\r]/.test(text) && !/^-?\d+(\.\d+)?$/.test(text) ? "'" + text : text;
  return /[",\n]/.test(safe) ? `"${safe.replace(/"/g, '""')}"` : safe;
}

function csvOf(rows) {
  return rows.map((row) => row.map(csvCell).join(",")).join("\r\n") + "\r\n";
}

function save(name, rows) {
  const address = URL.createObjectURL(new Blob(["\ufeff", csvOf(rows)], { type: "text/csv" }));
  make("a", { href: address, download: name + ".csv" }).click();
  setTimeout(() => URL.revokeObjectURL(address), 1000);
}

// From a plain web server the clipboard is closed to pages; a selection can be copied everywhere.
async function copy(text) {
  try {
    await navigator.clipboard.writeText(text);
    return true;
  } catch {
    const area = make("textarea", { class: "hidden", "aria-hidden": "true" });
    area.value = text;
    document.body.append(area);
    area.select();
    const done = document.execCommand("copy");
    area.remove();
    return done;
  }
}
