// Losses with their remedies, and the events that came.

import { getJson } from '../base/api.js';
import { byId, counted, duration, el, grouped, setText, shortEvent } from '../base/dom.js';
import { oncePerFrame } from '../base/pace.js';
import { get, on } from '../base/state.js';

const events = new Map();

/** Builds the panel. Returns the functions that take the messages of the stream. */
export function startLosses() {
  const losses = el('tbody');
  const eventRows = el('tbody');
  const head = (...texts) => el('thead', {}, el('tr', {}, ...texts.map((text) => el('th', { scope: 'col', text }))));
  byId('panel-losses').append(
    el(
      'div',
      { class: 'two' },
      el(
        'div',
        {},
        el(
          'table',
          { class: 'figures', id: 'losses-table' },
          el('caption', { text: 'Losses since the start' }),
          head('Kind', 'Count', 'Meaning and remedy'),
          losses,
        ),
      ),
      el(
        'div',
        {},
        el(
          'table',
          { class: 'figures', id: 'events-table' },
          el('caption', { text: 'Events since the page was opened' }),
          head('Event', 'Count', 'Last at'),
          eventRows,
        ),
        el('p', { class: 'muted', id: 'no-events', text: 'No event has come yet.' }),
      ),
    ),
  );

  const showLosses = (answer) => {
    const list = answer.losses ?? [];
    losses.replaceChildren(
      ...list.map(({ name, count, message, advice }) =>
        el(
          'tr',
          { class: count ? 'lossy' : '' },
          el('th', { scope: 'row', text: name }),
          el('td', { class: 'number', text: grouped(count) }),
          el('td', {}, message, count ? el('p', { class: 'advice', text: advice }) : null),
        ),
      ),
    );
    const kinds = list.filter(({ count }) => count > 0).length;
    byId('loss-count').hidden = kinds === 0;
    setText(byId('loss-count'), String(kinds));
    byId('loss-count').setAttribute('aria-label', `${counted(kinds, 'kind')} of loss`);
  };
  const drawEvents = oncePerFrame(() => {
    if (byId('panel-losses').hidden) return;
    byId('no-events').hidden = events.size > 0;
    for (const [name, { count, tick }] of events) eventRow(eventRows, name, count, tick);
  });
  const load = () => getJson('/api/losses').then(showLosses, () => {}); // away: asked again when it is back
  on('online', () => get('online') && load());
  byId('panel-losses').addEventListener('shown', () => {
    load();
    drawEvents();
  });
  return {
    showLosses,
    showEvent({ name, count, tick }) {
      // count: since the message before
      events.set(name, { count: (events.get(name)?.count ?? 0) + count, tick });
      drawEvents();
    },
  };
}

function eventRow(body, name, count, tick) {
  let row = [...body.rows].find((candidate) => candidate.dataset.name === name);
  if (!row) {
    row = el(
      'tr',
      { 'data-name': name },
      el('th', { scope: 'row', text: shortEvent(name), title: name }),
      el('td', { class: 'number' }),
      el('td', { class: 'number' }),
    );
    body.append(row);
  }
  setText(row.cells[1], grouped(count));
  setText(row.cells[2], duration(tick * (get('station')?.tickNs ?? 8) * 1e-9));
}
