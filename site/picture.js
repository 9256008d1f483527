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
    draw(
      "text",
      { x: x + 10, y: y + 6 + lineHeight * (i + 0.75), class: i === 0 ? "head" : "" },
      cut(text),
    ),
  );
  const shape = draw("rect", { x, y, width: boxWidth, height, rx: 4, class: kind });
  const all = draw("g", {}, draw("title", {}, name), shape, texts);
  if (place === undefined) return { all, height };
  return { all: draw("a", { href: place }, all), height };
}

const line = (x1, y1, x2, y2) =>
  draw("path", { d: `M${x1} ${y1}H${(x1 + x2) / 2}V${y2}H${x2}`, class: "line" });

// Those that have room, and a box for the rest; all of them once their place is known.
function column(items, build, rest) {
  const builds = items.slice(0, mostBoxes).map((item) => (y) => build(y, item));
  if (items.length > mostBoxes) builds.push((y) => rest(y, items.length - mostBoxes));
  const heights = builds.map((at) => at(0).height + 10);
  const height = heights.reduce((a, b) => a + b, 0);
  const place = (middle) => {
    let y = middle - height / 2 + 5;
    return builds.map((at, i) => {
      const made = at(y);
      y += heights[i];
      return { all: made.all, middle: y - heights[i] + made.height / 2 };
    });
  };
  return { height, place };
}

function tableLines({ columns }) {
  const names = columns.slice(0, mostLines).map((one) => one.column);
  return columns.length > mostLines ? [...names, `and ${columns.length - mostLines} more`] : names;
}

function picture(details, tables) {
  const above = aboveOf(details.name);
  const children = below(details.name);
  const classBox = (x, y, name) => box(x, y, "class", name, [], placeOf("class", name));
  const tableBox = (x, y, table) =>
    box(x, y, "table", table.name, tableLines(table), placeOf("table", table.name));
  const restBox = (x, one, many) => (y, count) => box(x, y, "rest", counted(count, one, many));
  const lefts = column(
    children,
    (y, name) => classBox(0, y, name),
    restBox(0, "more subclass", "more subclasses"),
  );
  const rights = column(tables, (y, table) => tableBox(620, y, table), restBox(620, "more table"));
  const height = Math.max(lefts.height, rights.height, above === "" ? 50 : 180) + 10;
  const middle = height / 2;
  const own = box(310, middle - 15, "own", details.name);
  const parts = [own.all];
  if (above !== "") {
    const top = classBox(310, middle - 85, above);
    parts.push(draw("path", { d: `M435 ${middle - 55}V${middle - 15}`, class: "line" }), top.all);
  }
  for (const one of lefts.place(middle))
    parts.push(line(boxWidth, one.middle, 310, middle), one.all);
  for (const one of rights.place(middle)) parts.push(line(560, middle, 620, one.middle), one.all);
  const label = `${shown(details.name)}: ${above === "" ? "no superclass" : "superclass " + shown(above)}, ${counted(children.length, "subclass", "subclasses")}, ${counted(tables.length, "table")}`;
  const left = children.length === 0 ? 305 : -5; // nothing is drawn left of the class
  const frame = { viewBox: `${left} 0 ${875 - left} ${height}`, class: "picture", role: "group" };
  const whole = draw("svg", { ...frame, "aria-label": label }, parts);
  whole.style.maxWidth = `${(875 - left) * 1.1}px`;
  whole.style.minWidth = `${(875 - left) * 0.7}px`;
  return whole;
}
