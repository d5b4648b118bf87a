// Every table of the page is the table of the JSON report: of the demo survey, and of every golden and hostile case.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { existsSync, readdirSync, readFileSync, statSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { closeClean, drawAll, openBrowser, openPage, PROGRAM, PROJECT, reportOf, WORK } from './harness.mjs';
import { expectedTable, tablesOfPage } from './sameTables.mjs';

let browser;
before(async () => {
  browser = await openBrowser();
});
after(() => browser.close());

async function compare(file, report, name) {
  const page = await openPage(browser, file);
  await drawAll(page);
  const got = await page.evaluate(tablesOfPage);
  const expected = report.procedures.flatMap((procedure) => procedure.tables).map(expectedTable);
  assert.equal(got.length, expected.length, name);
  expected.forEach((table, i) => assert.deepEqual(got[i], table, `${name}: table ${i + 1}`));
  await closeClean(page);
  return expected.reduce((sum, table) => sum + table.lines.length, 0);
}

/** The bound of what a page may weigh beside the JSON report. */
function assertSmall(page, json, name) {
  const [size, bound] = [statSync(page).size, statSync(json).size * 1.5 + 100_000];
  assert.ok(size <= bound, `${name}: the page has ${size} bytes, its bound is ${bound}`);
}

test('the tables of the demo survey are those of the JSON report', async () => {
  const { page, json, report } = reportOf('demo', join(PROJECT, 'examples/nonvoters/nonvoters_data.csv'));
  assert.ok((await compare(page, report, 'demo')) > 1000);
  assertSmall(page, json, 'demo');
});

test('the tables of every golden and hostile case are those of the JSON report', async (context) => {
  const outputs = join(WORK, 'cases');
  execFileSync('python3', ['-B', join(PROJECT, 'tests/reports/collect.py'), '--program', PROGRAM, '--outputs', outputs, 'html'], {
    stdio: 'inherit',
  });
  let [cases, rows] = [0, 0];
  for (const name of readdirSync(outputs).sort()) {
    const [page, json] = ['html', 'json'].map((format) => join(outputs, name, `report.${format}`));
    const text = existsSync(json) ? readFileSync(json, 'utf8') : '';
    if (text === '') continue;
    rows += await compare(page, JSON.parse(text), name);
    assertSmall(page, json, name);
    ++cases;
  }
  assert.ok(cases > 150, `only ${cases} cases`);
  context.diagnostic(`${cases} cases, ${rows} rows of tables`);
});
