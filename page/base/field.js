// A number field outside of the list of parameters. What is typed is a draft: only Enter sends it.

import { latest } from './pace.js';
import { isUnsent } from './refusal.js';

/** Keeps what is typed, marked as not sent, until it is sent with Enter or dropped with Escape. */
export class Field {
  /**
   * @param {HTMLInputElement} input
   * @param {function(number, function(): void): Promise<Error|null>} send sends the number, shows an error, and returns
   *   it; the function that it gets sends what is typed then
   */
  constructor(input, send) {
    this.input = input;
    this.known = ''; // as the station said last
    const run = latest(async () => this.finish(await send(Number(this.entered), this.submit)));
    this.submit = () => {
      if (!this.isDraft || input.value === '') return;
      this.entered = input.value;
      run();
    };
    input.addEventListener('input', () => this.mark(input.value !== this.known));
    input.addEventListener('keydown', (event) => this.key(event));
  }

  /** Shows the value of the station, if nothing is typed. */
  show(value) {
    this.known = String(value);
    if (!this.isDraft && this.input.value !== this.known) this.input.value = this.known;
  }

  /** Drops what is typed. */
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

  finish(error) {
    if (!(error && isUnsent(error)) && this.input.value === this.entered) this.drop();
  }

  mark(isDraft) {
    this.isDraft = isDraft;
    this.input.classList.toggle('unsent', isDraft);
  }
}
