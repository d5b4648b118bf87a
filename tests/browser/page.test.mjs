// The page of the demo survey, as people use it.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { accessibilityFindings, closeClean, drawAll, openBrowser, openPage, picture, PROJECT, reportOf, WORK } from './harness.mjs';

let browser;
let demo;
let names; // of variables and sets, in the report's order
before(async () => {
  browser = await openBrowser();
  demo = reportOf('nonvoters', join(PROJECT, 'examples/nonvoters/nonvoters_data.csv'));
  names = demo.report.procedures[0].tables.map((table) => table.title.text).slice(1);
});
after(() => browser.close());

const open = (options) => openPage(browser, demo.page, options);

/** The names in the list, all of them drawn. */
async function listed(page) {
  await drawAll(page);
  return page.locator('.row .name').allTextContents();
}

const factsOf = (name) => demo.report.facts.items.find((item) => item.name === name);
const fold = (text) => text.normalize('NFKD').replaceAll(/\p{M}/gu, '').toLowerCase().replaceAll('’', "'");

/** All texts of a table that come from the data, by walking the JSON report. */
function dataTexts(node) {
  if (Array.isArray(node)) return node.flatMap(dataTexts);
  if (node === null || typeof node !== 'object') return [];
  const own = typeof node.text === 'string' && node.fixed !== true && node.number === undefined ? [node.text] : [];
  return [...own, ...Object.values(node).flatMap(dataTexts)];
}

async function status(page) {
  return page.getByRole('status').textContent();
}

test('the overview tells file, variables, cases, weight, methods and messages', async () => {
  const page = await open();
  const { facts } = demo.report;
  assert.equal(await page.locator('h1').textContent(), facts.label);
  const text = await page.locator('.overview').innerText();
  for (const part of [facts.file, '119', '5,836', '5,784', 'weight', ...facts.notes.map((note) => note.text)])
    assert.ok(text.includes(part), `${part} in ${text}`);
  assert.ok(facts.notes.length > 3);
  for (const message of demo.report.messages) assert.ok(text.includes(message.text));
  assert.equal(await page.title(), `${facts.label} – Codebook`);
  assert.equal(await page.evaluate(() => document.documentElement.lang), 'en');
  await picture(page, 'overview');
  await closeClean(page);
});

test('the list shows every variable with label, type, level, missing share and picture', async () => {
  const page = await open();
  assert.deepEqual(await listed(page), names);
  const row = page.locator('.row', { has: page.locator('a[href="#v=Q22"]') });
  assert.match(await row.innerText(), /Q22\s+Why you are not currently registered to vote\s+Numeric\s+Nominal\s+90\.2% missing/u);
  assert.equal(await row.locator('svg.mini rect.valid').count(), 7);
  assert.equal(await row.locator('svg.mini rect.missing').count(), 2);
  assert.match(await row.locator('svg.mini title').textContent(), /^Most frequent: /u);
  await closeClean(page);
});

test('the search finds names, labels and value labels as one types, whatever case and accents', async () => {
  const page = await open();
  const search = page.getByRole('searchbox');
  const tables = demo.report.procedures[0].tables.slice(1);
  for (const query of ['q2', 'Registered', 'TRUST', 'trust vote', 'dont', 'país', 'nothing of the kind', "don't", 'ppage', '🗳']) {
    await search.fill(query);
    const terms = fold(query).split(' ');
    const expected = tables
      .filter((table) => {
        const text = fold([...dataTexts(table), factsOf(table.title.text).label ?? ''].join('\n'));
        return terms.every((term) => text.includes(term));
      })
      .map((table) => table.title.text);
    assert.deepEqual(await listed(page), expected, query);
    assert.equal(await status(page), `${expected.length} of ${names.length} shown`);
  }
  await search.fill('PÀRTY');
  assert.ok((await listed(page)).length > 0);
  await search.fill('trust vote');
  assert.ok((await page.locator('.row mark').count()) > 0);
  await picture(page, 'search');
  await page.getByRole('button', { name: 'Show all' }).first().click();
  assert.equal(await status(page), `${names.length} of ${names.length} shown`);
  await closeClean(page);
});

