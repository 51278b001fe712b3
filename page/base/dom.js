// Small helpers around the document and its texts. Text from the server only ever becomes text nodes.

/**
 * Makes an element.
 * @param {string} tag
 * @param {Object<string, *>} [properties] `class`, `text`, `on` (listeners by event), attributes; null and false are
 *   left out.
 * @param {...(Node|string|null)} children
 * @returns {HTMLElement}
 */
export function el(tag, properties = {}, ...children) {
  return fill(document.createElement(tag), properties, children);
}

/** Makes an SVG element; the arguments are those of el(). */
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

/** Makes a button; the properties are those of el(). */
export const button = (text, onClick, properties = {}) =>
  el('button', { type: 'button', text, ...properties, on: { click: onClick } });

/** The element with this id, which the page always has. */
export const byId = (id) => document.getElementById(id);

/** Sets the text of an element only if it differs, so that a selection and a screen reader are left alone. */
export function setText(node, text) {
  if (node.textContent !== text) node.textContent = text;
}

/** Presses or releases a toggle button. */
export const press = (button, isPressed) => button.setAttribute('aria-pressed', String(isPressed));

/** A message of the station as a sentence; the text of a command stays as it is. */
export const sentence = (text) => text.replace(/^[a-z]/, (letter) => letter.toUpperCase());

/** An event's name without the part that all names of the design begin with. */
export const shortEvent = (name) => (name.startsWith('Device') ? name.slice(name.lastIndexOf('_') + 1) : name);

/** A colour of the style sheet as it is in the present theme. */
export const colour = (name) => getComputedStyle(document.documentElement).getPropertyValue(`--${name}`).trim();

/** The colours of the three components, in the order of the server: red, green, blue. */
export const COMPONENTS = [
  { key: 'red', name: 'Red', short: 'R', colour: 'red' },
  { key: 'green', name: 'Green', short: 'G', colour: 'green' },
  { key: 'blue', name: 'Blue', short: 'B', colour: 'blue' },
];

/**
 * Gives a canvas as many pixels as the screen has below it.
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
