"use strict";
// Search goes through one long text per kind, a line for each name, because a browser looks through
// megabytes of text in a few milliseconds.

const kinds = [
  { kind: "classes", one: "class", texts: true },
  { kind: "fields", one: "field", texts: true },
  { kind: "tables", one: "table" },
  { kind: "columns", one: "column" },
];
const exact = 0,
  prefix = 1,
  word = 2,
  part = 3,
  inText = 4;
const mostOfRank = 500;

function linesOf(texts) {
  const lines = texts.map((text) => text.replaceAll("\n", " ").toLowerCase());
  const starts = new Uint32Array(lines.length + 1);
  lines.forEach((line, i) => (starts[i + 1] = starts[i] + line.length + 1));
  return { text: lines.join("\n") + "\n", starts };
}

function searchedOf(database) {
  database.searched ??= kinds.map(({ kind, texts }) => ({
    names: linesOf(database[kind].names),
    texts: texts ? linesOf(database[kind].texts) : null,
  }));
  return database.searched;
}

// The line of a position that is not before line `low`: mostly that or one of the next.
function lineAt(starts, position, low) {
  if (position < starts[low + 1]) return low;
  if (position < starts[low + 2]) return low + 1;
  let high = starts.length - 1;
  while (high - low > 1) {
    const middle = (low + high) >> 1;
    if (starts[middle] <= position) low = middle;
    else high = middle;
  }
  return low;
}

const divides = new Set(" \t/_.:-");

function rankAt({ text, starts }, line, position, length) {
  const start = starts[line];
  const first = text[start] === "/" && position === start + 1 ? start + 1 : start;
  if (position === first) return starts[line + 1] - 1 === position + length ? exact : prefix;
  return divides.has(text[position - 1]) ? word : part;
}

// Gives each line with the text, with its best rank.
function lookThrough(lines, wanted, note) {
  let position = lines.text.indexOf(wanted);
  let line = 0;
  while (position >= 0) {
    line = lineAt(lines.starts, position, line);
    const end = lines.starts[line + 1];
    let rank = rankAt(lines, line, position, wanted.length);
    while (rank === part) {
      position = lines.text.indexOf(wanted, position + 1);
      if (position < 0 || position >= end) break;
      rank = rankAt(lines, line, position, wanted.length);
    }
    note(line, rank);
    position = lines.text.indexOf(wanted, end);
  }
}

// The best first, of each rank so many at most. Descriptions are looked at where names are few.
function search(database, text) {
  const wanted = text.trim().toLowerCase().replaceAll("\n", " ");
  const ranks = [[], [], [], [], []];
  let count = 0;
  const add = (rank, k, i) => {
    ++count;
    if (ranks[rank].length < mostOfRank) ranks[rank].push({ k, i });
  };
  if (wanted === "") return { hits: [], count };
  const numberlike = /^\d+$/.test(wanted);
  const numbered = numberlike ? database.fields.numbers.indexOf(Number(wanted)) : -1;
  if (numbered >= 0) add(exact, 1, numbered);
  if (numberlike) addNumbers(database, wanted, numbered, add);
  const searched = searchedOf(database);
  searched.forEach(({ names }, k) => lookThrough(names, wanted, (i, rank) => add(rank, k, i)));
  addOldNames(database, wanted, ranks, add);
  if (count < mostOfRank) addTexts(searched, wanted, ranks, add);
  if (count < mostOfRank) addWords(searched, wanted.split(/\s+/), ranks, add);
  return { hits: ranks.flat(), count };
}

const keyOf = (k, i) => k * 2 ** 32 + i;
const keysOf = (ranks) => new Set(ranks.flat().map(({ k, i }) => keyOf(k, i)));

function addTexts(searched, wanted, ranks, add) {
  const named = keysOf(ranks);
  searched.forEach(({ texts }, k) => {
    if (texts) lookThrough(texts, wanted, (i) => named.has(keyOf(k, i)) || add(inText, k, i));
  });
}

function addNumbers({ fields }, wanted, numbered, add) {
  const ranges = []; // 20 to 20, 200 to 209, 2000 to 2099, ...
  for (let low = Number(wanted), size = 1; low <= highestNumber && low > 0; low *= 10, size *= 10)
    ranges.push([low, low + size]);
  fields.numbers.forEach((number, i) => {
    for (const [low, end] of ranges)
      if (number >= low && number < end && i !== numbered) add(prefix, 1, i);
  });
}

