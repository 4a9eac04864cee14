// Shows the instruments of the data above. Each has an empty list item from the start; the item is
// filled, and its key map drawn, when it scrolls into view. Everything from the data is inserted as
// text.
"use strict";

const data = JSON.parse(document.getElementById("data").textContent);

// Indexes of an instrument's list.
const [NAME, FOLDER, FILE, CAUSE, ERROR, SAMPLES, BYTES, COPIED, STATE_FOLDER, STATE_FILE, LOAD, ZONES,
  MAX_STACK, STACKED, LOWEST, HIGHEST, LAYERS, RELINKED, UNRESOLVED, APPLE] = Array(20).keys();
// Indexes of a layer's list; marks are 1 for chosen by a controller, 2 for on release.
const [LAYER_NAME, MARKS, LAYER_ZONES, LOOPED, AREAS] = Array(5).keys();

const COLOURS = 8;
const SVG = "http://www.w3.org/2000/svg";
const byId = id => document.getElementById(id);

// ---- Texts

const number = value => value.toLocaleString("en");
const counted = (value, thing) => `${number(value)} ${thing}${value === 1 ? "" : "s"}`;

function bytesText(bytes) {
  if (bytes < 1000) return counted(bytes, "byte");
  let unit = "";
  for (const next of ["kB", "MB", "GB", "TB"]) {
    if (bytes >= 999.95) [bytes, unit] = [bytes / 1000, next];
  }
  return `${bytes.toFixed(1)} ${unit}`;
}

function timeText(seconds) {
  if (seconds < 60) return `${seconds < 10 ? seconds.toFixed(1) : Math.round(seconds)} s`;
  const minutes = Math.floor(seconds / 60);
  return minutes < 60 ? `${minutes} min ${Math.round(seconds % 60)} s`
    : `${Math.floor(minutes / 60)} h ${minutes % 60} min`;
}

const KEYS = ["C", "C♯", "D", "E♭", "E", "F", "F♯", "G", "A♭", "A", "B♭", "B"];
const keyName = key => KEYS[key % 12] + (Math.floor(key / 12) - 2);
const isBlack = key => [1, 3, 6, 8, 10].includes(key % 12);
const keysText = one => one[LOWEST] > one[HIGHEST] ? "no keys"
  : `${keyName(one[LOWEST])} – ${keyName(one[HIGHEST])}`;

const isFailed = one => one[CAUSE] >= 0;
const source = one => data.folders[one[FOLDER]] + one[FILE];

// ---- Elements

function element(tag, settings = {}, ...children) {
  const made = document.createElement(tag);
  for (const [name, value] of Object.entries(settings)) made.setAttribute(name, value);
  made.append(...children);
  return made;
}

function svg(tag, settings, ...children) {
  const made = document.createElementNS(SVG, tag);
  for (const [name, value] of Object.entries(settings)) made.setAttribute(name, value);
  made.append(...children);
  return made;
}

const pathText = text => element("span", {class: "path"}, text);

// A remedy; words between backquotes are code.
function remedyText(remedy) {
  const parts = remedy.split("`").map((part, i) => i % 2 ? element("code", {}, part) : part);
  return remedy ? [element("span", {class: "remedy"}, "To do: ", ...parts)] : [];
}

// ---- Key maps: keys across, velocities up

// The outline of a layer's areas, one rectangle each; a key is `wide` and a velocity `high`.
function outline(areas, wide, high) {
  let path = "";
  for (let i = 0; i < areas.length; i += 4) {
    const [low, top, soft, loud] = [areas[i], areas[i + 1], areas[i + 2], areas[i + 3]];
    path += `M${low * wide} ${(127 - loud) * high}h${(top - low + 1) * wide}` +
      `v${(loud - soft + 1) * high}H${low * wide}z`;
  }
  return path;
}

const hasMap = one => one[LAYERS].some(layer => layer[AREAS]);
const colour = index => `var(--layer-${index % COLOURS})`;

