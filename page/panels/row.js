// One parameter: its value with an editor for it, its limits as they are now, and what is said about it.
//
// What is typed is a draft. It stays in the editor until it is set, refused or dropped, whatever the station says
// meanwhile, and only Enter or a button sends it. One value is sent at a time; of those entered meanwhile the newest
// one is sent after the answer.

import { getJson, setAll, setParameter } from '../base/api.js';
import { el, setText } from '../base/dom.js';
import { takeChanges } from '../base/parameters.js';
import { errorBox, isRefusal, isUnsent, limitText, setByText, unsentBox } from '../base/refusal.js';
import { maySet } from '../base/state.js';

const isWritable = (entry) => entry.access === 'readwrite' || entry.access === 'write';

/** Value as the text of an editor. Numbers that a script cannot hold exactly are shown as the station wrote them. */
function editText(entry) {
  if (entry.value === null || entry.value === undefined)
    return entry.readEffect ? 'not read' : entry.type === 'text' ? '' : '–';
  if (typeof entry.value === 'number' && Number.isInteger(entry.value) && !Number.isSafeInteger(entry.value))
    return entry.shown;
  return String(entry.value);
}

/** The row of a parameter in the list. */
export class Row {
  constructor(entry) {
    this.entry = entry;
    this.draft = null; // text or choice in the editor that is not set
    this.sent = null; // the one on its way: {value, text}
    this.next = null; // the one to send after it
    this.id = `p-${entry.name}`;
    this.title = el('button', {
      type: 'button',
      class: 'title',
      'aria-expanded': 'false',
      'aria-controls': `${this.id}-more`,
      on: { click: () => this.toggle() },
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

  /** Whether the row has all the words of a search in its texts. */
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

  /** Shows the parameter as the station described it last. */
  update(entry) {
    const before = this.entry;
    this.entry = entry;
    setText(this.title, entry.label || entry.name);
    this.node.classList.toggle('changed', Boolean(entry.isChanged));
    const kind = this.kind();
    if (kind !== this.shownKind) {
      this.shownKind = kind;
      this.value.replaceChildren(...this.makeEditor());
    }
    this.fillEditor(entry.type !== 'array' && String(before.value) !== String(entry.value));
    this.mark();
    if (!this.more.hidden) this.fillMore();
  }

  /** The editor is made again if this differs. */
  kind() {
    const { type, entries } = this.entry;
    return `${type} ${isWritable(this.entry) && maySet()} ${entries?.map(({ name }) => name).join() ?? ''}`;
  }

  isAction() {
    return this.entry.entries?.length === 1 && isWritable(this.entry);
  }

  limitsText() {
    const { entries, value, limits, access } = this.entry;
    const reading = access === 'read' ? 'read only' : '';
    if (entries) {
      const now = entries.find((entry) => entry.value === value);
      return [now && !this.isAction() ? `${now.name} = ${now.value}` : '', reading].filter(Boolean).join(', ');
    }
    return reading || limitText(limits);
  }

  /** Shows the limits, or after the editor was left that its draft is not sent. */
  mark() {
    const { entry } = this;
    const isUnsent = this.draft !== null && !this.sent;
    const isLeft = isUnsent && document.activeElement !== this.editor && this.editor.tagName === 'INPUT';
    this.node.classList.toggle('unsent', isUnsent);
    setText(this.limits, isLeft ? 'not sent: Enter sends it' : this.limitsText());
    const { minimum, maximum } = entry.limits ?? {};
    // A limit may have moved past a value that stays as it is.
    const isPassed = isWritable(entry) && (entry.value < minimum || entry.value > maximum);
    this.limits.classList.toggle('warning', isLeft || isPassed);
  }

  makeEditor() {
    const { entry } = this;
    const name = `${entry.label || entry.name}${entry.unit ? `, ${entry.unit}` : ''}`;
    const common = { 'aria-label': name, 'aria-describedby': `${this.id}-limits`, id: this.id };
    const unit = entry.unit ? [el('span', { class: 'unit', text: entry.unit })] : [];
    if (entry.type === 'array') {
      this.editor = el('output', { ...common, class: 'number' });
      return [this.editor];
    }
    if (!isWritable(entry) || !maySet()) {
      this.editor = el('output', { ...common, class: entry.entries ? '' : 'number', 'data-locked': isWritable(entry) });
      return [this.editor, ...unit];
    }
    if (this.isAction()) {
      this.editor = el('button', {
        ...common,
        type: 'button',
        text: entry.entries[0].label || 'Apply',
        on: { click: () => this.send({ value: entry.entries[0].value, text: '' }) },
      });
      return [this.editor];
    }
    if (entry.entries) {
      const options = entry.entries.map(({ value, label, name: symbol }) =>
        el('option', { value: String(value), text: label || symbol, title: symbol }),
      );
      this.editor = el('select', { ...common, on: { change: () => this.choose() } }, ...options);
      return [this.editor];
    }
    const isNumber = entry.type !== 'text';
    this.editor = el('input', {
      ...common,
      type: 'text',
      spellcheck: 'false',
      autocomplete: 'off',
      class: isNumber ? 'number' : '',
      inputmode: isNumber ? 'decimal' : 'text',
      on: {
        input: () => this.edit(this.editor.value),
        focus: () => this.mark(),
        blur: () => this.mark(),
        keydown: (event) => this.key(event, isNumber),
      },
    });
    return [this.editor, ...unit];
  }

  fillEditor(isChanged) {
    const { editor, entry } = this;
    if (this.draft === this.present() && !this.sent) this.draft = null;
    if (editor.tagName === 'INPUT' || editor.tagName === 'SELECT') {
      const text = this.draft ?? this.present();
      if (editor.value !== text) editor.value = text;
    } else if (editor.tagName === 'OUTPUT') {
      const now = entry.entries?.find(({ value }) => value === entry.value);
      setText(
        editor,
        now
          ? now.label || now.name
          : entry.type === 'array'
            ? entry.shown || `${entry.elements} elements`
            : editText(entry),
      );
    }
    if (!isChanged || editor.tagName === 'BUTTON') return;
    this.node.classList.remove('flash');
    void this.node.offsetWidth; // starts the animation again
    this.node.classList.add('flash');
  }

  /** The value of the station as the editor shows it. */
  present() {
    return this.entry.entries ? String(this.entry.value) : editText(this.entry);
  }

  /** The value that the editor shows. */
  typed() {
    const { type, entries } = this.entry;
    if (entries) return entries.find(({ value }) => String(value) === this.editor.value).value;
    if (type === 'text') return this.editor.value;
    const text = this.editor.value.trim();
    // A comma may be a decimal one; "1,024" may also be a thousand, so the station gets the text, and refuses it.
    const number = /^[-+]?[1-9]\d{0,2},\d{3}$/.test(text) ? NaN : Number(text.replace(',', '.'));
    return text === '' ||
      !/^[-+.,\d]/.test(text) ||
      /^0x/i.test(text) ||
      !Number.isFinite(number) ||
      (Number.isInteger(number) && !Number.isSafeInteger(number))
      ? text
      : number;
  }

  /** Takes what was typed as draft. */
  edit(text) {
    this.draft = text === this.present() && !this.sent ? null : text;
    this.mark();
  }

  choose() {
    this.edit(this.editor.value);
    this.submit();
  }

  /** Discards the draft and what waits to be sent. */
  drop() {
    this.draft = null;
    this.next = null;
    if (this.isUnsentShown) this.trouble.replaceChildren();
    this.editor.value = this.present();
    this.mark();
  }

  key(event, isNumber) {
    if (event.key === 'Enter') this.submit();
    if (event.key === 'Escape' && this.draft !== null) {
      this.drop();
      event.stopPropagation();
    }
    const direction = { ArrowUp: 1, ArrowDown: -1 }[event.key];
    const number = Number(this.editor.value);
    if (!direction || !isNumber || !Number.isFinite(number)) return;
    event.preventDefault();
    const step = (this.entry.limits?.step || 1) * (event.shiftKey ? 10 : 1);
    this.editor.value = String(Number((number + direction * step).toPrecision(12)));
    this.edit(this.editor.value);
  }

  /** Sends the draft, after the answer to the value on its way. */
  async submit() {
    if (this.draft === null) return;
    const draft = { value: this.typed(), text: this.draft };
    this.next = draft.text === this.sent?.text ? null : draft;
    if (this.sent) return;
    while (this.next) await this.send(this.next);
  }

  /** Sends a value. What the station made of it comes back with the answer. */
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

  refuse(error, value, again) {
    const close = () => {
      this.trouble.replaceChildren();
      this.editor.focus?.();
    };
    const setting = { name: this.entry.name, value };
    this.isUnsentShown = isUnsent(error);
    const repeat = () => {
      close();
      again();
    };
    if (this.isUnsentShown)
      return this.trouble.replaceChildren(
        unsentBox(error, { what: `${setting.name}=${value}`, again: repeat, onClose: close }),
      );
    return this.trouble.replaceChildren(
      errorBox(error, {
        setting,
        onDone: (answer) => {
          takeChanges(answer?.changes);
          this.editor.focus?.();
        },
        onClose: close,
        onError: (next) => this.refuse(next, value, again),
      }),
    );
  }

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
    ); // the list has most of it
  }

  fillMore() {
    const entry = { ...this.details, ...this.entry };
    const setBy = setByText(this.details?.setBy ?? this.details?.limits?.setBy ?? this.details?.limit?.setBy);
    const facts = [
      ['Accepted now', isWritable(entry) ? limitText(entry.limits) : ''],
      ['Set by', setBy],
      ['Default', entry.default === null || entry.default === undefined ? '' : this.named(entry.default)],
      ['Group', entry.path?.join(' / ')],
    ].filter(([, text]) => text);
    const canReset =
      isWritable(entry) && maySet() && entry.isChanged && entry.default !== null && entry.default !== undefined;
    this.more.replaceChildren(
      el('p', { text: entry.description || 'There is no description.' }),
      ...[entry.readEffect && `Not read here, as reading it ${entry.readEffect}.`, entry.readError]
        .filter(Boolean)
        .map((text) => el('p', { class: 'muted', text })),
      el('dl', {}, ...facts.flatMap(([term, text]) => [el('dt', { text: term }), el('dd', { text })])),
      ...(canReset
        ? [el('button', { type: 'button', text: 'Set to default', on: { click: () => this.setDefault() } })]
        : []),
    );
  }

  named(value) {
    const entry = this.entry.entries?.find((candidate) => candidate.value === value);
    return entry ? `${entry.label || entry.name}` : `${value}${this.entry.unit ? ` ${this.entry.unit}` : ''}`;
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
