// What the report is of: the file, its cases and weight, how the numbers came about, what there was to report.

import { dataText, make } from './dom.js';
import { isSet } from './data.js';
import { countText, word } from './words.js';

function figure(name, value, detail) {
  return make(
    'div',
    {},
    make('dt', {}, name),
    make('dd', {}, make('span', { class: 'figure' }, value), detail === null ? null : make('span', { class: 'detail' }, detail)),
  );
}

function figures(facts) {
  const parts = [];
  const own = facts.items.filter((item) => !isSet(item)).length;
  const sets = facts.items.length - own;
  parts.push(figure(word('Variables'), countText(facts.variables), own < facts.variables ? word('described here: ^1', countText(own)) : null));
  if (sets > 0) parts.push(figure(word('Multiple response sets'), countText(sets), null));
  const unknown = word('unknown');
  parts.push(figure(word('Cases'), facts.cases === null ? unknown : countText(facts.cases), facts.weight === null ? null : word('unweighted')));
  if (facts.weight !== null) {
    const name = make('span', {}, `${word('by')} `, dataText(facts.weight, { class: 'name' }));
    if (facts.weightLabel !== null) name.append(' (', dataText(facts.weightLabel), ')');
    parts.push(figure(word('Weighted cases'), facts.weightedCases === null ? unknown : countText(facts.weightedCases), name));
  }
  return make('dl', { class: 'figures' }, ...parts);
}

function notes(facts) {
  if (facts.notes.length === 0) return null;
  const byName = new Map();
  for (const note of facts.notes) byName.set(note.name, [...(byName.get(note.name) ?? []), note.text]);
  return make(
    'section',
    { class: 'method', 'aria-labelledby': 'method' },
    make('h2', { id: 'method' }, word('How the numbers are made')),
    make(
      'dl',
      {},
      ...[...byName].map(([name, texts]) =>
        make('div', {}, make('dt', {}, dataText(name)), ...texts.map((text) => make('dd', {}, dataText(text)))),
      ),
    ),
  );
}

function messages(report) {
  if (report.messages.length === 0) return null;
  const many = 8;
  const list = make(
    'ul',
    { class: 'messages' },
    ...report.messages.map((message) =>
      make(
        'li',
        { class: message.severity },
        make('span', { class: 'severity' }, message.severity === 'error' ? word('Error') : word('Warning')),
        ' ',
        dataText(message.text),
      ),
    ),
  );
  return make(
    'section',
    { 'aria-labelledby': 'messages' },
    make('h2', { id: 'messages' }, word('Messages')),
    report.messages.length > many
      ? make('details', {}, make('summary', {}, word('Show all ^1', countText(report.messages.length))), list)
      : list,
  );
}

export function overviewOf(report) {
  const facts = report.facts ?? null;
  const title = facts?.label ?? facts?.file ?? null;
  return [
    make('p', { class: 'kind' }, word('Codebook')),
    make('h1', {}, title === null ? word('Codebook') : dataText(title)),
    facts !== null && facts.label !== null && facts.file !== null ? make('p', { class: 'file' }, dataText(facts.file)) : null,
    facts === null ? null : figures(facts),
    messages(report),
    facts === null ? null : notes(facts),
  ].filter((part) => part !== null);
}
