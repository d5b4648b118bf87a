// The tables of a page beside those of the JSON report, cell by cell. Read from the report by rules of its own, without the
// page's script.

// What stands for a character that cannot be seen; by code points, as the Unicode tables list them.
function isUnseen(point) {
  if (point === 0x9 || point === 0xa) return false;
  if (point < 0x20 || (point >= 0x7f && point <= 0x9f)) return true;
  if ([0xad, 0x61c, 0x115f, 0x1160, 0x17b4, 0x17b5, 0x180e, 0x200b, 0x200e, 0x200f, 0x3164, 0xfeff, 0xffa0].includes(point)) return true;
  const within = (low, high) => point >= low && point <= high;
  if (within(0x2028, 0x202e) || within(0x2060, 0x206f) || within(0xfff0, 0xfffb) || within(0xfdd0, 0xfdef)) return true;
  if (within(0x1bca0, 0x1bca3) || within(0x1d173, 0x1d17a)) return true;
  if (within(0xe0000, 0xe0fff) && !within(0xe0100, 0xe01ef)) return true;
  return (point & 0xfffe) === 0xfffe;
}

export function shown(text) {
  let visible = '';
  for (const character of text.replaceAll('\r\n', '\n')) {
    const point = character.codePointAt(0);
    if (!isUnseen(point)) visible += character;
    else if (point < 0x100) visible += `\\x${point.toString(16).padStart(2, '0')}`;
    else if (point < 0x10000) visible += `\\u${point.toString(16).padStart(4, '0')}`;
    else visible += `\\U${point.toString(16).padStart(8, '0')}`;
  }
  return visible;
}

/** A table of the JSON report: { title, columns, lines }, a line being ['group', depth, text] or ['row', depth, text, cells]. */
export function expectedTable(table) {
  const leaves = (items) => items.flatMap((item) => (item.group ? leaves(item.items) : [item.category.text]));
  const columns = table.dimensions.filter((one) => one.place === 'columns').flatMap((one) => leaves(one.items));
  const lines = [];
  const rowDimensions = table.dimensions.filter((one) => one.place === 'rows');
  const walk = (items, depth) => {
    for (const item of items) {
      if (item.group) {
        lines.push(['group', depth, shown(item.group.text)]);
        walk(item.items, depth + 1);
      } else {
        const cells = {};
        for (const cell of item.cells) {
          const column = cell.column === null ? '' : shown(cell.column);
          (cells[column] ??= []).push(shown(cell.text));
        }
        // An empty cell looks like none.
        for (const [column, texts] of Object.entries(cells)) if (texts.every((text) => text === '')) delete cells[column];
        lines.push(['row', depth, shown(item.category.text), cells]);
      }
    }
  };
  for (const dimension of rowDimensions) {
    if (rowDimensions.length > 1) lines.push(['group', 0, shown(dimension.label.text)]);
    walk(dimension.items, 0);
  }
  const labels = (place) => table.dimensions.filter((one) => one.place === place).map((one) => shown(one.label.text)).join(' × ');
  return {
    title: shown(table.title.text),
    caption: `${shown(table.title.text)} – ${shown(table.subtype.text)}`,
    corner: columns.length > 0 || labels('columns') !== '' ? `${labels('rows')} / ${labels('columns')}` : labels('rows'),
    columns: columns.map(shown),
    lines,
  };
}

/** The tables of the page, in the same form; evaluated in the page, so it uses nothing from outside. */
export function tablesOfPage() {
  const texts = (cell) => {
    const own = (node) => (node.querySelector('.long') ?? node).textContent;
    const parts = [...cell.querySelectorAll(':scope > div:not(.long)')];
    return parts.length > 0 ? parts.map(own) : [own(cell)];
  };
  return [...document.querySelectorAll('main article')].map((article) => {
    const table = article.querySelector('table');
    const heads = [...table.tHead.rows];
    const columns = [...table.tHead.querySelectorAll('th[scope="col"]:not(.corner)')].map((head) => head.textContent);
    const unnamed = heads.some((row) => row.querySelector('td') !== null);
    const places = unnamed ? ['', ...columns] : columns;
    const lines = [];
    for (const row of [...table.tBodies].flatMap((body) => [...body.rows])) {
      const head = row.querySelector('th');
      if (head === null) continue;
      const depth = Number(/depth-(\d)/u.exec(head.className)[1]);
      if (head.getAttribute('scope') === 'rowgroup') {
        lines.push(['group', depth, texts(head)[0]]);
        continue;
      }
      if (head.getAttribute('scope') !== 'row') throw new Error('a header without a scope');
      const cells = {};
      [...row.querySelectorAll(':scope > td')].forEach((cell, place) => {
        if (cell.childNodes.length > 0) cells[places[place]] = texts(cell);
      });
      lines.push(['row', depth, texts(head)[0], cells]);
    }
    return {
      title: article.querySelector('h3 bdi').textContent,
      caption: table.caption.textContent,
      corner: table.tHead.querySelector('.corner').textContent,
      columns,
      lines,
    };
  });
}
