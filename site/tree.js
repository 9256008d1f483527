"use strict";
// The tree of classes. What is open is remembered, where the browser keeps anything for pages.

const openKey = () => `tav site ${current.dictionary} ${current.database}`;

function kept(key) {
  try {
    return JSON.parse(localStorage.getItem(key));
  } catch {
    return null;
  }
}

function keep(key, value) {
  try {
    localStorage.setItem(key, JSON.stringify(value));
  } catch {
    return; // nothing is kept
  }
}

const openClasses = () => new Set(kept(openKey()) ?? []);

function remember(name, isOpen) {
  const open = openClasses();
  if (isOpen) open.add(name);
  else open.delete(name);
  keep(openKey(), [...open].slice(-1000));
}

function branch(name, above, open) {
  const children = below(name);
  const item = make("li");
  const label = above === "" ? name : name.slice(above.length);
  if (children.length === 0) {
    item.append(make("span", { class: "leaf" }), link("class", name, label));
    return item;
  }
  const toggle = make("button", { type: "button", class: "fold" });
  const setOpen = (isOpen) => {
    toggle.setAttribute("aria-expanded", isOpen);
    toggle.setAttribute("aria-label", `Classes below ${shown(name)}`);
    item.querySelector(":scope > ul")?.remove();
    if (isOpen) item.append(branches(children, name, open));
  };
  toggle.addEventListener("click", () => {
    const isOpen = toggle.getAttribute("aria-expanded") !== "true";
    remember(name, isOpen);
    setOpen(isOpen);
  });
  item.append(
    toggle,
    link("class", name, label),
    make("span", { class: "count" }, children.length),
  );
  setOpen(open.has(name));
  return item;
}

function branches(names, above, open) {
  const list = make("ul", { class: "tree" });
  appendPieces(
    list,
    names,
    (name) => branch(name, above, open),
    (button) => make("li", {}, button),
  );
  return list;
}

function classTree() {
  return make("section", {}, make("h2", {}, "Classes"), branches(below(""), "", openClasses()));
}