// Layers in drawing order: those that sound on every note first, below the others.
const drawn = one => one[LAYERS].map((layer, index) => ({layer, index}))
  .sort((a, b) => a.layer[MARKS] - b.layer[MARKS] || a.index - b.index);

function thumbnail(one) {
  const picture = svg("svg", {class: "map thumb", viewBox: "0 0 128 127", preserveAspectRatio: "none",
    "aria-hidden": "true"});
  for (const {layer, index} of drawn(one)) {
    picture.append(svg("path", {d: outline(layer[AREAS], 1, 1), style: `color:${colour(index)}`,
      fill: layer[MARKS] ? "none" : "currentColor", class: layer[MARKS] ? "marked" : ""}));
  }
  return picture;
}

let patterns = 0;

// The pattern of a layer that does not sound on every note: lines for release, dots for a
// controller.
function pattern(layer, index) {
  const id = `pattern-${++patterns}`;
  const figure = layer[MARKS] & 2
    ? svg("path", {d: "M-2 2L2 -2M0 8L8 0M6 10L10 6", style: `stroke:${colour(index)}`})
    : svg("circle", {cx: 4, cy: 4, r: 1.5, style: `fill:${colour(index)}`});
  return [svg("pattern", {id, width: 8, height: 8, patternUnits: "userSpaceOnUse"}, figure), `url(#${id})`];
}

const layerName = (layer, index) => layer[LAYER_NAME] || `Layer ${index + 1}`;

function marksText(layer) {
  return [layer[MARKS] & 2 ? "on release" : "", layer[MARKS] & 1 ? "chosen by a controller" : ""]
    .filter(Boolean).join(", ");
}

function keyMap(one) {
  const [wide, high, left, top, bottom] = [8, 2, 34, 6, 46];
  const [width, height] = [128 * wide, 127 * high];
  const picture = svg("svg", {class: "map big", role: "img",
    viewBox: `0 0 ${left + width + 8} ${top + height + bottom}`,
    "aria-label": `Key map: ${keysText(one)}, ${counted(one[LAYERS].length, "layer")}`});
  const plane = svg("g", {transform: `translate(${left} ${top})`},
    svg("rect", {class: "plane", width, height}));
  picture.append(plane);
  for (let key = 0; key < 128; ++key) {
    if (isBlack(key)) plane.append(svg("rect", {class: "dark", x: key * wide, width: wide, height}));
    if (key % 12 === 0 && key) plane.append(svg("path", {class: "rule", d: `M${key * wide} 0v${height}`}));
  }
  const legend = element("ul", {class: "legend"});
  for (const {layer, index} of drawn(one)) {
    let fill = "currentColor";
    if (layer[MARKS]) {
      const [definition, reference] = pattern(layer, index);
      picture.append(definition);
      fill = reference;
    }
    const look = {style: `color:${colour(index)}${layer[MARKS] ? ";fill-opacity:1" : ""}`, fill,
      class: layer[MARKS] ? "marked" : ""};
    plane.append(svg("path", {d: outline(layer[AREAS], wide, high), ...look}));
    const marks = marksText(layer);
    legend.append(element("li", {},
      svg("svg", {class: "map", viewBox: "0 0 22 13"}, svg("path", {d: "M1 1h20v11h-20z", ...look})),
      element("bdi", {}, layerName(layer, index)),
      element("span", {class: "quiet"}, counted(layer[LAYER_ZONES], "zone") +
        (layer[LOOPED] ? `, ${number(layer[LOOPED])} looped` : "") + (marks ? `, ${marks}` : ""))));
  }
  picture.append(keyboard(wide, left, top + height + 4), ...velocities(left, top, high));
  return [picture, legend];
}

