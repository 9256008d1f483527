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

// The class in the middle, its superclass above, subclasses to the left, tables to the right.
function drawAcross(details, above, lefts, rights) {
  const height = Math.max(lefts.height, rights.height, above ? 180 : 50) + 10;
  const middle = height / 2;
  const own = box(310, middle - 15, "own", details.name);
  const parts = [own.all];
  if (above) {
    const join = draw("path", { d: `M435 ${middle - 55}V${middle - 15}`, class: "line" });
    parts.push(join, above(310, middle - 85).all);
  }
  for (const one of lefts.place(middle))
    parts.push(line(boxWidth, one.middle, 310, middle), one.all);
  for (const one of rights.place(middle)) parts.push(line(560, middle, 620, one.middle), one.all);
  const left = lefts.height === 0 ? 305 : -5; // nothing is drawn left of the class
  return { parts, left, width: 875 - left, height };
}

// On a narrow screen: all below each other.
function drawDown(details, above, lefts, rights) {
  const top = above ? 45 : 5;
  const own = box(5, top, "own", details.name);
  const bottom = top + own.height;
  const middles = [bottom + lefts.height / 2, bottom + lefts.height + rights.height / 2];
  const inside = [...lefts.place(middles[0] + 10), ...rights.place(middles[1] + 10)];
  const join = (one) => draw("path", { d: `M20 ${bottom}V${one.middle}H40`, class: "line" });
  const parts = [own.all, ...inside.flatMap((one) => [join(one), one.all])];
  if (above) {
    const up = above(5, 5);
    parts.push(draw("path", { d: `M20 ${5 + up.height}V${top}`, class: "line" }), up.all);
  }
  const height = bottom + lefts.height + rights.height + 15;
  return { parts, left: 0, width: 300, height };
}

function picture(details, tables) {
  const above = aboveOf(details.name);
  const children = below(details.name);
  const isNarrow = matchMedia("(max-width: 40rem)").matches;
  const [left, right] = isNarrow ? [40, 40] : [0, 620];
  const classBox = (x, y, name) => box(x, y, "class", name, [], placeOf("class", name));
  const tableBox = (x, y, table) =>
    box(x, y, "table", table.name, tableLines(table), placeOf("table", table.name));
  const restBox = (x, one, many) => (y, count) => box(x, y, "rest", counted(count, one, many));
  const lefts = column(
    children,
    (y, name) => classBox(left, y, name),
    restBox(left, "more subclass", "more subclasses"),
  );
  const rights = column(
    tables,
    (y, table) => tableBox(right, y, table),
    restBox(right, "more table"),
  );
  const aboveBox = above === "" ? null : (x, y) => classBox(x, y, above);
  const drawn = (isNarrow ? drawDown : drawAcross)(details, aboveBox, lefts, rights);
  const label = `${shown(details.name)}: ${above === "" ? "no superclass" : "superclass " + shown(above)}, ${counted(children.length, "subclass", "subclasses")}, ${counted(tables.length, "table")}`;
  const frame = { viewBox: `${drawn.left} 0 ${drawn.width} ${drawn.height}`, role: "group" };
  const whole = draw("svg", { ...frame, class: "picture", "aria-label": label }, drawn.parts);
  whole.style.maxWidth = `${drawn.width * 1.1}px`;
  if (!isNarrow) whole.style.minWidth = `${drawn.width * 0.7}px`;
  return whole;
}
