// One parameter: its value with an editor, its present limits, and its details.
//
// The input is a draft. It stays in the editor until it is set, refused or discarded, also if the value of the station
// changes, and only Enter or a button sends it. One value is sent at a time. After the answer, the newest value that
// was entered during the request is sent.

import { getJson, setAll, setParameter } from '../base/api.js';
import { button, el, setText } from '../base/dom.js';
import { takeChanges } from '../base/parameters.js';
import { failureBox, isRefusal, isUnsent, limitText, setByText } from '../base/refusal.js';
import { maySet } from '../base/state.js';
import { editorKind, fillEditor, isAction, isWritable, makeEditor, presentText, valueOf } from './editor.js';

const isGiven = (value) => value !== null && value !== undefined;

/** The row of a parameter in the list. */
export class Row {
  constructor(entry) {
    this.entry = entry;
    this.draft = null; // text or choice in the editor that is not set
    this.sent = null; // the draft that is being sent: {value, text}
    this.next = null; // the draft to send next
    this.id = `p-${entry.name}`;
    this.title = button('', () => this.toggle(), {
      class: 'title',
      'aria-expanded': 'false',
      'aria-controls': `${this.id}-more`,
    });
    this.value = el('div', { class: 'value' });
    this.limits = el('span', { class: 'limits', id: `${this.id}-limits` });
    this.more = el('div', { class: 'more', id: `${this.id}-more`, hidden: true });
    this.trouble = el('div');
    this.node = el(
      'div',
      { class: 'row', 'data-name': entry.name },
      this.title,
      this.value,
      el('code', { class: 'name', text: entry.name }),
      this.limits,
      this.trouble,
      this.more,
    );
    this.update(entry);
  }

  /** True if the texts of the row contain all words of a search. */
  matches(words) {
    this.words ??= [
      this.entry.name,
      this.entry.label,
      this.entry.path?.join(' '),
      this.entry.description,
      ...(this.entry.entries ?? []).flatMap(({ label, name }) => [label, name]),
    ]
      .join(' ')
      .toLowerCase();
    return words.every((word) => this.words.includes(word));
  }

  /** Shows the last known description of the parameter. */
  update(entry) {
    const before = this.entry;
    this.entry = entry;
    setText(this.title, entry.label || entry.name);
    this.node.classList.toggle('changed', Boolean(entry.isChanged));
    if (this.kind !== editorKind(entry)) this.renewEditor();
    this.fillEditor();
    if (entry.type !== 'array' && String(before.value) !== String(entry.value)) this.flash();
    this.mark();
    if (!this.more.hidden) this.fillMore();
  }

  limitsText() {
    const { entries, value, limits, access } = this.entry;
    const reading = access === 'read' ? 'read only' : '';
    if (entries) {
      const now = entries.find((entry) => entry.value === value);
      return [now && !isAction(this.entry) ? `${now.name} = ${now.value}` : '', reading].filter(Boolean).join(', ');
    }
    return reading || limitText(limits);
  }

  /** Shows the limits; if the field has lost the focus, that the draft is not sent. */
  mark() {
    const { entry } = this;
    const isWaiting = this.draft !== null && !this.sent;
    const isLeft = isWaiting && document.activeElement !== this.editor && this.editor.tagName === 'INPUT';
    this.node.classList.toggle('unsent', isWaiting);
    setText(this.limits, isLeft ? 'not sent: press Enter to send' : this.limitsText());
    const { minimum, maximum } = entry.limits ?? {};
    // A limit may have changed so that the value is outside.
    const isPassed = isWritable(entry) && (entry.value < minimum || entry.value > maximum);
    this.limits.classList.toggle('warning', isLeft || isPassed);
  }

  renewEditor() {
    const { entry } = this;
    this.kind = editorKind(entry);
    const name = `${entry.label || entry.name}${entry.unit ? `, ${entry.unit}` : ''}`;
    const attributes = { 'aria-label': name, 'aria-describedby': `${this.id}-limits`, id: this.id };
    const nodes = makeEditor(entry, attributes, {
      onApply: (value) => this.send({ value, text: '' }),
      onChoose: () => this.choose(),
      field: {
        input: () => this.edit(this.editor.value),
        focus: () => this.mark(),
        blur: () => this.mark(),
        keydown: (event) => this.key(event),
      },
    });
    [this.editor] = nodes;
    this.value.replaceChildren(...nodes);
  }

  /** Shows the draft, or the value of the station if there is none. */
  fillEditor() {
    const present = presentText(this.entry);
    if (this.draft === present && !this.sent) this.draft = null;
    fillEditor(this.editor, this.entry, this.draft ?? present);
  }

  /** Highlights a value that has changed. */
  flash() {
    if (this.editor.tagName === 'BUTTON') return;
    this.node.classList.remove('flash');
    void this.node.offsetWidth; // starts the animation again
    this.node.classList.add('flash');
  }

  /** Takes the input as draft. */
  edit(text) {
    this.draft = text === presentText(this.entry) && !this.sent ? null : text;
    this.mark();
  }

