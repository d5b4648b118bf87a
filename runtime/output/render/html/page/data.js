// The report that stands in the page, and what the page makes of it: one entry a table.

import { word } from './words.js';

const FORMAT = 'codebook-report/1';

/** Reads one of the data blocks of the page. */
export function readBlock(id) {
  return JSON.parse(document.getElementById(id).textContent);
}

export function readReport() {
  const report = readBlock('report');
  if (report.format !== FORMAT) throw new Error(`a report of format ${report.format}`);
  return report;
}

function byName(list, name) {
  return new Map((list ?? []).map((item) => [item[name], item]));
}

/**
 * Every table of the report in its order: { number, procedure, place (in its procedure), table, name, isItem, facts, label,
 * sketch, missing (share, or null), messages }. An item is a variable or a set; other tables are of the file.
 */
export function entriesOf(report) {
  const facts = byName(report.facts?.items, 'name');
  const entries = [];
  report.procedures.forEach((procedure, index) => {
    const sketches = byName(procedure.sketches, 'item');
    procedure.tables.forEach((table, place) => {
      const isItem = table.title.fixed !== true;
      const name = table.title.text;
      const known = isItem ? facts.get(name) : undefined;
      const sketch = isItem ? sketches.get(name) : undefined;
      entries.push({
        number: entries.length,
        procedure: index,
        place,
        table,
        name,
        isItem,
        facts: known ?? null,
        label: known?.label ?? '',
        sketch: sketch ?? null,
        missing: sketch !== undefined && sketch.total > 0 ? sketch.missing / sketch.total : null,
        messages: [],
      });
    });
  });
  attachMessages(report.messages, entries);
  return entries;
}

/** Gives each entry the messages that name it. */
function attachMessages(messages, entries) {
  const named = new Map();
  const odd = []; // names that are not found as words
  for (const entry of entries) {
    if (!entry.isItem || entry.name === '') continue;
    if (!/^[\p{L}\p{N}\p{M}_.$#@]+$/u.test(entry.name)) {
      odd.push(entry);
      continue;
    }
    if (!named.has(entry.name)) named.set(entry.name, []);
    named.get(entry.name).push(entry);
  }
  for (const message of messages) {
    const told = new Set();
    for (const [token] of message.text.matchAll(/[\p{L}\p{N}\p{M}_.$#@]+/gu))
      for (const name of [token, token.replace(/\.+$/u, '')]) for (const entry of named.get(name) ?? []) told.add(entry);
    for (const entry of odd) if (message.text.includes(entry.name)) told.add(entry);
    for (const entry of told) entry.messages.push(message);
  }
}

/** Calls `visit` with every label and cell of a table that comes from the data, numbers left out. */
export function eachDataText(table, visit) {
  const content = (one) => {
    if (one.fixed !== true && one.number === undefined) visit(one.text);
  };
  const walk = (items) => {
    for (const item of items) {
      content(item.group ?? item.category);
      if (item.items !== undefined) walk(item.items);
      for (const cell of item.cells ?? []) content(cell);
    }
  };
  for (const dimension of table.dimensions) {
    content(dimension.label);
    walk(dimension.items);
  }
}

/** Every row of a table, in its order, whatever groups it stands in. */
export function countRows(table) {
  const count = (items) =>
    items.reduce((sum, item) => sum + 1 + (item.items === undefined ? 0 : count(item.items)), 0);
  return table.dimensions.reduce((sum, dimension) => sum + (dimension.place === 'rows' ? count(dimension.items) : 0), 0);
}

/** Whether a label is that of the group of missing values. */
export function isMissingGroup(label) {
  return label.fixed === true && label.text === word('Missing Values');
}

/** Whether a cell is a share of the cases that a bar can be drawn of: a percent beside the first column. */
export function isShare(cell, place) {
  return place > 0 && typeof cell.number === 'number' && cell.format.startsWith('PCT.');
}

export function typeWord(type) {
  switch (type) {
    case 'numeric':
      return word('Numeric');
    case 'string':
      return word('String');
    case 'date':
      return word('Date');
    case 'categorySet':
      return word('Category set');
    case 'dichotomySet':
      return word('Dichotomy set');
    default:
      return '';
  }
}

export function levelWord(level) {
  switch (level) {
    case 'nominal':
      return word('Nominal');
    case 'ordinal':
      return word('Ordinal');
    case 'scale':
      return word('Scale');
    case 'unknown':
      return word('Unknown');
    default:
      return '';
  }
}

export function roleWord(role) {
  switch (role) {
    case 'input':
      return word('Input');
    case 'target':
      return word('Target');
    case 'both':
      return word('Both');
    case 'none':
      return word('None');
    case 'partition':
      return word('Partition');
    case 'split':
      return word('Split');
    default:
      return '';
  }
}

export function isSet(facts) {
  return facts.type === 'categorySet' || facts.type === 'dichotomySet';
}
