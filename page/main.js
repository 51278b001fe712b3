// The page of a station: connects its parts.

import { ApiError, getJson, keepStream, setToken, takeToken } from './base/api.js';
import { byId, el, press, setText } from './base/dom.js';
import { decimal } from './base/numbers.js';
import { latest } from './base/pace.js';
import { reload, takeChanges } from './base/parameters.js';
import { showTrouble } from './base/reason.js';
import { notice } from './base/refusal.js';
import { get, on, set } from './base/state.js';
import { startBalance } from './image/balance.js';
import { startHold } from './image/hold.js';
import { Live } from './image/live.js';
import { startProbe } from './image/probe.js';
import { View } from './image/view.js';
import { Waterfall } from './image/waterfall.js';
import { startBar, takeActivity } from './panels/bar.js';
import { startBelt } from './panels/belt.js';
import { startFiles } from './panels/files.js';
import { startKeys } from './panels/keys.js';
import { startLevels } from './panels/levels.js';
import { startLosses } from './panels/losses.js';
import { startLut } from './panels/lut.js';
import { startTabs } from './panels/tabs.js';
import { startTimeline } from './panels/timeline.js';
import { startTree } from './panels/tree.js';

takeToken();

let live = null;
const view = new View(byId('view'), {
  onMove: () => {
    live?.refresh();
    showScale();
  },
});
const waterfall = new Waterfall(byId('view'));
live = new Live({
  wanted: () => (!get('station')?.hasPictures ? null : waterfall.isOn ? waterfall.wanted() : view.wanted()),
  onFrame: (frame) => {
    if (waterfall.isOn) waterfall.add(frame);
    else view.show(frame);
    setText(byId('view-note'), waterfall.isOn ? waterfall.note() : '');
    showScale();
  },
  onTrouble: showTrouble,
  onMisfit: () => view.fit(),
});

startBar(() => live.shownRate());

// The station and its stream.

const askStation = latest(async (signal) => {
  try {
    const before = get('station');
    const station = await getJson('/api/station', {}, signal);
    if (before && before.process !== station.process) {
      set('frozen', false); // its pictures are no longer available
      live.restart();
    }
    set('station', station);
    set('admitted', true);
    notice('token', null);
  } catch (error) {
    if (!(error instanceof ApiError)) throw error;
    if (error.status === 401 || error.status === 403) askToken(error);
  }
});

/** The station is connected or reconnected: discards all cached state. */
function renew() {
  askStation();
  reload();
  live.refresh();
}

const losses = startLosses();
const onMessage = {
  parameter: ({ changes }) => takeChanges(changes),
  limits: (message) => reload(message.names ?? message),
  picture: ({ number }) => number < live.number && !get('frozen') && live.restart(),
  event: losses.showEvent,
  losses: losses.showLosses,
  station: takeActivity,
};
const stream = keepStream(
  Object.keys(onMessage),
  (kind, message) => onMessage[kind](message),
  (isOpen) => {
    set('online', isOpen);
    if (isOpen) renew();
    else askStation(); // the answer shows whether the token is the cause
  },
);

/** Asks for the token, without which nothing can be shown. */
function askToken(error) {
  set('admitted', false);
  const field = el('input', { type: 'password', id: 'token', autocomplete: 'off', 'aria-label': 'Token' });
  const form = el(
    'form',
    {
      class: 'token',
      on: {
        submit: (event) => {
          event.preventDefault();
          setToken(field.value.trim());
          notice('token', null);
          renew();
          stream.retry();
        },
      },
    },
    el('p', { text: [error.message, error.advice].filter(Boolean).join('. ') }),
    el('label', {}, 'Token ', field),
    el('button', { type: 'submit', class: 'primary', text: 'Use this token' }),
  );
  if (!byId('token')) notice('token', form);
}

// Tools of the image.

function showScale() {
  const magnification = view.geometry.magnification();
  const isFit = view.geometry.isFit && !waterfall.isOn;
  press(byId('view-fit'), isFit);
  byId('view').classList.toggle('zoomed', !isFit && !waterfall.isOn);
  press(byId('view-full'), Math.abs(magnification - 1) < 1e-6 && !isFit && !waterfall.isOn);
  setText(
    byId('view-scale'),
    waterfall.isOn || !get('picture') ? '–' : `${decimal(magnification * 100, magnification < 0.1 ? 2 : 1)} %`,
  );
}
on('picture', showScale);
on('station', ({ hasPictures }) => {
  for (const button of document.querySelectorAll('#image-tools button:not(#balance)')) button.disabled = !hasPictures;
});

const ZOOMS = {
  'view-fit': () => view.fit(),
  'view-full': () => view.setMagnification(1),
  'view-in': () => view.step(1),
  'view-out': () => view.step(-1),
};
for (const [id, zoom] of Object.entries(ZOOMS)) {
  byId(id).addEventListener('click', () => {
    if (waterfall.isOn) setWaterfall(false);
    zoom();
  });
}
byId('view-waterfall').addEventListener('click', () => setWaterfall(!waterfall.isOn));
byId('region').addEventListener('click', () => {
  view.isSelecting = !view.isSelecting;
  press(byId('region'), view.isSelecting);
  byId('view').classList.toggle('selecting', view.isSelecting);
});

function setWaterfall(isOn) {
  waterfall.setOn(isOn);
  view.isPaused = isOn;
  press(byId('view-waterfall'), isOn);
  if (isOn && get('frozen')) byId('freeze').click();
  live.refresh();
  view.draw();
  showScale();
}

startHold(view, live);
startTabs();
startTree();
startProbe();
startLevels();
startTimeline();
startLut();
startBalance();
startFiles();
startBelt();
startKeys(view);
