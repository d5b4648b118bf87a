// The clipboard, also where pages from disk may not use the newer way.

import { make } from './dom.js';

function copyBySelection(text) {
  const area = make('textarea', { class: 'copied', 'aria-hidden': 'true', tabindex: -1, readonly: true });
  area.value = text;
  const focused = document.activeElement;
  document.body.append(area);
  area.select();
  const done = document.execCommand('copy');
  area.remove();
  focused?.focus({ preventScroll: true });
  return done;
}

/** Whether the text is in the clipboard now. */
export async function copyText(text) {
  try {
    await navigator.clipboard.writeText(text);
    return true;
  } catch {
    return copyBySelection(text);
  }
}
