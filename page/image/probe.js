// The values of one pixel, requested from the station and not read from the picture on the screen.

import { ApiError, getJson } from '../base/api.js';
import { byId, COMPONENTS, setText } from '../base/dom.js';
import { grouped } from '../base/numbers.js';
import { latest } from '../base/pace.js';
import { askOrNewest } from '../base/picture.js';
import { get, on } from '../base/state.js';

let shown = null; // the answer that is shown

/** Shows the values of the pixel at the cursor below the image, and updates them with each picture. */
export function startProbe() {
  const ask = latest(showPixel, { pause: 60, abort: false });
  on('cursor', showPosition);
  on('cursor picture', ask);
  on('region picture', showRegion);
}

/** Shows the position at once, and removes the values of another pixel. */
function showPosition(cursor) {
  setText(byId('probe-position'), cursor ? `x ${cursor.x}  y ${cursor.y}` : 'no pixel selected');
  if (!cursor || cursor.x !== shown?.x || cursor.y !== shown?.y) clearValues('');
}

async function showPixel(signal) {
  const cursor = get('cursor');
  const picture = get('picture');
  if (!cursor || !picture) return undefined;
  if (cursor.x >= picture.width || cursor.y >= picture.height)
    return clearValues(`outside the picture of ${picture.width} × ${picture.height} pixels`);
  const ask = (number) => getJson('/api/pixel', { x: cursor.x, y: cursor.y, picture: number }, signal);
  try {
    const pixel = await askOrNewest(ask, picture.number); // the number of its picture is shown
    const now = get('cursor');
    if (now && now.x === pixel.x && now.y === pixel.y) show(pixel);
  } catch (error) {
    if (!(error instanceof ApiError)) throw error;
    clearValues(error.code === 'none' ? `picture ${grouped(picture.number)} is no longer kept` : error.message);
  }
  return undefined;
}

function show(pixel) {
  shown = pixel;
  const largest = 2 ** pixel.bits - 1;
  const values = COMPONENTS.map(({ short }, i) => `${short} ${pixel.components[i]}`).join('  ');
  setText(byId('probe-values'), values);
  setText(byId('probe-format'), `of ${largest} (${pixel.bits} bit) in picture ${grouped(pixel.picture)}`);
  const levels = pixel.components.map((value) => Math.round((value * 255) / largest));
  const swatch = byId('probe-swatch');
  swatch.style.backgroundColor = `rgb(${levels.join(' ')})`;
  swatch.classList.toggle('filled', true);
}

function clearValues(reason) {
  shown = null;
  setText(byId('probe-values'), '');
  setText(byId('probe-format'), reason);
  byId('probe-swatch').classList.toggle('filled', false);
}

function showRegion() {
  const region = get('region');
  setText(byId('probe-region'), region ? `region ${region.x}, ${region.y}, ${region.w} × ${region.h}` : '');
}
