// Errors of the station, with what they are limited by and a button for each way out.

import { ApiError, setAll } from './api.js';
import { button, byId, el } from './dom.js';

/** Limits as one line of text, or an empty one. */
export function limitText(limit) {
  if (!limit || (limit.minimum === null && limit.maximum === null)) return '';
  const step = limit.step && limit.step !== 1 ? ` in steps of ${limit.step}` : '';
  return `${limit.minimum ?? '…'} to ${limit.maximum ?? '…'}${step}`;
}

/** The parameters that set a limit, as text. Entries are names, or objects with the name in `parameter`. */
export function setByText(setBy) {
  return [...new Set((setBy ?? []).map((entry) => entry.parameter ?? entry.name ?? entry))].join(', ');
}

/** Whether the station looked at the value of a request and refused it. */
export const isRefusal = ({ status }) => status >= 400 && status < 500 && status !== 401 && status !== 403;

/** Whether a request had no effect as the station was busy or did not answer, so that it can be sent again. */
export const isUnsent = (error) => error instanceof ApiError && (error.status === 0 || error.code === 'busy');

/** Makes the box of what did not reach the station; again(): the button to send it again was pressed. */
export function unsentBox(error, { what, again, onClose }) {
  const command = /'.+'/.exec(error.message)?.[0];
  const reason = error.status === 0 ? 'did not answer' : `was busy${command ? ` with ${command}` : ''}`;
  return el(
    'div',
    { class: 'error', role: 'alert' },
    el('p', { class: 'message', text: `${what} is not set: the station ${reason}.` }),
    el(
      'div',
      { class: 'ways' },
      button('Send again', again, { class: 'way' }),
      button('Dismiss', onClose, { class: 'quiet' }),
    ),
  );
}

/**
 * Makes the box of an error.
 * @param {Error} error
 * @param {{setting?: {name: string, value: *}, onDone?: function(object): void, onClose: function(): void,
 *   onError: function(Error): void}} options
 *   setting: what was refused; onDone: a way out was taken, with the answer; onError: a way out was refused in turn.
 */
export function errorBox(error, { setting, onDone = () => {}, onClose, onError }) {
  const limits = limitLines(error);
  // The limit and the buttons may repeat the later clauses of the message: then the first one is enough at first.
  const isRepeated = limits.length > 0 || error.waysOut?.length > 0;
  const clauses = (isRepeated && error.clauses) || [error.message];
  return el(
    'div',
    { class: 'error', role: 'alert' },
    ...messageLines(clauses, limits),
    el(
      'div',
      { class: 'ways' },
      ...fixesFor(error, setting).map((fix) => fixButton(fix, { onDone, onClose, onError })),
      button('Dismiss', onClose, { class: 'quiet' }),
    ),
  );
}

/** The button that takes a way out; meanwhile it and the buttons beside it take no click. */
function fixButton({ text, title, settings }, { onDone, onClose, onError }) {
  const take = async ({ target }) => {
    for (const each of target.parentNode.children) each.disabled = true;
    try {
      const answer = await setAll(settings);
      onClose();
      onDone(answer);
    } catch (failure) {
      onError(failure);
    }
  };
  return button(text, take, { class: 'way', title });
}

/**
 * Makes the box of a request that failed: the one to send it again if it had no effect, else the box of the error.
 * @param {Error} error
 * @param {object} options those of unsentBox() and of errorBox()
 */
export const failureBox = (error, options) => (isUnsent(error) ? unsentBox(error, options) : errorBox(error, options));

/** What the station advises and accepts, as lines of the box. */
function limitLines(error) {
  if (!(error instanceof ApiError)) return [];
  const lines = [];
  if (error.advice && !error.message.includes(error.advice))
    lines.push(el('p', { class: 'advice', text: error.advice }));
  const accepted = limitText(error.limit);
  if (!accepted) return lines;
  const setBy = setByText(error.limit.setBy);
  lines.push(
    el('p', { class: 'limit' }, 'Accepted now: ', el('b', { text: accepted }), setBy ? `, set by ${setBy}` : ''),
  );
  return lines;
}

/** The first clause of the message, then the limits, then the other clauses folded. */
function messageLines([first, ...rest], limits) {
  const lines = [...limits];
  if (first) lines.unshift(el('p', { class: 'message', text: first }));
  if (rest.length)
    lines.push(
      el('details', {}, el('summary', { text: 'All of the answer' }), el('p', { text: `${rest.join('; ')}.` })),
    );
  return lines;
}

/** The buttons that can set what was refused: the nearest value first, then the ways out of the answer. */
function fixesFor(error, setting) {
  const ways = (error.waysOut ?? []).map((way) => fixFrom(way, setting));
  if (!setting || error.nearest === null || error.nearest === undefined) return ways;
  const settings = [{ name: setting.name, value: error.nearest }];
  const nearest = { text: `Set ${error.nearest}, the nearest`, title: describe(settings), settings };
  // One of the ways out may be the nearest value too.
  const same = ways.findIndex((way) => way.settings.length === 1 && way.settings[0].name === setting.name);
  return [nearest, ...ways.filter((way, i) => i !== same)];
}

/** A way out of the answer, with the refused setting if it only prepares for that. */
function fixFrom({ text, settings = [] }, setting) {
  const isOther = ({ name }) => name !== setting?.name;
  const others = describe(settings.filter(isOther));
  const isComplete = !setting || !settings.every(isOther);
  return {
    text: `Set ${setting && others ? `with ${others}` : text || describe(settings)}`,
    title: describe(settings),
    settings: isComplete ? settings : [...settings, setting],
  };
}

const describe = (settings) => settings.map(({ name, value }) => `${name}=${value}`).join(' ');

/** Shows a message at the top of the page; a later one with the same key takes its place, null takes it away. */
export function notice(key, content) {
  const id = `notice-${key}`;
  byId(id)?.remove();
  if (content) byId('notices').append(el('div', { id, class: 'notice' }, content));
}

/** Shows an error at the top of the page until it is dismissed. */
export function noticeError(key, error, options = {}) {
  notice(
    key,
    errorBox(error, {
      ...options,
      onClose: () => notice(key, null),
      onError: (next) => noticeError(key, next, options),
    }),
  );
}

/** Shows a sentence at the top of the page for a few seconds. */
export function noticeDone(key, text) {
  const line = el('p', { class: 'done', role: 'status', text });
  notice(key, line);
  setTimeout(() => line.isConnected && notice(key, null), 6000);
}
