// The list of variables and sets, drawn in portions as they come into view.

import { draw, make, visibleParts } from './dom.js';
import { levelWord, typeWord } from './data.js';
import { foundPlaces } from './fold.js';
import { miniOf } from './pictures.js';
import { otherPlace } from './search.js';
import { shareText, word } from './words.js';

const PORTION = 40;
const ROW_HEIGHT = 71; // pixels, about
const LONG_LABEL = 240; // characters of a label that the list shows

/** The text with what was found marked, cut to what the list has room for. */
function marked(text, terms, properties) {
  const cut = text.length > LONG_LABEL ? `${text.slice(0, LONG_LABEL)}…` : text;
  const node = make('bdi', properties);
  let at = 0;
  for (const [begin, end] of terms.length > 0 ? foundPlaces(cut, terms) : []) {
    node.append(...visibleParts(cut.slice(at, begin)), make('mark', {}, ...visibleParts(cut.slice(begin, end))));
    at = end;
  }
  node.append(...visibleParts(cut.slice(at)));
  return node;
}

/** A part of a long text around the first place where a term was found. */
function around(text, terms) {
  const [first] = text.length > LONG_LABEL ? foundPlaces(text, terms) : [];
  if (first === undefined || first[0] < LONG_LABEL / 2) return text;
  return `…${text.slice(first[0] - 40)}`;
}

function missingPart(entry) {
  if (entry.missing === null) return make('span', { class: 'share' });
  const width = 36;
  return make(
    'span',
    { class: entry.missing > 0 ? 'share some' : 'share' },
    draw(
      'svg',
      { class: 'gauge', viewBox: `0 0 ${width} 5`, width, height: 5, 'aria-hidden': 'true' },
      draw('rect', { class: 'track', width, height: 5, rx: 2 }),
      draw('rect', { class: 'missing', width: Math.max(entry.missing * width, entry.missing > 0 ? 1 : 0), height: 5, rx: 1 }),
    ),
    ` ${word('^1 missing', shareText(entry.missing))}`,
  );
}

function listRow(entry, place, count, terms, severalProcedures) {
  const other = otherPlace(entry, terms);
  const level = entry.facts === null ? '' : levelWord(entry.facts.level);
  const type = entry.facts === null ? '' : typeWord(entry.facts.type);
  return make(
    'div',
    { role: 'listitem', class: 'row', 'aria-setsize': count, 'aria-posinset': place + 1 },
    make(
      'a',
      { href: entry.link },
      make(
        'span',
        { class: 'what' },
        make(
          'span',
          { class: 'head' },
          marked(entry.name, terms, { class: 'name' }),
          severalProcedures ? make('span', { class: 'of' }, ` · ${entry.procedure + 1}`) : null,
          entry.messages.length > 0
            ? make('span', { class: 'flag', role: 'img', 'aria-label': word('has messages'), title: word('has messages') }, '!')
            : null,
        ),
        ' ',
        entry.label === '' ? null : marked(entry.label, terms, { class: 'label' }),
        other === null ? null : make('span', { class: 'found' }, ' ', marked(around(other, terms), terms, {})),
      ),
      ' ',
      make('span', { class: 'picture' }, miniOf(entry)),
      ' ',
      make(
        'span',
        { class: 'facts' },
        make('span', { class: 'type' }, type),
        ' ',
        level === '' ? null : make('span', { class: 'level' }, level),
        ' ',
        missingPart(entry),
      ),
    ),
  );
}

/** The list: { node, fill(entries, terms), move(steps), focus(entry), drawAll() }. */
export function listOf(severalProcedures) {
  const node = make('div', { role: 'list', class: 'list' });
  let shown = [];
  let terms = [];
  let portions = [];
  let watcher = null;

  const drawPortion = (index) => {
    const portion = portions[index];
    if (portion === undefined || portion.dataset.drawn === 'yes') return;
    portion.dataset.drawn = 'yes';
    portion.style.removeProperty('min-height');
    const first = index * PORTION;
    portion.append(
      ...shown
        .slice(first, first + PORTION)
        .map((entry, i) => listRow(entry, first + i, shown.length, terms, severalProcedures)),
    );
  };

  const watch = () => {
    watcher?.disconnect();
    // On wide pages the list scrolls by itself, on narrow ones with the page.
    const scrolls = getComputedStyle(node).overflowY !== 'visible';
    watcher = new IntersectionObserver(
      (seen) => {
        for (const one of seen) if (one.isIntersecting) drawPortion(portions.indexOf(one.target));
      },
      { root: scrolls ? node : null, rootMargin: '600px 0px' },
    );
    for (const portion of portions) if (portion.dataset.drawn !== 'yes') watcher.observe(portion);
  };

  const linkAt = (place) => {
    drawPortion(Math.floor(place / PORTION));
    return portions[Math.floor(place / PORTION)].children[place % PORTION].firstChild;
  };

  // With what stands above and below it drawn, so that nothing moves once the row is in its place.
  const steadyLinkAt = (place) => {
    const portion = Math.floor(place / PORTION);
    for (const near of [portion - 1, portion + 1]) drawPortion(near);
    return linkAt(place);
  };

  const focusAt = (place) => {
    const link = steadyLinkAt(place);
    link.focus({ preventScroll: true });
    link.scrollIntoView({ block: 'nearest' });
  };

  const placeOfFocus = () => {
    const row = document.activeElement?.closest?.('.row');
    return row !== null && row !== undefined && node.contains(row) ? Number(row.getAttribute('aria-posinset')) - 1 : -1;
  };

  matchMedia('(min-width: 64rem)').addEventListener('change', watch);

  return {
    node,
    fill(entries, newTerms) {
      shown = entries;
      terms = newTerms;
      portions = [];
      for (let first = 0; first < shown.length; first += PORTION) {
        const portion = make('div', { class: 'portion' });
        portion.style.setProperty('min-height', `${Math.min(PORTION, shown.length - first) * ROW_HEIGHT}px`);
        portions.push(portion);
      }
      node.replaceChildren(...portions);
      if (node.isConnected) {
        node.scrollTop = 0;
        drawPortion(0);
        watch();
      }
    },
    /** Begins to draw; to be called once the list is in the page. */
    begin() {
      drawPortion(0);
      watch();
    },
    /** Moves the focus so many rows on, from the first row when it is elsewhere. */
    move(steps) {
      if (shown.length === 0) return;
      const place = placeOfFocus();
      focusAt(place < 0 ? 0 : Math.min(Math.max(place + steps, 0), shown.length - 1));
    },
    hasFocus: () => placeOfFocus() >= 0,
    atFirst: () => placeOfFocus() === 0,
    /** False when the entry is not in the list now. */
    focus(entry) {
      const place = shown.indexOf(entry);
      if (place < 0) return false;
      focusAt(place);
      return true;
    },
    /** Marks the row of the entry that is open. */
    mark(entry) {
      node.querySelector('[aria-current]')?.removeAttribute('aria-current');
      const place = shown.indexOf(entry);
      if (place < 0) return;
      const link = steadyLinkAt(place);
      link.setAttribute('aria-current', 'true');
      if (getComputedStyle(node).overflowY !== 'visible') {
        const [row, list] = [link.getBoundingClientRect(), node.getBoundingClientRect()];
        if (row.top < list.top || row.bottom > list.bottom) node.scrollTop += row.top - list.top - list.height / 3;
      }
    },
    drawAll: () => portions.forEach((portion, index) => drawPortion(index)),
  };
}
