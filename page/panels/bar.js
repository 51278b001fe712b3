// The bar at the top: state and readings of the station, start and stop of the acquisition.

import { ApiError, getJson, sendJson } from '../base/api.js';
import { button, byId, setText } from '../base/dom.js';
import { decimal, grouped } from '../base/numbers.js';
import { latest } from '../base/pace.js';
import { hideReason, showReason } from '../base/reason.js';
import { notice, noticeError } from '../base/refusal.js';
import { get, maySet, on, set, tickSeconds } from '../base/state.js';

const ASKED = 1000; // milliseconds between two requests for the state of the acquisition

/** Requests the state of the acquisition, if the station has one. */
const askAcquisition = latest(async (signal) => {
  try {
    set('acquisition', get('station')?.hasPictures ? await getJson('/api/acquisition', {}, signal) : null);
  } catch (error) {
    if (!(error instanceof ApiError)) throw error;
    set('acquisition', null);
  }
});

/**
 * Keeps the bar up to date.
 * @param {function(): number} shownRate pictures a second that the page shows
 */
export function startBar(shownRate) {
  setInterval(() => !document.hidden && get('online') && askAcquisition(), ASKED);
  on('station', (station) => {
    const board =
      { virtual: 'virtual board', system: 'board of the machine', none: 'no board' }[station.board] ?? station.board;
    setText(byId('station-name'), station.name);
    byId('station-name').title = `${station.applet} ${station.version}, ${board}`;
    document.title = `${station.name} – station`;
    askAcquisition();
  });
  on('online acquisition activity admitted frozen station', () => showState(shownRate));
  on('picture', (picture) => setText(byId('reading-picture'), picture ? grouped(picture.number) : '–'));
  byId('run').addEventListener('click', () => run(get('acquisition').isPaused));
}

function showState(shownRate) {
  showWord();
  showRun();
  showReadings(shownRate);
  showReasonOfState();
}

/** True if the station has no signal. There are no requests while the picture is frozen. */
const isLost = () => get('acquisition')?.signal?.state === 'none' && !get('frozen');

/** Returns the kind of the state, which determines the colour, and its text. */
function stateAndWord() {
  const acquisition = get('acquisition');
  if (!get('admitted')) return ['none', 'not admitted'];
  if (!get('online')) return ['lost', 'not reachable, reconnecting'];
  if (!acquisition) return ['wait', get('station')?.noPictures ? 'no pictures' : 'connecting'];
  if (acquisition.isPaused) return ['idle', 'stopped'];
  if (isLost()) return ['none', 'no signal'];
  return get('frozen') ? ['idle', 'running, picture frozen'] : ['ok', 'running'];
}

function showWord() {
  const [state, word] = stateAndWord();
  byId('state').dataset.state = state;
  setText(byId('state'), word);
  document.body.classList.toggle('offline', state === 'lost');
}

function showRun() {
  const acquisition = get('acquisition');
  byId('run').disabled = !acquisition || !maySet() || !get('online');
  setText(byId('run'), acquisition?.isPaused ? 'Start' : 'Stop');
}

function showReadings(shownRate) {
  const isKnown = get('online') && get('admitted');
  document.body.classList.toggle('stale', !isKnown);
  if (!isKnown) activities.length = 0;
  const activity = get('activity');
  const hasPictures = get('station')?.hasPictures;
  setText(byId('reading-lines'), activity ? grouped(activity.lines) : '–');
  setText(byId('reading-rate'), lineRate());
  setText(byId('reading-shown'), isKnown && hasPictures ? `${decimal(shownRate(), 1)} pictures/s` : '–');
}

/** Shows on the stage why there are no pictures. */
function showReasonOfState() {
  const acquisition = get('acquisition');
  const noPictures = get('station')?.noPictures;
  if (noPictures) showReason('No pictures', noPictures.reason, null, noPictures);
  else if (acquisition?.isPaused) showReason('The acquisition is stopped', '', startButton());
  else if (isLost()) showReason('No signal', acquisition.signal.reason, null, acquisition.signal);
  else if (get('online') && get('picture')) hideReason();
}

const activities = []; // of the last seconds

/** Handles a message of the stream about time, lines and pictures. */
export function takeActivity(activity) {
  if (activity.tick < activities.at(-1)?.tick) activities.length = 0; // another process
  activities.push(activity);
  if (activities.length > 8) activities.shift();
  set('activity', activity);
}

/** Computes the line rate of the source, in the station's time. */
function lineRate() {
  const from = activities[0];
  const to = activities.at(-1);
  if (!from || to.tick === from.tick) return '–';
  const rate = (to.lines - from.lines) / ((to.tick - from.tick) * tickSeconds());
  return rate >= 1000 ? `${decimal(rate / 1000, 2)} kHz` : `${decimal(rate, 0)} Hz`;
}

async function run(isRunning) {
  try {
    await sendJson('POST', '/api/acquisition', { isRunning });
    notice('run', null);
  } catch (error) {
    noticeError('run', error, { onDone: askAcquisition });
  }
  askAcquisition();
}

const startButton = () => (maySet() ? button('Start', () => run(true), { class: 'primary' }) : null);
