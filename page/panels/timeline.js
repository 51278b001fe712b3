// Signals, images and events on one axis of time.

import { ApiError, getJson } from '../base/api.js';
import { button, byId, colour, el, onResize, press, setText, sizeCanvas } from '../base/dom.js';
import { duration } from '../base/numbers.js';
import { latest, oncePerFrame } from '../base/pace.js';
import { explainPanel } from '../base/reason.js';
import { get, on, tickSeconds } from '../base/state.js';
import { onWheel } from '../base/wheel.js';
import { LANE, makeLanes, paintLane, partOf } from '../draw/lanes.js';
import { ticks } from '../draw/plots.js';

const WINDOWS = [
  ['1 ms', 1e-3],
  ['10 ms', 1e-2],
  ['100 ms', 0.1],
  ['1 s', 1],
];
const AXIS = 20;
const SHORTEST = 100; // ticks
const PAUSE = 250; // milliseconds
const NUDGE = 3; // CSS pixels that a click may move
const LAG = 0.3; // seconds of the machine until events and images are in the server's list
const EDGES = 2000; // most edges of a signal; the server leaves out older ones
const MOST_EDGES = 32768;
const ALWAYS = ['ExSync', 'Flash', 'LVAL']; // other signals have a lane once they had an edge

/** Builds the panel, and updates it while it is shown and not on hold. */
export function startTimeline() {
  const timeline = new Timeline();
  const panel = byId('panel-timeline');
  panel.append(timeline.node);
  on('station', ({ board }) =>
    explainPanel(panel, board === 'virtual' ? '' : 'Signals and events are recorded by a virtual board only'),
  );
}

class Timeline {
  constructor() {
    this.span = 1e-2;
    this.isHeld = false;
    this.range = null; // [from, to] in ticks, while on hold
    this.kept = null; // the answer at the time of the hold: the station keeps recording
    this.mark = null; // tick
    this.seen = new Set(ALWAYS);
    this.seenEvents = new Set();
    this.pointer = null; // tick
    this.drag = null; // {x, isMoved} while the pointer is down
    this.makeControls();
    this.draw = oncePerFrame(() => this.paint());
    this.read = latest((signal) => this.load(signal), { pause: PAUSE });
    this.readNow = latest((signal) => this.load(signal), { abort: true });
    this.follow();
    this.listen();
  }

  makeControls() {
    this.canvas = el('canvas', { id: 'timeline-canvas', tabindex: 0, role: 'img', 'aria-label': 'Timeline' });
    this.names = el('ul', { class: 'lanes', id: 'timeline-lanes' });
    this.note = el('span', { class: 'muted', id: 'timeline-note' });
    this.spans = WINDOWS.map(([text, seconds]) =>
      button(text, () => this.setSpan(seconds), { 'aria-pressed': String(seconds === this.span) }),
    );
    this.hold = button('Hold', () => this.setHeld(!this.isHeld), { 'aria-pressed': 'false', id: 'timeline-hold' });
    this.node = el(
      'div',
      { class: 'timeline' },
      el(
        'div',
        { class: 'tools' },
        el('div', { class: 'joined', role: 'group', 'aria-label': 'Window' }, ...this.spans),
        this.hold,
        this.note,
      ),
      el('div', { class: 'chart' }, this.names, this.canvas),
    );
  }

  /** Reads when the panel is shown, and regularly unless it is on hold. */
  follow() {
    byId('panel-timeline').addEventListener('shown', () => this.read());
    on('activity', () => !this.isHeld && this.read());
    onResize(this.canvas, this.draw);
  }

  listen() {
    this.canvas.addEventListener('pointerdown', (event) => this.begin(event));
    this.canvas.addEventListener('pointermove', (event) => this.move(event));
    this.canvas.addEventListener('pointerup', (event) => this.release(event));
    this.canvas.addEventListener('pointerleave', () => this.leave());
    this.canvas.addEventListener('keydown', (event) => this.key(event));
    onWheel(this.canvas, (factor, event) => this.zoom(factor, event.offsetX));
  }

