// Freeze holds the picture. Compare shows a reference left of a divider, and the live picture right of it.

import { byId, press, setText } from '../base/dom.js';
import { grouped } from '../base/numbers.js';
import { askOrNewest } from '../base/picture.js';
import { noticeError } from '../base/refusal.js';
import { get, on, set } from '../base/state.js';
import { fetchFrame } from './live.js';

const EXACT = 4e6; // pixels up to which a reference is lossless
const LONGEST = 8192; // largest width and height of a reference

/**
 * Connects the buttons.
 * @param {import('./view.js').View} view
 * @param {import('./live.js').Live} live
 */
export function startHold(view, live) {
  const freeze = (isFrozen) => {
    set('frozen', isFrozen && Boolean(get('picture')));
    live.refresh();
  };
  startFreeze(freeze);
  startCompare(view, freeze);
  on('picture', (picture) => {
    byId('freeze').disabled = byId('compare').disabled = !picture; // a click would be lost
  });
}

function startFreeze(freeze) {
  byId('freeze').addEventListener('click', () => freeze(!get('frozen')));
  on('frozen', (isFrozen) => {
    press(byId('freeze'), isFrozen);
    byId('frozen').hidden = !isFrozen;
    setText(byId('frozen'), `frozen at picture ${grouped(get('picture').number)}`);
  });
}

function startCompare(view, freeze) {
  byId('compare').addEventListener('click', async () => {
    if (view.reference) return showReference(view, null);
    const show = (reference) => showReference(view, reference);
    if (get('picture')) await fetchReference(get('picture')).then(show, (error) => noticeError('compare', error));
    if (view.reference && get('frozen')) freeze(false);
    return undefined;
  });
  byId('compare-at').addEventListener('input', (event) => {
    view.divider = Number(event.target.value) / 100;
    view.draw();
  });
  on('picture frozen', () =>
    setText(byId('compare-right'), `${get('frozen') ? 'frozen' : 'live'} ${grouped(get('picture')?.number ?? 0)}`),
  );
}

/** Starts or ends the comparison with a reference. */
function showReference(view, reference) {
  view.compareWith(reference);
  press(byId('compare'), Boolean(reference));
  byId('compare-bar').hidden = byId('divider').hidden = !reference;
  if (reference) setText(byId('compare-left'), `reference ${grouped(reference.number)}`);
}

/** Fetches the whole picture, since the station will not keep it; if it is no longer kept, the newest one. */
function fetchReference({ number, width, height }) {
  const size =
    width * height <= EXACT ? { format: 'png' } : { format: 'jpeg', quality: 95, fit: `${LONGEST}x${LONGEST}` };
  return askOrNewest(
    (picture) => fetchFrame({ ...(picture === undefined ? { after: 0 } : { picture }), ...size }),
    number,
  );
}