test('filters choose by type, level, role, missing values and messages', async () => {
  const page = await open();
  const { items } = demo.report.facts;
  const choose = async (label, value) => page.getByRole('combobox', { name: label }).selectOption(value);
  for (const [label, property] of [['Type', 'type'], ['Level', 'level'], ['Role', 'role']]) {
    for (const value of new Set(items.map((item) => item[property]))) {
      await choose(label, value);
      const expected = names.filter((name) => factsOf(name)[property] === value);
      assert.deepEqual(await listed(page), expected, `${label} ${value}`);
    }
    await choose(label, '');
  }
  await choose('Type', 'string');
  await choose('Level', 'ordinal');
  assert.deepEqual(await listed(page), names.filter((name) => factsOf(name).type === 'string' && factsOf(name).level === 'ordinal'));
  await picture(page, 'filter');
  await choose('Type', '');
  await choose('Level', '');
  await page.getByRole('checkbox', { name: 'Has messages' }).check();
  assert.deepEqual(await listed(page), ['RespId']);
  await page.getByRole('checkbox', { name: 'Has messages' }).uncheck();
  await page.getByRole('checkbox', { name: 'Has missing' }).check();
  const missing = await listed(page);
  assert.ok(missing.includes('Q22') && !missing.includes('ppage'));
  await closeClean(page);
});

test('the list is sorted by name in natural order, by position, by missing share', async () => {
  const page = await open();
  const sorted = async (value) => {
    await page.getByRole('combobox', { name: 'Order' }).selectOption(value);
    return listed(page);
  };
  const byName = await sorted('name');
  assert.deepEqual([...byName].sort(), [...names].sort());
  assert.ok(byName.indexOf('Q2_10') === byName.indexOf('Q2_9') + 1, 'Q2_10 behind Q2_9');
  assert.ok(byName.indexOf('Q3_1') > byName.indexOf('Q2_10') && byName.indexOf('Q10_1') > byName.indexOf('Q9_1'));
  const byPosition = await sorted('position');
  const positions = byPosition.map((name) => factsOf(name).position ?? Infinity);
  assert.deepEqual(positions, [...positions].sort((a, b) => a - b));
  const byMissing = await sorted('missing');
  const shares = await page.locator('.row .share').allTextContents();
  // Of what was not counted there is no share; it stands last.
  const numbers = shares.map((text) => (text === '' ? -1 : Number(/(?<number>[\d.]+)%/u.exec(text).groups.number)));
  assert.deepEqual(numbers, [...numbers].sort((a, b) => b - a));
  assert.equal(byMissing.length, names.length);
  assert.deepEqual(await sorted('report'), names);
  await closeClean(page);
});

