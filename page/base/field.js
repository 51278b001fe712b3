// A number field outside the list of parameters. The input is a draft until Enter sends it.

import { latest } from './pace.js';
import { isUnsent } from './refusal.js';

/** Keeps the input, marked as not sent, until it is sent with Enter or discarded with Escape. */
export class Field {
  /**
   * @param {HTMLInputElement} input
   * @param {function(number, function(): void): Promise<Error|null>} send sends the number, shows an error, and returns
   *   it; the function that it gets sends the input at that time
   */
  constructor(input, send) {
    this.input = input;
    this.known = ''; // the last known value of the station
    this.isSending = false;
    const run = latest(() => this.sendEntered(send));
    this.submit = () => {
      if (!this.isDraft || input.value === '') return;
      this.entered = input.value;
      run();
    };
    // While a value is being sent, the station's next one is not known.
    input.addEventListener('input', () => this.mark(this.isSending || input.value !== this.known));
    input.addEventListener('keydown', (event) => this.key(event));
  }

  /** Shows the value of the station, unless there is input. */
  show(value) {
    this.known = String(value);
    if (!this.isDraft && this.input.value !== this.known) this.input.value = this.known;
  }

  /** Discards the input. */
  drop() {
    this.mark(false);
    this.input.value = this.known;
  }

  key(event) {
    if (event.key === 'Enter') this.submit();
    if (event.key !== 'Escape' || !this.isDraft) return;
    this.drop();
    event.stopPropagation();
  }

  async sendEntered(send) {
    const { entered } = this;
    this.isSending = true;
    const error = await send(Number(entered), this.submit).finally(() => (this.isSending = false));
    if (!(error && isUnsent(error)) && this.input.value === entered) this.drop();
  }

  mark(isDraft) {
    this.isDraft = isDraft;
    this.input.classList.toggle('unsent', isDraft);
  }
}
