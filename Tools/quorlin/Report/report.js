// Search, filter and unfolding. The page is complete without them.
"use strict";
(() => {
  const all = [...document.querySelectorAll("details.structure")];
  const search = document.getElementById("search");
  const type = document.getElementById("type");
  const found = document.getElementById("found");
  const texts = [];  // in lower case, made by the first search

  document.documentElement.classList.add("script");

  const types = new Map();
  for (const each of all) types.set(each.dataset.type, each.querySelector("b").textContent);
  for (const [number, name] of [...types].sort((a, b) => a[0] - b[0])) type.add(new Option(`${number} ${name}`, number));

  const tellCount = () => {
    const count = all.filter((each) => !each.hidden).length;
    found.value = found.dataset.text.replace("%1", count).replace("%2", all.length);
  };
  // A structure matches if it has all words.
  const filter = () => {
    const words = search.value.toLowerCase().split(/\s+/).filter(Boolean);
    if (words.length && !texts.length)
      for (const each of all) texts.push([...each.querySelectorAll("summary,tbody th,tbody td")].map((cell) => cell.textContent)
        .join(" ").toLowerCase());
    all.forEach((each, place) => {
      each.hidden = (type.value && each.dataset.type !== type.value) || !words.every((word) => texts[place].includes(word));
    });
    tellCount();
  };
  const setOpen = (open) => {
    for (const each of all) if (!each.hidden) each.open = open;
  };
  // A link to a structure unfolds it, and shows it even if it was filtered out.
  const goToTarget = () => {
    const target = document.getElementById(decodeURIComponent(location.hash.slice(1)));
    if (!target || !target.matches("details.structure")) return;
    target.open = true;
    target.hidden = false;
    tellCount();
    target.scrollIntoView();
  };

  search.addEventListener("input", filter);
  type.addEventListener("change", filter);
  search.form.addEventListener("submit", (event) => event.preventDefault());
  document.getElementById("unfold").addEventListener("click", () => setOpen(true));
  document.getElementById("fold").addEventListener("click", () => setOpen(false));
  addEventListener("hashchange", goToTarget);
  // A second click on a link doesn't change the hash.
  addEventListener("click", (event) => {
    if (event.target.closest("a")?.hash === location.hash) goToTarget();
  });
  filter();
  goToTarget();
})();
