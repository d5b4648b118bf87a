// Search, filters and order of the list.

import { make } from './dom.js';
import { levelWord, roleWord, typeWord } from './data.js';
import { termsOf } from './search.js';
import { countText, word } from './words.js';

/** A choice among the values that occur; null when there is only one. */
function filterOf(name, entries, value, text, changed) {
  const counts = new Map();
  for (const entry of entries) {
    const own = value(entry);
    if (own !== undefined) counts.set(own, (counts.get(own) ?? 0) + 1);
  }
  if (counts.size < 2) return null;
  return make(
    'label',
    {},
    make('span', {}, name),
    make(
      'select',
      { onchange: changed },
      make('option', { value: '' }, word('All')),
      ...[...counts].map(([own, count]) => make('option', { value: own }, `${text(own)} (${countText(count)})`)),
    ),
  );
}

function boxOf(name, exists, changed) {
  return exists ? make('label', { class: 'check' }, make('input', { type: 'checkbox', onchange: changed }), make('span', {}, name)) : null;
}

/** The controls: { node, search, choice(), reset() }; `changed` is called after every change. */
export function controlsOf(entries, changed) {
  const search = make('input', {
    type: 'search',
    id: 'search',
    placeholder: word('Search names, labels, values'),
    'aria-label': word('Search names, labels, values'),
    'aria-keyshortcuts': '/',
    autocomplete: 'off',
    spellcheck: 'false',
    oninput: changed,
  });
  const type = filterOf(word('Type'), entries, (entry) => entry.facts?.type, typeWord, changed);
  const level = filterOf(word('Level'), entries, (entry) => entry.facts?.level, levelWord, changed);
  const role = filterOf(word('Role'), entries, (entry) => entry.facts?.role, roleWord, changed);
  const missing = boxOf(word('Has missing'), entries.some((entry) => entry.missing > 0), changed);
  const messages = boxOf(word('Has messages'), entries.some((entry) => entry.messages.length > 0), changed);
  const order = make(
    'label',
    {},
    make('span', {}, word('Order')),
    make(
      'select',
      { onchange: changed },
      make('option', { value: 'report' }, word('As in the report')),
      make('option', { value: 'name' }, word('Name')),
      make('option', { value: 'position' }, word('Position')),
      make('option', { value: 'missing' }, word('Missing share')),
    ),
  );
  const status = make('p', { class: 'status', role: 'status', 'aria-live': 'polite' });
  const selected = (label) => label?.querySelector('select').value ?? '';
  const checked = (label) => label?.querySelector('input').checked ?? false;
  const choice = () => ({
    terms: termsOf(search.value),
    type: selected(type),
    level: selected(level),
    role: selected(role),
    missing: checked(missing),
    messages: checked(messages),
    order: selected(order),
  });
  const reset = () => {
    search.value = '';
    for (const label of [type, level, role]) if (label !== null) label.querySelector('select').value = '';
    for (const label of [missing, messages]) if (label !== null) label.querySelector('input').checked = false;
    changed();
  };
  const all = make('button', { type: 'button', class: 'reset', onclick: reset, hidden: true }, word('Show all'));
  const filters = [type, level, role].filter((filter) => filter !== null);
  const boxes = [missing, messages].filter((filter) => filter !== null);
  const node = make(
    'div',
    { class: 'controls', role: 'search' },
    search,
    make('div', { class: 'filters' }, ...filters, order),
    boxes.length > 0 ? make('div', { class: 'boxes' }, ...boxes) : null,
    make('div', { class: 'outcome' }, status, all),
  );
  return {
    node,
    search,
    choice,
    reset,
    tell(shown) {
      status.textContent = word('^1 of ^2 shown', countText(shown), countText(entries.length));
      all.hidden = shown === entries.length;
    },
  };
}
