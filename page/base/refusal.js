// Errors of the station, with the limits, their causes, and a button for each remedy.

import { ApiError, setAll } from './api.js';
import { button, byId, el } from './dom.js';

/** Formats limits as one line of text; empty without limits. */
export function limitText(limit) {
  if (!limit || (limit.minimum === null && limit.maximum === null)) return '';
  const step = limit.step && limit.step !== 1 ? ` in steps of ${limit.step}` : '';
  return `${limit.minimum ?? '…'} to ${limit.maximum ?? '…'}${step}`;
}

/** Formats the parameters that set a limit. Entries are names, or objects with the name in `parameter`. */
export function setByText(setBy) {
  return [...new Set((setBy ?? []).map((entry) => entry.parameter ?? entry.name ?? entry))].join(', ');
}

/** True if the station refused the value of a request. */
export const isRefusal = ({ status }) => status >= 400 && status < 500 && status !== 401 && status !== 403;

/** True if a request had no effect because the station was busy or did not answer, so that it can be sent again. */
export const isUnsent = (error) => error instanceof ApiError && (error.status === 0 || error.code === 'busy');

/** Creates the box for a request that was not delivered; again() is called to send it again. */
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
 * Creates the box for an error.
 * @param {Error} error
 * @param {{setting?: {name: string, value: *}, onDone?: function(object): void, onClose: function(): void,
 *   onError: function(Error): void}} options
 *   setting: the refused setting; onDone: a remedy was applied, with the answer; onError: a remedy was refused in turn.
 */
export function errorBox(error, { setting, onDone = () => {}, onClose, onError }) {
  const limits = limitLines(error);
  // Limit and buttons may repeat the later clauses of the message: then only the first clause is shown unfolded.
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

/** Creates the button that applies a remedy; during the request all buttons of the box are disabled. */
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
 * Creates the box for a request that failed: one to send it again if it had no effect, else the box for the error.
 * @param {Error} error
 * @param {object} options those of unsentBox() and of errorBox()
 */
export const failureBox = (error, options) => (isUnsent(error) ? unsentBox(error, options) : errorBox(error, options));

/** Creates the lines with advice and accepted values. */
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

/** Creates the lines: the first clause of the message, then the limits, then the other clauses folded. */
function messageLines([first, ...rest], limits) {
  const lines = [...limits];
  if (first) lines.unshift(el('p', { class: 'message', text: first }));
  if (rest.length)
    lines.push(
      el('details', {}, el('summary', { text: 'Full message' }), el('p', { text: `${rest.join('; ')}.` })),
    );
  return lines;
}

/** Creates the buttons for the remedies: the nearest value first, then those of the answer. */
function fixesFor(error, setting) {
  const ways = (error.waysOut ?? []).map((way) => fixFrom(way, setting));
  if (!setting || error.nearest === null || error.nearest === undefined) return ways;
  const settings = [{ name: setting.name, value: error.nearest }];
  const nearest = { text: `Set ${error.nearest}, the nearest`, title: describe(settings), settings };
  // One of the remedies may also be the nearest value.
  const same = ways.findIndex((way) => way.settings.length === 1 && way.settings[0].name === setting.name);
  return [nearest, ...ways.filter((way, i) => i !== same)];
}

/** Completes a remedy of the answer with the refused setting, if the remedy only prepares for it. */
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

/** Shows a message at the top of the page. A later one with the same key replaces it; null removes it. */
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
