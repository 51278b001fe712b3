// Histogram of the picture or a region of it, and the values along a line and a column.

import { ApiError, getJson } from '../base/api.js';
import { byId, colour, COMPONENTS, el, onResize, setText } from '../base/dom.js';
import { clamp, counted, decimal, grouped, percent } from '../base/numbers.js';
import { latest } from '../base/pace.js';
import { askOrNewest, regionQuery } from '../base/picture.js';
import { explainPanel } from '../base/reason.js';
import { get, on } from '../base/state.js';
import { componentRow, numberCell, tableHead } from '../base/table.js';
import { Plot, ticks } from '../draw/plots.js';

const PAUSE = 200;

/** Builds the panel and keeps it up to date while it is shown. */
export function startLevels() {
  const panel = byId('panel-levels');
  const parts = [new Histogram(), new Profile('line', 'y', 'x'), new Profile('column', 'x', 'y')];
  panel.append(...parts.map((part) => part.figure));
  const explain = () =>
    explainPanel(
      panel,
      get('picture')
        ? ''
        : (get('station')?.noPictures?.reason ?? 'Histogram and profiles appear with the first picture'),
    );
  on('picture station', explain);
  explain();
  for (const part of parts) {
    const update = latest((signal) => refresh(part, panel, signal), { pause: PAUSE });
    on('picture', update);
    on('cursor region', () => part.isNeeded() && update());
    part.onChange = update;
    onResize(part.canvas, () => part.draw());
    panel.addEventListener('shown', update);
  }
}

async function refresh(part, panel, signal) {
  const picture = get('picture');
  if (!picture || panel.hidden || document.hidden) return;
  try {
    const ask = (number) => getJson(part.path, { ...part.query(picture), picture: number }, signal);
    part.show(await askOrNewest(ask, picture.number)); // the answer has the number of the picture
  } catch (error) {
    if (!(error instanceof ApiError)) throw error;
    setText(part.note, error.code === 'none' ? 'this picture is no longer kept' : error.message);
  }
}

/** Creates a cell with a share of clipped pixels and, as tooltip, their number. */
const shareCell = (share, count) =>
  el('td', { class: share > 0.01 ? 'number high' : 'number', text: percent(share), title: counted(count, 'pixel') });

class Histogram {
  constructor() {
    this.path = '/api/histogram';
    this.canvas = el('canvas', { role: 'img', 'aria-label': 'Histogram' });
    this.note = el('span', { class: 'muted', id: 'histogram-note' });
    this.log = el('input', { type: 'checkbox', id: 'histogram-log', on: { change: () => this.draw() } });
    this.body = el('tbody');
    const head = tableHead('', 'Mean', 'At 0', 'At most');
    this.most = head.querySelector('th:last-child');
    this.figure = el(
      'figure',
      { class: 'histogram' },
      el('figcaption', {}, el('b', { text: 'Histogram' }), this.note, el('label', { class: 'check' }, this.log, 'Log')),
      this.canvas,
      el('table', { class: 'figures', id: 'histogram-table' }, head, this.body),
    );
  }

  isNeeded() {
    const isOther = this.region !== get('region');
    this.region = get('region');
    return isOther;
  }

  query() {
    const region = get('region');
    return { region: region ? regionQuery(region) : undefined };
  }

  show(answer) {
    this.answer = answer;
    const what = get('region') ? 'region, ' : '';
    const kind = answer.isEstimate ? 'estimate, ' : '';
    setText(this.note, `${kind}${what}${counted(answer.count, 'pixel')} of picture ${grouped(answer.picture)}`);
    setText(this.most, `At ${2 ** answer.bits - 1}`);
    this.body.replaceChildren(
      ...COMPONENTS.map((component, i) =>
        componentRow(
          component,
          numberCell(decimal(answer.mean[i], 1)),
          shareCell(answer.clippedLow[i], answer.low[i]),
          shareCell(answer.clippedHigh[i], answer.high[i]),
        ),
      ),
    );
    const text = COMPONENTS.map((component, i) => `${component.name} mean ${decimal(answer.mean[i], 1)}`).join(', ');
    this.canvas.setAttribute('aria-label', `Histogram of ${counted(answer.count, 'pixel')}: ${text}`);
    this.draw();
  }

