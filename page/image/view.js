// The canvas with the picture: drawing, zoom and pan, probe cross, region.

import { colour, sizeCanvas } from '../base/dom.js';
import { oncePerFrame } from '../base/pace.js';
import { noticeDone } from '../base/refusal.js';
import { get, on, set } from '../base/state.js';
import { Geometry } from './geometry.js';

const GRID_FROM = 8; // screen pixels for each pixel of the picture

/** The picture has another size: what is left of the region stays, and a change of it is said. */
function cutRegion({ width, height }) {
  const region = get('region');
  if (!region) return;
  const w = Math.min(region.w, width - region.x);
  const h = Math.min(region.h, height - region.y);
  if (w === region.w && h === region.h) return;
  const isLeft = w > 0 && h > 0;
  set('region', isLeft ? { ...region, w, h } : null);
  const what = isLeft ? `cut to ${w} × ${h}` : 'removed, as it lies outside';
  noticeDone('region', `The picture has ${width} × ${height} pixels now: the region is ${what}.`);
}

/** Shows frames on a canvas, and lets pointer and keys move through them. */
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
    this.draw = oncePerFrame(() => this.paint());
    this.listen();
    on('cursor region', this.draw);
    new ResizeObserver(() => this.moved()).observe(canvas);
    matchMedia('(prefers-color-scheme: dark)').addEventListener('change', this.draw);
  }

  /** Part and size that the stage shows now, as query of /api/frame. */
  wanted() {
    const ratio = window.devicePixelRatio || 1;
    const width = Math.round(this.canvas.clientWidth * ratio);
    const height = Math.round(this.canvas.clientHeight * ratio);
    if (!width || !height) return null;
    const magnification = this.geometry.magnification();
    const isExact = this.geometry.picture.width > 0 && magnification >= 1; // single pixels can be seen
    const kind = isExact ? { format: 'png' } : { format: 'jpeg', quality: 88 };
    if (this.geometry.isFit || !this.geometry.picture.width) return { fit: `${width}x${height}`, ...kind };
    const { x, y, w, h } = this.geometry.visible();
    const region = `${x},${y},${w},${h}`;
    if (isExact) return { region, ...kind };
    return {
      region,
      ...kind,
      fit: `${Math.max(1, Math.round(w * magnification))}x${Math.max(1, Math.round(h * magnification))}`,
    };
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

  /** Compares with a frame from here on, or with nothing. */
  compareWith(frame) {
    this.reference?.bitmap.close();
    this.reference = frame;
    this.draw();
  }

  fit() {
    this.geometry.fit();
    this.moved();
  }

  /** Sets the scale in pixels of the screen for each pixel of the picture; the pixel of the probe stays where it is. */
  setMagnification(magnification, at) {
    const cursor = get('cursor');
    const anchor =
      at ?? (cursor?.isPinned ? this.geometry.toScreen({ x: cursor.x + 0.5, y: cursor.y + 0.5 }) : undefined);
    this.geometry.zoom(magnification / (window.devicePixelRatio || 1), anchor);
    this.moved();
  }

  /** Goes to the next step of 2^n above or below the present scale. */
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
    const point = (event) => ({ x: event.offsetX, y: event.offsetY });
    let drag = null;
    this.canvas.addEventListener('pointerdown', (event) => {
      if (event.button !== 0 || !this.part || this.isPaused) return;
      this.canvas.setPointerCapture(event.pointerId);
      drag = { from: point(event), last: point(event), isMoved: false, isRegion: this.isSelecting || event.shiftKey };
    });
    this.canvas.addEventListener('pointermove', (event) => {
      const at = point(event);
      if (!drag) return this.hover(at);
      drag.isMoved ||= Math.hypot(at.x - drag.from.x, at.y - drag.from.y) > 3;
      if (!drag.isMoved) return undefined;
      if (drag.isRegion) this.select(drag.from, at);
      else if (!this.geometry.isFit) {
        this.geometry.pan(at.x - drag.last.x, at.y - drag.last.y);
        this.moved();
      }
      drag.last = at;
      return undefined;
    });
    this.canvas.addEventListener('pointerup', (event) => {
      if (drag && !drag.isMoved) this.pin(this.geometry.pixelAt(point(event)));
      drag = null;
    });
    this.canvas.addEventListener('pointercancel', () => {
      drag = null;
    });
    this.canvas.addEventListener('pointerleave', () => !get('cursor')?.isPinned && set('cursor', null));
    this.canvas.addEventListener(
      'wheel',
      (event) => {
        if (!this.part || this.isPaused) return;
        event.preventDefault();
        const factor = Math.exp(-Math.max(-60, Math.min(60, event.deltaY)) / 150);
        this.setMagnification(this.geometry.magnification() * factor, point(event));
      },
      { passive: false },
    );
  }

  hover(at) {
    if (get('cursor')?.isPinned || !this.part || this.isPaused) return;
    set('cursor', this.geometry.pixelAt(at));
  }

  /** Holds the probe at a pixel; the same pixel again, or none, lets it go. */
  pin(pixel) {
    const before = get('cursor');
    const isSame = before?.isPinned && pixel && before.x === pixel.x && before.y === pixel.y;
    set('cursor', pixel && !isSame ? { ...pixel, isPinned: true } : null);
  }

  select(from, to) {
    const a = this.geometry.nearestPixel(from);
    const b = this.geometry.nearestPixel(to);
    set('region', {
      x: Math.min(a.x, b.x),
      y: Math.min(a.y, b.y),
      w: Math.abs(a.x - b.x) + 1,
      h: Math.abs(a.y - b.y) + 1,
    });
  }

  /** Moves the probe by pixels and keeps it in sight. Without a probe it starts in the middle. */
  moveProbe(dx, dy) {
    const { width, height } = this.geometry.picture;
    if (!width) return;
    const at = get('cursor') ?? { x: Math.floor(this.geometry.x), y: Math.floor(this.geometry.y) };
    const clamp = (value, length) => Math.min(length - 1, Math.max(0, value));
    const pixel = { x: clamp(at.x + dx, width), y: clamp(at.y + dy, height), isPinned: true };
    set('cursor', pixel);
    const { x, y, w, h } = this.geometry.visible();
    if (pixel.x >= x && pixel.y >= y && pixel.x < x + w && pixel.y < y + h) return;
    this.geometry.x = pixel.x + 0.5;
    this.geometry.y = pixel.y + 0.5;
    this.geometry.clamp();
    this.moved();
  }
}