// By the name that it had before.
function addOldNames(database, wanted, ranks, add) {
  const known = keysOf(database.left.length === 0 ? [] : ranks);
  for (const [key, now] of database.left) {
    const k = key[0] === "c" ? 0 : 1;
    const i = key.slice(1).includes(wanted) ? find(kinds[k].kind, now) : undefined;
    if (i === undefined || known.has(keyOf(k, i))) continue;
    known.add(keyOf(k, i));
    add(word, k, i);
  }
}

// The word that stands in the fewest places; counting ends where that no longer matters.
function rarestOf(searched, words) {
  const most = 5000;
  const texts = searched.flatMap((each) => [each.names.text, each.texts?.text ?? ""]);
  const counts = words.map((one) => {
    let count = 0;
    for (const text of texts)
      for (let at = text.indexOf(one); at >= 0 && count < most; at = text.indexOf(one, at + 1))
        ++count;
    return count;
  });
  return words[counts.indexOf(Math.min(...counts))];
}

// What has all of several words, in the name or the description.
function addWords(searched, words, ranks, add) {
  if (words.length < 2) return;
  const known = keysOf(ranks);
  const rarest = rarestOf(searched, words);
  const lineOf = (lines, i) => lines?.text.slice(lines.starts[i], lines.starts[i + 1]) ?? "";
  searched.forEach(({ names, texts }, k) => {
    const note = (i) => {
      const whole = lineOf(names, i) + lineOf(texts, i);
      if (known.has(keyOf(k, i)) || !words.every((one) => whole.includes(one))) return;
      known.add(keyOf(k, i));
      add(words.every((one) => lineOf(names, i).includes(one)) ? part : inText, k, i);
    };
    lookThrough(names, rarest, note);
    if (texts) lookThrough(texts, rarest, note);
  });
}

// --- The page ---------------------------------------------------------------------------------

function hitOf({ k, i }) {
  const { kind, one } = kinds[k];
  const rows = current[kind];
  const name = rows.names[i];
  if (one === "field") {
    return {
      one,
      name,
      about: `${rows.numbers[i]} ${current.types[rows.types[i]]}`,
      text: rows.texts[i],
    };
  }
  if (one === "class") return { one, name, about: "", text: rows.texts[i] };
  const owner = current.classes.names[rows.classes[i]];
  const table = one === "column" ? current.tables.names[rows.tables[i]] : name;
  return {
    one,
    name,
    about: owner,
    text: one === "column" ? (table ?? "") : "",
    table: table ?? "",
  };
}

function hitLink(hit) {
  if (hit.one === "column" && hit.table === "") return link("class", hit.about, hit.name);
  return hit.one === "column" ? link("table", hit.table, hit.name) : link(hit.one, hit.name);
}

const hitColumns = [
  { head: "Kind", cell: (hit) => hit.one, class: "kind" },
  { head: "Name", cell: hitLink, csv: (hit) => hit.name, class: "name" },
  { head: "About", cell: (hit) => hit.about, class: "name" },
  { head: "Description", optional: true, cell: (hit) => hit.text, class: "text" },
];

function searchPage(text) {
  const { hits, count } = search(current, text);
  const note =
    count > hits.length ? make("p", {}, `More fit; the best ${hits.length} are shown.`) : null;
  const title = `Search: ${text}`;
  const list = tableOf("Found", hitColumns, hits.map(hitOf), {
    none: "Nothing fits.",
    class: "stacked",
  });
  list.id = "found";
  return { title, content: [make("h1", {}, title), note, list] };
}

// --- Keys -------------------------------------------------------------------------------------

const query = () => document.getElementById("query");
const hitLinks = () => [...document.querySelectorAll("#found td.name:nth-child(2) a")];

function moveIn(links, step) {
  const at = links.indexOf(document.activeElement);
  const next = at + step;
  if (next < 0) query().focus();
  else links[Math.min(next, links.length - 1)]?.focus();
}

function isTyping(target) {
  return target.matches?.("input, textarea, select");
}

addEventListener("keydown", (event) => {
  if (event.ctrlKey || event.altKey || event.metaKey) return;
  const links = hitLinks();
  const among = event.target === query() || links.includes(event.target);
  if (event.key === "/" && !isTyping(event.target)) {
    query().focus();
    query().select();
  } else if (event.key === "Escape" && among) {
    query().value = "";
    query().focus();
    if (location.hash.includes("/search/")) location.hash = placeOf("");
  } else if (event.key === "ArrowDown" && among) {
    moveIn(links, 1);
  } else if (event.key === "ArrowUp" && among) {
    moveIn(links, -1);
  } else {
    return;
  }
  event.preventDefault();
});
