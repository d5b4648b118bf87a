// 5,000 variables.
import assert from 'node:assert/strict';
import { statSync } from 'node:fs';
import { after, before, test } from 'node:test';
import { closeClean, dataFile, openBrowser, openPage, picture, reportOf } from './harness.mjs';

const VARIABLES = 5000;
const CASES = 200;
const MOST_MILLISECONDS = 2000;

let browser;
let large;
before(async () => {
  browser = await openBrowser();
  const numbers = Array.from({ length: VARIABLES }, (_, i) => i + 1);
  const fields = numbers.map((i) => {
    const field = { name: `v${i}`, title: `Question ${i}: how often did you do this in the last twelve months?`, type: i % 3 === 0 ? 'number' : 'integer' };
    if (i % 3 === 0) return { ...field, codebook: { measure: 'scale' } };
    return {
      ...field,
      categories: [1, 2, 3, 4, 5].map((value) => ({ value, label: `Answer ${value} of question ${i}` })),
      missingValues: ['', { value: '9', label: 'Refused' }],
      codebook: { measure: i % 3 === 1 ? 'nominal' : 'ordinal' },
    };
  });
  let seed = 1;
  const next = (bound) => {
    seed = (seed * 48271) % 2147483647;
    return seed % bound;
  };
  const cell = (i) => (i % 3 === 0 ? (next(100000) / 100).toFixed(2) : [1, 2, 3, 4, 5, 9, ''][next(7)]);
  const rows = Array.from({ length: CASES }, () => numbers.map(cell).join(','));
  const data = dataFile('large', `${fields.map((field) => field.name).join(',')}\n${rows.join('\n')}\n`, { fields });
  large = reportOf('large', data);
});
after(() => browser.close());

test('5,000 variables open in less than two seconds', async (context) => {
  const times = [];
  for (let i = 0; i < 5; ++i) {
    const page = await openPage(browser, large.page);
    // From the beginning of the navigation until the list, the overview and the first table can be seen.
    times.push(
      await page.evaluate(async () => {
        const ready = () => document.querySelector('.row .mini') !== null && document.querySelector('main article table') !== null;
        while (!ready()) await new Promise((done) => setTimeout(done, 5));
        await new Promise((done) => requestAnimationFrame(() => setTimeout(done, 0)));
        return performance.now();
      }),
    );
    assert.equal(await page.getByRole('status').textContent(), '5,000 of 5,000 shown');
    if (i === 0) await picture(page, 'large');
    await closeClean(page);
  }
  times.sort((a, b) => a - b);
  context.diagnostic(`opened in ${times.map((time) => Math.round(time)).join(', ')} ms`);
  assert.ok(times[2] < MOST_MILLISECONDS, `median ${times[2]} ms`);
});

test('the page of 5,000 variables is at most one and a half JSON reports and 100 kB', (context) => {
  const [size, json] = [statSync(large.page).size, statSync(large.json).size];
  context.diagnostic(`${size} bytes, ${(size / json).toFixed(3)} of the JSON report (${json} bytes)`);
  assert.ok(size <= 1.5 * json + 100_000);
});

test('among 5,000 variables only what is near is drawn, and a link leads far', async () => {
  const page = await openPage(browser, large.page);
  await page.waitForTimeout(300);
  assert.ok((await page.locator('main article table').count()) < 40);
  assert.ok((await page.locator('.row').count()) < 400);
  const search = page.getByRole('searchbox');
  await search.fill('answer 3 of question 4711');
  assert.equal(await page.getByRole('status').textContent(), '1 of 5,000 shown');
  await page.keyboard.press('ArrowDown');
  await page.keyboard.press('Enter');
  const heading = page.locator('main h3', { hasText: /^v4711#/u });
  await heading.waitFor();
  await page.waitForTimeout(500);
  const box = await heading.boundingBox();
  assert.ok(box.y >= 0 && box.y < 250, `v4711 stands at ${box.y}`);
  assert.ok((await page.locator('main article table').count()) < 60);
  await search.fill('');
  await page.keyboard.press('Escape');
  await page.goto(`${page.url().replace(/#.*/su, '')}#v=v2500`);
  await page.waitForTimeout(500);
  const row = await page.locator('.row a[aria-current]').boundingBox();
  assert.ok(row.y > 200 && row.y < 900, `the row of v2500 stands at ${row.y}`);
  await closeClean(page);
});
