// Requests for pictures that the station may no longer keep, and regions {x, y, w, h} in pixels.

import { get } from './state.js';

/**
 * Sends a request about a picture; if a live picture is no longer kept, about the newest one.
 * @template T
 * @param {function(number=): Promise<T>} ask called with the number of a picture, or with none for the newest one
 * @param {number} number
 * @returns {Promise<T>}
 */
export async function askOrNewest(ask, number) {
  try {
    return await ask(number);
  } catch (error) {
    if (error.code !== 'none' || get('frozen')) throw error;
    return ask(undefined);
  }
}

/** Formats a region for a request. */
export const regionQuery = ({ x, y, w, h }) => `${x},${y},${w},${h}`;

/** Returns the region with two pixels as opposite corners. */
export const regionBetween = (a, b) => ({
  x: Math.min(a.x, b.x),
  y: Math.min(a.y, b.y),
  w: Math.abs(a.x - b.x) + 1,
  h: Math.abs(a.y - b.y) + 1,
});