function keyboard(wide, left, top) {
  const keys = svg("g", {transform: `translate(${left} ${top})`});
  const blacks = [];
  for (let key = 0; key < 128; ++key) {
    if (isBlack(key)) {
      blacks.push(svg("rect", {class: "black-key", x: key * wide, width: wide, height: 14}));
    } else { // a white key extends half below its black neighbours
      const from = isBlack(key - 1) && key > 0 ? -wide / 2 : 0;
      const to = key < 127 && isBlack(key + 1) ? wide / 2 : 0;
      keys.append(svg("rect", {class: "white-key", x: key * wide + from, width: wide - from + to, height: 22}));
    }
    if (key % 12 === 0) {
      const label = svg("text", {x: key * wide, y: 37});
      label.textContent = keyName(key);
      keys.append(label);
    }
  }
  keys.append(...blacks);
  return keys;
}

function velocities(left, top, high) {
  return [1, 32, 64, 96, 127].map(velocity => {
    const label = svg("text", {x: left - 6, y: top + (127.5 - velocity) * high + 4, "text-anchor": "end"});
    label.textContent = velocity;
    return label;
  });
}

// ---- Details

const pathAt = (list, i) => data.folders[list[i]] + list[i + 1];

function relinkedPaths(one) {
  const paths = [];
  for (let i = 0; i < one[RELINKED].length; i += 4) {
    const [, name, folder, other] = one[RELINKED].slice(i, i + 4);
    paths.push([pathAt(one[RELINKED], i), data.folders[folder] + (other === 0 ? name : other)]);
  }
  return paths;
}

function pathList(title, list) {
  if (!list.length) return [];
  const items = element("ul", {class: "paths"});
  for (let i = 0; i < list.length; i += 2) items.append(element("li", {}, pathText(pathAt(list, i))));
  return [element("h3", {}, title), items];
}

function foundPaths(one) {
  const paths = relinkedPaths(one);
  if (!paths.length) return [];
  const table = element("div", {class: "found"}, element("span", {class: "head"}, "Recorded"),
    element("span", {class: "head"}, "Found"));
  for (const [from, to] of paths) table.append(pathText(from), pathText(to));
  return [element("h3", {}, `Found elsewhere (${number(paths.length)})`), table];
}

function facts(one) {
  const state = data.folders[one[STATE_FOLDER]] + one[STATE_FILE];
  const list = [["Instrument", pathText(source(one))]];
  if (state) list.push(["State", pathText(state)]);
  list.push(["Samples", `${number(one[SAMPLES])}, ${bytesText(one[BYTES])}, of which ` +
    `${bytesText(one[COPIED])} copied by this import`]);
  if (one[LAYERS].length) {
    list.push(["Zones", number(one[ZONES])], ["Keys", keysText(one)],
      ["Stacked", `at most ${counted(one[MAX_STACK], "layer")} at once; two or more on ${one[STACKED]} %`]);
  }
  list.push(["Loaded in", `${one[LOAD].toFixed(1)} ms`]);
  return element("dl", {class: "facts"},
    ...list.flatMap(([name, value]) => [element("dt", {}, name), element("dd", {}, value)]));
}

function details(one) {
  const more = element("div", {class: "more"});
  if (isFailed(one)) {
    more.append(element("div", {class: "error"}, element("strong", {}, one[ERROR]),
      ...remedyText(data.causes[one[CAUSE]][1])));
  }
  if (hasMap(one)) {
    more.append(...keyMap(one));
  } else if (one[LAYERS].length) {
    more.append(element("p", {class: "quiet"}, "There is no key map: the state could not be read."));
  }
  more.append(facts(one), ...pathList(`Not found (${number(one[UNRESOLVED].length / 2)})`, one[UNRESOLVED]),
    ...pathList("From Apple's sound library", one[APPLE]), ...foundPaths(one));
  return more;
}

// ---- The list

const list = byId("list");
const rows = data.instruments.map((one, order) => ({one, order, item: document.createElement("li"),
  text: "", isFilled: false, isShown: true}));
const rowOf = new Map(rows.map(row => [row.item, row]));

