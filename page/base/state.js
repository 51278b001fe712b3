// The state that several parts of the page share. Use set() to change a value, on() to observe it.

const values = {
  online: false, // the stream of the station is open
  admitted: true, // false: the token is wrong
  station: null, // answer of /api/station
  acquisition: null, // answer of /api/acquisition
  activity: null, // time, lines and pictures, from the stream
  picture: null, // the picture that is shown: {number, tick, width, height, format}
  cursor: null, // pixel of the probe: {x, y, isPinned}
  region: null, // selected part of the picture: {x, y, w, h}
  frozen: false,
};
const listeners = new Map();

/** Returns the present value of a part of the state. */
export const get = (name) => values[name];

/** Changes a part of the state and calls its listeners. */
export function set(name, value) {
  if (values[name] === value) return;
  values[name] = value;
  for (const listener of listeners.get(name) ?? []) listener(value);
}

/** Calls the listener for each later change of one of the named parts. */
export function on(names, listener) {
  for (const name of names.split(' ')) {
    if (!listeners.has(name)) listeners.set(name, []);
    listeners.get(name).push(listener);
  }
}

/** Returns the duration of a tick of the station in seconds. */
export const tickSeconds = () => (values.station?.tickNs ?? 8) * 1e-9;

/** True if this page may change settings of the station. */
export const maySet = () => Boolean(values.station?.maySet);
