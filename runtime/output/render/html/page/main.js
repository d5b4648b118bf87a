// Puts the page together.

import { articlesOf } from './articles.js';
import { controlsOf } from './controls.js';
import { entriesOf, readBlock, readReport } from './data.js';
import { make } from './dom.js';
import { keysDialog, listenToKeys } from './keys.js';
import { linkEntries } from './links.js';
import { listOf } from './list.js';
import { overviewOf } from './overview.js';
import { hatchPattern } from './pictures.js';
import { chooser, indexWhenIdle } from './search.js';
import { beginTheme, themeButton, themeForPrint } from './theme.js';
import { useLanguage, useWords, word } from './words.js';

function begin() {
  const language = document.documentElement.lang;
  useLanguage(language);
  useWords(readBlock('words'));
  beginTheme();

  const report = readReport();
  const entries = entriesOf(report);
  const items = entries.filter((entry) => entry.isItem);
  const entryOf = linkEntries(entries);
  const articles = articlesOf(report, entries);
  const list = listOf(report.procedures.length > 1);
  const choose = chooser(items, language);
  const fillList = () => {
    const choice = controls.choice();
    const chosen = choose(choice);
    list.fill(chosen, choice.terms);
    controls.tell(chosen.length);
  };
  const controls = controlsOf(items, fillList);
  const keys = keysDialog();

  document.getElementById('page').append(
    make('a', { class: 'skip', href: '#tables' }, word('Skip to the tables')),
    make(
      'nav',
      { class: 'jump', 'aria-label': word('Parts of the page') },
      make('a', { href: '#top' }, word('Overview')),
      make('a', { href: '#variables' }, word('Variables')),
      make('a', { href: '#tables' }, word('Tables')),
    ),
    make(
      'header',
      { class: 'overview', id: 'top' },
      make(
        'div',
        { class: 'switches' },
        make('button', { type: 'button', onclick: () => keys.dialog.showModal() }, word('Keys')),
        themeButton(),
      ),
      ...overviewOf(report),
    ),
    make(
      'nav',
      { class: 'index', 'aria-labelledby': 'variables' },
      make('h2', { id: 'variables' }, word('Variables')),
      controls.node,
      list.node,
    ),
    make(
      'main',
      { id: 'tables', tabindex: -1 },
      make('h2', {}, word('Tables')),
      report.procedures.length === 0 ? make('p', { class: 'note' }, word('The report has no tables.')) : null,
      ...articles.sections,
    ),
    keys.dialog,
    hatchPattern(),
  );
  fillList();

  let open = null;
  const follow = () => {
    const entry = entryOf(location.hash);
    if (entry === null) return;
    open = entry;
    list.mark(entry);
    articles.show(entry);
  };
  addEventListener('hashchange', follow);
  // The same link again leads there again.
  document.addEventListener('click', (event) => {
    const link = event.target.closest?.('a[href^="#"]');
    if (link !== null && link !== undefined && link.getAttribute('href') === location.hash) follow();
  });

  const clearSearch = () => {
    controls.search.value = '';
    fillList();
  };
  const backToList = () => {
    if (list.hasFocus()) {
      controls.search.focus();
      return true;
    }
    if (open === null || !open.isItem) {
      list.move(0);
      return true;
    }
    if (!list.focus(open)) {
      controls.reset();
      list.focus(open);
    }
    return true;
  };
  listenToKeys(keys, { search: controls.search, list, backToList, clearSearch });

  const beforePrint = () => {
    themeForPrint(true);
    list.drawAll();
    articles.drawAll();
  };
  const afterPrint = () => themeForPrint(false);
  addEventListener('beforeprint', beforePrint);
  addEventListener('afterprint', afterPrint);
  matchMedia('print').addEventListener('change', (event) => (event.matches ? beforePrint() : afterPrint()));

  indexWhenIdle(items);
  follow();
}

begin();
