// Parts of the tables of figures.

import { el } from './dom.js';

/** Creates the head of a table, with a title for each column. */
export const tableHead = (...titles) =>
  el('thead', {}, el('tr', {}, ...titles.map((text) => el('th', { scope: 'col', text }))));

/** Creates a cell with a number as text. */
export const numberCell = (text) => el('td', { class: 'number', text });

/** Creates the row of one of the COMPONENTS. */
export const componentRow = ({ name, colour }, ...cells) =>
  el('tr', {}, el('th', { scope: 'row', class: colour, text: name }), ...cells);
