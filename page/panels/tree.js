// The list of parameters by group, with search.

import { byId, el, setText } from '../base/dom.js';
import { oncePerFrame } from '../base/pace.js';
import { onParameters, parameters, reload } from '../base/parameters.js';
import { get, maySet, on } from '../base/state.js';
import { Row } from './row.js';

const MEASURED = 2000; // milliseconds between two reads of the values that are measured
const OPEN = 'station-open-groups';

const rows = new Map();
const groups = []; // {path, node, rows, parent}
const openGroups = new Set(JSON.parse(sessionStorage.getItem(OPEN) ?? '["Sensor Geometry","ROI"]'));
let isFiltering = false;

/** Builds the list when the parameters have been read, and keeps it up to date. */
export function startTree() {
  const apply = oncePerFrame(filter);
  byId('search').addEventListener('input', apply);
  byId('changed-only').addEventListener('change', apply);
  byId('search').addEventListener('keydown', searchKey);
  byId('tree').addEventListener('keydown', treeKey);
  onParameters((entries, isAll) => {
    if (isAll && !isSameList()) build();
    else entries.forEach((entry) => rows.get(entry.name)?.update(entry));
    apply();
  });
  on('station', () => {
    rows.forEach((row) => row.update(row.entry));
    const station = get('station');
    byId('locked').hidden = !station || maySet();
    setText(
      byId('locked'),
      'This page is read-only. Start the station with --allow-set to change settings here.',
    );
  });
  setInterval(readMeasured, MEASURED);
}

const isSameList = () =>
  rows.size > 0 && parameters().length === rows.size && parameters().every(({ name }) => rows.has(name));

function build() {
  rows.clear();
  groups.length = 0;
  const tree = byId('tree');
  tree.replaceChildren();
  for (const entry of parameters()) {
    const row = new Row(entry);
    rows.set(entry.name, row);
    const group = groupOf(entry.path?.length ? entry.path : ['Others'], tree);
    group.rows.push(row);
    group.body.append(row.node);
  }
}

function groupOf(path, tree) {
  const key = path.join(' / ');
  const known = groups.find((group) => group.path === key);
  if (known) return known;
  const parent = path.length > 1 ? groupOf(path.slice(0, -1), tree) : null;
  const count = el('span', { class: 'count' });
  const body = el('div', { class: 'rows' });
  const node = el(
    'details',
    { class: parent ? 'group nested' : 'group' },
    el('summary', {}, el('span', { text: path.at(-1) }), count),
    body,
  );
  node.open = parent !== null || openGroups.has(key);
  node.addEventListener('toggle', () => {
    if (isFiltering) return;
    if (node.open) openGroups.add(key);
    else openGroups.delete(key);
    sessionStorage.setItem(OPEN, JSON.stringify([...openGroups]));
  });
  (parent?.body ?? tree).append(node);
  const group = { path: key, node, body, count, parent, rows: [] };
  groups.push(group);
  return group;
}

/** Shows the rows that match the search, and their groups. */
function filter() {
  const words = byId('search').value.toLowerCase().split(/\s+/).filter(Boolean);
  const changedOnly = byId('changed-only').checked;
  const isNow = words.length > 0 || changedOnly;
  for (const row of rows.values()) row.node.hidden = !row.matches(words) || (changedOnly && !row.entry.isChanged);
  for (const group of [...groups].reverse()) showGroup(group, isNow);
  const shown = [...rows.values()].filter(({ node }) => !node.hidden).length;
  setText(byId('parameter-count'), isNow ? `${shown} of ${rows.size}` : String(rows.size || ''));
  byId('tree').classList.toggle('empty', rows.size > 0 && shown === 0);
  // The toggle events of the groups are sent later.
  if (isNow) isFiltering = true;
  else
    requestAnimationFrame(() =>
      setTimeout(() => {
        isFiltering = false;
      }),
    );
}

/** Shows a group with its numbers of rows; isNow: a search is active. */
function showGroup(group, isNow) {
  const inside = groups
    .filter((other) => other === group || other.path.startsWith(`${group.path} / `))
    .flatMap((other) => other.rows);
  const found = inside.filter((row) => !row.node.hidden);
  const changed = found.filter((row) => row.entry.isChanged).length;
  group.node.hidden = found.length === 0;
  setText(group.count, changed ? `${found.length}, ${changed} changed` : String(found.length));
  if (isNow) group.node.open = true;
  else if (isFiltering) group.node.open = group.parent !== null || openGroups.has(group.path);
}

/** Reads the values that only the station changes, for visible rows. */
function readMeasured() {
  if (document.hidden || !get('online')) return;
  const names = [...rows.values()]
    .filter(
      ({ entry, node }) =>
        entry.access === 'read' && typeof entry.value === 'number' && !node.hidden && node.checkVisibility(),
    )
    .map(({ entry }) => entry.name);
  if (names.length) reload(names);
}

function searchKey(event) {
  if (event.key === 'Escape') {
    event.target.value = '';
    filter();
  }
  if (event.key !== 'ArrowDown' && event.key !== 'Enter') return;
  event.preventDefault();
  [...rows.values()].find(({ node }) => node.checkVisibility())?.title.focus();
}

/** Arrow keys move from title to title; Home and End to the first and last one. */
function treeKey(event) {
  if (!event.target.matches('.title, summary')) return;
  const stops = [...byId('tree').querySelectorAll('.title, summary')].filter((node) => node.checkVisibility());
  const at = stops.indexOf(event.target);
  const next = { ArrowDown: at + 1, ArrowUp: at - 1, Home: 0, End: stops.length - 1 }[event.key];
  if (next === undefined) return;
  event.preventDefault();
  if (next < 0) byId('search').focus();
  else stops[Math.min(next, stops.length - 1)].focus();
}
