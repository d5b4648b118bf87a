// Pictures: small ones for the list, bars behind percents, histograms. Valid values are filled, missing ones hatched.

import { draw, make, plainText } from './dom.js';
import { isMissingGroup, isShare } from './data.js';
import { gridOf } from './grid.js';
import { shareText, word } from './words.js';

const HATCH = 'hatch';

/** What all pictures of missing values are filled with; to be put into the page once. */
export function hatchPattern() {
  return draw(
    'svg',
    { class: 'patterns', width: 0, height: 0, 'aria-hidden': 'true' },
    draw(
      'defs',
      {},
      draw(
        'pattern',
        { id: HATCH, width: 4, height: 4, patternUnits: 'userSpaceOnUse', patternTransform: 'rotate(45)' },
        draw('rect', { class: 'hatch-ground', width: 4, height: 4 }),
        draw('rect', { class: 'hatch-line', width: 1.4, height: 4 }),
      ),
    ),
  );
}

function box(x, y, width, height, missing) {
  return draw('rect', {
    class: missing ? 'missing' : 'valid',
    x: round(x),
    y: round(y),
    width: round(width),
    height: round(height),
    ...(missing ? { fill: `url(#${HATCH})` } : {}),
  });
}

function round(number) {
  return Math.round(number * 100) / 100;
}

/** A bar of this share (0 to 100) of the cell that it is put into. */
export function shareBar(percent, missing) {
  const width = `${Math.min(Math.max(percent, 0), 100)}%`;
  return draw(
    'svg',
    { class: 'bar', 'aria-hidden': 'true' },
    draw('rect', {
      class: missing ? 'missing' : 'valid',
      width,
      height: '100%',
      ...(missing ? { fill: `url(#${HATCH})` } : {}),
    }),
  );
}

/** The shares that a table shows, in its order: { text, percent, missing }. */
function sharesOf(table) {
  const { lines } = gridOf(table);
  const shares = [];
  for (const line of lines) {
    if (line.label === undefined) continue;
    const share = line.cells.flatMap((cells, place) => cells.filter((cell) => isShare(cell, place)))[0];
    if (share === undefined) continue;
    const explanation = line.cells[0].find((cell) => cell.number === undefined);
    shares.push({
      text: explanation === undefined || explanation.text === '' ? line.label.text : explanation.text,
      percent: share.number,
      missing: line.groups.some(isMissingGroup),
    });
  }
  return shares;
}

const MINI = { width: 112, height: 30 };

function miniPicture(title, ...parts) {
  return draw(
    'svg',
    {
      class: 'mini',
      viewBox: `0 0 ${MINI.width} ${MINI.height}`,
      width: MINI.width,
      height: MINI.height,
      role: 'img',
      'aria-label': title,
    },
    draw('title', {}, title),
    draw('line', { class: 'ground', x1: 0, x2: MINI.width, y1: MINI.height - 0.5, y2: MINI.height - 0.5 }),
    ...parts,
  );
}

const MOST_BARS = 40;

/** Bars of the shares, missing ones behind a gap. Of many values the greatest are drawn, in the table's order. */
function miniBars(shares) {
  const greatest = [...shares].sort((a, b) => b.percent - a.percent);
  const drawn = new Set(greatest.slice(0, MOST_BARS));
  const bars = shares.filter((share) => drawn.has(share));
  const gap = bars.some((share) => share.missing) && bars.some((share) => !share.missing) ? 6 : 0;
  const step = Math.min((MINI.width - gap) / bars.length, 18);
  const breadth = step > 4 ? step - 2 : step * 0.75;
  const most = Math.max(...bars.map((share) => share.percent), 1e-9);
  const place = new Map([...bars.filter((bar) => !bar.missing), ...bars.filter((bar) => bar.missing)].map((bar, i) => [bar, i]));
  const title = `${word('Most frequent')}: ${plainText(greatest[0].text).slice(0, 80)} (${shareText(greatest[0].percent / 100)})`;
  return miniPicture(
    title,
    ...bars.map((share) => {
      const height = Math.max((share.percent / most) * (MINI.height - 2), share.percent > 0 ? 1 : 0);
      const x = place.get(share) * step + (share.missing ? gap : 0);
      return box(x, MINI.height - 1 - height, breadth, height, share.missing);
    }),
  );
}

/** Height of each bin of a sketch such that areas are weights; the highest is 1. */
function densities(sketch) {
  const heights = sketch.weights.map((weight, i) => {
    const breadth = sketch.edges[i + 1] - sketch.edges[i];
    return breadth > 0 ? weight / breadth : weight;
  });
  const most = Math.max(...heights);
  return heights.map((height) => (most > 0 ? height / most : 0));
}

