// The lookup table as a curve with handles. A change is written by the station, through its parameters.

import { ApiError, getJson, sendJson, setAll } from '../base/api.js';
import { byId, COMPONENTS, el, grouped, press, setText, svg } from '../base/dom.js';
import { latest } from '../base/pace.js';
import { onParameters, parameter, takeChanges } from '../base/parameters.js';
import { errorBox, isUnsent, unsentBox } from '../base/refusal.js';
import { maySet, on } from '../base/state.js';
import { bend, curveScale, drawGrid, drawProposal, drawTables, LARGEST, pointsOf, polyline } from '../draw/curve.js';

const HANDLES = 9;

/** Builds the panel, and reads the table whenever it is shown or a parameter of it changes. */
export function startLut() {
  const editor = new Editor();
  byId('panel-lut').append(editor.node);
  const read = latest((signal) => editor.read(signal), { pause: 100, abort: true });
  const readIfShown = () => !byId('panel-lut').hidden && read();
  byId('panel-lut').addEventListener('shown', read);
  onParameters((entries) => entries.some(({ name }) => /^FG_(LUT|PROCESSING)_/.test(name)) && readIfShown());
  on('station', () => editor.permit());
  on('station online', readIfShown);
  // No message says that another client has changed an entry.
  editor.canvas.addEventListener('pointerenter', read);
  window.addEventListener('focus', readIfShown);
  new ResizeObserver(() => editor.draw()).observe(editor.canvas);
}

/** All entries of a table of the station; size: their number as far as it is known, else 0. */
async function readTable(i, size, signal) {
  const ask = (points) => getJson(`/api/lut/${COMPONENTS[i].key}`, { points: points || undefined }, signal);
  const answer = await ask(size);
  const { points } = answer.points.length === answer.size ? answer : await ask(answer.size);
  return points.map(([, value]) => value);
}

class Editor {
  constructor() {
    this.tables = []; // of red, green and blue: all entries
    this.indices = []; // entries of the handles
    this.unsent = new Map(); // changes that the station does not have yet, by table: functions from a table to the next
    this.isSending = false;
    this.changes = 0;
    this.chosen = new Set([0, 1, 2]);
    this.points = []; // of the handles: entry and value
    this.drag = null; // the handle that moves, with the tables as they will be
    this.canvas = svg('svg', { class: 'curve', id: 'lut-curve', role: 'group', 'aria-label': 'Lookup table' });
    this.state = el('p', { class: 'muted', id: 'lut-state' });
    this.enable = el('button', {
      type: 'button',
      id: 'lut-enable',
      text: 'Switch the table on',
      hidden: true,
      on: { click: () => this.switchOn() },
    });
    this.trouble = el('div');
    this.gamma = el('input', {
      type: 'number',
      value: '1',
      min: '0.1',
      max: '10',
      step: 'any',
      class: 'short',
      id: 'lut-gamma',
    });
    const choices = [['All', [0, 1, 2]], ...COMPONENTS.map(({ name }, i) => [name, [i]])];
    this.choices = choices.map(([text, which]) =>
      el('button', {
        type: 'button',
        text,
        'aria-pressed': String(which.length === 3),
        on: { click: (event) => this.choose(which, event.target) },
      }),
    );
    const tool = (text, make, id) => el('button', { type: 'button', text, id, on: { click: () => this.apply(make()) } });
    this.tools = [
      tool('Straight line', () => this.straight(0, LARGEST), 'lut-straight'),
      tool('Inverted', () => this.straight(LARGEST, 0), 'lut-inverted'),
      tool('Gamma', () => this.gammaPoints(), 'lut-apply-gamma'),
    ];
    this.hint = el('p', {
      class: 'muted',
      text: 'Drag a handle, or focus it and use the arrow keys. A double click adds one, Delete takes it away.',
    });
    this.node = el(
      'div',
      { class: 'lut' },
      el(
        'div',
        { class: 'side' },
        el('div', { class: 'joined', role: 'group', 'aria-label': 'Colours to change' }, ...this.choices),
        el('div', { class: 'joined', role: 'group', 'aria-label': 'Curves' }, ...this.tools.slice(0, 2)),
        el('div', { class: 'pair' }, this.tools[2], this.gamma),
        this.state,
        this.enable,
        this.trouble,
        this.hint,
      ),
      this.canvas,
    );
    this.gamma.setAttribute('aria-label', 'Gamma');
    this.canvas.addEventListener('pointermove', (event) => this.move(event));
    this.canvas.addEventListener('pointerup', () => this.drop());
    this.canvas.addEventListener('pointercancel', () => {
      this.drag = null;
      this.draw();
    });
    this.canvas.addEventListener('dblclick', (event) => this.add(event));
  }