function fill(row) {
  if (row.isFilled) return;
  row.isFilled = true;
  const {one, item} = row;
  const failed = isFailed(one);
  item.className = failed ? "failed" : "imported";
  const button = element("button", {class: "row", type: "button", "aria-expanded": "false"},
    element("span", {class: "mark", role: "img", "aria-label": failed ? "failed" : "imported"}),
    element("span", {},
      element("span", {class: "name", dir: "auto"}, one[NAME]),
      element("span", {class: "where"}, failed ? one[ERROR] : source(one))));
  if (one[LAYERS].length) {
    button.append(hasMap(one) ? thumbnail(one) : element("span"),
      element("span", {class: "figure"}, counted(one[SAMPLES], "sample")),
      element("span", {class: "figure"}, bytesText(one[BYTES])),
      element("span", {class: "figure extra"}, counted(one[ZONES], "zone")),
      element("span", {class: "figure extra"}, keysText(one)));
  } else { // it was not loaded: only its path is known
    button.append(element("span", {class: "place"}, data.folders[one[FOLDER]]));
  }
  item.append(button);
}

function toggle(row) {
  const isOpen = row.item.classList.toggle("open");
  row.item.firstChild.setAttribute("aria-expanded", isOpen);
  if (isOpen) {
    row.item.append(details(row.one));
  } else {
    row.item.lastChild.remove();
  }
}

const watcher = new IntersectionObserver(entries => {
  for (const entry of entries) {
    if (entry.isIntersecting) {
      fill(rowOf.get(entry.target));
      watcher.unobserve(entry.target);
    }
  }
}, {rootMargin: "600px"});

// The text that the filter searches, in lower case; made at first use.
function searchText(row) {
  if (!row.text) {
    const {one} = row;
    const parts = [one[NAME], source(one), one[ERROR], data.folders[one[STATE_FOLDER]] + one[STATE_FILE]];
    for (const [from, to] of relinkedPaths(one)) parts.push(from, to);
    for (const paths of [one[UNRESOLVED], one[APPLE]]) {
      for (let i = 0; i < paths.length; i += 2) parts.push(pathAt(paths, i));
    }
    row.text = parts.join("\n").toLowerCase();
  }
  return row.text;
}

let cause = null; // the number of the selected cause; only its failures are shown

function filter() {
  const words = byId("filter").value.toLowerCase().split(/\s+/).filter(Boolean);
  const wanted = byId("show").value;
  let count = 0;
  for (const row of rows) {
    const failed = isFailed(row.one);
    const isShown = (wanted === "all" || (wanted === "failed") === failed) &&
      (cause === null || row.one[CAUSE] === cause) &&
      (words.length === 0 || words.every(word => searchText(row).includes(word)));
    if (isShown !== row.isShown) row.item.hidden = !(row.isShown = isShown);
    count += isShown;
  }
  byId("count").textContent = count === rows.length ? counted(count, "instrument")
    : `${number(count)} of ${number(rows.length)}`;
  byId("none").hidden = count > 0;
}

const compareTexts = new Intl.Collator("en", {numeric: true, sensitivity: "base"}).compare;
const byName = (a, b) => compareTexts(a.one[NAME], b.one[NAME]) || a.order - b.order;
const byMost = place => (a, b) => b.one[place] - a.one[place] || byName(a, b);
const ORDERS = {
  // The causes with most failures first, as in the list above.
  outcome: (a, b) => isFailed(b.one) - isFailed(a.one) ||
    (isFailed(a.one) && data.causes[b.one[CAUSE]][2] - data.causes[a.one[CAUSE]][2]) ||
    a.one[CAUSE] - b.one[CAUSE] || byName(a, b),
  name: byName,
  path: (a, b) => compareTexts(source(a.one), source(b.one)) || a.order - b.order,
  samples: byMost(SAMPLES),
  bytes: byMost(BYTES),
  zones: byMost(ZONES),
  load: byMost(LOAD),
};

function sort() {
  rows.sort(ORDERS[byId("sort").value]);
  list.append(...rows.map(row => row.item));
}

// ---- The head

