// Curves of the lookup table, and their drawing.

import { COMPONENTS, svg } from '../base/dom.js';
import { clamp } from '../base/numbers.js';

/** Largest value of an entry. */
export const LARGEST = 65535;
const AREA = { left: 46, top: 8, right: 10, bottom: 20 };
const PARTS = [0, 0.25, 0.5, 0.75, 1];

/** Maps entries and values to positions on the drawing, and back; size: the number of entries. */
export function curveScale(canvas, size) {
  const width = canvas.clientWidth;
  const height = canvas.clientHeight;
  const right = width - AREA.right;
  const bottom = height - AREA.bottom;
  return {
    width,
    height,
    right,
    bottom,
    last: size - 1,
    x: (index) => AREA.left + (index / (size - 1)) * (right - AREA.left),
    y: (value) => bottom - (value / LARGEST) * (bottom - AREA.top),
    index: (x) => Math.round(((x - AREA.left) / (right - AREA.left)) * (size - 1)),
    value: (y) => Math.round(((bottom - y) / (bottom - AREA.top)) * LARGEST),
  };
}

/** Draws grid lines and numbers of both axes. */
export function drawGrid(at) {
  return PARTS.flatMap((part) => {
    const x = at.x(part * at.last);
    const y = at.y(part * LARGEST);
    const anchor = part === 1 ? 'end' : part ? 'middle' : 'start';
    const number = (largest) => String(Math.round(part * largest));
    return [
      svg('path', { class: 'grid', d: `M${x} ${AREA.top}V${at.bottom}M${AREA.left} ${y}H${at.right}` }),
      svg('text', { class: 'axis', x, y: at.height - 5, 'text-anchor': anchor, text: number(at.last) }),
      svg('text', { class: 'axis', x: AREA.left - 5, y: y + 4, 'text-anchor': 'end', text: number(LARGEST) }),
    ];
  });
}

/** Draws the curves of the three tables, each given by all its entries. */
export function drawTables(at, tables) {
  return tables.map((table, i) =>
    svg('path', { class: `curve-line ${COMPONENTS[i].colour}`, d: curvePath(at, table) }),
  );
}

/** Draws the curve that will be sent to the station. */
export const drawProposal = (at, table) => svg('path', { class: 'curve-line proposed', d: curvePath(at, table) });

/** Entries that share a column of the drawing become a line over their range, so that none is missing. */
function curvePath(at, table) {
  const parts = [];
  const add = (x, value) => parts.push(`${x.toFixed(1)} ${at.y(value).toFixed(1)}`);
  const perColumn = Math.max(1, table.length / Math.max(1, at.right - at.x(0)));
  for (let from = 0; from < table.length; from += perColumn) {
    const column = table.slice(Math.floor(from), Math.max(Math.floor(from) + 1, Math.floor(from + perColumn)));
    const ends = [Math.min(...column), Math.max(...column)];
    if (column[0] > column.at(-1)) ends.reverse();
    for (const value of ends) add(at.x(Math.min(at.last, from + (perColumn - 1) / 2)), value);
  }
  return `M${parts.join('L')}`;
}

/** Returns all entries of straight lines between points. */
export function polyline(points, size) {
  const table = new Array(size);
  points.slice(1).forEach(([end, to], i) => {
    const [begin, from] = points[i];
    for (let k = begin; k <= end; k++) table[k] = Math.round(from + ((to - from) * (k - begin)) / (end - begin));
  });
  return table;
}

/**
 * Returns the table after a handle has moved. The pieces beside the handle move with it and keep their shape; all
 * other entries are unchanged.
 * @param {number[]} table
 * @param {{begin: number, end: number, from: number, to: number, rise: number}} move entries of the handles before and
 *   after the moved one, its entry before and now, and the change of its value
 */
export function bend(table, { begin, end, from, to, rise }) {
  const bent = table.slice();
  for (let k = begin; k <= end; k++) {
    // 0 at the neighbour and 1 at the handle. The first and the last entry have only one neighbour.
    const isBefore = k < to || to === end;
    const share = isBefore ? (k - begin) / (to - begin) : (end - k) / (end - to);
    const source = isBefore ? begin + share * (from - begin) : end - share * (end - from);
    const low = Math.floor(source);
    const value = table[low] + ((table[low + 1] ?? table[low]) - table[low]) * (source - low);
    bent[k] = clamp(Math.round(value + rise * share), 0, LARGEST);
  }
  return bent;
}

/** Returns the points of straight lines that give exactly this table. */
export function pointsOf(table) {
  const isNeeded = (value, i) => value - table[i - 1] !== table[i + 1] - value;
  return table.flatMap((value, i) => (isNeeded(value, i) ? [[i, value]] : []));
}