  /** The number of entries of a table; 0 before the first read. */
  get size() {
    return this.tables[0]?.length ?? 0;
  }

  async read(signal) {
    if (this.unsent.size || this.isSending) return; // read afterwards
    const { changes } = this;
    try {
      const tables = await Promise.all(COMPONENTS.map((_, i) => readTable(i, this.size, signal)));
      if (this.changes !== changes || this.drag) return;
      this.tables = tables;
      if (!this.indices.length)
        this.indices = Array.from({ length: HANDLES }, (_, i) => Math.floor((i * (this.size - 1)) / (HANDLES - 1)));
      this.describe();
    } catch (error) {
      if (!(error instanceof ApiError)) throw error;
      setText(this.state, error.message);
    }
  }

  describe() {
    this.isOn = parameter('FG_LUT_ENABLE')?.value !== 0;
    const use = this.isOn ? 'The table is in use.' : 'The table is off.';
    setText(this.state, `${grouped(this.size)} entries of 16 bit. ${use}`);
    this.permit();
  }

  /** Offers only what this page may do. */
  permit() {
    this.enable.hidden = this.isOn !== false || !maySet();
    this.hint.hidden = !maySet();
    for (const control of [...this.tools, this.gamma, this.enable]) control.disabled = !maySet();
    this.draw();
  }

  choose(which, button) {
    this.chosen = new Set(which);
    this.choices.forEach((choice) => press(choice, choice === button));
    this.draw();
  }

  /** The chosen tables are changed together; the handles are on the first one. */
  first(tables = this.tables) {
    return tables[[...this.chosen][0]];
  }

  straight(first, last) {
    return [0, this.size - 1].map((index, i) => [index, i ? last : first]);
  }

  /** None, with the reason, if no gamma is entered. */
  gammaPoints() {
    const { value, min, max } = this.gamma;
    if (value === '' || !this.gamma.checkValidity()) {
      const found = value === '' ? 'what is entered is no number' : `${value} is entered`;
      const error = new Error(`The table is not changed: a gamma from ${min} to ${max} is expected, and ${found}`);
      this.trouble.replaceChildren(errorBox(error, { onClose: () => this.trouble.replaceChildren() }));
      return null;
    }
    const gamma = Number(value);
    return Array.from({ length: 65 }, (_, i) => [
      Math.round((i / 64) * (this.size - 1)),
      Math.round((i / 64) ** (1 / gamma) * LARGEST),
    ]);
  }

  /** Makes curves through these points, if there are any, of the chosen tables. */
  apply(points) {
    if (points) this.change(() => polyline(points, this.size));
  }

  /** Changes the chosen tables here, and then on the station. */
  change(make) {
    if (!this.tables.length) return;
    this.changes += 1;
    for (const i of this.chosen) {
      this.tables[i] = make(this.tables[i]);
      this.unsent.set(i, [...(this.unsent.get(i) ?? []), make]);
    }
    this.draw();
    if (!this.isSending) this.send();
  }

  async send() {
    this.isSending = true;
    this.trouble.replaceChildren();
    try {
      // Tables that change meanwhile come again.
      for (const [i, changes] of this.unsent) await this.sendTable(i, changes);
    } catch (error) {
      this.showTrouble(error);
    }
    this.isSending = false;
    await this.read();
  }

  /** Changes the table as it is now, so that entries set by others stay. */
  async sendTable(i, changes) {
    this.unsent.delete(i);
    try {
      const table = changes.reduce((before, change) => change(before), await readTable(i));
      const answer = await sendJson('PUT', `/api/lut/${COMPONENTS[i].key}`, { points: pointsOf(table) });
      takeChanges(answer?.changes);
    } catch (error) {
      this.unsent.set(i, [...changes, ...(this.unsent.get(i) ?? [])]);
      throw error;
    }
  }

