// Helpers for the document and its texts. Text from the server is only inserted as text nodes.

/**
 * Creates an element.
 * @param {string} tag
 * @param {Object<string, *>} [properties] `class`, `text`, `on` (listeners by event), attributes; null and false are
 *   left out.
 * @param {...(Node|string|null)} children
 * @returns {HTMLElement}
 */
export function el(tag, properties = {}, ...children) {
  return fill(document.createElement(tag), properties, children);
}

/** Creates an SVG element; the arguments are those of el(). */
export function svg(tag, properties = {}, ...children) {
  return fill(document.createElementNS('http://www.w3.org/2000/svg', tag), properties, children);
}

function fill(node, properties, children) {
  for (const [name, value] of Object.entries(properties)) {
    if (name === 'text') node.textContent = value;
    else if (name === 'on')
      for (const [event, listener] of Object.entries(value)) node.addEventListener(event, listener);
    else if (name === 'value' || name === 'checked') node[name] = value;
    else if (value !== null && value !== undefined && value !== false)
      node.setAttribute(name, value === true ? '' : value);
  }
  node.append(...children.filter((child) => child !== null && child !== undefined));
  return node;
}

/** Creates a button; the properties are those of el(). */
export const button = (text, onClick, properties = {}) =>
  el('button', { type: 'button', text, ...properties, on: { click: onClick } });

/** Returns the element with this id, which must exist. */
export const byId = (id) => document.getElementById(id);

/** Sets the text of an element only if it differs, to keep the selection and avoid repeated announcements. */
export function setText(node, text) {
  if (node.textContent !== text) node.textContent = text;
}

/** Presses or releases a toggle button. */
export const press = (button, isPressed) => button.setAttribute('aria-pressed', String(isPressed));

/** Converts a message of the station to a sentence; the text of a command is not changed. */
export const sentence = (text) => text.replace(/^[a-z]/, (letter) => letter.toUpperCase());

/** Shortens an event's name by the prefix that is common to all names of the design. */
export const shortEvent = (name) => (name.startsWith('Device') ? name.slice(name.lastIndexOf('_') + 1) : name);

/** Returns a colour of the style sheet in the present theme. */
export const colour = (name) => getComputedStyle(document.documentElement).getPropertyValue(`--${name}`).trim();

/** The colours of the three components, in the order of the server: red, green, blue. */
export const COMPONENTS = [
  { key: 'red', name: 'Red', short: 'R', colour: 'red' },
  { key: 'green', name: 'Green', short: 'G', colour: 'green' },
  { key: 'blue', name: 'Blue', short: 'B', colour: 'blue' },
];

/**
 * Adapts the resolution of a canvas to the pixels of the screen.
 * @returns {{context: CanvasRenderingContext2D, width: number, height: number, ratio: number}} size in CSS pixels;
 *   the context draws in CSS pixels.
 */
export function sizeCanvas(canvas) {
  const ratio = window.devicePixelRatio || 1;
  const width = canvas.clientWidth;
  const height = canvas.clientHeight;
  const pixelWidth = Math.max(1, Math.round(width * ratio));
  const pixelHeight = Math.max(1, Math.round(height * ratio));
  if (canvas.width !== pixelWidth || canvas.height !== pixelHeight) {
    canvas.width = pixelWidth;
    canvas.height = pixelHeight;
  }
  const context = canvas.getContext('2d');
  context.setTransform(ratio, 0, 0, ratio, 0, 0);
  return { context, width, height, ratio };
}

/** Calls draw() for each change of the element's size and of the theme. */
export function onResize(element, draw) {
  new ResizeObserver(draw).observe(element);
  matchMedia('(prefers-color-scheme: dark)').addEventListener('change', draw);
}