  setSpan(seconds) {
    this.span = seconds;
    if (this.range) {
      const middle = (this.range[0] + this.range[1]) / 2;
      const half = (seconds * 1e9) / this.answer.tickNs / 2;
      this.range = [Math.max(0, middle - half), middle + half];
    }
    this.spans.forEach((choice, i) => press(choice, WINDOWS[i][1] === seconds));
    this.readNow();
  }

  setHeld(isHeld) {
    if (isHeld && !this.answer) return;
    this.isHeld = isHeld;
    press(this.hold, isHeld);
    this.range = isHeld ? [this.answer.from, this.answer.to] : null;
    this.kept = isHeld ? this.answer : null;
    if (isHeld) this.keepMore();
    else this.mark = null;
    this.readNow();
  }

  /** Reads the held window with all edges that the station still has, so that zooming in shows them. */
  async keepMore() {
    const { kept } = this;
    const count = ({ signals }) => signals.reduce((sum, { edges }) => sum + edges.length, 0);
    const more = await getJson('/api/timeline', { from: kept.from, to: kept.to, most: MOST_EDGES }).catch(() => null);
    if (more && this.kept === kept && count(more) > count(kept)) this.kept = more;
  }

  async load(signal) {
    if (byId('panel-timeline').hidden || document.hidden || !get('activity')) return undefined;
    const { range, kept } = this;
    if (range && kept && range[0] >= kept.from && range[1] <= kept.to) return this.show(partOf(kept, ...range));
    const [from, to] = (range ?? this.newestRange()).map((tick) => Math.max(0, Math.round(tick)));
    try {
      const answer = await getJson('/api/timeline', { from, to, most: EDGES }, signal);
      if (range === this.range) this.show(answer); // else the window has moved during the request
    } catch (error) {
      if (!(error instanceof ApiError)) throw error;
      setText(this.note, error.message);
    }
    return undefined;
  }

  /** Returns the window, which ends where the station's lists are complete. */
  newestRange() {
    const factor = get('station')?.clock?.factor ?? 1;
    const end = get('activity').tick - (LAG * factor) / tickSeconds();
    return [end - this.span / tickSeconds(), end];
  }

  show(answer) {
    this.answer = answer;
    this.lanes = makeLanes(answer, this.seen, this.seenEvents);
    this.showNames();
    this.draw();
  }

  seconds(count) {
    return count * this.answer.tickNs * 1e-9;
  }

  showNames() {
    this.names.replaceChildren(
      ...this.lanes.map(({ name, text, title, kind }) =>
        el(
          'li',
          { title: title || name, 'data-kind': kind },
          el('span', { class: 'lane', text: name }),
          el('span', { class: 'number', text }),
        ),
      ),
    );
    this.canvas.style.height = `${this.lanes.length * LANE + AXIS}px`;
    const { from, to } = this.answer;
    this.caption();
    this.canvas.setAttribute(
      'aria-label',
      `Timeline of ${duration(this.seconds(to - from))}: ` +
        this.lanes.map(({ name, text }) => `${name} ${text}`).join('; '),
    );
  }

  caption() {
    const { from, to, areEventsCut } = this.answer;
    const signals = this.lanes.some(({ isCut }) => isCut) ? '; ≈ are estimates, older edges are left out' : '';
    const events = areEventsCut ? '; older events are left out' : '';
    const marked =
      this.mark !== null && this.pointer !== null
        ? `; from the mark ${duration(this.seconds(this.pointer - this.mark))}`
        : '';
    setText(
      this.note,
      `${duration(this.seconds(to - from))} from ${duration(this.seconds(from))}${marked}${signals}${events}`,
    );
  }

  x(tick) {
    const { from, to } = this.answer;
    return ((tick - from) / (to - from)) * this.width;
  }

