// The lookup tables of the station, with changes that are not sent yet.

import { getJson, sendJson } from '../base/api.js';
import { COMPONENTS } from '../base/dom.js';
import { takeChanges } from '../base/parameters.js';
import { pointsOf } from '../draw/curve.js';

/** Reads all entries of a table of the station; size: their number if it is known, else 0. */
async function readTable(i, size, signal) {
  const ask = (points) => getJson(`/api/lut/${COMPONENTS[i].key}`, { points: points || undefined }, signal);
  const answer = await ask(size);
  const { points } = answer.points.length === answer.size ? answer : await ask(answer.size);
  return points.map(([, value]) => value);
}

/** The tables of red, green and blue, as the page shows them. */
export class LutTables {
  constructor() {
    this.entries = []; // all entries of each table
    this.unsent = new Map(); // changes by table: functions from a table to the next
    this.isSending = false;
    this.changes = 0;
  }

  /** Returns the number of entries of a table; 0 before the first read. */
  get size() {
    return this.entries[0]?.length ?? 0;
  }

  /**
   * Reads the tables; while changes are being sent, they are read afterwards.
   * @param {AbortSignal|undefined} signal
   * @param {function(): boolean} isWelcome true if the read tables may replace the present ones
   * @returns {Promise<boolean>} true if they were replaced
   */
  async read(signal, isWelcome) {
    if (this.unsent.size || this.isSending) return false;
    const { changes } = this;
    const entries = await Promise.all(COMPONENTS.map((_, i) => readTable(i, this.size, signal)));
    if (this.changes !== changes || !isWelcome()) return false;
    this.entries = entries;
    return true;
  }

  /**
   * Changes tables in the page; send() changes them on the station.
   * @param {Iterable<number>} which
   * @param {function(number[]): number[]} make computes the new entries of a table from the present ones
   */
  change(which, make) {
    this.changes += 1;
    for (const i of which) {
      this.entries[i] = make(this.entries[i]);
      this.unsent.set(i, [...(this.unsent.get(i) ?? []), make]);
    }
  }

  /** Sends the changes. Those that fail stay unsent, and the error is thrown. */
  async send() {
    this.isSending = true;
    try {
      // Tables that are changed during the request are sent again.
      for (const [i, changes] of this.unsent) await this.sendTable(i, changes);
    } finally {
      this.isSending = false;
    }
  }

  /** Applies changes to the station's present table, so that entries set by others are kept. */
  async sendTable(i, changes) {
    this.unsent.delete(i);
    try {
      const table = changes.reduce((before, change) => change(before), await readTable(i));
      const answer = await sendJson('PUT', `/api/lut/${COMPONENTS[i].key}`, { points: pointsOf(table) });
      takeChanges(answer?.changes);
    } catch (error) {
      this.unsent.set(i, [...changes, ...(this.unsent.get(i) ?? [])]);
      throw error;
    }
  }

  /** Discards the changes that are not sent. */
  discard() {
    this.unsent.clear();
  }

  /** Restores discarded changes. */
  restore(unsent) {
    for (const [i, changes] of unsent) this.unsent.set(i, changes);
    this.changes += 1; // reads that are running return older values
  }
}
