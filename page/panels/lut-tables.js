// The lookup tables of the station, with the changes of them that it does not have yet.

import { getJson, sendJson } from '../base/api.js';
import { COMPONENTS } from '../base/dom.js';
import { takeChanges } from '../base/parameters.js';
import { pointsOf } from '../draw/curve.js';

/** All entries of a table of the station; size: their number as far as it is known, else 0. */
async function readTable(i, size, signal) {
  const ask = (points) => getJson(`/api/lut/${COMPONENTS[i].key}`, { points: points || undefined }, signal);
  const answer = await ask(size);
  const { points } = answer.points.length === answer.size ? answer : await ask(answer.size);
  return points.map(([, value]) => value);
}

/** The tables of red, green and blue, as the page shows them. */
export class LutTables {
  constructor() {
    this.entries = []; // of each table: all of its entries
    this.unsent = new Map(); // changes by table: functions from a table to the next
    this.isSending = false;
    this.changes = 0;
  }

  /** The number of entries of a table; 0 before the first read. */
  get size() {
    return this.entries[0]?.length ?? 0;
  }

  /**
   * Reads the tables, unless changes of them are on their way; then they are read afterwards.
   * @param {AbortSignal|undefined} signal
   * @param {function(): boolean} isWelcome whether the tables may be replaced by those that were read
   * @returns {Promise<boolean>} whether they were
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
   * Changes tables here; send() changes them on the station.
   * @param {Iterable<number>} which
   * @param {function(number[]): number[]} make makes the next entries of a table from those before
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
      // Tables that change meanwhile come again.
      for (const [i, changes] of this.unsent) await this.sendTable(i, changes);
    } finally {
      this.isSending = false;
    }
  }

  /** Changes the table as it is now, so that entries set by others stay. */
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

  /** Drops the changes that are not sent. */
  discard() {
    this.unsent.clear();
  }

  /** Restores dropped changes. */
  restore(unsent) {
    for (const [i, changes] of unsent) this.unsent.set(i, changes);
    this.changes += 1; // values that are read meanwhile are older
  }
}
