"use strict";
// A class in the definition language, in coloured pieces: [kind, text].

const [inInterface, inImplementation] = [0, 1];

// [keyword, value, number of the keyword] of each attribute.
function attributesOf(flat) {
  const attributes = [];
  for (let i = 0; i < flat.length; i += 2)
    attributes.push([current.keywords[flat[i]] ?? flat[i], flat[i + 1], flat[i]]);
  return attributes;
}

function attributeLines(lines, indent, flat, block) {
  for (const [keyword, value, number] of attributesOf(flat)) {
    if (current.blocks[number] !== block) continue;
    lines.push([
      indent,
      ["key", keyword],
      " = ",
      [value[0] === '"' ? "text" : "value", value],
      ";",
    ]);
  }
}

function blockLines(details, head, block) {
  const lines = [head];
  const close = (depth, until) => {
    for (; depth >= until; --depth) lines.push(["\t".repeat(depth), "}"]);
  };
  let depth = 0;
  attributeLines(lines, "\t", details.attributes, block);
  for (const [level, name, type, attributes] of details.entries) {
    close(depth, level);
    depth = level;
    lines.push(["\t".repeat(level), ["key", current.types[type]], " ", ["name", name], " {"]);
    attributeLines(lines, "\t".repeat(level + 1), attributes, block);
  }
  close(depth, 0);
  return lines;
}

function definitionLines(details) {
  const head = [["key", "STORABLE CLASS"], " ", ["name", details.name]];
  return [
    ...blockLines(details, [...head, " {"], inInterface),
    [],
    ...blockLines(
      details,
      [...head, " ", ["key", "IMPLEMENTATION TESSEL7"], " {"],
      inImplementation,
    ),
  ];
}

const plain = (lines) =>
  lines.map((line) => line.map((p) => (typeof p === "string" ? p : p[1])).join("") + "\n").join("");

function definitionSection(details) {
  const lines = definitionLines(details);
  const text = make("pre", { tabindex: "0", "aria-label": "Definition" });
  const lineOf = (pieces) =>
    make(
      "code",
      {},
      pieces.map((p) => (typeof p === "string" ? p : make("span", { class: p[0] }, p[1]))),
      "\n",
    );
  appendPieces(text, lines, lineOf, undefined, 400);
  const button = make("button", { type: "button", class: "take" }, "Copy");
  button.addEventListener("click", async () => {
    button.textContent = (await copy(plain(lines))) ? "Copied" : "Cannot be copied";
  });
  return make("section", { id: "definition" }, make("h2", {}, "Definition ", button), text);
}
