// White balance: factors that make a region of the picture grey.

import { getJson, setAll } from '../base/api.js';
import { button, byId, COMPONENTS, el } from '../base/dom.js';
import { counted, decimal, grouped, percent } from '../base/numbers.js';
import { parameter, takeChanges } from '../base/parameters.js';
import { regionQuery } from '../base/picture.js';
import { errorBox, noticeDone, noticeError } from '../base/refusal.js';
import { get, maySet, on } from '../base/state.js';
import { componentRow, numberCell, tableHead } from '../base/table.js';

const FACTORS = ['FG_SCALINGFACTOR_RED', 'FG_SCALINGFACTOR_GREEN', 'FG_SCALINGFACTOR_BLUE'];
const CLIPPED = 0.001; // share of clipped pixels from which the means are estimates

const BLACK = 'One colour is black in this region, so no factor makes it grey. Select a bright, grey region.';
const CURVED = 'The lookup table is on and acts after the factors, so they are an estimate. Repeat it to improve them.';

/** Connects the button. It needs a region. */
export function startBalance() {
  const opener = byId('balance');
  on('region station', () => {
    opener.disabled = !get('region') || !maySet();
  });
  opener.addEventListener('click', () => propose().catch((error) => noticeError('balance', error)));
}

/**
 * Computes factors that make all means of a region equal; the smallest factor is 1.
 * @param {number[]} means of red, green, blue
 * @param {number[]} factors the present factors
 * @param {{minimum: number, maximum: number, step: number}} limits
 */
function balanced(means, factors, limits) {
  const level = Math.max(...means.map((mean, i) => mean / factors[i]));
  const raw = means.map((mean, i) => level / (mean / factors[i]));
  const step = limits?.step || 1 / 1024;
  return raw.map((factor) => Math.min(limits?.maximum ?? Infinity, Math.round(factor / step) * step));
}

/** Opens the dialog with new factors, or with the reason for their absence. */
async function propose() {
  const levels = await regionLevels();
  const present = FACTORS.map((name) => parameter(name)?.value ?? 1);
  if (isBlack(levels, present)) return openDialog(levels, [warning(BLACK)]);
  const proposed = balanced(levels.mean, present, parameter(FACTORS[0])?.limits);
  const trouble = el('div');
  const apply = button('Set the factors', () => write(proposed, trouble), { class: 'primary' });
  return openDialog(
    levels,
    [factorTable(levels.mean, present, proposed), ...doubts(levels).map(warning), trouble],
    [apply],
  );
}

/** Requests the histogram of the region, with its means. */
const regionLevels = () =>
  getJson('/api/histogram', {
    region: regionQuery(get('region')),
    picture: get('frozen') ? get('picture').number : undefined,
  });

/** True if no factors can make the means equal. */
const isBlack = ({ mean }, factors) => mean.some((value) => value <= 0) || factors.some((factor) => factor <= 0);

/** Returns warnings if the means are not exactly those of the scene: one text or none. */
function doubts({ clippedHigh, clippedLow }) {
  const share = Math.max(...clippedHigh, ...clippedLow);
  if (share > CLIPPED)
    return [
      `Up to ${percent(share)} of a colour is clipped, so the factors are an estimate. Reduce the exposure.`,
    ];
  return parameter('FG_LUT_ENABLE')?.value === 1 ? [CURVED] : [];
}

/**
 * Shows the dialog.
 * @param {{count: number, picture: number, isEstimate: boolean}} levels
 * @param {Node[]} content
 * @param {HTMLElement[]} [ways] buttons before the one that closes the dialog
 */
function openDialog({ count, picture, isEstimate }, content, ways = []) {
  const dialog = byId('balance-dialog');
  const about = `${counted(count, 'pixel')} of picture ${grouped(picture)}${isEstimate ? ', an estimate' : ''}`;
  const cancel = button('Cancel', () => dialog.close(), { class: 'quiet' });
  dialog.replaceChildren(
    el('h2', { id: 'balance-title', text: 'White balance' }),
    el('p', { class: 'muted', text: about }),
    ...content,
    el('div', { class: 'ways' }, ...ways, cancel),
  );
  dialog.showModal();
}

const warning = (text) => el('p', { class: 'warning', text });

/** Creates a table with a row for each colour: its mean and both factors. */
function factorTable(means, present, proposed) {
  const rows = COMPONENTS.map((component, i) => {
    const texts = [decimal(means[i], 1), decimal(present[i], 4), decimal(proposed[i], 4)];
    return componentRow(component, ...texts.map(numberCell));
  });
  return el('table', { class: 'figures' }, tableHead('', 'Mean', 'Factor now', 'New factor'), el('tbody', {}, ...rows));
}

/** Sets the factors. Closes the dialog, or shows in it why they are not set. */
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
