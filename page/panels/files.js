// Pictures and configurations as files.

import { ApiError, request } from '../base/api.js';
import { byId, counted, decimal, el, grouped, setText } from '../base/dom.js';
import { parameter, reload } from '../base/parameters.js';
import { noticeDone, noticeError } from '../base/refusal.js';
import { get, maySet, on } from '../base/state.js';

/** Builds the dialog and connects its button and "Save image". */
export function startFiles() {
  const dialog = byId('files');
  byId('files-open').addEventListener('click', () => dialog.showModal());
  byId('save-image').addEventListener('click', () => saveImage('png'));
  const count = el('input', {
    type: 'number',
    min: '1',
    max: '64',
    value: '10',
    class: 'short',
    id: 'record-count',
    'aria-label': 'Number of pictures',
  });
  const progress = el('p', { class: 'muted', id: 'record-progress', role: 'status' });
  const chosen = el('input', {
    type: 'file',
    id: 'configuration-file',
    accept: '.mcf,text/plain',
    'aria-label': 'Configuration file',
  });
  const result = el('div', { id: 'configuration-result', role: 'status' });
  const record = new Recording(count, progress);
  const button = (text, id, click, kind = '') => el('button', { type: 'button', text, id, class: kind, on: { click } });
  const load = button('Load', 'configuration-load', () => loadConfiguration(chosen, result));
  const savePng = button('Save as PNG', 'save-png', () => saveImage('png'));
  const saveRaw = button('Save raw bytes', 'save-raw', () => saveImage('raw'));
  on('station', ({ hasPictures }) => {
    load.disabled = chosen.disabled = !maySet();
    for (const control of [savePng, saveRaw, record.button]) control.disabled = !hasPictures;
  });
  dialog.append(
    el('h2', { id: 'files-title', text: 'Files' }),
    part(
      'Picture',
      'The picture that is shown, in full size and in the format of the memory.',
      savePng,
      saveRaw,
    ),
    part(
      'Record',
      'The next pictures as they come, up to 64, as the pages of a TIFF file.',
      count,
      record.button,
      progress,
    ),
    part(
      'Save the configuration',
      'All settings as a configuration file.',
      button('Save', 'configuration-save', saveConfiguration),
    ),
    part('Load a configuration', 'The settings of a file, each as if it was set here.', chosen, load, result),
    el(
      'div',
      { class: 'ways' },
      button('Close', 'files-close', () => dialog.close(), 'quiet'),
    ),
  );
}

function part(title, text, ...controls) {
  return el(
    'section',
    {},
    el('h3', { text: title }),
    el('p', { class: 'muted', text }),
    el('div', { class: 'controls' }, ...controls),
  );
}

/** Hands bytes to the user as a file. */
function download(blob, name) {
  const url = URL.createObjectURL(blob);
  const link = el('a', { href: url, download: name });
  document.body.append(link);
  link.click();
  link.remove();
  setTimeout(() => URL.revokeObjectURL(url), 10_000);
}

function nameOf(response, otherwise) {
  const found = /filename="?([^";]+)"?/.exec(response.headers.get('Content-Disposition') ?? '');
  return found ? found[1] : otherwise;
}

const station = () => get('station')?.name ?? 'station';

/** Saves the shown picture in full size. */
async function saveImage(format) {
  const picture = get('picture');
  if (!picture) return noticeError('save', new Error('There is no picture to save yet.'));
  try {
    const response = await request('GET', '/api/frame', { query: { picture: picture.number, format } });
    const number = Number(response.headers.get('X-Picture') ?? picture.number);
    download(await response.blob(), nameOf(response, `${station()}-${number}.${format}`));
    noticeDone('save', `Picture ${grouped(number)} is saved.`);
  } catch (error) {
    noticeError('save', error);
  }
  return undefined;
}

async function saveConfiguration() {
  try {
    const response = await request('GET', '/api/configuration');
    download(await response.blob(), nameOf(response, `${station()}.mcf`));
  } catch (error) {
    noticeError('configuration', error);
  }
}

async function loadConfiguration(input, result) {
  const file = input.files[0];
  if (!file) return setText(result, 'Choose a file first.');
  try {
    const response = await request('PUT', '/api/configuration', { text: await file.text() });
    const { result: code, changes, findings } = await response.json();
    const settings = changes.filter(({ name }) => parameter(name)?.isSetting);
    const losses = findings.filter(({ isLoss }) => isLoss);
    result.replaceChildren(
      el('p', {
        class: code || losses.length ? 'warning' : 'done',
        text: `${file.name}: ${counted(settings.length, 'setting')} changed, ${losses.length} of the file lost.`,
      }),
      el(
        'ul',
        {},
        ...[code, ...findings].filter(Boolean).map(({ message, meaning }) => el('li', { text: message ?? meaning })),
      ),
    );
  } catch (error) {
    if (!(error instanceof ApiError)) throw error;
    result.replaceChildren(
      el('p', { class: 'warning', role: 'alert', text: [error.message, error.advice].filter(Boolean).join(' ') }),
    );
  }
  reload();
  return undefined;
}

/** The next N pictures; while they come, the button ends it. */
class Recording {
  constructor(count, progress) {
    Object.assign(this, { count, progress, controller: null });
    this.button = el('button', {
      type: 'button',
      id: 'record',
      text: 'Record',
      on: { click: () => (this.controller ? this.controller.abort() : this.run()) },
    });
  }

  async run() {
    this.controller = new AbortController();
    setText(this.button, 'Stop');
    setText(this.progress, 'waiting for pictures');
    try {
      const response = await request('GET', '/api/record', {
        query: { count: this.count.value },
        signal: this.controller.signal,
      });
      const blob = await this.receive(response);
      download(blob, nameOf(response, `${station()}.tiff`));
      setText(this.progress, `${counted(Number(this.count.value), 'picture')}, ${decimal(blob.size / 1e6, 1)} MB`);
    } catch (error) {
      setText(
        this.progress,
        error.name === 'AbortError'
          ? 'stopped, nothing is saved'
          : [error.message, error.advice].filter(Boolean).join(' '),
      );
    }
    this.controller = null;
    setText(this.button, 'Record');
  }

  async receive(response) {
    const reader = response.body.getReader();
    const parts = [];
    let size = 0;
    for (;;) {
      const { done, value } = await reader.read();
      if (done) return new Blob(parts, { type: response.headers.get('Content-Type') ?? '' });
      parts.push(value);
      size += value.length;
      setText(this.progress, `${decimal(size / 1e6, 1)} MB received`);
    }
  }
}
