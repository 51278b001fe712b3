// The pictures of the station, one request at a time.

import { ApiError, request } from '../base/api.js';
import { shown, sleep } from '../base/pace.js';
import { get, set } from '../base/state.js';

/**
 * A received picture.
 * @typedef {{number: number, tick: number, width: number, height: number, format: string,
 *   bitmap: ImageBitmap, region: {x: number, y: number, w: number, h: number}}} Frame
 *   width and height are those of the whole picture, region is the part of it that the bitmap shows.
 */

/**
 * Fetches a part of a picture.
 * @param {object} query of /api/frame
 * @param {AbortSignal} [signal]
 * @returns {Promise<Frame|null>} null if no newer picture arrived in time
 */
export async function fetchFrame(query, signal) {
  const response = await request('GET', '/api/frame', { query, signal });
  if (response.status === 204) return null;
  const header = (name) => response.headers.get(name);
  const bitmap = await createImageBitmap(await response.blob());
  const width = Number(header('X-Width'));
  const height = Number(header('X-Height'));
  const [x, y, w, h] = query.region ? query.region.split(',').map(Number) : [0, 0, width, height];
  return {
    number: Number(header('X-Picture')),
    tick: Number(header('X-Tick')),
    width,
    height,
    format: header('X-Format') ?? '',
    bitmap,
    region: { x, y, w: Math.min(w, width - x), h: Math.min(h, height - y) },
  };
}

/** Fetches the pictures of the station; pauses while frozen or hidden, and waits while there is no signal. */
export class Live {
  /**
   * @param {{wanted: function(): object|null, onFrame: function(Frame): void,
   *   onTrouble: function(ApiError|null): void, onMisfit: function(): void}} options
   *   wanted: part and size of the next picture as query of /api/frame, null while there is no space for one;
   *   onTrouble: why there is no picture, null when one has arrived;
   *   onMisfit: the part is not within the picture.
   */
  constructor(options) {
    this.options = options;
    this.number = 0;
    this.isStale = false;
    this.controller = new AbortController();
    this.rates = [];
    this.run();
  }

  /** Call this when another part or size is wanted: aborts the present request and fetches the same picture again. */
  refresh() {
    this.isStale = true;
    this.controller.abort();
  }

  /** Call this when the station counts its pictures from the beginning again. */
  restart() {
    this.number = 0;
    this.refresh();
  }

  /** Returns the number of pictures per second that were shown recently. */
  shownRate() {
    const now = performance.now();
    this.rates = this.rates.filter((time) => now - time < 2000);
    return this.rates.length / 2;
  }

  async run() {
    for (;;) {
      await shown();
      this.controller = new AbortController();
      const { signal } = this.controller;
      const wanted = this.options.wanted();
      if (!wanted) await sleep(100, signal);
      else if (get('frozen') && !this.isStale) await sleep(60_000, signal);
      else await this.next(wanted, signal);
    }
  }

  /** Fetches and shows the next picture, or shows why there is none. */
  async next(wanted, signal) {
    const which = this.which();
    this.isStale = false;
    try {
      const frame = await fetchFrame({ ...which, ...wanted }, signal);
      if (frame && !signal.aborted) this.show(frame); // an aborted one would replace a frozen picture
      await new Promise(requestAnimationFrame);
    } catch (error) {
      if (error.name === 'AbortError') return;
      const isMisfit = error.status === 400 && wanted.region; // the picture has become smaller than the part
      if (isMisfit) this.options.onMisfit();
      else await this.pauseAfter(error, signal);
    }
  }

  /** Returns the picture to fetch: the frozen one, the shown one again if it is stale, or a newer one. */
  which() {
    if (get('frozen') && this.number) return { picture: this.number };
    return { after: this.isStale ? Math.max(0, this.number - 1) : this.number, timeout: 2000 };
  }

  async pauseAfter(error, signal) {
    if (!(error instanceof ApiError)) console.error(error);
    this.options.onTrouble(
      error instanceof ApiError ? error : new ApiError(0, { message: 'The picture cannot be decoded' }),
    );
    await sleep({ 503: 400, 401: 4000 }[error.status] ?? 1000, signal);
  }

  show(frame) {
    if (frame.number !== this.number) this.rates.push(performance.now());
    this.number = frame.number;
    this.options.onTrouble(null);
    this.options.onFrame(frame);
    const { number, tick, width, height, format } = frame;
    set('picture', { number, tick, width, height, format });
  }
}
