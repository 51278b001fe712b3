// The lookup table as a curve with handles. The station writes changes to its parameters.

import { ApiError, setAll } from '../base/api.js';
import { button, byId, COMPONENTS, el, press, setText } from '../base/dom.js';
import { grouped } from '../base/numbers.js';
import { latest } from '../base/pace.js';
import { onParameters, parameter, takeChanges } from '../base/parameters.js';
import { errorBox, failureBox } from '../base/refusal.js';
import { maySet, on } from '../base/state.js';
import { LARGEST, polyline } from '../draw/curve.js';
import { LutCurve } from './lut-curve.js';
import { LutTables } from './lut-tables.js';

const CHOICES = [
  ['All', [0, 1, 2]], // indices of COMPONENTS
  ...COMPONENTS.map(({ name }, i) => [name, [i]]),
];
const PIECES = 64; // straight lines of a gamma curve

/** Builds the panel, and reads the table whenever it is shown or a parameter of it changes. */
export function startLut() {
  const editor = new Editor();
  byId('panel-lut').append(editor.node);
  const { canvas } = editor.curve;
  const read = latest((signal) => editor.read(signal), { pause: 100, abort: true });
  const readIfShown = () => !byId('panel-lut').hidden && read();
  byId('panel-lut').addEventListener('shown', read);
  onParameters((entries) => entries.some(({ name }) => /^FG_(LUT|PROCESSING)_/.test(name)) && readIfShown());
  on('station', () => editor.permit());
  on('station online', readIfShown);
  // There is no message when another client changes an entry.
  canvas.addEventListener('pointerenter', read);
  window.addEventListener('focus', readIfShown);
  new ResizeObserver(() => editor.curve.draw()).observe(canvas);
}

class Editor {
  constructor() {
    this.tables = new LutTables();
    this.curve = new LutCurve(this.tables, {
      onBend: (make) => this.change(make),
      onRelease: () => this.read(),
    });
    this.choices = this.makeChoices();
    this.gamma = this.gammaField();
    this.tools = [
      button('Straight line', () => this.straighten(0, LARGEST), { id: 'lut-straight' }),
      button('Inverted', () => this.straighten(LARGEST, 0), { id: 'lut-inverted' }),
      button('Gamma', () => this.applyGamma(), { id: 'lut-apply-gamma' }),
    ];
    this.state = el('p', { class: 'muted', id: 'lut-state' });
    this.enable = button('Switch the table on', () => this.switchOn(), { id: 'lut-enable', hidden: true });
    this.trouble = el('div');
    this.hint = el('p', {
      class: 'muted',
      text: 'Drag a handle, or focus it and use the arrow keys. A double click adds a handle, Delete removes it.',
    });
    this.node = el('div', { class: 'lut' }, this.makeSide(), this.curve.canvas);
  }

  makeChoices() {
    return CHOICES.map(([text, which]) =>
      button(text, ({ target }) => this.choose(which, target), { 'aria-pressed': String(which.length === 3) }),
    );
  }

  gammaField() {
    return el('input', {
      type: 'number',
      value: '1',
      min: '0.1',
      max: '10',
      step: 'any',
      class: 'short',
      id: 'lut-gamma',
      'aria-label': 'Gamma',
    });
  }

  makeSide() {
    const [straight, inverted, gamma] = this.tools;
    return el(
      'div',
      { class: 'side' },
      el('div', { class: 'joined', role: 'group', 'aria-label': 'Colours to change' }, ...this.choices),
      el('div', { class: 'joined', role: 'group', 'aria-label': 'Curves' }, straight, inverted),
      el('div', { class: 'pair' }, gamma, this.gamma),
      this.state,
      this.enable,
      this.trouble,
      this.hint,
    );
  }

  async read(signal) {
    try {
      if (await this.tables.read(signal, () => !this.curve.drag)) this.describe();
    } catch (error) {
      if (!(error instanceof ApiError)) throw error;
      setText(this.state, error.message);
    }
  }

  describe() {
    this.isOn = parameter('FG_LUT_ENABLE')?.value !== 0;
    const use = this.isOn ? 'The table is in use.' : 'The table is off.';
    setText(this.state, `${grouped(this.tables.size)} entries of 16 bit. ${use}`);
    this.permit();
  }

  /** Enables the controls that this page may use. */
  permit() {
    this.enable.hidden = this.isOn !== false || !maySet();
    this.hint.hidden = !maySet();
    for (const control of [...this.tools, this.gamma, this.enable]) control.disabled = !maySet();
    this.curve.draw();
  }

  choose(which, chosen) {
    for (const choice of this.choices) press(choice, choice === chosen);
    this.curve.choose(which);
  }

  straighten(first, last) {
    this.applyPoints([
      [0, first],
      [this.tables.size - 1, last],
    ]);
  }

  applyGamma() {
    const { value, min, max } = this.gamma;
    if (value === '' || !this.gamma.checkValidity()) {
      const found = value === '' ? 'the entry is not a number' : `${value} is entered`;
      const error = new Error(`The table is not changed: a gamma from ${min} to ${max} is expected, and ${found}`);
      this.trouble.replaceChildren(errorBox(error, { onClose: () => this.trouble.replaceChildren() }));
      return;
    }
    const share = Array.from({ length: PIECES + 1 }, (_, i) => i / PIECES);
    this.applyPoints(
      share.map((x) => [Math.round(x * (this.tables.size - 1)), Math.round(x ** (1 / Number(value)) * LARGEST)]),
    );
  }

  /** Sets the chosen tables to straight lines between these points. */
  applyPoints(points) {
    this.change(() => polyline(points, this.tables.size));
  }

  /** Changes the chosen tables in the page, and then on the station. */
  change(make) {
    if (!this.tables.size) return;
    this.tables.change(this.curve.chosen, make);
    this.curve.draw();
    this.send();
  }

  async send() {
    if (this.tables.isSending) return; // the running request sends these changes too
    this.trouble.replaceChildren();
    try {
      await this.tables.send();
    } catch (error) {
      this.showTrouble(error);
    }
    await this.read();
  }

  /** Shows why tables are not set. The curve keeps the changes until they are set or discarded. */
  showTrouble(error, again = () => this.send()) {
    const unsent = [...this.tables.unsent];
    this.trouble.replaceChildren(
      failureBox(error, {
        what: 'The table',
        again,
        onClose: () => {
          this.trouble.replaceChildren();
          this.tables.discard();
          this.read();
        },
        onDone: () => {
          this.tables.restore(unsent);
          again();
        },
        onError: (next) => this.showTrouble(next, again),
      }),
    );
  }

  switchOn() {
    const onValue = parameter('FG_LUT_ENABLE')?.entries?.find(({ name }) => name === 'FG_ON')?.value ?? 1;
    this.trouble.replaceChildren();
    setAll([{ name: 'FG_LUT_ENABLE', value: onValue }]).then(
      (answer) => takeChanges(answer?.changes),
      (error) => this.showTrouble(error, () => this.switchOn()),
    );
  }
}
