// The lanes of the timeline: texts and drawing.

import { colour, shortEvent } from '../base/dom.js';
import { duration, grouped } from '../base/numbers.js';

/** Height of a lane in CSS pixels. */
export const LANE = 24;

/** Returns the period of a signal from its rising edges, in ticks: {mean, min, max, count}; null for less than two. */
function period(edges) {
  const rises = edges.filter(([, level]) => level).map(([tick]) => tick);
  if (rises.length < 2) return null;
  const gaps = rises.slice(1).map((tick, i) => tick - rises[i]);
  return {
    mean: (rises.at(-1) - rises[0]) / gaps.length,
    min: Math.min(...gaps),
    max: Math.max(...gaps),
    count: gaps.length,
  };
}

/** Returns the part from..to of an answer of /api/timeline. */
export function partOf(answer, from, to) {
  const isInside = (tick) => tick >= from && tick <= to;
  const signals = answer.signals.map((signal) => {
    const before = signal.edges.filter(([tick]) => tick < from).at(-1);
    const edges = signal.edges.filter(([tick]) => isInside(tick));
    // Older edges may be left out. The part is cut only if it begins before the first one that is there.
    const isCut = signal.isCut && !before;
    return { ...signal, edges, isCut, startsHigh: before ? before[1] === 1 : signal.startsHigh };
  });
  return {
    ...answer,
    from,
    to,
    signals,
    images: answer.images.filter((image) => image.to >= from && image.from <= to),
    events: answer.events.filter(({ tick }) => isInside(tick)),
  };
}

/**
 * Returns the lanes for an answer of /api/timeline: images, signals, events.
 * @param {object} answer
 * @param {Set<string>} seen signals with a lane; those with edges are added
 * @param {Set<string>} seenEvents the same for events
 */
export function makeLanes({ signals, images, events, areEventsCut, tickNs }, seen, seenEvents) {
  for (const { name, edges } of signals) if (edges.length) seen.add(name);
  const lanes = signals
    .filter(({ name }) => seen.has(name))
    .map((signal) => ({ ...signal, ...periodTexts(signal, tickNs * 1e-9) }));
  lanes.unshift({
    name: 'Images',
    kind: 'image',
    images,
    text: grouped(images.length),
    title: 'pictures that the station keeps',
  });
  for (const { name } of events) seenEvents.add(name);
  for (const name of [...seenEvents].sort()) {
    const edges = events.filter((event) => event.name === name).map(({ tick }) => [tick, 1]);
    const text = `${areEventsCut ? '≥ ' : ''}${grouped(edges.length)}`;
    lanes.push({ name: shortEvent(name), title: name, kind: 'event', edges, text });
  }
  return lanes;
}

function periodTexts({ edges, isCut }, tick) {
  const found = period(edges);
  if (!found) return { text: edges.length ? 'one edge' : isCut ? 'not kept' : 'no edge', title: '' };
  const range = found.max === found.min ? '' : `, ${duration(found.min * tick)} to ${duration(found.max * tick)}`;
  return {
    text: `${isCut ? '≈ ' : ''}${duration(found.mean * tick)}${range}`,
    title: `${grouped(found.count)} periods${isCut ? '; an estimate: older edges are left out' : ''}`,
  };
}

/**
 * Draws a lane.
 * @param {CanvasRenderingContext2D} context
 * @param {object} lane
 * @param {number} top
 * @param {{width: number, x: function(number): number}} scale position of a tick
 */
export function paintLane(context, lane, top, scale) {
  const paint = { image: paintImages, level: paintLevel }[lane.kind] ?? paintPulses;
  paint(context, lane, top, scale);
}

/** Draws a signal as its waveform. Pulses too narrow to show their width become a line each. */
function paintLevel(context, { edges, startsHigh }, top, scale) {
  const high = top + 5.5;
  const low = top + LANE - 4.5;
  const isDense = edges.length > scale.width; // single edges cannot be seen
  context.strokeStyle = colour(isDense ? 'muted' : 'text');
  context.lineWidth = 1;
  context.beginPath();
  let level = startsHigh ? 1 : 0;
  context.moveTo(0, level ? high : low);
  for (let i = 0; i < edges.length; i++) {
    const x = Math.round(scale.x(edges[i][0])) + 0.5;
    const next = i + 1 < edges.length ? scale.x(edges[i + 1][0]) : Infinity;
    context.lineTo(x, level ? high : low);
    level = edges[i][1];
    context.lineTo(x, level ? high : low);
    if (next - scale.x(edges[i][0]) >= 2) continue;
    level = edges[++i][1]; // and back at the same position
    context.lineTo(x, level ? high : low);
  }
  context.lineTo(scale.width, level ? high : low);
  context.stroke();
}

function paintPulses(context, { edges, kind }, top, scale) {
  const isEvent = kind === 'event';
  context.fillStyle = colour(isEvent ? 'accent' : edges.length > scale.width ? 'muted' : 'text');
  let before = -2;
  for (const [tick] of edges) {
    const x = Math.round(scale.x(tick));
    if (x === before) continue;
    context.fillRect(x, top + 5, isEvent ? 2 : 1, LANE - 10);
    before = x;
  }
}

function paintImages(context, { images }, top, scale) {
  context.textBaseline = 'middle';
  for (const { number, from, to } of images) {
    const left = Math.max(-2, scale.x(from));
    const right = Math.min(scale.width + 2, scale.x(to));
    if (right < 0 || left > scale.width) continue;
    context.fillStyle = colour('accent-soft');
    context.fillRect(left, top + 4, Math.max(1, right - left), LANE - 9);
    context.strokeStyle = colour('accent');
    context.strokeRect(left + 0.5, top + 4.5, Math.max(1, right - left - 1), LANE - 10);
    const text = grouped(number);
    if (right - left < context.measureText(text).width + 10) continue;
    context.fillStyle = colour('text');
    context.fillText(text, left + 5, top + LANE / 2);
  }
}
