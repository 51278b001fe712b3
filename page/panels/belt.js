// The belt and the scene of a virtual station.

import { ApiError, getJson, sendJson } from '../base/api.js';
import { byId, decimal, el } from '../base/dom.js';
import { Field } from '../base/field.js';
import { errorBox, isUnsent, noticeDone, unsentBox } from '../base/refusal.js';
import { get, maySet, on } from '../base/state.js';

const FASTEST = 3000; // mm/s, of the slider; the field takes more

/** Builds the panel; its tab is there only if the station has a belt. */
export function startBelt() {
  const trouble = el('div');
  const speed = el('input', {
    type: 'number',
    step: '10',
    class: 'number',
    id: 'belt-speed',
    'aria-label': 'Speed in mm/s',
  });
  const slider = el('input', {
    type: 'range',
    min: String(-FASTEST),
    max: String(FASTEST),
    step: '10',
    id: 'belt-slider',
    'aria-label': 'Speed',
  });
  const scene = el('select', { id: 'belt-scene', 'aria-label': 'Scene' });
  const numberField = (id, label, step, unit, key, text) => {
    const properties = { type: 'number', min: '0', step, class: 'number', id, 'aria-label': `${label}, ${unit}` };
    return new Field(el('input', properties), (value, again) =>
      send('/api/scene', { [key]: value }, `${text} ${value} ${unit}.`, again),
    );
  };
  const pixel = numberField('belt-pixel', 'Size of a pixel', '10', 'µm', 'pixel', 'A pixel of the scene has');
  const noise = numberField('belt-noise', 'Noise', '1', '%', 'noise', 'The noise is at most');
  const line = (label, unit, ...controls) =>
    el(
      'label',
      { class: 'field' },
      el('span', { text: label }),
      ...controls,
      el('span', { class: 'unit', text: unit }),
    );
  const stop = el('button', { type: 'button', text: 'Stop', id: 'belt-stop', on: { click: () => move(0) } });
  const about = el('p', {
    class: 'muted',
    text: 'Encoder, light barrier and scene follow the belt. A negative speed runs backwards.',
  });
  byId('panel-belt').append(
    el(
      'div',
      { class: 'belt' },
      el('div', { class: 'pair' }, line('Speed', 'mm/s', speed), stop),
      slider,
      line('Scene', '', scene),
      line('Pixel', 'µm', pixel.input),
      line('Noise', '% of white', noise.input),
      el('p', { class: 'hint warning', text: 'Not sent: Enter in the field sends it.' }),
      about,
      trouble,
    ),
  );

  const show = (error, again) => {
    if (!(error instanceof ApiError)) throw error;
    const onClose = () => trouble.replaceChildren();
    trouble.replaceChildren(
      isUnsent(error)
        ? unsentBox(error, { what: 'The value', again, onClose })
        : errorBox(error, { onClose, onDone: load, onError: (next) => show(next, again) }),
    );
  };
  const send = async (path, json, text, again = () => send(path, json, text)) => {
    trouble.replaceChildren();
    let failure = null;
    try {
      await sendJson('PUT', path, json);
      noticeDone('belt', text);
    } catch (error) {
      failure = error;
      show(error, again);
    }
    if (!failure || !isUnsent(failure)) await load();
    return failure;
  };
  const move = (value, again) => send('/api/belt', { speed: value }, `The belt moves at ${value} mm/s.`, again);
  const load = async () => {
    const [belt, present] = await Promise.all(
      ['/api/belt', '/api/scene'].map((path) => getJson(path).catch(() => null)),
    );
    byId('tab-belt').hidden = !belt && !present;
    for (const control of [speed, slider, stop]) control.disabled = !belt || !maySet();
    for (const control of [scene, pixel.input, noise.input]) control.disabled = !present || !maySet();
    if (belt) field.show(belt.speed);
    if (belt) slider.value = belt.speed;
    if (!present) return;
    scene.replaceChildren(
      ...[...new Set([present.kind, ...present.kinds])].map((kind) => el('option', { value: kind, text: kind })),
    );
    scene.value = present.kind;
    pixel.show(present.pixel);
    noise.show(decimal(present.noise, 2));
  };
  const field = new Field(speed, move);
  slider.addEventListener('input', () => {
    field.mark(false);
    speed.value = slider.value;
  });
  slider.addEventListener('change', () => move(Number(slider.value)));
  scene.addEventListener('change', () => send('/api/scene', { kind: scene.value }, `The scene is ${scene.value}.`));
  on('station', () => get('station')?.hasBelt && load());
  byId('panel-belt').addEventListener('shown', load);
}
