"use strict";
// Which page an address names: "#/class/order/item", "#/field/NAME", ... With several databases the
// first step is one's number behind a "@".

const pages = {
  unknown: unknownPage,
  "": startPage,
  search: searchPage,
  class: (name) => classPage("/" + name),
  field: fieldPage,
  table: tablePage,
  classes: classesPage,
  fields: fieldsPage,
  tables: tablesPage,
  changes: (number) => (number === "" ? changesPage() : changePage(number)),
};

function decoded(step) {
  try {
    return decodeURIComponent(step);
  } catch {
    return step;
  }
}

function route() {
  const steps = location.hash.replace(/^#\/?/, "").split("/").map(decoded);
  const named = steps[0].startsWith("@") ? steps.shift().slice(1) : "";
  const found = site.databases.find((one) => one.database === named);
  const database = found ?? site.databases[0];
  const [kind = "", ...rest] = steps;
  const name = rest.join("/");
  if (named !== "" && !found) return { database, kind: "unknown", name: `database ${named}` };
  if (!Object.hasOwn(pages, kind)) return { database, kind: "unknown", name: `page "${kind}"` };
  return { database, kind, name };
}

function unknownPage(what) {
  return {
    title: "Not here",
    content: [make("h1", {}, "Not here"), make("p", {}, `These pages hold no ${what}.`)],
  };
}

function showHead() {
  const home = document.getElementById("home");
  home.textContent = shown(site.title);
  home.href = placeOf("");
  const names = [
    ["classes", "Classes"],
    ["fields", "Fields"],
    ["tables", "Tables"],
    ["changes", "Changes"],
  ];
  const kind = route().kind;
  const has = ([place]) => place !== "changes" || current.deployments;
  const links = names
    .filter(has)
    .map(([place, text]) =>
      make("a", { href: placeOf(place), "aria-current": kind === place ? "page" : false }, text),
    );
  document.getElementById("nav").replaceChildren(...links);
  const which = whichContent().filter((one) => one !== null);
  document.getElementById("which").replaceChildren(...which);
}

let turn = 0; // a page that comes too late is dropped

// What the first search needs is made before somebody types.
function prepareSearch() {
  setTimeout(() => searchedOf(current));
}

async function show() {
  const own = ++turn;
  const { database, kind, name } = route();
  try {
    await openDatabase(database);
    if (own !== turn) return;
    current = database;
    waiting.clear();
    nearEnd.disconnect();
    const page = await pages[kind](name);
    if (own === turn) put(page, kind);
  } catch (error) {
    if (error.message !== "cannot be loaded") throw error; // that is told already
  }
}

function put({ title, content }, kind) {
  const main = document.getElementById("main");
  main.replaceChildren(...content.flat().filter((one) => one !== null && one !== undefined));
  main.dataset.page = kind;
  const database = site.databases.length > 1 ? `Database ${current.database}` : "";
  document.title = [title, site.title, database, whenText()]
    .filter((text) => text !== "")
    .map(shown)
    .join(" \u00b7 ");
  showHead();
  const query = document.getElementById("query");
  if (kind === "search" && document.activeElement !== query) query.value = route().name;
  if (kind === "search") return;
  scrollTo(0, 0);
  prepareSearch();
  if (kind === "") query.focus();
  else main.focus({ preventScroll: true });
}

// --- Search as it is typed --------------------------------------------------------------------

function showSearch() {
  const text = document.getElementById("query").value;
  const place = text.trim() === "" ? placeOf("") : placeOf("search", text);
  if (location.hash.includes("/search/")) history.replaceState(null, "", place);
  else history.pushState(null, "", place);
  show();
}

function openFirst(event) {
  event.preventDefault();
  const first = hitLinks()[0];
  if (first) location.hash = first.getAttribute("href");
}

// The address stays that of the page.
function skip(event) {
  event.preventDefault();
  document.getElementById("main").focus();
}

// The program's data calls it when all scripts are there.
function begin(data) {
  site = data;
  addEventListener("hashchange", show);
  document.getElementById("search").addEventListener("submit", openFirst);
  document.getElementById("query").addEventListener("input", showSearch);
  document.getElementById("query").focus();
  document.querySelector(".skip").addEventListener("click", skip);
  if (route().kind === "search") document.getElementById("query").value = route().name;
  show();
}
