// Light and dark: as the system has it, until the reader chooses.

import { make } from './dom.js';
import { word } from './words.js';

const KEPT = 'codebook-theme';

// Pages from disk may have no storage; then the choice lasts as long as the page is open.
function keptTheme() {
  try {
    return localStorage.getItem(KEPT);
  } catch {
    return null;
  }
}

function keepTheme(name) {
  try {
    localStorage.setItem(KEPT, name);
  } catch {
    // Nothing to do: the page has it.
  }
}

const systemIsDark = matchMedia('(prefers-color-scheme: dark)');
let chosen = keptTheme();
let printing = false;

function theme() {
  if (printing) return 'light';
  if (chosen === 'light' || chosen === 'dark') return chosen;
  return systemIsDark.matches ? 'dark' : 'light';
}

function apply() {
  document.documentElement.dataset.theme = theme();
}

export function beginTheme() {
  apply();
  systemIsDark.addEventListener('change', apply);
}

/** Paper is light. */
export function themeForPrint(begins) {
  printing = begins;
  apply();
}

export function themeButton() {
  const button = make('button', { type: 'button', class: 'theme' });
  const tell = () => {
    button.textContent = theme() === 'dark' ? word('Light') : word('Dark');
  };
  button.addEventListener('click', () => {
    chosen = theme() === 'dark' ? 'light' : 'dark';
    keepTheme(chosen);
    apply();
    tell();
  });
  systemIsDark.addEventListener('change', tell);
  tell();
  return button;
}
