// Keys of the page.

import { button, byId, el } from '../base/dom.js';
import { regionBetween } from '../base/picture.js';
import { get, set } from '../base/state.js';

const BUTTONS = {
  f: 'view-fit',
  1: 'view-full',
  '+': 'view-in',
  '=': 'view-in',
  '-': 'view-out',
  w: 'view-waterfall',
  ' ': 'freeze',
  c: 'compare',
  r: 'region',
  b: 'balance',
  s: 'save-image',
  '?': 'keys-open',
};

const HELP = [
  ['/', 'search the parameters; ↓ goes to the first one'],
  ['↑ ↓', 'in a number: one step; with Shift: ten'],
  ['Enter  Escape', 'in a value: sends it, or discards it. A field that loses the focus does not send its text'],
  ['Space', 'freeze the picture, or continue'],
  ['f  1  +  −', 'fit, one to one, zoom in, zoom out'],
  ['w', 'waterfall of the lines'],
  ['c', 'compare the live picture with the present one'],
  ['r', 'region: drag it, or in the image Enter, arrows, Enter. Escape removes it'],
  ['b', 'white balance from the region'],
  ['s', 'save the picture'],
  ['Arrows in the image', 'move the probe by a pixel; with Shift by 16'],
  ['Arrows in the timeline', 'move the window; + and − zoom'],
  ['Alt 1 … 5', 'the panels of measurements'],
];

/** Connects the keys and builds their dialog. */
export function startKeys(view) {
  const dialog = byId('keys');
  const close = button('Close', () => dialog.close(), { class: 'quiet' });
  dialog.append(
    el('h2', { id: 'keys-title', text: 'Keys' }),
    el(
      'dl',
      { class: 'keys' },
      ...HELP.flatMap(([key, text]) => [el('dt', {}, el('kbd', { text: key })), el('dd', { text })]),
    ),
    el('div', { class: 'ways' }, close),
  );
  byId('keys-open').addEventListener('click', () => dialog.showModal());
  document.addEventListener('keydown', pageKey);
  byId('view').addEventListener('keydown', (event) => imageKey(event, view));
}

function pageKey(event) {
  if (event.ctrlKey || event.metaKey || document.querySelector('dialog[open]')) return;
  if (event.altKey) {
    const tab = document.querySelectorAll('[role=tab]')[Number(event.key) - 1];
    if (!tab || tab.hidden) return;
    event.preventDefault();
    tab.click();
    tab.focus();
    return;
  }
  const { target } = event;
  if (target.matches('input, select, textarea, [role=slider]')) return;
  if (event.key === '/') {
    event.preventDefault();
    byId('search').focus();
  }
  // Space and Enter belong to the control that has the focus.
  if (event.key === ' ' && target.matches('button, summary, a')) return;
  const chosen = byId(BUTTONS[event.key] ?? '');
  if (!chosen || chosen.disabled) return;
  event.preventDefault();
  chosen.click();
}

let corner = null;

function imageKey(event, view) {
  const size = event.shiftKey ? 16 : 1;
  const step = { ArrowLeft: [-size, 0], ArrowRight: [size, 0], ArrowUp: [0, -size], ArrowDown: [0, size] }[event.key];
  if (step) {
    view.moveProbe(...step);
    if (corner) set('region', regionBetween(corner, get('cursor')));
  } else if (event.key === 'Enter') {
    if (!get('cursor')) view.moveProbe(0, 0);
    corner = corner || !view.isSelecting ? null : { ...get('cursor') };
    if (corner) set('region', regionBetween(corner, corner));
    else if (view.isSelecting) byId('region').click();
  } else if (event.key === 'Escape') {
    corner = null;
    if (get('region')) set('region', null);
    else set('cursor', null);
  } else {
    return;
  }
  event.preventDefault();
  event.stopPropagation();
}
