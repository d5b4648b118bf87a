// Elements, made by calls only: nothing that comes from the data is ever read as markup.

const SVG = 'http://www.w3.org/2000/svg';

function fill(node, properties, children) {
  for (const [name, value] of Object.entries(properties)) {
    if (value === null || value === undefined || value === false) continue;
    if (name.startsWith('on')) node.addEventListener(name.slice(2), value);
    else node.setAttribute(name, value === true ? '' : String(value));
  }
  node.append(...children.filter((child) => child !== null && child !== undefined));
  return node;
}

/** An element with attributes, listeners (onclick: …) and children, which are nodes or texts. */
export function make(tag, properties = {}, ...children) {
  return fill(document.createElement(tag), properties, children);
}

/** The same for a part of a picture. */
export function draw(tag, properties = {}, ...children) {
  return fill(document.createElementNS(SVG, tag), properties, children);
}

/** A text that comes from the data: visible whatever it holds, and with a writing direction of its own. */
export function dataText(text, properties = {}) {
  return make('bdi', properties, ...visibleParts(text));
}

// What would be obeyed or not be seen: control characters but tab and line end, marks of the writing direction, what has
// no shape. Joiners and variation selectors belong to scripts and to emoji.
const UNSEEN =
  /(?!\t|\n|\u034f|\u200c|\u200d|\p{VS})(?:\p{Cc}|\p{DI}|\p{NChar}|[\u061c\u200e\u200f\u2028-\u202e\u2066-\u2069\ufff9-\ufffb])/gu;

function escapeOf(character) {
  const hex = character.codePointAt(0).toString(16);
  if (hex.length <= 2) return `\\x${hex.padStart(2, '0')}`;
  return hex.length <= 4 ? `\\u${hex.padStart(4, '0')}` : `\\U${hex.padStart(8, '0')}`;
}

/** The text as texts and, for what cannot be seen, as escapes. */
export function visibleParts(text) {
  const lines = text.replaceAll('\r\n', '\n');
  const parts = [];
  let at = 0;
  for (const found of lines.matchAll(UNSEEN)) {
    if (found.index > at) parts.push(lines.slice(at, found.index));
    parts.push(make('span', { class: 'escape' }, escapeOf(found[0])));
    at = found.index + found[0].length;
  }
  if (at < lines.length) parts.push(lines.slice(at));
  return parts;
}

/** The text in one line and without anything unseen, for attributes. */
export function plainText(text) {
  return text.replaceAll(/\s+/gu, ' ').replaceAll(UNSEEN, escapeOf);
}
