// The stage without a picture: the reason, and buttons for the remedies.

import { ApiError } from './api.js';
import { byId, el, sentence, setText } from './dom.js';
import { takeChanges } from './parameters.js';
import { errorBox, noticeError } from './refusal.js';
import { get, maySet } from './state.js';

/** Shows why there is no picture; null: a picture has arrived. */
export function showTrouble(error) {
  const isPaused = get('acquisition')?.isPaused;
  if (!error) return void (isPaused || hideReason());
  if (error.status === 0)
    return showReason('Not connected', 'The station does not answer. The page reconnects automatically.');
  if (isPaused) return undefined;
  if (get('frozen')) return setText(byId('view-note'), error.message);
  const title = error.code === 'busy' ? 'Busy' : error.status === 503 ? 'No signal' : 'No picture';
  return showReason(title, error.message, null, error);
}

let shownReason = '';

/**
 * Shows a box on the stage, with a button and those of the remedies.
 * @param {string} title
 * @param {string} reason
 * @param {HTMLElement|null} [button]
 * @param {{advice?: string, waysOut?: object[]}} [error]
 */
export function showReason(title, reason, button = null, { advice = '', waysOut = [] } = {}) {
  const node = byId('no-signal');
  node.hidden = false;
  node.classList.toggle('over', Boolean(get('picture'))); // the last picture stays visible
  const key = [title, reason, advice, Boolean(button)].join('\n');
  if (key === shownReason && node.childElementCount) return;
  shownReason = key;
  node.replaceChildren(
    el('h3', { text: title }),
    ...[reason, advice].filter(Boolean).map((text) => el('p', { text: sentence(text) })),
    ...[button, maySet() && waysOut.length ? wayButtons(waysOut) : null].filter(Boolean),
  );
}

/** Hides the box. */
export function hideReason() {
  byId('no-signal').hidden = true;
}

/** Shows in a panel of measurements why it is empty; without a text, shows the panel. */
export function explainPanel(panel, text) {
  if (text) panel.dataset.reason = sentence(text);
  else delete panel.dataset.reason;
}

function wayButtons(waysOut) {
  const box = errorBox(new ApiError(503, { message: '', waysOut }), {
    onClose: () => {}, // a picture hides the box
    onDone: (answer) => takeChanges(answer?.changes),
    onError: (next) => noticeError('signal', next),
  });
  const buttons = box.querySelector('.ways');
  buttons.lastChild.remove(); // this box cannot be dismissed
  return buttons;
}
