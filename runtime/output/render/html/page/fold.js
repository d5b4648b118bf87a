// Texts as the search compares them: without case, accents and variants of the same letter.

// Letters that are no letter with a mark, and what people type for them.
const PLAIN = {
  ß: 'ss', æ: 'ae', œ: 'oe', ø: 'o', đ: 'd', ð: 'd', þ: 'th', ł: 'l', ħ: 'h', ı: 'i', ŋ: 'n', ς: 'σ', '’': "'", '‘': "'",
  '“': '"', '”': '"', '–': '-', '—': '-',
};
const PLAIN_LETTERS = new RegExp(`[${Object.keys(PLAIN).join('')}]`, 'gu');
// eslint-disable-next-line no-control-regex -- ASCII is what is meant
const ASCII = /^[\u0000-\u007f]*$/u;

export function fold(text) {
  const small = text.toLowerCase();
  if (ASCII.test(small)) return small;
  return small
    .normalize('NFKD')
    .replaceAll(/\p{M}/gu, '')
    .replaceAll(PLAIN_LETTERS, (letter) => PLAIN[letter]);
}

/** Where folded terms stand in a text: [begin, end) in its own units, ascending, apart. */
export function foundPlaces(text, terms) {
  let folded = '';
  const origins = [];
  let at = 0;
  for (const character of text) {
    const piece = fold(character);
    for (let i = 0; i < piece.length; ++i) origins.push(at);
    folded += piece;
    at += character.length;
  }
  const places = [];
  for (const term of terms) {
    for (let from = folded.indexOf(term); from >= 0; from = folded.indexOf(term, from + term.length)) {
      const end = from + term.length;
      places.push([origins[from], end < origins.length ? origins[end] : text.length]);
    }
  }
  places.sort((a, b) => a[0] - b[0] || b[1] - a[1]);
  const apart = [];
  for (const [begin, end] of places) {
    const last = apart.at(-1);
    if (last === undefined || begin >= last[1]) apart.push([begin, end]);
    else last[1] = Math.max(last[1], end);
  }
  return apart;
}
