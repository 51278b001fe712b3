// Zooming with the wheel of the mouse.

import { clamp } from './numbers.js';

/**
 * Calls zoom() when the wheel turns on an element, and keeps the page from scrolling.
 * @param {HTMLElement} element
 * @param {function(number, WheelEvent): void} zoom gets the factor by which more is to be seen: above 1 for a turn down
 * @param {function(): boolean} isZoomed whether the wheel zooms now
 */
export function onWheel(element, zoom, isZoomed = () => true) {
  const turn = (event) => {
    if (!isZoomed()) return;
    event.preventDefault();
    zoom(Math.exp(clamp(event.deltaY, -60, 60) / 150), event);
  };
  element.addEventListener('wheel', turn, { passive: false });
}
