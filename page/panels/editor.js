// The editor of a parameter's value. It depends on the kind of the parameter: a field, a choice, a button for a
// parameter with one entry, or an output for a parameter that this page may not set.

import { button, el, setText } from '../base/dom.js';
import { maySet } from '../base/state.js';

/** True if the parameter can be set in its present state. */
export const isWritable = ({ access }) => access === 'readwrite' || access === 'write';

/** True if setting the only entry of the parameter triggers an action. */
export const isAction = (entry) => entry.entries?.length === 1 && isWritable(entry);

/** A key of everything that the editor depends on; if the key changes, a new editor is needed. */
export function editorKind(entry) {
  const names = entry.entries?.map(({ name }) => name).join() ?? '';
  return `${entry.type} ${isWritable(entry) && maySet()} ${names}`;
}

/** Returns the value of the station as the text of an editor. */
export const presentText = (entry) => (entry.entries ? String(entry.value) : valueText(entry));

/** Numbers that JavaScript cannot represent exactly are shown as text from the station. */
function valueText({ type, value, shown, readEffect }) {
  if (value === null || value === undefined) return readEffect ? 'not read' : type === 'text' ? '' : '–';
  return Number.isInteger(value) && !Number.isSafeInteger(value) ? shown : String(value);
}

/** Returns the value of an editor's text. The station refuses a text that is not a number. */
export function valueOf({ type, entries }, text) {
  if (entries) return entries.find(({ value }) => String(value) === text).value;
  return type === 'text' ? text : numberOrText(text.trim());
}

function numberOrText(text) {
  // A comma may be a decimal one. "1,024" is ambiguous, so the station gets it as text, and refuses it.
  const isDoubtful = /^[-+]?[1-9]\d{0,2},\d{3}$/.test(text);
  if (isDoubtful || !/^[-+.,\d]/.test(text) || /^0x/i.test(text)) return text;
  const number = Number(text.replace(',', '.'));
  const isExact = Number.isFinite(number) && (!Number.isInteger(number) || Number.isSafeInteger(number));
  return isExact ? number : text;
}

/**
 * Creates the editor of a parameter.
 * @param {object} entry the parameter as the station describes it
 * @param {object} attributes of the editor
 * @param {{onApply: function(*): void, onChoose: function(): void, field: object}} listeners
 *   onApply: the button was pressed, with its value; onChoose: an entry was chosen; field: listeners of a field
 * @returns {Node[]} the editor, and its unit if it has one
 */
export function makeEditor(entry, attributes, { onApply, onChoose, field }) {
  const unit = entry.unit ? [el('span', { class: 'unit', text: entry.unit })] : [];
  if (entry.type === 'array') return [el('output', { ...attributes, class: 'number' })];
  if (!isWritable(entry) || !maySet()) return [makeOutput(entry, attributes), ...unit];
  if (isAction(entry)) return [makeAction(entry.entries[0], attributes, onApply)];
  if (entry.entries) return [makeChoice(entry, attributes, onChoose)];
  return [makeField(entry, attributes, field), ...unit];
}

const makeOutput = (entry, attributes) =>
  el('output', { ...attributes, class: entry.entries ? '' : 'number', 'data-locked': isWritable(entry) });

const makeAction = ({ label, value }, attributes, onApply) =>
  button(label || 'Apply', () => onApply(value), attributes);

function makeChoice({ entries }, attributes, onChoose) {
  const options = entries.map(({ value, label, name }) =>
    el('option', { value: String(value), text: label || name, title: name }),
  );
  return el('select', { ...attributes, on: { change: onChoose } }, ...options);
}

function makeField({ type }, attributes, listeners) {
  const isNumber = type !== 'text';
  return el('input', {
    ...attributes,
    type: 'text',
    spellcheck: 'false',
    autocomplete: 'off',
    class: isNumber ? 'number' : '',
    inputmode: isNumber ? 'decimal' : 'text',
    on: listeners,
  });
}

/** Shows a text in a field or a choice, or the value of the parameter in an output. */
export function fillEditor(editor, entry, text) {
  if (editor.tagName === 'OUTPUT') setText(editor, outputText(entry));
  else if (editor.tagName !== 'BUTTON' && editor.value !== text) editor.value = text;
}

function outputText(entry) {
  const now = entry.entries?.find(({ value }) => value === entry.value);
  if (now) return now.label || now.name;
  return entry.type === 'array' ? entry.shown || `${entry.elements} elements` : valueText(entry);
}