test('a link leads to its variable and does so again after a reload', async () => {
  const page = await open({ hash: '#v=ppage' });
  const heading = page.locator('main h3', { hasText: /^ppage/u });
  const stands = async () => {
    await page.waitForTimeout(300);
    const box = await heading.boundingBox();
    assert.ok(box !== null && box.y >= 0 && box.y < 200, `ppage stands at ${box?.y}`);
  };
  await stands();
  await page.reload();
  await stands();
  await picture(page, 'link');
  assert.equal(await page.locator('.row [aria-current]').textContent().then((text) => text.includes('ppage')), true);
  await page.locator('.row a[href="#v=educ"]').click();
  assert.match(page.url(), /#v=educ$/u);
  await page.goBack();
  assert.match(page.url(), /#v=ppage$/u);
  await stands();
  await closeClean(page);
});

test('a link to a set and one to the file information lead there too', async () => {
  for (const [hash, title] of [['#v=%24Q29', '$Q29'], ['#v=$Q29', '$Q29'], ['#f=1.1', 'File Information']]) {
    const page = await open({ hash });
    await page.waitForTimeout(300);
    const focused = await page.evaluate(() => document.activeElement.querySelector('bdi')?.textContent);
    assert.equal(focused, title);
    await closeClean(page);
  }
});

test('the keyboard reaches the search, moves in the list, opens, comes back, explains itself', async () => {
  const page = await open();
  const focused = () => page.evaluate(() => document.activeElement.getAttribute('href') ?? document.activeElement.id);
  await page.keyboard.press('/');
  assert.equal(await focused(), 'search');
  await page.keyboard.type('party');
  const found = await listed(page);
  await page.keyboard.press('ArrowDown');
  assert.equal(await focused(), `#v=${found[0]}`);
  await page.keyboard.press('j');
  assert.equal(await focused(), `#v=${found[1]}`);
  await page.keyboard.press('k');
  await page.keyboard.press('ArrowDown');
  assert.equal(await focused(), `#v=${found[1]}`);
  await page.keyboard.press('Enter');
  await page.waitForTimeout(300);
  const opened = await page.evaluate(() => document.activeElement.querySelector('bdi')?.textContent);
  assert.equal(opened, found[1]);
  await page.keyboard.press('Escape');
  assert.equal(await focused(), `#v=${found[1]}`);
  await page.keyboard.press('Escape');
  assert.equal(await focused(), 'search');
  await page.keyboard.press('Escape');
  assert.equal(await page.getByRole('searchbox').inputValue(), '');
  await page.keyboard.press('Escape');
  await page.keyboard.press('?');
  assert.ok(await page.getByRole('dialog').isVisible());
  await picture(page, 'keys');
  await page.getByLabel('Letters and signs are keys').uncheck();
  await page.keyboard.press('Escape');
  assert.ok(!(await page.getByRole('dialog').isVisible()));
  await page.keyboard.press('/');
  assert.notEqual(await focused(), 'search');
  await closeClean(page);
});

test('the skip link is the first to be reached and leads to the tables', async () => {
  const page = await open();
  await page.keyboard.press('Tab');
  assert.equal(await page.evaluate(() => document.activeElement.textContent), 'Skip to the tables');
  await page.keyboard.press('Enter');
  assert.equal(await page.evaluate(() => document.activeElement.id), 'tables');
  await closeClean(page);
});

test('a table is copied as CSV with full precision', async () => {
  const page = await open({ hash: '#v=Q22', permissions: ['clipboard-read', 'clipboard-write'] });
  const article = page.locator('article', { has: page.locator('a[href="#v=Q22"]') });
  await article.getByRole('button', { name: 'Copy as CSV' }).click();
  await article.getByRole('button', { name: 'Copied' }).waitFor();
  const lines = (await page.evaluate(() => navigator.clipboard.readText())).split(/\r?\n/u);
  assert.equal(lines[0], ',Attributes,Value,Count,Percent');
  const table = demo.report.procedures[0].tables.find((one) => one.title.text === 'Q22');
  const cells = table.dimensions[0].items.at(-1).items[0].cells;
  const number = (column) => cells.find((cell) => cell.column === column).number;
  assert.ok(lines.includes(`Missing Values,-1,Refused,${number('Count')},${number('Percent')}`), lines.join('\n'));
  assert.ok(lines.includes('Standard Attributes,Position,81,,'), lines.join('\n'));
  await closeClean(page);
});

test('the histogram of a scale variable has bars, quartiles and mean, and tells them in words', async () => {
  const page = await open({ hash: '#v=ppage' });
  const figure = page.locator('figure.histogram').first();
  assert.ok((await figure.locator('rect.valid').count()) > 5);
  const caption = await figure.locator('figcaption').innerText();
  assert.match(caption, /Mean 49\.79/u);
  assert.match(caption, /Quartiles 34\.00 · 51\.00 · 64\.00/u);
  assert.match(await figure.locator('.quartiles title').textContent(), /34\.00/u);
  assert.match(await figure.locator('.mean title').textContent(), /49\.79/u);
  await closeClean(page);
});

test('missing values are drawn apart from valid ones', async () => {
  const page = await open({ hash: '#v=Q22' });
  const article = page.locator('article', { has: page.locator('a[href="#v=Q22"]') });
  assert.equal(await article.locator('.bar rect.valid').count(), 7);
  assert.equal(await article.locator('.bar rect.missing[fill="url(#hatch)"]').count(), 2);
  await picture(page, 'missing');
  await closeClean(page);
});

test('dark is what the system says until the reader chooses', async () => {
  const page = await open({ colorScheme: 'dark' });
  const ground = () => page.evaluate(() => getComputedStyle(document.body).backgroundColor);
  const dark = await ground();
  await picture(page, 'dark');
  await page.getByRole('button', { name: 'Light' }).click();
  const light = await ground();
  assert.notEqual(light, dark);
  await page.getByRole('button', { name: 'Dark' }).click();
  assert.equal(await ground(), dark);
  await closeClean(page);
  const other = await open({ colorScheme: 'light' });
  assert.equal(await other.evaluate(() => getComputedStyle(document.body).backgroundColor), light);
  await closeClean(other);
});

test('print has every table and none of the controls', async () => {
  const page = await open({ colorScheme: 'dark' });
  const pdf = await page.pdf({ path: join(WORK, 'pictures', 'print.pdf'), format: 'A4' });
  assert.ok(pdf.length > 10_000);
  // Printing has drawn everything.
  assert.equal(await page.locator('main article table').count(), demo.report.procedures[0].tables.length);
  assert.equal(await page.locator('.row').count(), names.length);
  await page.emulateMedia({ media: 'print' });
  assert.ok(!(await page.getByRole('searchbox').isVisible()));
  assert.ok(!(await page.getByRole('button', { name: 'Copy as CSV' }).first().isVisible()));
  assert.equal(await page.evaluate(() => document.documentElement.dataset.theme), 'light');
  await picture(page, 'print');
  await closeClean(page);
});

test('at 400 pixels nothing has to be scrolled sideways', async () => {
  const page = await open({ width: 400 });
  await picture(page, 'narrow');
  await drawAll(page);
  const width = await page.evaluate(() => document.documentElement.scrollWidth);
  assert.ok(width <= 400, `the page is ${width} pixels wide`);
  const wide = await page.evaluate(() =>
    [...document.querySelectorAll('#page *')].filter((node) => node.getBoundingClientRect().right > 401).map((node) => node.outerHTML.slice(0, 80)),
  );
  assert.deepEqual(wide, []);
  await page.goto(`${page.url()}#v=Q22`);
  await page.waitForTimeout(300);
  await picture(page, 'narrow-table');
  await closeClean(page);
});

for (const [name, options] of [
  ['light', {}],
  ['dark', { colorScheme: 'dark' }],
  ['narrow', { width: 400 }],
])
  test(`axe-core finds nothing: ${name}`, async () => {
    const page = await open(options);
    await page.getByRole('searchbox').fill('vote');
    await drawAll(page);
    await page.waitForTimeout(300);
    assert.deepEqual(await accessibilityFindings(page), []);
    await page.keyboard.press('Escape');
    await closeClean(page);
  });

test('the page speaks the language of the report', async () => {
  const german = reportOf('german', join(PROJECT, 'examples/quickstart/library.csv'), '--lang', 'de');
  const page = await openPage(browser, german.page);
  assert.equal(await page.evaluate(() => document.documentElement.lang), 'de');
  const text = await page.locator('body').innerText();
  for (const word of ['Variablen', 'Wie die Zahlen zustande kommen']) assert.match(text, new RegExp(word, 'iu'));
  for (const word of ['Variables', 'Weighted cases', 'Copy as CSV', 'missing', 'Nominal scale']) assert.ok(!text.includes(word), word);
  // Missing values are known by their word in the report's language.
  await drawAll(page);
  assert.ok((await page.locator('.bar rect.missing').count()) > 0);
  await picture(page, 'german');
  await closeClean(page);
});

test('without JavaScript the page says what to do', async () => {
  const page = await openPage(browser, demo.page, { javaScriptEnabled: false });
  assert.match(await page.locator('body').innerText(), /JavaScript/u);
  await page.context().close();
});

test('the page holds its report once, as the JSON report has it', async () => {
  const html = readFileSync(demo.page, 'utf8');
  const blocks = [...html.matchAll(/<script type="application\/json" id="report">(?<json>[^<]*)<\/script>/gu)];
  assert.equal(blocks.length, 1);
  const held = JSON.parse(blocks[0].groups.json);
  for (const procedure of held.procedures) delete procedure.sketches;
  // What a histogram is made by is told only where there are histograms.
  held.facts.notes = held.facts.notes.filter((note) => demo.report.facts.notes.some((other) => other.text === note.text));
  assert.deepEqual(held, demo.report);
});
