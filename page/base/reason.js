// The stage without a picture: why there is none, and a button for what helps.

import { ApiError } from './api.js';
import { byId, el, sentence, setText } from './dom.js';
import { takeChanges } from './parameters.js';
import { errorBox, noticeError } from './refusal.js';
import { get, maySet } from './state.js';

/** Shows why no picture comes; null: one has come. */
export function showTrouble(error) {
  const isPaused = get('acquisition')?.isPaused;
  if (!error) return void (isPaused || hideReason());
  if (error.status === 0)
    return showReason('Not connected', 'The station does not answer. The page goes on when it is back.');
  if (isPaused) return undefined;
  if (get('frozen')) return setText(byId('view-note'), error.message);
  const isSignal = error.status === 503 && get('station')?.hasPictures;
  return showReason(error.code === 'busy' ? 'Busy' : isSignal ? 'No signal' : 'No picture', error.message, null, error);
}

let shownReason = '';

/**
 * Shows a box on the stage, with a button and those of the ways out.
 * @param {string} title
 * @param {string} reason
 * @param {HTMLElement|null} [button]
 * @param {{advice?: string, waysOut?: object[]}} [error]
 */
export function showReason(title, reason, button = null, { advice = '', waysOut = [] } = {}) {
  const node = byId('no-signal');
  node.hidden = false;
  node.classList.toggle('over', Boolean(get('picture'))); // the last picture stays in sight
  const key = [title, reason, advice, Boolean(button)].join('\n');
  if (key === shownReason && node.childElementCount) return;
  shownReason = key;
  node.replaceChildren(
    el('h3', { text: title }),
    ...[reason, advice].filter(Boolean).map((text) => el('p', { text: sentence(text) })),
    ...[button, maySet() ? wayButtons(reason, waysOut) : null].filter(Boolean),
  );
}

/** The picture is there. */
export function hideReason() {
  byId('no-signal').hidden = true;
}

function wayButtons(reason, waysOut) {
  const box = errorBox(new ApiError(503, { message: '', waysOut: waysOut.length ? waysOut : namedSettings(reason) }), {
    onClose: () => {}, // a picture hides the box
    onDone: (answer) => takeChanges(answer?.changes),
    onError: (next) => noticeError('signal', next),
  });
  const buttons = box.querySelector('.ways');
  buttons.lastChild.remove(); // there is nothing to dismiss
  return buttons;
}

/** Settings that a reason asks for, as in "set FG_NAME=VALUE". */
function namedSettings(reason) {
  return [...reason.matchAll(/\bset (FG_\w+)=(\w+)/g)].map(([, name, value]) => ({
    settings: [{ name, value }],
    text: `Set ${name}=${value}`,
  }));
}
