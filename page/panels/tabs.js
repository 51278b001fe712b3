// The panels of measurements, of which one is shown. A panel gets the event "shown" when it or the page is shown.

import { byId } from '../base/dom.js';

const CHOSEN = 'station-panel';
const tabs = () => [...document.querySelectorAll('[role=tab]')];

/** Connects the tabs with pointer and keys, and restores the last panel. */
export function startTabs() {
  for (const tab of tabs()) {
    tab.addEventListener('click', () => choose(tab));
    tab.addEventListener('keydown', (event) => {
      const shown = tabs().filter(({ hidden }) => !hidden);
      const at = shown.indexOf(tab);
      const next = { ArrowRight: at + 1, ArrowLeft: at - 1, Home: 0, End: shown.length - 1 }[event.key];
      if (next === undefined) return;
      event.preventDefault();
      const chosen = shown[(next + shown.length) % shown.length];
      choose(chosen);
      chosen.focus();
    });
  }
  document.addEventListener('visibilitychange', () => !document.hidden && announce(tabs().find(isChosen)));
  const last = byId(sessionStorage.getItem(CHOSEN) ?? '');
  setTimeout(() => choose(last && !last.hidden ? last : tabs()[0]));
}

const isChosen = (tab) => tab.getAttribute('aria-selected') === 'true';
const panelOf = (tab) => byId(tab.getAttribute('aria-controls'));
const announce = (tab) => panelOf(tab).dispatchEvent(new Event('shown'));

function choose(chosen) {
  for (const tab of tabs()) {
    const isNow = tab === chosen;
    tab.setAttribute('aria-selected', String(isNow));
    tab.tabIndex = isNow ? 0 : -1;
    panelOf(tab).hidden = !isNow;
  }
  sessionStorage.setItem(CHOSEN, chosen.id);
  announce(chosen);
}
