// White balance: factors that make a region of the picture grey.

import { getJson, setAll } from '../base/api.js';
import { byId, COMPONENTS, counted, decimal, el, grouped, percent } from '../base/dom.js';
import { parameter, takeChanges } from '../base/parameters.js';
import { errorBox, noticeDone, noticeError } from '../base/refusal.js';
import { get, maySet, on } from '../base/state.js';

const FACTORS = ['FG_SCALINGFACTOR_RED', 'FG_SCALINGFACTOR_GREEN', 'FG_SCALINGFACTOR_BLUE'];
const CLIPPED = 0.001; // share from which means are no longer those of the scene

/** Connects the button. It needs a region. */
export function startBalance() {
  const button = byId('balance');
  on('region station', () => {
    button.disabled = !get('region') || !maySet();
  });
  button.addEventListener('click', () => propose().catch((error) => noticeError('balance', error)));
}

/**
 * New factors that make all means of a region equal; the smallest factor is 1.
 * @param {number[]} means of red, green, blue
 * @param {number[]} factors the present ones
 * @param {{minimum: number, maximum: number, step: number}} limits
 */
function balanced(means, factors, limits) {
  const level = Math.max(...means.map((mean, i) => mean / factors[i]));
  const raw = means.map((mean, i) => level / (mean / factors[i]));
  const step = limits?.step || 1 / 1024;
  return raw.map((factor) => Math.min(limits?.maximum ?? Infinity, Math.round(factor / step) * step));
}

async function propose() {
  const { x, y, w, h } = get('region');
  const answer = await getJson('/api/histogram', {
    region: `${x},${y},${w},${h}`,
    picture: get('frozen') ? get('picture').number : undefined,
  });
  const present = FACTORS.map((name) => parameter(name)?.value ?? 1);
  const dialog = byId('balance-dialog');
  const close = el('button', { type: 'button', class: 'quiet', text: 'Cancel', on: { click: () => dialog.close() } });
  const title = el('h2', { id: 'balance-title', text: 'White balance' });
  const about = el('p', {
    class: 'muted',
    text: `${counted(answer.count, 'pixel')} of picture ${grouped(answer.picture)}${answer.isEstimate ? ', an estimate' : ''}`,
  });
  const doubts = doubt(answer, present);
  if (doubts.isHopeless) {
    dialog.replaceChildren(
      title,
      about,
      el('p', { class: 'warning', text: doubts.text }),
      el('div', { class: 'ways' }, close),
    );
    dialog.showModal();
    return;
  }
  const proposed = balanced(answer.mean, present, parameter(FACTORS[0])?.limits);
  const rows = COMPONENTS.map((component, i) =>
    el(
      'tr',
      {},
      el('th', { scope: 'row', class: component.colour, text: component.name }),
      ...[decimal(answer.mean[i], 1), decimal(present[i], 4), decimal(proposed[i], 4)].map((text) =>
        el('td', { class: 'number', text }),
      ),
    ),
  );
  const trouble = el('div');
  const apply = el('button', {
    type: 'button',
    class: 'primary',
    text: 'Set the factors',
    on: { click: () => write(proposed, trouble) },
  });
  dialog.replaceChildren(
    title,
    about,
    el(
      'table',
      { class: 'figures' },
      el(
        'thead',
        {},
        el('tr', {}, ...['', 'Mean', 'Factor now', 'New factor'].map((text) => el('th', { scope: 'col', text }))),
      ),
      el('tbody', {}, ...rows),
    ),
    doubts.text ? el('p', { class: 'warning', text: doubts.text }) : '',
    trouble,
    el('div', { class: 'ways' }, apply, close),
  );
  dialog.showModal();
}

/** Reasons not to trust the means. */
function doubt({ mean, clippedHigh, clippedLow }, factors) {
  if (mean.some((value) => value <= 0) || factors.some((factor) => factor <= 0)) {
    return {
      isHopeless: true,
      text: 'One colour is black in this region, so no factor makes it grey. Select a bright, grey region.',
    };
  }
  const share = Math.max(...clippedHigh, ...clippedLow);
  if (share > CLIPPED) {
    return {
      text: `Up to ${percent(share)} of a colour is clipped, so the factors are an estimate. Less exposure gives better ones.`,
    };
  }
  const isCurved = parameter('FG_LUT_ENABLE')?.value === 1;
  return {
    text: isCurved
      ? 'The lookup table is on and acts after the factors, so they are an estimate. Repeat it to come closer.'
      : '',
  };
}

async function write(factors, trouble) {
  const dialog = byId('balance-dialog');
  const done = (answer) => {
    dialog.close();
    takeChanges(answer?.changes);
    noticeDone('balance', 'The factors of the white balance are set.');
  };
  const show = (error) =>
    trouble.replaceChildren(errorBox(error, { onDone: done, onClose: () => trouble.replaceChildren(), onError: show }));
  try {
    done(await setAll(FACTORS.map((name, i) => ({ name, value: factors[i] }))));
  } catch (error) {
    show(error);
  }
}
