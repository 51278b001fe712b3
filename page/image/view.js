// The canvas with the picture: drawing, zoom and pan, probe cross, region.

import { colour, sizeCanvas } from '../base/dom.js';
import { clamp } from '../base/numbers.js';
import { oncePerFrame } from '../base/pace.js';
import { regionBetween, regionQuery } from '../base/picture.js';
import { noticeDone } from '../base/refusal.js';
import { get, on, set } from '../base/state.js';
import { onWheel } from '../base/wheel.js';
import { Geometry } from './geometry.js';

const GRID_FROM = 8; // screen pixels for each pixel of the picture
const NUDGE = 3; // CSS pixels that a click may move

const pointOf = (event) => ({ x: event.offsetX, y: event.offsetY });

/** Cuts the region to a picture of another size, and shows a notice if the region has changed. */
function cutRegion({ width, height }) {
  const region = get('region');
  if (!region) return;
  const w = Math.min(region.w, width - region.x);
  const h = Math.min(region.h, height - region.y);
  if (w === region.w && h === region.h) return;
  const isLeft = w > 0 && h > 0;
  set('region', isLeft ? { ...region, w, h } : null);
  const what = isLeft ? `cut to ${w} × ${h}` : 'removed, because it is outside';
  noticeDone('region', `The picture has ${width} × ${height} pixels now: the region is ${what}.`);
}

/** Shows frames on a canvas, with zoom and pan by pointer and keys. */
export class View {
  /**
   * @param {HTMLCanvasElement} canvas
   * @param {{onMove: function(): void}} options onMove: another part of the picture is wanted
   */
  constructor(canvas, { onMove }) {
    this.canvas = canvas;
    this.onMove = onMove;
    this.geometry = new Geometry();
    this.whole = null; // the newest frame of a whole picture, below the part that is wanted
    this.part = null;
    this.reference = null; // frame to compare with: drawn left of the divider
    this.divider = 0.5;
    this.isSelecting = false;
    this.isPaused = false; // the canvas is used for something else
    this.drag = null; // {from, last, isMoved, isRegion} while the pointer is down; points of the canvas
    this.draw = oncePerFrame(() => this.paint());
    this.listen();
    on('cursor region', this.draw);
    new ResizeObserver(() => this.moved()).observe(canvas);
    matchMedia('(prefers-color-scheme: dark)').addEventListener('change', this.draw);
  }

  /** Returns part and size that the stage shows now, as query of /api/frame. */
  wanted() {
    const ratio = window.devicePixelRatio || 1;
    const width = Math.round(this.canvas.clientWidth * ratio);
    const height = Math.round(this.canvas.clientHeight * ratio);
    if (!width || !height) return null;
    const magnification = this.geometry.magnification();
    const isExact = this.geometry.picture.width > 0 && magnification >= 1; // single pixels are visible
    const kind = isExact ? { format: 'png' } : { format: 'jpeg', quality: 88 };
    if (this.geometry.isFit || !this.geometry.picture.width) return { fit: `${width}x${height}`, ...kind };
    const visible = this.geometry.visible();
    const region = regionQuery(visible);
    if (isExact) return { region, ...kind };
    const [fitWidth, fitHeight] = [visible.w, visible.h].map((size) => Math.max(1, Math.round(size * magnification)));
    return { region, ...kind, fit: `${fitWidth}x${fitHeight}` };
  }

  /** Shows a frame. */
  show(frame) {
    const isWhole = frame.region.w === frame.width && frame.region.h === frame.height;
    if (this.part && this.part !== this.whole) this.part.bitmap.close();
    if (isWhole) {
      this.whole?.bitmap.close();
      this.whole = frame;
    }
    this.part = frame;
    this.measure(frame);
    this.paint();
  }

  measure(frame) {
    const picture = this.geometry.picture;
    // A narrow window gives the stage a height of its own.
    this.canvas.parentNode.style.setProperty('--aspect', frame.height / frame.width);
    if (picture.width && (picture.width !== frame.width || picture.height !== frame.height)) {
      cutRegion(frame);
      if (this.whole !== frame) this.whole = null;
      if (!get('frozen')) this.geometry.fit();
    }
    const { width, height, ratio } = sizeCanvas(this.canvas);
    if (this.geometry.resize(frame, { width, height, ratio })) this.moved();
  }

