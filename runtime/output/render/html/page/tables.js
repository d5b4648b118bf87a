// A table of the report as a table of the page: the same labels, groups and cells in the same order.

import { make, plainText, visibleParts } from './dom.js';
import { isMissingGroup, isShare } from './data.js';
import { gridOf } from './grid.js';
import { shareBar } from './pictures.js';
import { word } from './words.js';

const LONG_CELL = 1200; // characters of a cell; what is longer is folded at first

function dataCell(tag, text, properties) {
  const cell = make(tag, { dir: 'auto', ...properties }, ...visibleParts(text));
  // A header is there to be seen and heard, also that of an empty value.
  if (tag === 'th' && text.trim() === '') cell.append(make('span', { class: 'blank', role: 'img', 'aria-label': word('empty') }));
  return text.length > LONG_CELL ? folded(cell) : cell;
}

/** A long text of which the beginning is seen, and a button that shows all of it. */
function folded(cell) {
  const text = make('div', { class: 'long' });
  text.append(...cell.childNodes);
  const button = make(
    'button',
    {
      type: 'button',
      class: 'unfold',
      'aria-expanded': 'false',
      onclick: () => {
        const open = text.classList.toggle('open');
        button.setAttribute('aria-expanded', String(open));
        button.textContent = open ? word('Show less') : word('Show all');
      },
    },
    word('Show all'),
  );
  cell.append(text, button);
  return cell;
}

/** The labels of the dimensions: those of rows, and behind a stroke those of columns. */
function corner(grid, rows) {
  const texts = (dimensions) => dimensions.map((dimension) => dimension.label.text).join(' × ');
  const parts = [make('span', { class: 'rows-of' }, ...visibleParts(texts(grid.rowDimensions)))];
  if (grid.columnDimensions.length > 0)
    parts.push(
      make('span', { class: 'stroke', 'aria-hidden': 'true' }, ' / '),
      make('span', { class: 'columns-of' }, ...visibleParts(texts(grid.columnDimensions))),
    );
  return make('th', { scope: 'col', class: 'corner', rowspan: rows > 1 ? rows : null }, ...parts);
}

/** Header rows: groups of columns above, one header for neighbours of the same group, then the columns. */
function head(grid) {
  const depth = Math.max(...grid.columns.map((column) => column.groups.length));
  const rows = [];
  for (let level = 0; level <= depth; ++level) {
    const row = make('tr');
    if (level === 0) row.append(corner(grid, depth + 1));
    for (let place = 0; place < grid.columns.length;) {
      const column = grid.columns[place];
      const group = column.groups[level];
      if (level < depth && group !== undefined) {
        let end = place + 1;
        while (end < grid.columns.length && grid.columns[end].groups[level] === group) ++end;
        row.append(dataCell('th', group.group.text, { scope: 'colgroup', colspan: end - place }));
        place = end;
        continue;
      }
      // The column stands below its innermost group and reaches down to the cells.
      if (level === column.groups.length) {
        const span = depth + 1 - level;
        const properties = { rowspan: span > 1 ? span : null, class: place === 0 ? null : 'amount' };
        row.append(
          column.label === null
            ? make('td', properties)
            : dataCell('th', column.label.text, { ...properties, scope: 'col' }),
        );
      }
      ++place;
    }
    rows.push(row);
  }
  return make('thead', {}, ...rows);
}

function contents(cells, place, missing) {
  const number = cells.some((cell) => cell.number !== undefined);
  const classes = [place === 0 ? null : 'amount', number ? 'number' : null].filter((name) => name !== null);
  if (cells.length === 0) return make('td', { class: place === 0 ? null : 'amount' });
  if (cells.length > 1)
    return make('td', { class: classes.join(' ') || null }, ...cells.map((cell) => dataCell('div', cell.text, {})));
  const [cell] = cells;
  if (!isShare(cell, place)) return dataCell('td', cell.text, { class: classes.join(' ') || null });
  return make(
    'td',
    { class: [...classes, 'share'].join(' ') },
    shareBar(cell.number, missing),
    make('span', {}, ...visibleParts(cell.text)),
  );
}

/** Where only the first column holds something, it has the room of all. */
function cellsOf(line, missing) {
  const alone = line.cells.length > 1 && line.cells.every((cells, place) => (cells.length > 0) === (place === 0));
  const cells = (alone ? line.cells.slice(0, 1) : line.cells).map((own, place) => contents(own, place, missing));
  if (alone) cells[0].setAttribute('colspan', line.cells.length);
  return cells;
}

function tableRow(line) {
  return make(
    'tr',
    {},
    dataCell('th', line.label.text, { scope: 'row', class: `depth-${Math.min(line.depth, 6)}` }),
    ...cellsOf(line, line.groups.some(isMissingGroup)),
  );
}

function groupRow(line, columns) {
  const header = dataCell('th', line.group.text, {
    scope: 'rowgroup',
    class: `depth-${Math.min(line.depth, 6)}`,
    colspan: line.empty ? null : columns + 1,
  });
  const row = make('tr', { class: line.dimension ? 'group dimension' : 'group' }, header);
  if (line.empty) row.append(make('td', { class: 'none', colspan: columns }, '–'));
  return row;
}

/** A group and its rows are one body; so are rows that stand in no group. */
function bodies(grid) {
  const made = [];
  let before = null;
  for (const line of grid.lines) {
    const starts = line.group !== undefined || before === null || (before.group === undefined && before.depth !== line.depth);
    if (starts) made.push(make('tbody'));
    made.at(-1).append(line.group !== undefined ? groupRow(line, grid.columns.length) : tableRow(line));
    before = line;
  }
  if (made.length === 0)
    made.push(make('tbody', {}, make('tr', {}, make('td', { class: 'none', colspan: grid.columns.length + 1 }, word('No rows')))));
  return made;
}

/** The table of an entry. */
export function tableOf(entry) {
  const grid = gridOf(entry.table);
  const few = 6;
  const table = make(
    'table',
    {},
    make('caption', {}, ...visibleParts(entry.table.title.text), ' – ', ...visibleParts(entry.table.subtype.text)),
    head(grid),
    ...bodies(grid),
  );
  const wide = grid.columns.length > few;
  return make(
    'div',
    wide ? { class: 'wide', tabindex: 0, role: 'region', 'aria-label': plainText(entry.name) } : { class: 'fitting' },
    table,
  );
}
