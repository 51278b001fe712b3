// The station's HTTP interface: requests, their errors, and the stream of changes.

const TOKEN = 'station-token';

/** A failed request: an error of the station, or no answer (code "unreachable"). */
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

/** Removes the token from the address, so that it does not appear in bookmarks and screenshots. */
export function takeToken() {
  const url = new URL(location.href);
  const token = url.searchParams.get('token');
  if (!token) return;
  setToken(token);
  url.searchParams.delete('token');
  history.replaceState(null, '', url);
}

/** Stores a token for this tab. */
export const setToken = (token) => sessionStorage.setItem(TOKEN, token);

/**
 * Returns an address of the interface that contains the token, for requests that cannot have headers.
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

/** Gets a JSON document. */
export const getJson = async (path, query, signal) => (await request('GET', path, { query, signal })).json();

/** Sends a JSON document by PUT or POST; returns the answer, or null if it is empty. */
export async function sendJson(method, path, json) {
  const answer = await (await request(method, path, { json })).text();
  return answer ? JSON.parse(answer) : null;
}

/** Sets one parameter. */
export const setParameter = (name, value) => sendJson('PUT', `/api/parameters/${encodeURIComponent(name)}`, { value });

/** Sets several parameters, all or none, in an order that is accepted. */
export const setAll = (settings) => sendJson('POST', '/api/settings', { settings, anyOrder: true });

/**
 * Opens the stream of changes, and reopens it whenever it ends.
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
    // The browser stops its own attempts after an error of the station, so each attempt is made here.
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
