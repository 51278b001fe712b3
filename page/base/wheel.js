// Zooming with the mouse wheel.

import { clamp } from './numbers.js';

/**
 * Calls zoom() when the wheel turns over an element, and prevents scrolling of the page.
 * @param {HTMLElement} element
 * @param {function(number, WheelEvent): void} zoom gets the factor of the visible size, above 1 for a turn down
 * @param {function(): boolean} isZoomed true if the wheel zooms now
 */
export function onWheel(element, zoom, isZoomed = () => true) {
  const turn = (event) => {
    if (!isZoomed()) return;
    event.preventDefault();
    zoom(Math.exp(clamp(event.deltaY, -60, 60) / 150), event);
  };
  element.addEventListener('wheel', turn, { passive: false });
}
