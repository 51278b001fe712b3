// The belt and the scene of a virtual station.

import { ApiError, getJson, sendJson } from '../base/api.js';
import { button, byId, el } from '../base/dom.js';
import { Field } from '../base/field.js';
import { decimal } from '../base/numbers.js';
import { failureBox, isUnsent, noticeDone } from '../base/refusal.js';
import { get, maySet, on } from '../base/state.js';

const FASTEST = 3000; // mm/s, limit of the slider; the field accepts more

/** Builds the panel; its tab is visible only if the station has a belt. */
export function startBelt() {
  const belt = new Belt();
  const panel = byId('panel-belt');
  panel.append(belt.node);
  on('station', () => get('station')?.hasBelt && belt.load());
  panel.addEventListener('shown', () => belt.load());
}

/** Creates a control with its label and unit. */
const labelled = (label, unit, control) =>
  el('label', { class: 'field' }, el('span', { text: label }), control, el('span', { class: 'unit', text: unit }));

class Belt {
  constructor() {
    this.speed = this.speedField();
    this.slider = this.speedSlider();
    this.stop = button('Stop', () => this.move(0), { id: 'belt-stop' });
    this.scene = this.sceneChoice();
    this.pixel = this.sceneField('pixel', {
      label: 'Size of a pixel',
      step: '10',
      unit: 'µm',
      text: 'A pixel of the scene has',
    });
    this.noise = this.sceneField('noise', { label: 'Noise', step: '1', unit: '%', text: 'The noise is at most' });
    this.trouble = el('div');
    this.node = this.arrange();
  }

  speedField() {
    const input = el('input', {
      type: 'number',
      step: '10',
      class: 'number',
      id: 'belt-speed',
      'aria-label': 'Speed in mm/s',
    });
    return new Field(input, (speed, again) => this.move(speed, again));
  }

  /** Creates the slider. While it is dragged, the field shows the value that its release sends. */
  speedSlider() {
    const slider = el('input', {
      type: 'range',
      min: String(-FASTEST),
      max: String(FASTEST),
      step: '10',
      id: 'belt-slider',
      'aria-label': 'Speed',
    });
    slider.addEventListener('input', () => {
      this.speed.mark(false);
      this.speed.input.value = slider.value;
    });
    slider.addEventListener('change', () => this.move(Number(slider.value)));
    return slider;
  }

  sceneChoice() {
    const choice = el('select', { id: 'belt-scene', 'aria-label': 'Scene' });
    choice.addEventListener('change', () => this.setScene('kind', choice.value, `The scene is ${choice.value}.`));
    return choice;
  }

  /** Creates a number field for a property of the scene. text: text of the notice before the number. */
  sceneField(property, { label, step, unit, text }) {
    const input = el('input', {
      type: 'number',
      min: '0',
      step,
      class: 'number',
      id: `belt-${property}`,
      'aria-label': `${label}, ${unit}`,
    });
    return new Field(input, (value, again) => this.setScene(property, value, `${text} ${value} ${unit}.`, again));
  }

  arrange() {
    return el(
      'div',
      { class: 'belt' },
      el('div', { class: 'pair' }, labelled('Speed', 'mm/s', this.speed.input), this.stop),
      this.slider,
      labelled('Scene', '', this.scene),
      labelled('Pixel', 'µm', this.pixel.input),
      labelled('Noise', '% of white', this.noise.input),
      el('p', { class: 'hint warning', text: 'Not sent: press Enter in the field to send.' }),
      el('p', {
        class: 'muted',
        text: 'Encoder, light barrier and scene follow the belt. A negative speed runs backwards.',
      }),
      this.trouble,
    );
  }

  move(speed, again) {
    return this.send('/api/belt', { speed }, `The belt moves at ${speed} mm/s.`, again);
  }

  setScene(property, value, text, again) {
    return this.send('/api/scene', { [property]: value }, text, again);
  }

  /** Sends a setting; shows and returns an error, or returns null. again(): sends the input at that time. */
  async send(path, json, text, again = () => this.send(path, json, text)) {
    this.trouble.replaceChildren();
    let failure = null;
    try {
      await sendJson('PUT', path, json);
      noticeDone('belt', text);
    } catch (error) {
      failure = error;
      this.showTrouble(error, again);
    }
    if (!failure || !isUnsent(failure)) await this.load();
    return failure;
  }

  showTrouble(error, again) {
    if (!(error instanceof ApiError)) throw error;
    this.trouble.replaceChildren(
      failureBox(error, {
        what: 'The value',
        again,
        onClose: () => this.trouble.replaceChildren(),
        onDone: () => this.load(),
        onError: (next) => this.showTrouble(next, again),
      }),
    );
  }

  /** Reads belt and scene, and shows those that exist. */
  async load() {
    const [belt, scene] = await Promise.all(['/api/belt', '/api/scene'].map((path) => getJson(path).catch(() => null)));
    byId('tab-belt').hidden = !belt && !scene;
    this.showBelt(belt);
    this.showScene(scene);
  }

  showBelt(belt) {
    for (const control of [this.speed.input, this.slider, this.stop]) control.disabled = !belt || !maySet();
    if (!belt) return;
    this.speed.show(belt.speed);
    this.slider.value = belt.speed;
  }

  showScene(scene) {
    for (const control of [this.scene, this.pixel.input, this.noise.input]) control.disabled = !scene || !maySet();
    if (!scene) return;
    const kinds = new Set([scene.kind, ...scene.kinds]);
    this.scene.replaceChildren(...[...kinds].map((kind) => el('option', { value: kind, text: kind })));
    this.scene.value = scene.kind;
    this.pixel.show(scene.pixel);
    this.noise.show(decimal(scene.noise, 2));
  }
}
