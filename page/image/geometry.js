// Mapping between pixels of a picture and the screen.

import { clamp } from '../base/numbers.js';

/** Scale and position of a picture in a stage. Scale: screen pixels (CSS) for each pixel of the picture. */
export class Geometry {
  constructor() {
    this.isFit = true;
    this.scale = 1;
    this.x = 0; // position in the picture of the middle of the stage
    this.y = 0;
    this.picture = { width: 0, height: 0 };
    this.stage = { width: 0, height: 0, ratio: 1 };
  }

  /** Sets new sizes. Returns true if anything has changed. */
  resize(picture, stage) {
    const isSame =
      picture.width === this.picture.width &&
      picture.height === this.picture.height &&
      stage.width === this.stage.width &&
      stage.height === this.stage.height &&
      stage.ratio === this.stage.ratio;
    this.picture = { width: picture.width, height: picture.height };
    this.stage = { width: stage.width, height: stage.height, ratio: stage.ratio };
    if (this.isFit) this.fit();
    else this.clamp();
    return !isSame;
  }

  /** Shows the whole picture. Small pictures are magnified by whole numbers only. */
  fit() {
    this.isFit = true;
    const { width, height, ratio } = this.stage;
    const scale = Math.min(width / this.picture.width, height / this.picture.height) || 1;
    this.scale = scale * ratio > 1 ? Math.floor(scale * ratio) / ratio : scale;
    this.x = this.picture.width / 2;
    this.y = this.picture.height / 2;
  }

  /** Changes the scale; the position below the screen point is fixed. */
  zoom(scale, at = { x: this.stage.width / 2, y: this.stage.height / 2 }) {
    const before = this.toPicture(at);
    this.isFit = false;
    this.scale = clamp(scale, 1 / 64, 64);
    const after = this.toPicture(at);
    this.x += before.x - after.x;
    this.y += before.y - after.y;
    this.clamp();
  }

  /** Moves the picture by screen pixels. */
  pan(dx, dy) {
    this.isFit = false;
    this.x -= dx / this.scale;
    this.y -= dy / this.scale;
    this.clamp();
  }

  clamp() {
    const limit = (centre, length, view) => {
      const half = view / this.scale / 2;
      return length <= 2 * half ? length / 2 : clamp(centre, half, length - half);
    };
    this.x = limit(this.x, this.picture.width, this.stage.width);
    this.y = limit(this.y, this.picture.height, this.stage.height);
    if (this.scale * this.stage.ratio >= 1) {
      // whole pixels of the screen, so that lines of the grid are sharp
      const step = 1 / (this.scale * this.stage.ratio);
      const snap = (centre, view) => Math.round((centre - view / this.scale / 2) / step) * step + view / this.scale / 2;
      this.x = snap(this.x, this.stage.width);
      this.y = snap(this.y, this.stage.height);
    }
  }

  /** Returns the position in the picture below a screen point, with fractions of a pixel. */
  toPicture({ x, y }) {
    return {
      x: this.x + (x - this.stage.width / 2) / this.scale,
      y: this.y + (y - this.stage.height / 2) / this.scale,
    };
  }

  /** Returns the screen point of a position in the picture. */
  toScreen({ x, y }) {
    return {
      x: (x - this.x) * this.scale + this.stage.width / 2,
      y: (y - this.y) * this.scale + this.stage.height / 2,
    };
  }

  /** Returns the pixel below a screen point, or null outside the picture. */
  pixelAt(point) {
    const position = this.toPicture(point);
    const pixel = { x: Math.floor(position.x), y: Math.floor(position.y) };
    const isInside = pixel.x >= 0 && pixel.y >= 0 && pixel.x < this.picture.width && pixel.y < this.picture.height;
    return isInside ? pixel : null;
  }

  /** Returns the pixel of the picture that is nearest to a screen point. */
  nearestPixel(point) {
    const position = this.toPicture(point);
    return {
      x: clamp(Math.floor(position.x), 0, this.picture.width - 1),
      y: clamp(Math.floor(position.y), 0, this.picture.height - 1),
    };
  }

  /** Returns the part of the picture that the stage shows, in whole pixels. */
  visible() {
    const from = this.toPicture({ x: 0, y: 0 });
    const to = this.toPicture({ x: this.stage.width, y: this.stage.height });
    const x = Math.max(0, Math.floor(from.x));
    const y = Math.max(0, Math.floor(from.y));
    return {
      x,
      y,
      w: Math.min(this.picture.width, Math.ceil(to.x)) - x,
      h: Math.min(this.picture.height, Math.ceil(to.y)) - y,
    };
  }

  /** Returns the number of device pixels per pixel of the picture. */
  magnification() {
    return this.scale * this.stage.ratio;
  }
}