function placer(sketch, left, right) {
  const first = sketch.edges[0];
  const span = sketch.edges.at(-1) - first;
  return (value) => (span > 0 ? left + ((value - first) / span) * (right - left) : (left + right) / 2);
}

function hasHistogram(sketch) {
  return sketch !== null && Array.isArray(sketch.weights) && sketch.weights.length > 0;
}

/** Breadths are shares of the cases: what is missing takes its own at the right. */
function miniHistogram(sketch, missing) {
  const gap = missing > 0 ? 3 : 0;
  const right = Math.max((MINI.width - gap) * (1 - missing), 8);
  const place = placer(sketch, 0, right);
  const parts = densities(sketch).map((height, i) => {
    const x = sketch.weights.length === 1 ? right / 2 - 4 : place(sketch.edges[i]);
    const end = sketch.weights.length === 1 ? right / 2 + 4 : place(sketch.edges[i + 1]);
    return box(x, MINI.height - 1 - height * (MINI.height - 2), Math.max(end - x - 0.4, 0.4), height * (MINI.height - 2), false);
  });
  if (missing > 0) parts.push(box(right + gap, 1, Math.max(MINI.width - right - gap, 1), MINI.height - 2, true));
  return miniPicture(word('Histogram'), ...parts);
}

/** The small picture of a variable or set; null when nothing was counted. */
export function miniOf(entry) {
  if (hasHistogram(entry.sketch)) return miniHistogram(entry.sketch, entry.missing ?? 0);
  const shares = sharesOf(entry.table);
  // A set has no rows of missing values.
  if (shares.length > 0 && entry.missing > 0 && !shares.some((share) => share.missing))
    shares.push({ text: word('Missing'), percent: entry.missing * 100, missing: true });
  return shares.length > 0 ? miniBars(shares) : null;
}

// ---- histogram

const LARGE = { width: 640, height: 190, left: 12, right: 628, top: 8, ground: 126, box: 142, axis: 160 };

/** A number as the table of the entry shows it, if it does. */
function shownText(entry, number) {
  const { lines } = gridOf(entry.table);
  for (const line of lines)
    for (const cells of line.cells ?? [])
      for (const cell of cells) if (cell.number === number) return { text: cell.text, format: cell.format };
  return null;
}

const SECONDS_OF_A_DAY = 86400;

function isoDate(seconds) {
  const date = new Date(Math.floor(seconds / SECONDS_OF_A_DAY) * SECONDS_OF_A_DAY * 1000);
  return Number.isNaN(date.getTime()) ? String(seconds) : date.toISOString().replace(/T.*/u, '');
}

function duration(seconds) {
  const whole = Math.round(Math.abs(seconds));
  const two = (number) => String(number).padStart(2, '0');
  return `${seconds < 0 ? '-' : ''}${Math.floor(whole / 3600)}:${two(Math.floor(whole / 60) % 60)}:${two(whole % 60)}`;
}

/** How values of the entry are written where the table does not show them. */
function writerOf(entry) {
  if (entry.facts?.type !== 'date') return (number) => String(Number(number.toPrecision(6)));
  const shown = [entry.sketch.mean, ...entry.sketch.quartiles].map((number) => shownText(entry, number)).find(Boolean);
  return /^D?M?TIME\b/u.test(shown?.format ?? '') ? duration : isoDate;
}

/** Round numbers within the range, about five. */
function ticksOf(from, to) {
  const rough = (to - from) / 5;
  if (!(rough > 0)) return [from];
  const power = 10 ** Math.floor(Math.log10(rough));
  const step = [1, 2, 5, 10].map((factor) => factor * power).find((candidate) => candidate >= rough);
  const ticks = [];
  for (let tick = Math.ceil(from / step - 1e-9); tick * step <= to + step * 1e-9; ++tick)
    ticks.push(Number((tick * step).toPrecision(12)));
  return ticks;
}

function tickText(x, text, anchor) {
  return draw('text', { class: 'tick', x: round(x), y: LARGE.axis + 14, 'text-anchor': anchor }, text);
}

function axis(entry, place, write) {
  const { edges } = entry.sketch;
  const [from, to] = [edges[0], edges.at(-1)];
  const marks = [];
  const line = (x) => draw('line', { class: 'axis', x1: round(x), x2: round(x), y1: LARGE.axis - 4, y2: LARGE.axis });
  if (entry.facts?.type === 'date' || from === to) {
    if (from === to) return [line(place(from)), tickText(place(from), write(from), 'middle')];
    return [line(place(from)), line(place(to)), tickText(place(from), write(from), 'start'), tickText(place(to), write(to), 'end')];
  }
  for (const tick of ticksOf(from, to)) {
    const x = place(tick);
    marks.push(line(x), tickText(x, write(tick), x < LARGE.left + 12 ? 'start' : x > LARGE.right - 12 ? 'end' : 'middle'));
  }
  return marks;
}

