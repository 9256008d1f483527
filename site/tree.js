"use strict";
// The tree of classes. What is open is remembered, where the browser keeps anything for pages.

const openKey = () => `tav site ${current.dictionary} ${current.database}`;

function openClasses() {
  try {
    return new Set(JSON.parse(localStorage.getItem(openKey()) ?? "[]"));
  } catch {
    return new Set();
  }
}

function remember(name, isOpen) {
  const open = openClasses();
  if (isOpen) open.add(name);
  else open.delete(name);
  try {
    localStorage.setItem(openKey(), JSON.stringify([...open].slice(-1000)));
  } catch {
    return; // nothing is kept
  }
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
