// Texts that would be markup, script, formulas or deceit, wherever a text can stand.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { after, before, test } from 'node:test';
import { accessibilityFindings, closeClean, dataFile, drawAll, openBrowser, openPage, picture, reportOf } from './harness.mjs';
import { shown } from './sameTables.mjs';

const TEXTS = [
  '<script>alert(1)</script>',
  '</script><script>alert(2)</script>',
  '<img src=x onerror=alert(3)>',
  '<!-- <script> a comment',
  ']]> --> "quotes\' &amp; & &lt; &#60;',
  'javascript:alert(4)',
  '=HYPERLINK("http://example.org")',
  '@SUM(A1:A9)',
  'line one\nline two\r\nline three',
  'bell \u0007, escape \u001b[31m, nul \u0000, delete \u007f',
  'right \u202eto left\u202c and \u2066isolated\u2069',
  'zero\u200bwidth \u00ad \u2060 \ufeff',
  'שלום עולם مرحبا',
  '👩‍👩‍👧‍👦 🏳️‍🌈 🇩🇪',
  'line separator \u2028 paragraph separator \u2029',
  'x'.repeat(40_000),
  `${'<b>wide</b> '.repeat(3640)}`,
  '{language} {script} {1}',
  '',
];

let browser;
let hostile;
before(async () => {
  browser = await openBrowser();
  const fields = TEXTS.map((text, i) => ({
    name: `v${i}`,
    title: text,
    type: 'integer',
    categories: [{ value: 1, label: text }, { value: 2, label: 'two' }],
    codebook: { measure: 'nominal', attributes: { [`note ${i}`]: [text] } },
  }));
  fields.push({ name: 'words', type: 'string' });
  const cell = (text) => `"${text.replaceAll('"', '""')}"`;
  const rows = TEXTS.map((text, i) => [...TEXTS.map(() => (i % 2) + 1), cell(text.replaceAll('\u0000', '').slice(0, 200))].join(','));
  const data = dataFile('hostile', `${fields.map((field) => field.name).join(',')}\n${rows.join('\n')}\n`, {
    title: '</title><script>alert(5)</script>\u202e',
    fields,
    codebook: { documents: [TEXTS.slice(0, 15)] },
  });
  hostile = reportOf('hostile', data);
});
after(() => browser.close());

test('hostile texts are shown as they stand and nothing of them runs', async () => {
  const page = await openPage(browser, hostile.page);
  await drawAll(page);
  await page.waitForTimeout(300);
  for (const [i, text] of TEXTS.entries()) {
    const article = page.locator('article').nth(i + 1);
    const label = await article.evaluate((node) => [...node.querySelectorAll('tbody tr')].find((row) => row.cells[0].textContent === 'Label')?.cells[1]);
    assert.notEqual(label, null, `v${i}`);
    const cells = await article.evaluate((node) => [...node.querySelectorAll('td')].map((cell) => (cell.querySelector('.long') ?? cell).textContent));
    if (text !== '') assert.ok(cells.includes(shown(text)), `v${i}: ${shown(text).slice(0, 80)}`);
  }
  // Elements of the page are those that its script makes.
  assert.equal(await page.locator('#page img, #page script, #page b:not(.legend b), #page iframe').count(), 0);
  assert.equal(await page.locator('script').count(), 3);
  await picture(page, 'hostile');
  await closeClean(page);
});

test('hostile texts leave the frame of the page alone', () => {
  const html = readFileSync(hostile.page, 'utf8');
  assert.equal(html.match(/<script/gu).length, 3);
  assert.equal(html.match(/<\/script>/gu).length, 3);
  assert.ok(!html.includes('<!--') && !html.includes('\u2028') && !html.includes('\u202e') && !html.includes('\u0007'));
  assert.match(html, /<title>&lt;\/title&gt;&lt;script&gt;alert\(5\)&lt;\/script&gt;\\u202e – Codebook<\/title>/u);
});

test('a long text is folded and can be shown whole', async () => {
  const page = await openPage(browser, hostile.page, { hash: '#v=v15', width: 400 });
  const article = page.locator('article', { has: page.locator('a[href="#v=v15"]') });
  const long = article.locator('.long').first();
  const before_ = (await long.boundingBox()).height;
  await article.getByRole('button', { name: 'Show all' }).first().click();
  assert.ok((await long.boundingBox()).height > before_ * 5);
  assert.ok((await page.evaluate(() => document.documentElement.scrollWidth)) <= 400);
  await closeClean(page);
});

test('text cells that a spreadsheet would calculate are disarmed in copied CSV', async () => {
  const page = await openPage(browser, hostile.page, { hash: '#v=v6', permissions: ['clipboard-read', 'clipboard-write'] });
  const article = page.locator('article', { has: page.locator('a[href="#v=v6"]') });
  await article.getByRole('button', { name: 'Copy as CSV' }).click();
  await article.getByRole('button', { name: 'Copied' }).waitFor();
  const csv = await page.evaluate(() => navigator.clipboard.readText());
  assert.ok(csv.includes(`"'=HYPERLINK(""http://example.org"")"`), csv);
  assert.ok(!/(?:^|,)"?[=@]/mu.test(csv), csv);
  await closeClean(page);
});

test('axe-core finds nothing in hostile texts', async () => {
  const page = await openPage(browser, hostile.page);
  await drawAll(page);
  assert.deepEqual(await accessibilityFindings(page), []);
  await closeClean(page);
});

test('names that differ only in case have links of their own', async () => {
  const field = (name) => ({ name, type: 'integer', codebook: { measure: 'nominal' } });
  const data = dataFile('case', 'Age,AGE,age\n1,2,3\n', { fields: ['Age', 'AGE', 'age'].map(field) });
  const { page: file, report } = reportOf('case', data);
  const names = report.procedures[0].tables.slice(1).map((table) => table.title.text);
  assert.equal(new Set(names).size, 3);
  for (const name of names) {
    const page = await openPage(browser, file, { hash: `#v=${encodeURIComponent(name)}` });
    await page.waitForTimeout(200);
    assert.equal(await page.evaluate(() => document.activeElement.querySelector('bdi')?.textContent), name);
    await closeClean(page);
  }
});

test('a variable that two commands show has two links', async () => {
  const data = dataFile('twice', 'a,b\n1,2\n', { fields: [{ name: 'a', type: 'integer' }, { name: 'b', type: 'integer' }] });
  const { page: file } = reportOf('twice', data, '-c', 'CODEBOOK a b.\nCODEBOOK a /STATISTICS NONE.');
  for (const [hash, place] of [['#v=a', 0], ['#v=a&p=2', 2]]) {
    const page = await openPage(browser, file, { hash });
    await page.waitForTimeout(200);
    const place_ = await page.evaluate(() => [...document.querySelectorAll('article')].indexOf(document.activeElement.closest('article')));
    assert.equal(place_, place);
    await closeClean(page);
  }
});

test('a report without tables and a command that stopped are told', async () => {
  const data = dataFile('stopped', 'a\n1\n', { fields: [{ name: 'a', type: 'integer' }] });
  for (const [command, words] of [
    ['CODEBOOK nobody.', 'This command made no tables.'],
    ['CODEBUK a.', 'The report has no tables.'],
  ]) {
    const { page: file, report } = reportOf('stopped', data, '-c', command);
    const page = await openPage(browser, file);
    const text = await page.locator('body').innerText();
    assert.ok(text.includes(words), text);
    assert.ok(text.includes(report.messages[0].text), text);
    await closeClean(page);
  }
});