  /** Sets the frame to compare with; null ends the comparison. */
  compareWith(frame) {
    this.reference?.bitmap.close();
    this.reference = frame;
    this.draw();
  }

  fit() {
    this.geometry.fit();
    this.moved();
  }

  /** Sets the scale in pixels of the screen per pixel of the picture; the pixel of the probe keeps its position. */
  setMagnification(magnification, at) {
    const cursor = get('cursor');
    const anchor =
      at ?? (cursor?.isPinned ? this.geometry.toScreen({ x: cursor.x + 0.5, y: cursor.y + 0.5 }) : undefined);
    this.geometry.zoom(magnification / (window.devicePixelRatio || 1), anchor);
    this.moved();
  }

  /** Changes the scale to the next power of 2 above or below. */
  step(direction, at) {
    const exponent = Math.log2(this.geometry.magnification());
    const next = direction > 0 ? Math.floor(exponent + 1.001) : Math.ceil(exponent - 1.001);
    this.setMagnification(2 ** next, at);
  }

  moved() {
    const { width, height, ratio } = sizeCanvas(this.canvas);
    this.geometry.resize(this.geometry.picture, { width, height, ratio });
    this.paint();
    this.onMove();
  }

  paint() {
    if (this.isPaused) return;
    const { context, width, height } = sizeCanvas(this.canvas);
    context.clearRect(0, 0, width, height);
    if (!this.part) return;
    context.imageSmoothingEnabled = this.geometry.magnification() < 1;
    const isPartEnough = this.part.region.w >= this.part.width && this.part.region.h >= this.part.height;
    if (!isPartEnough && this.whole?.number === this.part.number) this.paintFrame(context, this.whole);
    this.paintFrame(context, this.part);
    if (this.reference) this.paintReference(context, width, height);
    if (this.geometry.magnification() >= GRID_FROM) this.paintGrid(context, width, height);
    this.paintRegion(context);
    this.paintCross(context, width, height);
  }

  paintFrame(context, { bitmap, region }) {
    const from = this.geometry.toScreen(region);
    const to = this.geometry.toScreen({ x: region.x + region.w, y: region.y + region.h });
    context.drawImage(bitmap, from.x, from.y, to.x - from.x, to.y - from.y);
  }

  paintReference(context, width, height) {
    const at = Math.round(width * this.divider);
    context.save();
    context.beginPath();
    context.rect(0, 0, at, height);
    context.clip();
    context.fillStyle = colour('stage');
    context.fillRect(0, 0, at, height);
    this.paintFrame(context, this.reference);
    context.restore();
    context.fillStyle = colour('accent');
    context.fillRect(at - 1, 0, 2, height);
  }

  paintGrid(context, width, height) {
    const { x, y, w, h } = this.geometry.visible();
    context.fillStyle = 'rgb(128 128 128 / 0.55)';
    const thin = 1 / this.geometry.stage.ratio;
    const top = Math.max(0, this.geometry.toScreen({ x, y }).y);
    const left = Math.max(0, this.geometry.toScreen({ x, y }).x);
    const bottom = Math.min(height, this.geometry.toScreen({ x: x + w, y: y + h }).y);
    const right = Math.min(width, this.geometry.toScreen({ x: x + w, y: y + h }).x);
    for (let i = x; i <= x + w; i++) context.fillRect(this.geometry.toScreen({ x: i, y }).x, top, thin, bottom - top);
    for (let i = y; i <= y + h; i++) context.fillRect(left, this.geometry.toScreen({ x, y: i }).y, right - left, thin);
  }

  paintRegion(context) {
    const region = get('region');
    if (!region) return;
    const from = this.geometry.toScreen(region);
    const width = region.w * this.geometry.scale;
    const height = region.h * this.geometry.scale;
    context.setLineDash([]);
    context.lineWidth = 3;
    context.strokeStyle = 'rgb(0 0 0 / 0.6)';
    context.strokeRect(from.x, from.y, width, height);
    context.lineWidth = 1.5;
    context.strokeStyle = colour('accent');
    context.strokeRect(from.x, from.y, width, height);
  }

