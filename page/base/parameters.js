// The last known descriptions of the parameters: read once, and again after each change that the station reports.

import { getJson } from './api.js';
import { latest } from './pace.js';

const known = new Map();
const listeners = [];
const stale = new Set();
let isAllStale = false;

/** Returns the last known description of a parameter, or undefined. */
export const parameter = (name) => known.get(name);

/** Returns all parameters in the order of the station. */
export const parameters = () => [...known.values()];

/** Calls the listener with the parameters that were read again, and with true if they are all parameters. */
export const onParameters = (listener) => listeners.push(listener);

const load = latest(
  async (signal) => {
    const isAll = isAllStale || known.size === 0;
    const names = [...stale];
    isAllStale = false;
    stale.clear();
    let answer;
    try {
      answer = await getJson('/api/parameters', isAll ? {} : { names: names.join(',') }, signal);
    } catch (error) {
      names.forEach((name) => stale.add(name));
      isAllStale ||= isAll;
      if (error.name !== 'ApiError') throw error;
      return; // the station is not reachable: read again after a reconnection
    }
    if (isAll) known.clear();
    for (const entry of answer.parameters) known.set(entry.name, entry);
    for (const listener of listeners) listener(answer.parameters, isAll);
  },
  { pause: 150 },
);

/** Reads parameters again: those with these names, or all. */
export function reload(names) {
  if (names) names.forEach((name) => stale.add(name));
  else isAllStale = true;
  load();
}

/** Applies the changes of an answer or a message, and reads their parameters again. */
export function takeChanges(changes) {
  const names = (changes ?? []).map((change) => change.name).filter((name) => known.has(name));
  if (names.length) reload(names);
}
