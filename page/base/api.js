// The station's HTTP interface: requests, their errors, and the stream of changes.

const TOKEN = 'station-token';

/** An answer that is an error, or no answer at all (code "unreachable"). */
export class ApiError extends Error {
  /**
   * @param {number} status HTTP status, 0 without an answer
   * @param {{code?: string, message?: string, clauses?: string[], advice?: string, limit?: object, nearest?: *,
   *   waysOut?: object[]}} fields
   */
  constructor(status, fields) {
    super(fields.message || `the station answered with HTTP status ${status}`);
    this.name = 'ApiError';
    this.status = status;
    this.code = fields.code || '';
    this.clauses = fields.clauses || [this.message];
    this.advice = fields.advice || '';
    this.limit = fields.limit || null;
    this.nearest = fields.nearest ?? null;
    this.waysOut = fields.waysOut || [];
  }
}

/** Takes the token out of the address, so that it is in no bookmark and no picture of the screen. */
export function takeToken() {
  const url = new URL(location.href);
  const token = url.searchParams.get('token');
  if (!token) return;
  setToken(token);
  url.searchParams.delete('token');
  history.replaceState(null, '', url);
}

/** Keeps a token for this tab. */
export const setToken = (token) => sessionStorage.setItem(TOKEN, token);

/**
 * An address of the interface with the token in it, for what cannot send headers.
 * @param {string} path
 * @param {Object<string, *>} [query] undefined and null are left out
 */
export function address(path, query = {}) {
  const url = withQuery(path, query);
  const token = sessionStorage.getItem(TOKEN);
  if (token) url.searchParams.set('token', token);
  return url.href;
}

function withQuery(path, query) {
  const url = new URL(path, location.origin);
  for (const [name, value] of Object.entries(query)) {
    if (value !== undefined && value !== null) url.searchParams.set(name, value);
  }
  return url;
}

/**
 * Sends a request and returns the response, or throws an ApiError.
 * @param {string} method
 * @param {string} path
 * @param {{query?: object, json?: *, text?: string, signal?: AbortSignal}} [options]
 * @returns {Promise<Response>}
 */
export async function request(method, path, { query, json, text, signal } = {}) {
  const headers = {};
  const token = sessionStorage.getItem(TOKEN);
  if (token) headers.Authorization = `Bearer ${token}`;
  if (json !== undefined) headers['Content-Type'] = 'application/json';
  if (text !== undefined) headers['Content-Type'] = 'text/plain';
  const body = json !== undefined ? JSON.stringify(json) : text;
  let response;
  try {
    response = await fetch(withQuery(path, query ?? {}), { method, headers, body, signal, cache: 'no-store' });
  } catch (error) {
    if (error.name === 'AbortError') throw error;
    throw new ApiError(0, { code: 'unreachable', message: 'The station does not answer' });
  }
  if (response.ok) return response;
  const fields = await response.json().then(
    (answer) => answer.error ?? {},
    () => ({}),
  );
  throw new ApiError(response.status, fields);
}

/** GET of a JSON document. */
export const getJson = async (path, query, signal) => (await request('GET', path, { query, signal })).json();

/** PUT or POST of a JSON document; returns the answer, or null if it is empty. */
export async function sendJson(method, path, json) {
  const answer = await (await request(method, path, { json })).text();
  return answer ? JSON.parse(answer) : null;
}

/** Sets one parameter. */
export const setParameter = (name, value) => sendJson('PUT', `/api/parameters/${encodeURIComponent(name)}`, { value });

/** Sets several parameters, all or none, in an order that is accepted. */
export const setAll = (settings) => sendJson('POST', '/api/settings', { settings, anyOrder: true });

/**
 * Keeps the stream of changes open, and opens it again whenever it ends.
 * @param {string[]} kinds names of the messages
 * @param {function(string, object): void} onMessage
 * @param {function(boolean): void} onState called with true when it is open, false when it is lost
 */
export function keepStream(kinds, onMessage, onState) {
  let wait = 500;
  let timer = 0;
  let source = null;
  const open = () => {
    clearTimeout(timer);
    timer = 0;
    source = new EventSource(address('/api/stream'));
    source.onopen = () => {
      wait = 500;
      onState(true);
    };
    // The browser's own attempts end for good with an answer that is an error, so each attempt is made here.
    source.onerror = () => {
      source.close();
      onState(false);
      timer = setTimeout(open, wait);
      wait = Math.min(4000, wait * 1.6);
    };
    for (const kind of kinds) {
      source.addEventListener(kind, (message) => onMessage(kind, JSON.parse(message.data)));
    }
  };
  const retry = () => timer && open();
  window.addEventListener('online', retry);
  document.addEventListener('visibilitychange', () => !document.hidden && retry());
  open();
  return { retry };
}
