// A table of the report as lines: headers of groups and rows, in their order.

/** Leaves of the column dimensions with the groups around each, the outermost first. */
function columnsOf(dimensions) {
  const columns = [];
  const walk = (items, groups) => {
    for (const item of items) {
      if (item.group === undefined) columns.push({ label: item.category, groups });
      else walk(item.items, [...groups, item]);
    }
  };
  for (const dimension of dimensions) walk(dimension.items, []);
  return columns;
}

function hasCellsOfRows(items) {
  return items.some((item) =>
    item.group === undefined ? item.cells.some((cell) => cell.column === null) : hasCellsOfRows(item.items),
  );
}

/**
 * { rowDimensions, columnDimensions, columns, lines }. A line is { group, depth, empty } or { label, depth, groups,
 * cells }, cells being a list of contents for each column. Where cells were set on rows themselves, the first column has
 * no label.
 */
export function gridOf(table) {
  const rowDimensions = table.dimensions.filter((dimension) => dimension.place === 'rows');
  const columnDimensions = table.dimensions.filter((dimension) => dimension.place === 'columns');
  const columns = columnsOf(columnDimensions);
  if (columns.length === 0 || rowDimensions.some((dimension) => hasCellsOfRows(dimension.items)))
    columns.unshift({ label: null, groups: [] });
  const places = new Map();
  columns.forEach((column, place) => {
    const name = column.label === null ? null : column.label.text;
    if (!places.has(name)) places.set(name, place);
  });

  const lines = [];
  const walk = (items, groups) => {
    for (const item of items) {
      if (item.group !== undefined) {
        lines.push({ group: item.group, depth: groups.length, empty: item.items.length === 0 });
        walk(item.items, [...groups, item.group]);
        continue;
      }
      const cells = columns.map(() => []);
      for (const cell of item.cells) cells[places.get(cell.column)].push(cell);
      lines.push({ label: item.category, depth: groups.length, groups, cells });
    }
  };
  for (const dimension of rowDimensions) {
    if (rowDimensions.length > 1)
      lines.push({ group: dimension.label, depth: 0, empty: dimension.items.length === 0, dimension: true });
    walk(dimension.items, []);
  }
  return { rowDimensions, columnDimensions, columns, lines };
}
