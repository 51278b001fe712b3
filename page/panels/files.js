// Pictures and configurations as files.

import { ApiError, request } from '../base/api.js';
import { button, byId, el, setText } from '../base/dom.js';
import { counted, decimal, grouped } from '../base/numbers.js';
import { parameter, reload } from '../base/parameters.js';
import { noticeDone, noticeError } from '../base/refusal.js';
import { get, maySet, on } from '../base/state.js';

/** Builds the dialog and connects its button and "Save image". */
export function startFiles() {
  const dialog = byId('files');
  byId('files-open').addEventListener('click', () => dialog.showModal());
  byId('save-image').addEventListener('click', () => saveImage('png'));
  dialog.append(
    el('h2', { id: 'files-title', text: 'Files' }),
    picturePart(),
    recordPart(),
    part(
      'Save the configuration',
      'All settings as a configuration file.',
      button('Save', saveConfiguration, { id: 'configuration-save' }),
    ),
    loadPart(),
    el(
      'div',
      { class: 'ways' },
      button('Close', () => dialog.close(), { id: 'files-close', class: 'quiet' }),
    ),
  );
}

function picturePart() {
  const png = button('Save as PNG', () => saveImage('png'), { id: 'save-png' });
  const raw = button('Save raw bytes', () => saveImage('raw'), { id: 'save-raw' });
  enableWithPictures(png, raw);
  return part('Picture', 'The picture that is shown, in full size and in the format of the memory.', png, raw);
}

function recordPart() {
  const { count, button: record, progress } = new Recording();
  enableWithPictures(record);
  return part(
    'Record',
    'The next pictures, up to 64, as the pages of a TIFF file.',
    count,
    record,
    progress,
  );
}

function loadPart() {
  const file = el('input', {
    type: 'file',
    id: 'configuration-file',
    accept: '.mcf,text/plain',
    'aria-label': 'Configuration file',
  });
  const result = el('div', { id: 'configuration-result', role: 'status' });
  const load = button('Load', () => loadConfiguration(file, result), { id: 'configuration-load' });
  on('station', () => {
    load.disabled = file.disabled = !maySet();
  });
  return part('Load a configuration', 'Sets all settings of a configuration file.', file, load, result);
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

function enableWithPictures(...controls) {
  on('station', ({ hasPictures }) => {
    for (const control of controls) control.disabled = !hasPictures;
  });
}

/** Offers bytes to the user as a file. */
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

async function loadConfiguration({ files: [file] }, result) {
  if (!file) return setText(result, 'Choose a file first.');
  try {
    const response = await request('PUT', '/api/configuration', { text: await file.text() });
    result.replaceChildren(...loadedLines(file.name, await response.json()));
  } catch (error) {
    if (!(error instanceof ApiError)) throw error;
    result.replaceChildren(el('p', { class: 'warning', role: 'alert', text: messageWithAdvice(error) }));
  }
  reload();
  return undefined;
}

/** Shows the result of a load: the number of settings, and the findings. */
function loadedLines(name, { result: code, changes, findings }) {
  const settings = changes.filter((change) => parameter(change.name)?.isSetting);
  const losses = findings.filter(({ isLoss }) => isLoss);
  const listed = [code, ...findings].filter(Boolean);
  return [
    el('p', {
      class: code || losses.length ? 'warning' : 'done',
      text: `${name}: ${counted(settings.length, 'setting')} changed, ${losses.length} of the file lost.`,
    }),
    el('ul', {}, ...listed.map(({ message, meaning }) => el('li', { text: message ?? meaning }))),
  ];
}

const messageWithAdvice = ({ message, advice }) => [message, advice].filter(Boolean).join(' ');

/** Records the next N pictures; during the recording, the button stops it. */
class Recording {
  constructor() {
    this.controller = null; // of the running request
    this.count = el('input', {
      type: 'number',
      min: '1',
      max: '64',
      value: '10',
      class: 'short',
      id: 'record-count',
      'aria-label': 'Number of pictures',
    });
    this.progress = el('p', { class: 'muted', id: 'record-progress', role: 'status' });
    this.button = button('Record', () => (this.controller ? this.controller.abort() : this.run()), {
      id: 'record',
    });
  }

  async run() {
    this.controller = new AbortController();
    setText(this.button, 'Stop');
    setText(this.progress, 'waiting for pictures');
    try {
      await this.record(this.controller.signal);
    } catch (error) {
      setText(this.progress, error.name === 'AbortError' ? 'stopped, nothing was saved' : messageWithAdvice(error));
    }
    this.controller = null;
    setText(this.button, 'Record');
  }

  async record(signal) {
    const response = await request('GET', '/api/record', { query: { count: this.count.value }, signal });
    const blob = await this.receive(response);
    download(blob, nameOf(response, `${station()}.tiff`));
    setText(this.progress, `${counted(Number(this.count.value), 'picture')}, ${decimal(blob.size / 1e6, 1)} MB`);
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