/** Mean and quartiles below the bars: a box from the first to the third, a line at the second, a diamond at the mean. */
function marksOf(sketch, place, texts) {
  const parts = [];
  const { box: y } = LARGE;
  if (sketch.quartiles?.length === 3) {
    const [low, middle, high] = sketch.quartiles.map(place);
    parts.push(
      draw(
        'g',
        { class: 'quartiles' },
        draw('title', {}, `${word('Quartiles')}: ${texts.quartiles.join(' · ')}`),
        draw('line', { x1: round(place(sketch.edges[0])), x2: round(place(sketch.edges.at(-1))), y1: y, y2: y }),
        draw('rect', { x: round(low), y: y - 5, width: round(Math.max(high - low, 1)), height: 10, rx: 2 }),
        draw('line', { class: 'median', x1: round(middle), x2: round(middle), y1: y - 7, y2: y + 7 }),
      ),
    );
  }
  if (typeof sketch.mean === 'number') {
    const x = round(place(sketch.mean));
    parts.push(
      draw(
        'g',
        { class: 'mean' },
        draw('title', {}, `${word('Mean')}: ${texts.mean}`),
        draw('line', { x1: x, x2: x, y1: LARGE.top, y2: LARGE.ground }),
        draw('path', { d: `M${x} ${y - 4.5}l4.5 4.5l-4.5 4.5l-4.5 -4.5z` }),
      ),
    );
  }
  return parts;
}

function legend(entry, texts) {
  const parts = [];
  const part = (name, text, value) => {
    parts.push(
      make('span', { class: 'legend' }, make('span', { class: `key ${name}`, 'aria-hidden': 'true' }), `${text} `, make('b', {}, value)),
    );
  };
  if (texts.mean !== null) part('mean', word('Mean'), texts.mean);
  if (texts.quartiles !== null) part('quartiles', word('Quartiles'), texts.quartiles.join(' · '));
  if (entry.missing > 0) part('missing', word('Missing'), shareText(entry.missing));
  return parts;
}

/** The histogram of a scale variable with its caption; null when there is nothing to draw. */
export function histogramOf(entry) {
  const { sketch } = entry;
  if (!hasHistogram(sketch)) return null;
  const missing = entry.missing ?? 0;
  const write = writerOf(entry);
  const asShown = (number) => plainText(shownText(entry, number)?.text.trim() ?? write(number));
  const texts = {
    mean: typeof sketch.mean === 'number' ? asShown(sketch.mean) : null,
    quartiles: sketch.quartiles?.length === 3 ? sketch.quartiles.map(asShown) : null,
  };
  const gap = missing > 0 ? 10 : 0;
  const right = Math.max(LARGE.left + (LARGE.right - LARGE.left - gap) * (1 - missing), LARGE.left + 60);
  const place = placer(sketch, LARGE.left, right);
  const lone = sketch.edges[0] === sketch.edges.at(-1);
  const full = LARGE.ground - LARGE.top;
  const bars = densities(sketch).map((height, i) => {
    const x = lone ? place(sketch.edges[i]) - 12 : place(sketch.edges[i]);
    const end = lone ? place(sketch.edges[i]) + 12 : place(sketch.edges[i + 1]);
    const bar = box(x, LARGE.ground - height * full, Math.max(end - x - 1, 0.5), height * full, false);
    const range = lone ? write(sketch.edges[i]) : `${write(sketch.edges[i])} – ${write(sketch.edges[i + 1])}`;
    bar.append(draw('title', {}, `${range}: ${shareText(sketch.total > 0 ? sketch.weights[i] / sketch.total : 0)}`));
    return bar;
  });
  if (missing > 0) {
    const bar = box(right + gap, LARGE.top, Math.max(LARGE.right - right - gap, 2), full, true);
    bar.append(draw('title', {}, `${word('Missing')}: ${shareText(missing)}`));
    bars.push(bar);
  }
  const title = `${word('Histogram')}: ${plainText(entry.name)}`;
  return make(
    'figure',
    { class: 'histogram' },
    draw(
      'svg',
      { viewBox: `0 0 ${LARGE.width} ${LARGE.height}`, role: 'img', 'aria-label': title },
      draw('title', {}, title),
      ...bars,
      draw('line', { class: 'ground', x1: LARGE.left, x2: round(right), y1: LARGE.ground, y2: LARGE.ground }),
      ...axis(entry, place, write),
      ...marksOf(sketch, place, texts),
    ),
    make('figcaption', {}, ...legend(entry, texts)),
  );
}