  tickAt(x) {
    const { from, to } = this.answer;
    return from + (x / this.width) * (to - from);
  }

  paint() {
    if (!this.answer || !this.canvas.clientWidth) return;
    const { context, width, height } = sizeCanvas(this.canvas);
    this.width = width;
    context.clearRect(0, 0, width, height);
    context.font = '11px system-ui, sans-serif';
    this.paintAxis(context, height);
    const scale = { width, x: (tick) => this.x(tick) };
    this.lanes.forEach((lane, i) => paintLane(context, lane, i * LANE, scale));
    if (this.mark !== null) this.paintMark(context, this.mark, height);
    if (this.pointer !== null) this.paintMark(context, this.pointer, height);
  }

  paintAxis(context, height) {
    const { from, to } = this.answer;
    context.strokeStyle = colour('grid');
    context.fillStyle = colour('muted');
    context.textBaseline = 'bottom';
    context.beginPath();
    for (const at of ticks(0, this.seconds(to - from), this.width / 90)) {
      const x = Math.round((at / this.seconds(to - from)) * this.width) + 0.5;
      context.moveTo(x, 0);
      context.lineTo(x, height - AXIS + 4);
      const text = at ? duration(at) : '0';
      context.fillText(text, Math.min(this.width - context.measureText(text).width, x + 3), height - 2);
    }
    this.lanes.forEach((_, i) => {
      context.moveTo(0, (i + 1) * LANE - 0.5);
      context.lineTo(this.width, (i + 1) * LANE - 0.5);
    });
    context.stroke();
  }

  paintMark(context, tick, height) {
    context.fillStyle = colour('accent');
    context.fillRect(Math.round(this.x(tick)), 0, 1, height - AXIS);
  }

  begin(event) {
    if (!this.answer) return;
    this.canvas.setPointerCapture(event.pointerId);
    this.drag = { x: event.offsetX, isMoved: false };
  }

  move(event) {
    if (!this.answer) return;
    if (this.drag && Math.abs(event.offsetX - this.drag.x) > NUDGE) this.dragTo(event.offsetX);
    this.pointer = this.isHeld ? this.tickAt(event.offsetX) : null;
    this.caption();
    this.draw();
  }

  dragTo(x) {
    this.drag.isMoved = true;
    this.shift(this.tickAt(this.drag.x) - this.tickAt(x));
    this.drag.x = x;
  }

  /** A click without a drag holds the timeline and marks a time. */
  release(event) {
    if (this.drag && !this.drag.isMoved) {
      if (!this.isHeld) this.setHeld(true);
      this.mark = this.tickAt(event.offsetX);
    }
    this.drag = null;
    this.draw();
  }

  leave() {
    this.pointer = null;
    this.draw();
  }

  key(event) {
    const span = this.answer ? this.answer.to - this.answer.from : 0;
    const action = {
      ArrowLeft: () => this.shift(-span / 8),
      ArrowRight: () => this.shift(span / 8),
      '+': () => this.zoom(0.5, this.width / 2),
      '-': () => this.zoom(2, this.width / 2),
    }[event.key];
    if (!action || !span) return;
    event.preventDefault();
    event.stopPropagation();
    action();
  }

  shift(count) {
    if (!this.isHeld) this.setHeld(true);
    this.range = this.range.map((tick) => tick + count);
    Object.assign(this.answer, { from: this.range[0], to: this.range[1] });
    this.draw();
    this.readNow();
  }

  zoom(factor, x) {
    if (!this.answer) return;
    if (!this.isHeld) this.setHeld(true);
    const at = this.tickAt(x);
    const [from, to] = this.range;
    const next = [at - (at - from) * factor, at + (to - at) * factor];
    if (next[1] - next[0] < SHORTEST) return;
    this.range = [Math.max(0, next[0]), next[1]];
    this.readNow();
  }
}
