// The lines of all pictures as one band that moves up.

import { colour, sizeCanvas } from '../base/dom.js';
import { clamp, counted, grouped } from '../base/numbers.js';
import { oncePerFrame } from '../base/pace.js';

const MARK = 2; // height of the line over the first one of a picture

/** Draws pictures one below the other on a canvas; the newest line is at the bottom. */
export class Waterfall {
  /** @param {HTMLCanvasElement} canvas */
  constructor(canvas) {
    this.canvas = canvas;
    this.isOn = false;
    this.band = document.createElement('canvas');
    this.last = 0;
    this.pending = []; // pictures, of which `done` rows are in the band
    this.step = oncePerFrame(() => this.advance());
  }

  /** Starts with an empty band, or stops. */
  setOn(isOn) {
    this.isOn = isOn;
    this.last = 0;
    this.pending = [];
    this.band.width = 0;
  }

  /** Returns the requested size of pictures: as wide as the stage, at any height. */
  wanted() {
    const width = Math.round(this.canvas.clientWidth * (window.devicePixelRatio || 1));
    return width ? { fit: `${width}x100000`, format: 'jpeg', quality: 85 } : null;
  }

  /** Adds the lines of a picture. */
  add(frame) {
    if (frame.number === this.last) return frame.bitmap.close();
    const lost = this.last ? frame.number - this.last - 1 : 0;
    this.last = frame.number;
    this.pending.push({ bitmap: frame.bitmap, lost, number: frame.number, done: 0, at: performance.now() });
    while (this.pending.length > 2) this.move(this.pending[0].bitmap.height);
    return this.step();
  }

  /** Moves some of the pending lines to the band, so many that all are in it before the next picture arrives. */
  advance() {
    if (!this.isOn) return;
    const next = this.pending[0];
    if (next) {
      this.pace ??= 100;
      const interval = this.pending.length > 1 ? this.pending[1].at - next.at : this.pace;
      this.pace = clamp(interval, 16, 1000);
      this.move(Math.ceil((next.bitmap.height * 17) / this.pace));
      if (this.pending.length) this.step();
    }
    this.paint();
  }

  move(rows) {
    this.fitBand();
    const next = this.pending[0];
    const context = this.band.getContext('2d');
    const { width, height } = this.band;
    const count = Math.min(rows, next.bitmap.height - next.done);
    context.drawImage(this.band, 0, -count);
    context.drawImage(next.bitmap, 0, next.done, next.bitmap.width, count, 0, height - count, next.bitmap.width, count);
    if (next.done === 0) {
      context.fillStyle = colour(next.lost ? 'warning' : 'accent');
      context.fillRect(0, height - count, width, MARK);
      this.label = next.lost ? `${counted(next.lost, 'picture')} left out before picture ${grouped(next.number)}` : '';
    }
    next.done += count;
    if (next.done < next.bitmap.height) return;
    next.bitmap.close();
    this.pending.shift();
  }

  fitBand() {
    const ratio = window.devicePixelRatio || 1;
    const width = Math.round(this.canvas.clientWidth * ratio);
    const height = Math.round(this.canvas.clientHeight * ratio);
    if (this.band.width === width && this.band.height === height) return;
    this.band.width = width;
    this.band.height = height;
  }

  paint() {
    const { context, width, height } = sizeCanvas(this.canvas);
    context.clearRect(0, 0, width, height);
    if (this.band.width) context.drawImage(this.band, 0, 0, width, height);
  }

  /** Returns a sentence about pictures that are missing in the band. */
  note() {
    return this.label ?? '';
  }
}