  paintCross(context, width, height) {
    const cursor = get('cursor');
    if (!cursor?.isPinned) return;
    const { x, y } = this.geometry.toScreen({ x: cursor.x + 0.5, y: cursor.y + 0.5 });
    const gap = Math.max(6, this.geometry.scale / 2 + 3);
    for (const [style, size] of [
      ['rgb(0 0 0 / 0.55)', 3],
      [colour('accent'), 1],
    ]) {
      context.fillStyle = style;
      context.fillRect(0, y - size / 2, x - gap, size);
      context.fillRect(x + gap, y - size / 2, width, size);
      context.fillRect(x - size / 2, 0, size, y - gap);
      context.fillRect(x - size / 2, y + gap, size, height);
    }
  }

  listen() {
    this.canvas.addEventListener('pointerdown', (event) => this.begin(event));
    this.canvas.addEventListener('pointermove', (event) => this.move(pointOf(event)));
    this.canvas.addEventListener('pointerup', (event) => this.release(pointOf(event)));
    this.canvas.addEventListener('pointercancel', () => {
      this.drag = null;
    });
    this.canvas.addEventListener('pointerleave', () => !get('cursor')?.isPinned && set('cursor', null));
    onWheel(
      this.canvas,
      (factor, event) => this.setMagnification(this.geometry.magnification() / factor, pointOf(event)),
      () => this.isActive(),
    );
  }

  /** True if there is a picture below the pointer. */
  isActive() {
    return Boolean(this.part) && !this.isPaused;
  }

  begin(event) {
    if (event.button !== 0 || !this.isActive()) return;
    this.canvas.setPointerCapture(event.pointerId);
    const at = pointOf(event);
    this.drag = { from: at, last: at, isMoved: false, isRegion: this.isSelecting || event.shiftKey };
  }

  move(at) {
    if (!this.drag) return void this.hover(at);
    const { from, last, isRegion } = this.drag;
    this.drag.isMoved ||= Math.hypot(at.x - from.x, at.y - from.y) > NUDGE;
    if (!this.drag.isMoved) return;
    this.drag.last = at;
    if (isRegion) this.select(from, at);
    else this.pan(at.x - last.x, at.y - last.y);
  }

  pan(dx, dy) {
    if (this.geometry.isFit) return;
    this.geometry.pan(dx, dy);
    this.moved();
  }

  /** A click without a drag holds the probe. */
  release(at) {
    if (this.drag && !this.drag.isMoved) this.pin(this.geometry.pixelAt(at));
    this.drag = null;
  }

  hover(at) {
    if (get('cursor')?.isPinned || !this.isActive()) return;
    set('cursor', this.geometry.pixelAt(at));
  }

  /** Holds the probe at a pixel; the same pixel again, or none, releases it. */
  pin(pixel) {
    const before = get('cursor');
    const isSame = before?.isPinned && pixel && before.x === pixel.x && before.y === pixel.y;
    set('cursor', pixel && !isSame ? { ...pixel, isPinned: true } : null);
  }

  select(from, to) {
    set('region', regionBetween(this.geometry.nearestPixel(from), this.geometry.nearestPixel(to)));
  }

  /** Moves the probe by pixels and keeps it visible. Without a probe, starts in the middle. */
  moveProbe(dx, dy) {
    const { width, height } = this.geometry.picture;
    if (!width) return;
    const at = get('cursor') ?? { x: Math.floor(this.geometry.x), y: Math.floor(this.geometry.y) };
    const pixel = { x: clamp(at.x + dx, 0, width - 1), y: clamp(at.y + dy, 0, height - 1), isPinned: true };
    set('cursor', pixel);
    const { x, y, w, h } = this.geometry.visible();
    if (pixel.x >= x && pixel.y >= y && pixel.x < x + w && pixel.y < y + h) return;
    this.geometry.x = pixel.x + 0.5;
    this.geometry.y = pixel.y + 0.5;
    this.geometry.clamp();
    this.moved();
  }
}
