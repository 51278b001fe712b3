// Requests about pictures of the station: one that may be gone meanwhile, and regions {x, y, w, h} in pixels.

import { get } from './state.js';

/**
 * Asks about a picture, and about the newest one if a live picture is gone already.
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

/** A region as requests name it. */
export const regionQuery = ({ x, y, w, h }) => `${x},${y},${w},${h}`;

/** The region with two pixels as opposite corners. */
export const regionBetween = (a, b) => ({
  x: Math.min(a.x, b.x),
  y: Math.min(a.y, b.y),
  w: Math.abs(a.x - b.x) + 1,
  h: Math.abs(a.y - b.y) + 1,
});