  /** Shows why tables are not set. The curve stays as it was drawn until they are set or given up. */
  showTrouble(error, again = () => this.send()) {
    const close = () => {
      this.trouble.replaceChildren();
      this.unsent.clear();
      this.read();
    };
    const unsent = [...this.unsent];
    const goOn = () => {
      unsent.forEach(([i, changes]) => this.unsent.set(i, changes));
      this.changes += 1; // what is read meanwhile is older
      again();
    };
    const box = isUnsent(error)
      ? unsentBox(error, { what: 'The table', again, onClose: close })
      : errorBox(error, { onClose: close, onDone: goOn, onError: (next) => this.showTrouble(next, again) });
    this.trouble.replaceChildren(box);
  }

  switchOn() {
    const on1 = parameter('FG_LUT_ENABLE')?.entries?.find(({ name }) => name === 'FG_ON')?.value ?? 1;
    this.trouble.replaceChildren();
    setAll([{ name: 'FG_LUT_ENABLE', value: on1 }]).then(
      (answer) => takeChanges(answer?.changes),
      (error) => this.showTrouble(error, () => this.switchOn()),
    );
  }

  draw() {
    const at = curveScale(this.canvas, this.size);
    if (!at.width || !this.tables.length) return;
    this.canvas.setAttribute('viewBox', `0 0 ${at.width} ${at.height}`);
    const focused = [...this.canvas.querySelectorAll('circle')].indexOf(document.activeElement);
    const table = this.first(this.drag?.tables);
    if (!this.drag) this.points = this.indices.map((index) => [index, table[index]]);
    const handles = maySet() ? this.points.map((point, i) => this.handle(point, i, at)) : [];
    this.canvas.replaceChildren(
      ...drawGrid(at),
      ...drawTables(at, this.tables),
      ...(this.drag?.tables ? [drawProposal(at, table)] : []),
      ...handles,
    );
    if (focused >= 0) handles[Math.min(focused, handles.length - 1)]?.focus();
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
        pointerdown: (event) => {
          this.drag = { i };
          this.canvas.setPointerCapture(event.pointerId);
          event.target.focus();
        },
        keydown: (event) => this.key(event, i),
      },
    });
  }

  pointAt(event) {
    const box = this.canvas.getBoundingClientRect();
    const at = curveScale(this.canvas, this.size);
    const clamp = (number, largest) => Math.min(largest, Math.max(0, number));
    return [
      clamp(at.index(event.clientX - box.left), this.size - 1),
      clamp(at.value(event.clientY - box.top), LARGEST),
    ];
  }

  move(event) {
    if (!this.drag) return;
    const { i } = this.drag;
    const [index, value] = this.pointAt(event);
    const to = this.between(i, index);
    const bending = this.bending(i, to, value);
    this.drag.tables = this.tables.map((table, k) => (this.chosen.has(k) ? bend(table, bending) : table));
    this.drag.bending = bending;
    this.points[i] = [to, value];
    this.draw();
  }

  /** How a table bends if a handle moves. */
  bending(i, to, value) {
    const from = this.indices[i];
    const [begin, end] = [this.indices[i - 1] ?? from, this.indices[i + 1] ?? from];
    return { begin, end, from, to, rise: value - this.first()[from] };
  }

  /** Outer handles keep their entry, inner ones stay between their neighbours. */
  between(i, index) {
    if (i === 0 || i === this.indices.length - 1) return this.indices[i];
    return Math.min(this.indices[i + 1] - 1, Math.max(this.indices[i - 1] + 1, index));
  }

  drop() {
    const drag = this.drag;
    this.drag = null;
    if (!drag?.bending) return void (drag && this.read());
    this.indices[drag.i] = drag.bending.to;
    this.change((table) => bend(table, drag.bending));
    return undefined;
  }

  add(event) {
    if (!maySet() || !this.tables.length || event.target.matches('circle')) return;
    const [index, value] = this.pointAt(event);
    if (this.indices.includes(index)) return;
    this.indices = [...this.indices, index].sort((a, b) => a - b);
    const bending = this.bending(this.indices.indexOf(index), index, value);
    this.change((table) => bend(table, bending));
  }

  key(event, i) {
    const step = event.shiftKey ? 4096 : 256;
    const change = { ArrowUp: step, ArrowDown: -step }[event.key];
    if (event.key === 'Delete' && i > 0 && i < this.indices.length - 1) {
      this.indices.splice(i, 1);
      this.draw();
    } else if (change) {
      const index = this.indices[i];
      const value = Math.min(LARGEST, Math.max(0, this.first()[index] + change));
      const bending = this.bending(i, index, value);
      this.change((table) => bend(table, bending));
    } else {
      return;
    }
    event.preventDefault();
  }
}