  choose() {
    this.edit(this.editor.value);
    this.submit();
  }

  /** Discards the draft and the value to send next. */
  drop() {
    this.draft = null;
    this.next = null;
    if (this.isUnsentShown) this.trouble.replaceChildren();
    this.editor.value = presentText(this.entry);
    this.mark();
  }

  key(event) {
    if (event.key === 'Enter') this.submit();
    if (event.key === 'Escape' && this.draft !== null) {
      this.drop();
      event.stopPropagation();
    }
    const direction = { ArrowUp: 1, ArrowDown: -1 }[event.key];
    if (direction && this.entry.type !== 'text') this.step(event, direction);
  }

  /** Increments or decrements the number in the field by some steps. */
  step(event, direction) {
    const number = Number(this.editor.value);
    if (!Number.isFinite(number)) return;
    event.preventDefault();
    const step = (this.entry.limits?.step || 1) * (event.shiftKey ? 10 : 1);
    this.editor.value = String(Number((number + direction * step).toPrecision(12)));
    this.edit(this.editor.value);
  }

  /** Sends the draft, after the answer to the present request. */
  async submit() {
    if (this.draft === null) return;
    const draft = { value: valueOf(this.entry, this.editor.value), text: this.draft };
    this.next = draft.text === this.sent?.text ? null : draft;
    if (this.sent) return;
    while (this.next) await this.send(this.next);
  }

  /** Sends a value. The answer has the value that was set. */
  async send(setting) {
    this.next = null;
    this.sent = setting;
    this.trouble.replaceChildren();
    this.node.setAttribute('aria-busy', 'true');
    this.mark();
    const [answer, error] = await setParameter(this.entry.name, setting.value).then(
      (done) => [done, null],
      (failure) => [null, failure],
    );
    this.sent = null;
    this.node.removeAttribute('aria-busy');
    if (isUnsent(error)) this.next = null;
    else if ((!error || isRefusal(error)) && this.draft === setting.text) this.draft = null;
    const { actual, shown } = answer ?? {};
    this.update(actual === undefined ? this.entry : { ...this.entry, value: actual, shown });
    takeChanges(answer?.changes);
    if (error) this.refuse(error, setting.value, () => (setting.text ? this.submit() : this.send(setting)));
  }

  /** Shows why a value is not set. again(): sends it again. */
  refuse(error, value, again) {
    this.isUnsentShown = isUnsent(error);
    const { name } = this.entry;
    const close = () => {
      this.trouble.replaceChildren();
      this.editor.focus?.();
    };
    this.trouble.replaceChildren(
      failureBox(error, {
        what: `${name}=${value}`,
        again: () => {
          close();
          again();
        },
        setting: { name, value },
        onDone: (answer) => {
          takeChanges(answer?.changes);
          this.editor.focus?.();
        },
        onClose: close,
        onError: (next) => this.refuse(next, value, again),
      }),
    );
  }

  /** Expands or collapses the details. */
  toggle() {
    this.more.hidden = !this.more.hidden;
    this.title.setAttribute('aria-expanded', String(!this.more.hidden));
    if (this.more.hidden) return;
    this.fillMore();
    getJson(`/api/parameters/${this.entry.name}`).then(
      (entry) => {
        this.details = entry;
        this.fillMore();
      },
      () => {},
    ); // until then the data of the list are shown
  }

  fillMore() {
    const entry = { ...this.details, ...this.entry };
    const remarks = [entry.readEffect && `Not read here, because a read ${entry.readEffect}.`, entry.readError];
    const canReset = isWritable(entry) && maySet() && entry.isChanged && isGiven(entry.default);
    this.more.replaceChildren(
      el('p', { text: entry.description || 'There is no description.' }),
      ...remarks.filter(Boolean).map((text) => el('p', { class: 'muted', text })),
      el('dl', {}, ...this.facts(entry).flatMap(([term, text]) => [el('dt', { text: term }), el('dd', { text })])),
      ...(canReset ? [button('Set to default', () => this.setDefault())] : []),
    );
  }

  /** Returns the details of the parameter: terms with their texts. */
  facts(entry) {
    const { details } = this;
    return [
      ['Accepted now', isWritable(entry) ? limitText(entry.limits) : ''],
      ['Set by', setByText(details?.setBy ?? details?.limits?.setBy ?? details?.limit?.setBy)],
      ['Default', isGiven(entry.default) ? this.named(entry.default) : ''],
      ['Group', entry.path?.join(' / ')],
    ].filter(([, text]) => text);
  }

  named(value) {
    const entry = this.entry.entries?.find((candidate) => candidate.value === value);
    return entry ? entry.label || entry.name : `${value}${this.entry.unit ? ` ${this.entry.unit}` : ''}`;
  }

  setDefault() {
    const setting = { name: this.entry.name, value: this.entry.default };
    this.trouble.replaceChildren();
    setAll([setting]).then(
      (answer) => takeChanges(answer?.changes),
      (error) => this.refuse(error, setting.value, () => this.setDefault()),
    );
  }
}
