// Losses with their remedies, and received events.

import { getJson } from '../base/api.js';
import { byId, el, setText, shortEvent } from '../base/dom.js';
import { counted, duration, grouped } from '../base/numbers.js';
import { oncePerFrame } from '../base/pace.js';
import { explainPanel } from '../base/reason.js';
import { get, on, tickSeconds } from '../base/state.js';
import { numberCell, tableHead } from '../base/table.js';

/** Builds the panel. Returns the functions that handle the messages of the stream. */
export function startLosses() {
  const panel = byId('panel-losses');
  const losses = new LossTable();
  const events = new EventTable();
  panel.append(el('div', { class: 'two' }, losses.node, events.node));
  const isCounted = () => get('station')?.board === 'virtual';
  const load = () => {
    if (isCounted()) getJson('/api/losses').then(showLosses, () => {}); // not reachable: read again later
  };
  const showLosses = (answer) => losses.show(answer.losses ?? []);
  on('station', () => {
    explainPanel(panel, isCounted() ? '' : 'Losses and events are counted by a virtual board only');
    load();
  });
  panel.addEventListener('shown', () => {
    load();
    events.draw();
  });
  return { showLosses, showEvent: (message) => events.add(message) };
}

class LossTable {
  constructor() {
    this.body = el('tbody');
    this.node = el(
      'div',
      {},
      el(
        'table',
        { class: 'figures', id: 'losses-table' },
        el('caption', { text: 'Losses since the start' }),
        tableHead('Kind', 'Count', 'Meaning and remedy'),
        this.body,
      ),
    );
  }

  show(losses) {
    this.body.replaceChildren(...losses.map(lossRow));
    showLossCount(losses.filter(({ count }) => count > 0).length);
  }
}

const lossRow = ({ name, count, message, advice }) =>
  el(
    'tr',
    { class: count ? 'lossy' : '' },
    el('th', { scope: 'row', text: name }),
    numberCell(grouped(count)),
    el('td', {}, message, count ? el('p', { class: 'advice', text: advice }) : null),
  );

/** The number of kinds of loss, on the tab of the panel. */
function showLossCount(kinds) {
  const badge = byId('loss-count');
  badge.hidden = kinds === 0;
  setText(badge, String(kinds));
  badge.setAttribute('aria-label', `${counted(kinds, 'kind')} of loss`);
}

class EventTable {
  constructor() {
    this.events = new Map(); // count and tick of the last one, by name
    this.body = el('tbody');
    this.none = el('p', { class: 'muted', id: 'no-events', text: 'No events yet.' });
    this.node = el(
      'div',
      {},
      el(
        'table',
        { class: 'figures', id: 'events-table' },
        el('caption', { text: 'Events since the page was opened' }),
        tableHead('Event', 'Count', 'Last at'),
        this.body,
      ),
      this.none,
    );
    this.draw = oncePerFrame(() => this.fill());
  }

  /** Handles a message. Its count is the number of events since the previous message. */
  add({ name, count, tick }) {
    const before = this.events.get(name)?.count ?? 0;
    this.events.set(name, { count: before + count, tick });
    this.draw();
  }

  fill() {
    if (byId('panel-losses').hidden) return;
    this.none.hidden = this.events.size > 0;
    for (const [name, { count, tick }] of this.events) {
      const [, countCell, timeCell] = this.rowOf(name).cells;
      setText(countCell, grouped(count));
      setText(timeCell, duration(tick * tickSeconds()));
    }
  }

  rowOf(name) {
    const known = [...this.body.rows].find((row) => row.dataset.name === name);
    if (known) return known;
    const title = el('th', { scope: 'row', text: shortEvent(name), title: name });
    const row = el('tr', { 'data-name': name }, title, numberCell(''), numberCell(''));
    this.body.append(row);
    return row;
  }
}
