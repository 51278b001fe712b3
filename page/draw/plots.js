// Axes and curves on a canvas.

import { colour, sizeCanvas } from '../base/dom.js';
import { clamp } from '../base/numbers.js';

const FONT = '11px system-ui, sans-serif';

/** Returns round numbers from..to, about as many as requested. */
export function ticks(from, to, count) {
  const span = to - from;
  if (!(span > 0)) return [from];
  const rough = span / Math.max(1, count);
  const power = 10 ** Math.floor(Math.log10(rough));
  const step = [1, 2, 5, 10].map((factor) => factor * power).find((size) => size >= rough);
  const found = [];
  for (let i = Math.ceil(from / step - 1e-9); i * step <= to + step * 1e-9; i++) found.push(i * step);
  return found;
}

/** Makes coinciding curves of several colours add up to grey, so that none hides another. */
function mix(context) {
  context.globalCompositeOperation = matchMedia('(prefers-color-scheme: dark)').matches ? 'screen' : 'multiply';
}

/** A plot with axes: x and y map values to the canvas. */
export class Plot {
  /**
   * @param {HTMLCanvasElement} canvas
   * @param {{x: [number, number], y: [number, number], left?: number, bottom?: number, yLog?: boolean}} axes
   */
  constructor(canvas, { x, y, left = 38, bottom = 18, yLog = false }) {
    const { context, width, height } = sizeCanvas(canvas);
    Object.assign(this, { context, width, height, xRange: x, yRange: y, yLog });
    this.area = { left, top: 6, right: width - 8, bottom: height - bottom };
    context.clearRect(0, 0, width, height);
    context.font = FONT;
    context.lineJoin = 'round';
  }

  /** Returns the position of a value on the canvas. */
  x(value) {
    const [from, to] = this.xRange;
    return this.area.left + ((value - from) / (to - from)) * (this.area.right - this.area.left);
  }

  y(value) {
    const scaled = (number) => (this.yLog ? Math.log10(1 + Math.max(0, number)) : number);
    const [from, to] = this.yRange.map(scaled);
    return this.area.bottom - ((scaled(value) - from) / (to - from || 1)) * (this.area.bottom - this.area.top);
  }

  /** Draws grid lines and numbers. */
  axes({ xTicks, yTicks, xText = String, yText = String }) {
    const { context, area } = this;
    context.fillStyle = colour('muted');
    context.strokeStyle = colour('grid');
    context.lineWidth = 1;
    context.textAlign = 'center';
    context.textBaseline = 'top';
    context.beginPath();
    for (const value of xTicks) {
      const x = Math.round(this.x(value)) + 0.5;
      context.moveTo(x, area.top);
      context.lineTo(x, area.bottom);
      const text = xText(value);
      const half = context.measureText(text).width / 2;
      context.fillText(text, clamp(x, half, this.width - half), area.bottom + 4);
    }
    context.textAlign = 'right';
    context.textBaseline = 'middle';
    for (const value of yTicks) {
      const y = Math.round(this.y(value)) + 0.5;
      context.moveTo(area.left, y);
      context.lineTo(area.right, y);
      context.fillText(yText(value), area.left - 5, y);
    }
    context.stroke();
  }

  /**
   * Draws values at x = 0, 1, 2, ... If several share a column of the canvas, it covers the range from the smallest to
   * the largest, so that no peak is missing.
   */
  curve(values, style, { offset = 0, width = 1.2, alpha = 1 } = {}) {
    const { context } = this;
    context.save();
    mix(context);
    context.globalAlpha = alpha;
    context.strokeStyle = style;
    context.lineWidth = width;
    context.beginPath();
    const perColumn = (this.xRange[1] - this.xRange[0]) / Math.max(1, this.area.right - this.area.left);
    if (perColumn <= 1.5) {
      values.forEach((value, i) => context.lineTo(this.x(i + offset), this.y(value)));
    } else {
      this.envelope(values, perColumn, offset);
    }
    context.stroke();
    context.restore();
  }

  envelope(values, perColumn, offset) {
    for (let from = 0; from < values.length; from += perColumn) {
      const part = values.slice(Math.floor(from), Math.max(Math.floor(from) + 1, Math.floor(from + perColumn)));
      const x = this.x(from + perColumn / 2 + offset);
      this.context.lineTo(x, this.y(Math.min(...part)));
      this.context.lineTo(x, this.y(Math.max(...part)));
    }
  }

  /** Draws a filled area below values. */
  fill(values, style, alpha) {
    const { context } = this;
    context.save();
    mix(context);
    context.globalAlpha = alpha;
    context.fillStyle = style;
    context.beginPath();
    context.moveTo(this.x(0), this.area.bottom);
    values.forEach((value, i) => {
      context.lineTo(this.x(i), this.y(value));
      context.lineTo(this.x(i + 1), this.y(value));
    });
    context.lineTo(this.x(values.length), this.area.bottom);
    context.fill();
    context.restore();
  }

  /** Calls draw(), clipped to the area of the axes. */
  clipped(draw) {
    const { left, top, right, bottom } = this.area;
    this.context.save();
    this.context.beginPath();
    this.context.rect(left, top, right - left, bottom - top);
    this.context.clip();
    draw();
    this.context.restore();
  }

  /** Draws a vertical mark at a value. */
  mark(value, style = colour('accent')) {
    const x = Math.round(this.x(value)) + 0.5;
    this.context.strokeStyle = style;
    this.context.lineWidth = 1;
    this.context.beginPath();
    this.context.moveTo(x, this.area.top);
    this.context.lineTo(x, this.area.bottom);
    this.context.stroke();
  }
}
