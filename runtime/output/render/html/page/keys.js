// The keyboard, and the dialog that explains it.

import { make } from './dom.js';
import { word } from './words.js';

function isTyped(target) {
  return target.closest?.('input, select, textarea') !== null;
}

function line(keys, text) {
  const parts = keys.flatMap((key, i) => [i > 0 ? ' ' : null, make('kbd', {}, key)]);
  return make('div', {}, make('dt', {}, ...parts), make('dd', {}, text));
}

export function keysDialog() {
  const single = make('input', { type: 'checkbox', checked: true });
  const dialog = make(
    'dialog',
    { class: 'keys', 'aria-labelledby': 'keys' },
    make('h2', { id: 'keys' }, word('Keys')),
    make(
      'dl',
      {},
      line(['/'], word('Go to the search')),
      line(['j', 'k', '↓', '↑'], word('Move in the list')),
      line(['Enter'], word('Open the table')),
      line(['Esc'], word('Back to the list; clear the search')),
      line(['?'], word('Show these keys')),
    ),
    make('label', { class: 'check' }, single, make('span', {}, word('Letters and signs are keys'))),
    make('form', { method: 'dialog' }, make('button', {}, word('Close'))),
  );
  return { dialog, lettersAreKeys: () => single.checked };
}

/** Listens to the whole page. */
export function listenToKeys({ dialog, lettersAreKeys }, { search, list, backToList, clearSearch }) {
  const letters = {
    '/': () => {
      search.focus();
      search.select();
    },
    '?': () => dialog.showModal(),
    j: () => list.move(1),
    k: () => list.move(-1),
  };
  const inSearch = (event) => {
    if (event.key === 'Escape') {
      if (search.value === '') search.blur();
      else clearSearch();
    } else if (event.key === 'ArrowDown' || event.key === 'Enter') list.move(0);
    else return false;
    return true;
  };
  const elsewhere = (event) => {
    if (event.key === 'Escape') return backToList();
    if (list.hasFocus() && (event.key === 'ArrowDown' || event.key === 'ArrowUp')) {
      if (event.key === 'ArrowUp' && list.atFirst()) search.focus();
      else list.move(event.key === 'ArrowDown' ? 1 : -1);
      return true;
    }
    const work = lettersAreKeys() && Object.hasOwn(letters, event.key) ? letters[event.key] : null;
    if (work === null) return false;
    work();
    return true;
  };
  document.addEventListener('keydown', (event) => {
    if (event.defaultPrevented || event.ctrlKey || event.metaKey || event.altKey || event.isComposing || dialog.open) return;
    const done = event.target === search ? inSearch(event) : !isTyped(event.target) && elsewhere(event);
    if (done) event.preventDefault();
  });
}
