"use strict";
// A class with what is above and below it, and its tables. Long lists end with how many are left out.

const boxWidth = 250;
const lineHeight = 18;
const mostBoxes = 8;
const mostLines = 12;

function cut(text, length = 32) {
  const all = [...shown(text)];
  return all.length > length ? all.slice(0, length - 1).join("") + "\u2026" : all.join("");
}

function box(x, y, kind, name, lines = [], place = undefined) {
  const height = lineHeight * (lines.length + 1) + 12;
  const texts = [name, ...lines].map((text, i) =>
    draw("text", { x: x + 10, y: y + 6 + lineHeight * (i + 0.75), class: i === 0 ? "head" : "" }, cut(text)),
  );
  const shape = draw("rect", { x, y, width: boxWidth, height, rx: 4, class: kind });
  const all = draw("g", {}, draw("title", {}, name), shape, texts);
  if (place === undefined) return { all, height };
  return { all: draw("a", { href: place }, all), height };
}

const line = (x1, y1, x2, y2) => draw("path", { d: `M${x1} ${y1}H${(x1 + x2) / 2}V${y2}H${x2}`, class: "line" });

// Those that have room, and a box for the rest.
function column(x, items, draw1, rest) {
  let y = 10;
  const placed = items.slice(0, mostBoxes).map((item) => {
    const made = draw1(x, y, item);
    const middle = y + made.height / 2;
    y += made.height + 10;
    return { ...made, middle };
  });
  if (items.length > mostBoxes) {
    const made = box(x, y, "rest", rest(items.length - mostBoxes));
    placed.push({ ...made, middle: y + made.height / 2 });
    y += made.height + 10;
  }
  return { placed, height: y };
}

function tableLines({ columns }) {
  const names = columns.slice(0, mostLines).map((one) => one.column);
  return columns.length > mostLines ? [...names, `and ${columns.length - mostLines} more`] : names;
}

function picture(details, tables) {
  const above = aboveOf(details.name);
  const children = below(details.name);
  const classBox = (x, y, name) => box(x, y, "class", name, [], placeOf("class", name));
  const tableBox = (x, y, table) => box(x, y, "table", table.name, tableLines(table), placeOf("table", table.name));
  const lefts = column(0, children, classBox, (count) => `${counted(count, "more subclass", "more subclasses")}`);
  const rights = column(620, tables, tableBox, (count) => counted(count, "more table"));
  const height = Math.max(lefts.height, rights.height, 130);
  const middle = height / 2 + (above === "" ? 0 : 30);
  const own = box(310, middle - 15, "own", details.name);
  const parts = [own.all];
  if (above !== "") {
    const top = classBox(310, middle - 85, above);
    parts.push(draw("path", { d: `M435 ${middle - 55}V${middle - 15}`, class: "line" }), top.all);
  }
  for (const one of lefts.placed) parts.push(line(boxWidth, one.middle, 310, middle), one.all);
  for (const one of rights.placed) parts.push(line(560, middle, 620, one.middle), one.all);
  const label = `${shown(details.name)}: ${above === "" ? "no superclass" : "superclass " + shown(above)}, ${counted(children.length, "subclass", "subclasses")}, ${counted(tables.length, "table")}`;
  const frame = { viewBox: `-5 0 880 ${Math.max(height, middle + 30)}`, class: "picture", role: "group", "aria-label": label };
  return draw("svg", frame, parts);
}
