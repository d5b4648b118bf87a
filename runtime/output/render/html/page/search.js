// Which entries are shown in the list, and in which order.

import { eachDataText } from './data.js';
import { fold } from './fold.js';

/** The words that all have to be found, folded. */
export function termsOf(query) {
  return fold(query).split(/\s+/u).filter((term) => term !== '');
}

/** Folds the texts of an entry once: its name and label, and all texts of its table. */
function indexOf(entry) {
  if (entry.index === undefined) {
    const texts = [entry.name, entry.label];
    eachDataText(entry.table, (text) => texts.push(text));
    entry.index = fold(texts.join('\n'));
  }
  return entry.index;
}

/** Makes the index while nobody waits. */
export function indexWhenIdle(entries) {
  const later = globalThis.requestIdleCallback ?? ((work) => setTimeout(() => work({ timeRemaining: () => 8 }), 30));
  let at = 0;
  const work = (deadline) => {
    while (at < entries.length && deadline.timeRemaining() > 2) indexOf(entries[at++]);
    if (at < entries.length) later(work);
  };
  later(work);
}

function passes(entry, { terms, type, level, role, missing, messages }) {
  if (type !== '' && entry.facts?.type !== type) return false;
  if (level !== '' && entry.facts?.level !== level) return false;
  if (role !== '' && entry.facts?.role !== role) return false;
  if (missing && !(entry.missing > 0)) return false;
  if (messages && entry.messages.length === 0) return false;
  return terms.every((term) => indexOf(entry).includes(term));
}

const LAST = Number.MAX_SAFE_INTEGER;

function orders(language) {
  const collator = new Intl.Collator(language, { numeric: true });
  const byReport = (a, b) => a.number - b.number;
  return {
    report: byReport,
    name: (a, b) => collator.compare(a.name, b.name) || byReport(a, b),
    position: (a, b) => (a.facts?.position || LAST) - (b.facts?.position || LAST) || byReport(a, b),
    missing: (a, b) => (b.missing ?? -1) - (a.missing ?? -1) || byReport(a, b),
  };
}

/** A function that gives the entries that pass the choice, in the order chosen. */
export function chooser(entries, language) {
  const order = orders(language);
  const sorted = new Map();
  return (choice) => {
    if (!sorted.has(choice.order)) sorted.set(choice.order, [...entries].sort(order[choice.order]));
    return sorted.get(choice.order).filter((entry) => passes(entry, choice));
  };
}

/** The first text beside name and label in which a term was found that they do not hold; null when there is none. */
export function otherPlace(entry, terms) {
  const open = terms.filter((term) => !fold(`${entry.name}\n${entry.label}`).includes(term));
  if (open.length === 0) return null;
  let place = null;
  eachDataText(entry.table, (text) => {
    if (place === null && open.some((term) => fold(text).includes(term))) place = text;
  });
  return place;
}
