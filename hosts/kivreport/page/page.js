// What the page can do where scripts run: tables are sorted, students are searched for. Without it
// everything is there to be read.
"use strict";
(() => {
  const collator = new Intl.Collator(document.documentElement.lang, {numeric: true});

  // A row that has no such column is one that could not be read: last, whichever way.
  const valueOf = (row, column, isNumber) => {
    const cell = row.cells[column];
    if (!cell || cell.colSpan > 1) {
      return null;
    }
    const time = cell.querySelector("time");
    const text = time ? time.dateTime : cell.textContent.trim();
    if (text === "") {
      return null;
    }
    const number = isNumber ? parseFloat(text.replace(",", ".")) : text;
    return Number.isNaN(number) ? null : number;
  };

  const compare = (a, b, direction) => {
    if (a === null || b === null) {
      return (a === null) - (b === null);
    }
    return direction * (typeof a === "number" ? a - b : collator.compare(a, b));
  };

  const sortBy = (head) => {
    const direction = head.getAttribute("aria-sort") === "ascending" ? -1 : 1;
    for (const other of head.parentNode.cells) {
      other.removeAttribute("aria-sort");
    }
    head.setAttribute("aria-sort", direction > 0 ? "ascending" : "descending");
    const body = head.closest("table").tBodies[0];
    const isNumber = head.classList.contains("num");
    const keyed = [...body.rows].map((row) => [valueOf(row, head.cellIndex, isNumber), row]);
    keyed.sort((a, b) => compare(a[0], b[0], direction));
    body.append(...keyed.map(([, row]) => row));
  };

  for (const head of document.querySelectorAll("table.sortable thead th:not(.fixed)")) {
    const button = document.createElement("button");
    button.type = "button";
    button.append(...head.childNodes);
    button.addEventListener("click", () => sortBy(head));
    head.append(button);
  }

  const form = document.getElementById("find");
  if (!form) {
    return;
  }
  const found = document.getElementById("found");
  const fold = (text) => text.normalize("NFD").replace(/\p{M}/gu, "").toLowerCase();

  // Each class with its students, and what each of them is found by.
  let groups = null;
  const readGroups = () => [...document.querySelectorAll("section.group")].map((section) => {
    const title = fold(section.querySelector("h3, h4").textContent);
    const rows = [...section.querySelectorAll("tbody tr")];
    return {section, rows: rows.map((row) => [row, fold(row.cells[0].textContent) + " " + title])};
  });

  const showFound = (count, isAll) => {
    const {none, one, many} = found.dataset;
    const text = count === 0 ? none : count === 1 ? one : many;
    found.textContent = isAll ? "" : text.replace("{}", count);
  };

  const search = () => {
    groups ??= readGroups();
    const words = fold(form.elements.words.value).split(/\s+/).filter(Boolean);
    const kind = form.elements.standing ? form.elements.standing.value : "";
    const isAll = words.length === 0 && kind === "";
    let count = 0;
    for (const {section, rows} of groups) {
      let here = 0;
      for (const [row, text] of rows) {
        const isFound = words.every((word) => text.includes(word)) &&
            (kind === "" || row.className === kind);
        if (row.hidden === isFound) {
          row.hidden = !isFound;
        }
        here += isFound;
      }
      section.hidden = !isAll && here === 0;
      count += here;
    }
    for (const above of document.querySelectorAll("section.teacher, section.school")) {
      above.hidden = !isAll && !above.querySelector("section.group:not([hidden])");
    }
    for (const glance of document.querySelectorAll("section.glance")) {
      glance.hidden = !isAll;
    }
    showFound(count, isAll);
  };

  form.hidden = false;
  form.addEventListener("input", search);
  form.addEventListener("submit", (event) => event.preventDefault());
  search();
})();
