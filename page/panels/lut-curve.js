// The curves of the lookup tables on a canvas, with handles that bend them.

import { svg } from '../base/dom.js';
import { clamp } from '../base/numbers.js';
import { maySet } from '../base/state.js';
import { bend, curveScale, drawGrid, drawProposal, drawTables, LARGEST } from '../draw/curve.js';

const HANDLES = 9;

/** Draws the tables. The chosen ones are bent together; the handles are on the first of them. */
export class LutCurve {
  /**
   * @param {import('./lut-tables.js').LutTables} tables
   * @param {{onBend: function(function(number[]): number[]): void, onRelease: function(): void}} options
   *   onBend: a function is to be applied to the chosen tables; onRelease: a handle was released without a change
   */
  constructor(tables, { onBend, onRelease }) {
    Object.assign(this, { tables, onBend, onRelease });
    this.chosen = [0, 1, 2];
    this.indices = []; // entries of the handles
    this.points = []; // entry and value of the handles
    this.drag = null; // the handle that is dragged, with the resulting tables
    this.canvas = svg('svg', { class: 'curve', id: 'lut-curve', role: 'group', 'aria-label': 'Lookup table' });
    this.listen();
  }

  listen() {
    this.canvas.addEventListener('pointermove', (event) => this.move(event));
    this.canvas.addEventListener('pointerup', () => this.drop());
    this.canvas.addEventListener('pointercancel', () => this.cancel());
    this.canvas.addEventListener('dblclick', (event) => this.add(event));
  }

  /** Chooses the tables that the handles bend. */
  choose(which) {
    this.chosen = which;
    this.draw();
  }

  draw() {
    const at = curveScale(this.canvas, this.tables.size);
    if (!at.width || !this.tables.size) return;
    this.canvas.setAttribute('viewBox', `0 0 ${at.width} ${at.height}`);
    const focused = [...this.canvas.querySelectorAll('circle')].indexOf(document.activeElement);
    const table = this.first(this.drag?.tables);
    if (!this.drag) this.placeHandles(table);
    const handles = maySet() ? this.points.map((point, i) => this.handle(point, i, at)) : [];
    this.canvas.replaceChildren(
      ...drawGrid(at),
      ...drawTables(at, this.tables.entries),
      ...(this.drag?.tables ? [drawProposal(at, table)] : []),
      ...handles,
    );
    if (focused >= 0) handles[Math.min(focused, handles.length - 1)]?.focus();
  }

  first(tables = this.tables.entries) {
    return tables[this.chosen[0]];
  }

  /** Places the handles on a table: evenly spaced the first time. */
  placeHandles(table) {
    const last = table.length - 1;
    if (!this.indices.length)
      this.indices = Array.from({ length: HANDLES }, (_, i) => Math.floor((i * last) / (HANDLES - 1)));
    this.points = this.indices.map((index) => [index, table[index]]);
  }

  handle([index, value], i, at) {
    return svg('circle', {
      class: 'handle',
      cx: at.x(index),
      cy: at.y(value),
      r: 5.5,
      tabindex: 0,
      role: 'slider',
      'aria-label': `Entry ${index}`,
      'aria-valuemin': 0,
      'aria-valuemax': LARGEST,
      'aria-valuenow': value,
      'aria-orientation': 'vertical',
      on: {
        pointerdown: (event) => this.grab(event, i),
        keydown: (event) => this.key(event, i),
      },
    });
  }

  /** Returns entry and value below the pointer. */
  pointAt(event) {
    const box = this.canvas.getBoundingClientRect();
    const at = curveScale(this.canvas, this.tables.size);
    return [
      clamp(at.index(event.clientX - box.left), 0, this.tables.size - 1),
      clamp(at.value(event.clientY - box.top), 0, LARGEST),
    ];
  }

  grab(event, i) {
    this.drag = { i };
    this.canvas.setPointerCapture(event.pointerId);
    event.target.focus();
  }

  move(event) {
    if (!this.drag) return;
    const { i } = this.drag;
    const [index, value] = this.pointAt(event);
    const to = this.between(i, index);
    const bending = this.bending(i, to, value);
    this.drag.tables = this.tables.entries.map((table, k) => (this.chosen.includes(k) ? bend(table, bending) : table));
    this.drag.bending = bending;
    this.points[i] = [to, value];
    this.draw();
  }

  /** Limits the entry of a handle: outer handles keep theirs, inner ones stay between their neighbours. */
  between(i, index) {
    if (i === 0 || i === this.indices.length - 1) return this.indices[i];
    return clamp(index, this.indices[i - 1] + 1, this.indices[i + 1] - 1);
  }

  /** Returns the function that bends a table when a handle moves. */
  bending(i, to, value) {
    const from = this.indices[i];
    const [begin, end] = [this.indices[i - 1] ?? from, this.indices[i + 1] ?? from];
    return { begin, end, from, to, rise: value - this.first()[from] };
  }

  drop() {
    if (!this.drag) return;
    const { i, bending } = this.drag;
    this.drag = null;
    if (!bending) return void this.onRelease();
    this.indices[i] = bending.to;
    this.onBend((table) => bend(table, bending));
  }

  cancel() {
    this.drag = null;
    this.draw();
  }

  add(event) {
    if (!maySet() || !this.tables.size || event.target.matches('circle')) return;
    const [index, value] = this.pointAt(event);
    if (this.indices.includes(index)) return;
    this.indices = [...this.indices, index].sort((a, b) => a - b);
    this.raise(this.indices.indexOf(index), value);
  }

  key(event, i) {
    const step = event.shiftKey ? 4096 : 256;
    const change = { ArrowUp: step, ArrowDown: -step }[event.key];
    if (event.key === 'Delete' && i > 0 && i < this.indices.length - 1) this.remove(i);
    else if (change) this.raise(i, clamp(this.first()[this.indices[i]] + change, 0, LARGEST));
    else return;
    event.preventDefault();
  }

  /** Moves a handle to a value. */
  raise(i, value) {
    const bending = this.bending(i, this.indices[i], value);
    this.onBend((table) => bend(table, bending));
  }

  remove(i) {
    this.indices.splice(i, 1);
    this.draw();
  }
}