function showTotals() {
  const failed = rows.filter(row => isFailed(row.one)).length;
  const imported = rows.length - failed;
  const totals = [["imported", number(imported)], ["failed", number(failed), failed ? "bad" : ""],
    ["samples", number(data.samples)], ["copied", bytesText(data.copied)]];
  if (data.seconds !== null) totals.push(["taken", timeText(data.seconds)]);
  for (const [name, value, look = ""] of totals) {
    byId("totals").append(element("div", {class: look}, element("dt", {}, name), element("dd", {}, value)));
  }
  byId("share").setAttribute("aria-label", `${number(imported)} of ${number(rows.length)} imported`);
  for (const part of [imported, failed]) {
    if (part || !failed) byId("share").append(element("span", {style: `flex:${part} 0 auto`}));
  }
  if (data.package) byId("title").textContent = `Instruments in ${data.package}`;
  byId("made").textContent = data.made;
  const notices = [[data.left, "instrument", "not imported: the run ended before"],
    [data.unreadable, "folder or link", "left out: could not be read"],
    [data.before, "instrument", "left out: imported before"]];
  for (const [count, thing, text] of notices) {
    if (count) byId("notices").append(element("p", {class: "notice"}, `${counted(count, thing)} ${text}.`));
  }
}

function showCauses() {
  const causes = data.causes.map(([text, remedy, count], index) => ({text, remedy, count, index}))
    .sort((a, b) => b.count - a.count || a.index - b.index);
  byId("failures").hidden = causes.length === 0;
  for (const {text, remedy, count, index} of causes) {
    const button = element("button", {type: "button", "aria-pressed": "false"},
      element("strong", {}, text), ...remedyText(remedy));
    button.addEventListener("click", () => {
      cause = cause === index ? null : index;
      for (const other of byId("causes").querySelectorAll("button")) {
        other.setAttribute("aria-pressed", other === button && cause === index);
      }
      filter();
    });
    byId("causes").append(element("li", {}, element("span", {class: "number"}, number(count)), button));
  }
  byId("absent").hidden = data.missing.length === 0;
  for (const [folder, count] of data.missing) {
    byId("missing").append(element("li", {}, element("span", {class: "number"}, number(count)),
      folder ? pathText(folder) : element("span", {class: "path"}, "recorded without a folder")));
  }
}

// ---- Keys and clicks

function moveTo(from, step) {
  const shown = rows.filter(row => row.isShown);
  const at = shown.findIndex(row => row.item === from) + step;
  const row = shown[Math.max(0, Math.min(at, shown.length - 1))];
  if (!row) return;
  fill(row);
  row.item.firstChild.focus();
  row.item.scrollIntoView({block: "nearest"});
}

const STEPS = {ArrowDown: 1, ArrowUp: -1, PageDown: 10, PageUp: -10, Home: -Infinity, End: Infinity};

list.addEventListener("keydown", event => {
  const step = STEPS[event.key];
  if (step === undefined || !event.target.classList.contains("row")) return;
  event.preventDefault();
  moveTo(event.target.parentNode, step);
});

list.addEventListener("click", event => {
  const button = event.target.closest(".row");
  if (button) toggle(rowOf.get(button.parentNode));
});

document.addEventListener("keydown", event => {
  const box = byId("filter");
  if (event.key === "/" && event.target !== box) {
    event.preventDefault();
    box.focus();
    box.select();
  } else if (event.key === "Escape") {
    box.value = "";
    filter();
  } else if (event.key === "ArrowDown" && event.target === box) {
    event.preventDefault();
    moveTo(null, 1);
  }
});

byId("filter").addEventListener("input", filter);
byId("show").addEventListener("change", filter);
byId("sort").addEventListener("change", sort);
// Paper shows all of the list.
window.addEventListener("beforeprint", () => rows.filter(row => row.isShown).forEach(fill));

showTotals();
showCauses();
sort();
filter();
for (const {item} of rows) watcher.observe(item);
