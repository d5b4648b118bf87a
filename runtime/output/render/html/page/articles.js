// One article a table. It is drawn when it comes near to what is seen, when a link leads to it, and for printing.

import { dataText, make, plainText } from './dom.js';
import { countRows, isSet, levelWord, roleWord, typeWord } from './data.js';
import { copyText } from './clipboard.js';
import { csvOf } from './csv.js';
import { histogramOf } from './pictures.js';
import { tableOf } from './tables.js';
import { countText, word } from './words.js';

const NEAR = '900px 0px';

/** About the height of an article that is not drawn yet, in pixels. */
function expectedHeight(entry) {
  const [head, row, picture, most] = [120, 33, 250, 12000];
  return Math.min(head + countRows(entry.table) * row + (entry.sketch?.weights?.length > 0 ? picture : 0), most);
}

function tagsOf(entry) {
  const { facts } = entry;
  if (facts === null) return null;
  const texts = isSet(facts)
    ? [typeWord(facts.type), `${word('Members')}: ${countText(facts.members?.length ?? 0)}`]
    : [
        typeWord(facts.type),
        levelWord(facts.level),
        `${word('Role')}: ${roleWord(facts.role)}`,
        `${word('Position')}: ${countText(facts.position)}`,
      ];
  return make('p', { class: 'tags' }, ...texts.map((text) => make('span', {}, text)));
}

function copyButton(text, copied, content) {
  const button = make(
    'button',
    {
      type: 'button',
      onclick: async () => {
        const done = await copyText(content());
        button.textContent = done ? copied : word('Copying is not allowed here');
        setTimeout(() => {
          button.textContent = text;
        }, 2500);
      },
    },
    text,
  );
  return button;
}

function messagesOf(entry) {
  if (entry.messages.length === 0) return null;
  return make(
    'ul',
    { class: 'messages' },
    ...entry.messages.map((message) => make('li', { class: message.severity }, dataText(message.text))),
  );
}

function addressOf(entry) {
  return location.href.replace(/#.*/su, '') + entry.link;
}

function drawArticle(article, entry) {
  const heading = `heading-${entry.number}`;
  article.setAttribute('aria-labelledby', heading);
  article.replaceChildren(
    make(
      'header',
      {},
      make(
        'div',
        { class: 'title' },
        make(
          'h3',
          { id: heading, tabindex: -1, class: entry.isItem ? 'name' : null },
          dataText(entry.name),
          make('a', { class: 'anchor', href: entry.link, 'aria-label': `${word('Permanent link')}: ${plainText(entry.name)}` }, '#'),
        ),
        make(
          'div',
          { class: 'tools' },
          copyButton(word('Copy as CSV'), word('Copied'), () => csvOf(entry.table)),
          copyButton(word('Copy link'), word('Copied'), () => addressOf(entry)),
        ),
      ),
      entry.label === '' ? null : make('p', { class: 'label', dir: 'auto' }, dataText(entry.label.slice(0, 1000))),
      tagsOf(entry),
    ),
    ...[messagesOf(entry), histogramOf(entry)].filter((part) => part !== null),
    tableOf(entry),
  );
  article.style.removeProperty('min-height');
  article.classList.remove('undrawn');
}

/** Articles for all entries, by procedure: { sections, show(entry), drawAll() }. */
export function articlesOf(report, entries) {
  const articles = [];
  const entryOf = new Map();
  const drawn = new Set();
  const drawEntry = (entry) => {
    if (drawn.has(entry)) return;
    drawn.add(entry);
    drawArticle(articles[entry.number], entry);
  };
  const watcher = new IntersectionObserver(
    (seen) => {
      for (const one of seen) {
        if (!one.isIntersecting) continue;
        watcher.unobserve(one.target);
        drawEntry(entryOf.get(one.target));
      }
    },
    { rootMargin: NEAR },
  );
  for (const entry of entries) {
    const article = make('article', { class: 'undrawn', id: `table-${entry.number + 1}` });
    article.style.setProperty('min-height', `${expectedHeight(entry)}px`);
    articles.push(article);
    entryOf.set(article, entry);
    watcher.observe(article);
  }

  const sections = report.procedures.map((procedure, index) => {
    const own = entries.filter((entry) => entry.procedure === index);
    const several = report.procedures.length > 1;
    return make(
      'section',
      { class: 'procedure' },
      several ? make('h3', { class: 'of-procedure' }, dataText(procedure.title), ` ${index + 1}`) : null,
      own.length === 0 ? make('p', { class: 'note' }, word('This command made no tables.')) : null,
      ...own.map((entry) => articles[entry.number]),
    );
  });

  return {
    sections,
    drawAll: () => entries.forEach(drawEntry),
    show(entry) {
      // What stands right above and below is drawn first, so that nothing moves once the article is in its place.
      const [before, after] = [3, 2];
      for (let i = entry.number - before; i <= entry.number + after; ++i) if (entries[i] !== undefined) drawEntry(entries[i]);
      const article = articles[entry.number];
      article.scrollIntoView({ block: 'start' });
      article.querySelector('h3').focus({ preventScroll: true });
    },
  };
}
