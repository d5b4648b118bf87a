// A table as comma-separated text, for spreadsheets.

import { gridOf } from './grid.js';

// What a spreadsheet would take for a formula.
const FORMULA = /^[=+\-@\t\r]/u;

function quoted(text) {
  return /[",\r\n]/u.test(text) ? `"${text.replaceAll('"', '""')}"` : text;
}

function textCell(text) {
  return quoted(FORMULA.test(text) ? `'${text}` : text);
}

// Formats whose numbers are amounts; those of dates and times are written as they are shown.
const AMOUNT = /^(?:F|COMMA|DOT|PCT|DOLLAR|CC[A-E]|N|E|Z|G)(?:\d|\.|$)/u;

function contentCell(content) {
  if (typeof content.number === 'number' && AMOUNT.test(content.format)) return String(content.number);
  if (typeof content.value === 'number' && Number(content.text) === content.value) return content.text.trim();
  return content.number === undefined ? textCell(content.text) : quoted(content.text);
}

function labelPath(groups) {
  return groups.map((group) => group.text).join(' / ');
}

/** A header, then a line for each row: groups, label, and a cell for each column. Numbers have full precision. */
export function csvOf(table) {
  const grid = gridOf(table);
  const header = [
    '',
    textCell(grid.rowDimensions.map((dimension) => dimension.label.text).join(' / ')),
    ...grid.columns.map((column) =>
      column.label === null
        ? ''
        : textCell(labelPath([...column.groups.map((group) => group.group), column.label])),
    ),
  ];
  const lines = [header.join(',')];
  for (const line of grid.lines) {
    if (line.group !== undefined) {
      if (line.empty) lines.push([textCell(line.group.text), ...grid.columns.map(() => ''), ''].join(','));
      continue;
    }
    lines.push(
      [
        textCell(labelPath(line.groups)),
        contentCell(line.label),
        ...line.cells.map((cells) =>
          cells.length === 1 ? contentCell(cells[0]) : textCell(cells.map((cell) => cell.text).join('\n')),
        ),
      ].join(','),
    );
  }
  return `${lines.join('\r\n')}\r\n`;
}