  draw() {
    if (!this.answer) return;
    const { bins, bits } = this.answer;
    const largest = 2 ** bits - 1;
    const inner = bins.map((list) => list.slice(1, -1)); // clipped values would dwarf the others; the table has them
    const top = Math.max(1, ...(this.log.checked ? bins : inner).flat());
    const count = bins[0].length;
    const plot = new Plot(this.canvas, { x: [0, count], y: [0, top], left: 8, yLog: this.log.checked });
    const step = largest + 1;
    plot.axes({
      xTicks: [0, 0.25, 0.5, 0.75, 1].map((part) => part * count),
      yTicks: [],
      xText: (bin) => String(Math.min(largest, Math.round((bin / count) * step))),
    });
    plot.clipped(() =>
      bins.forEach((list, i) => {
        plot.fill(list, colour(COMPONENTS[i].colour), 0.14);
        plot.curve(list, colour(COMPONENTS[i].colour), { offset: 0.5 });
      }),
    );
  }
}

class Profile {
  /** @param {'line'|'column'} kind @param {string} axis of its number @param {string} along the axis it runs along */
  constructor(kind, axis, along) {
    Object.assign(this, { kind, axis, along, path: '/api/profile' });
    const name = kind === 'line' ? 'Line' : 'Column';
    this.canvas = el('canvas', { role: 'img', 'aria-label': `Values along a ${kind}` });
    this.note = el('span', { class: 'muted', id: `${kind}-note` });
    this.own = null; // number that was entered, or that of the pixel where the probe is held
    this.input = this.numberField(name);
    this.figure = el(
      'figure',
      {},
      el(
        'figcaption',
        {},
        el('b', { text: name }),
        el('label', { class: 'check' }, `${axis} =`, this.input),
        this.note,
      ),
      this.canvas,
    );
  }

  numberField(name) {
    return el('input', {
      type: 'number',
      min: 0,
      class: 'short',
      'aria-label': `${name} of the profile`,
      id: `${this.kind}-number`,
      on: {
        change: ({ target }) => {
          this.own = Number(target.value);
          this.onChange();
        },
      },
    });
  }

  isNeeded() {
    const cursor = get('cursor');
    if (!cursor?.isPinned) return false;
    const isOther = this.own !== cursor[this.axis];
    this.own = cursor[this.axis];
    return isOther;
  }

  query(picture) {
    const length = this.kind === 'line' ? picture.height : picture.width;
    const number = clamp(this.own ?? Math.floor(length / 2), 0, length - 1);
    this.input.max = length - 1;
    if (document.activeElement !== this.input) this.input.value = number;
    return { [this.kind]: number };
  }

  show(answer) {
    this.answer = answer;
    const length = answer.values[0].length;
    setText(
      this.note,
      answer.isEstimate
        ? `estimate, ${grouped(length)} values`
        : `${counted(length, 'pixel')} of picture ${grouped(answer.picture)}`,
    );
    const range = (values) =>
      values.reduce(([low, high], value) => [Math.min(low, value), Math.max(high, value)], [Infinity, 0]);
    const text = COMPONENTS.map((component, i) => `${component.name} ${range(answer.values[i]).join(' to ')}`).join(
      ', ',
    );
    this.canvas.setAttribute('aria-label', `Values along the ${this.kind}: ${text}`);
    this.draw();
  }

  draw() {
    if (!this.answer) return;
    const { values, bits } = this.answer;
    const largest = 2 ** bits - 1;
    const plot = new Plot(this.canvas, { x: [0, Math.max(1, values[0].length - 1)], y: [0, largest] });
    plot.axes({
      xTicks: ticks(0, values[0].length - 1, plot.width / 70),
      yTicks: [0, 0.25, 0.5, 0.75, 1].map((part) => Math.round(part * largest)),
    });
    values.forEach((list, i) => plot.curve(list, colour(COMPONENTS[i].colour), { alpha: 0.85, width: 1 }));
    const cursor = get('cursor');
    if (cursor?.isPinned) plot.mark(cursor[this.along]);
  }
}
