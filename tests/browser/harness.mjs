// What the tests share: the browser, pages of reports, and watching that nothing leaves them.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { existsSync, mkdirSync, readFileSync, writeFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { dirname, join, resolve } from 'node:path';
import { fileURLToPath, pathToFileURL } from 'node:url';

function named(variable, what) {
  const value = process.env[variable];
  if (!value) throw new Error(`Say ${what}: ${variable}=…`);
  return resolve(value);
}

export const PROJECT = dirname(dirname(dirname(fileURLToPath(import.meta.url))));
export const PROGRAM = named('CODEBOOK_PROGRAM', 'which program to try');
export const WORK = named('CODEBOOK_BROWSER_WORK', 'the folder for pages and pictures');
const CHROMIUM = process.env.CODEBOOK_CHROMIUM ?? '/usr/bin/chromium';

const require = createRequire(join(named('CODEBOOK_NODE_MODULES', 'where the modules lie'), 'of.js'));
const { chromium } = require('playwright-core');
const AXE = readFileSync(require.resolve('axe-core/axe.min.js'), 'utf8');

mkdirSync(join(WORK, 'pages'), { recursive: true });
mkdirSync(join(WORK, 'pictures'), { recursive: true });

/** Runs the program; a stopped command (1) still has a report. */
export function run(...options) {
  try {
    execFileSync(PROGRAM, options, { stdio: ['ignore', 'pipe', 'pipe'], maxBuffer: 1 << 28 });
  } catch (error) {
    if (error.status !== 1) throw new Error(`${options.join(' ')}: ${error.status} ${error.stderr}`);
  }
}

/** The report of a data file as page and as JSON: { page, report, files }. */
export function reportOf(name, data, ...options) {
  const page = join(WORK, 'pages', `${name}.html`);
  const json = join(WORK, 'pages', `${name}.json`);
  run(data, '-q', '-o', page, ...options);
  run(data, '-q', '-o', json, ...options);
  return { page, json, report: JSON.parse(readFileSync(json, 'utf8')) };
}

/** Writes data and dictionary of a case of our own and returns the data's path. */
export function dataFile(name, csv, schema) {
  const path = join(WORK, 'pages', `${name}.csv`);
  writeFileSync(path, csv);
  writeFileSync(join(WORK, 'pages', `${name}.schema.json`), JSON.stringify(schema));
  return path;
}

/** A browser for one file of tests. */
export async function openBrowser() {
  if (!existsSync(CHROMIUM)) throw new Error(`There is no ${CHROMIUM}; name the browser with CODEBOOK_CHROMIUM`);
  return chromium.launch({ executablePath: CHROMIUM, args: ['--no-sandbox', '--force-color-profile=srgb'] });
}

/**
 * Opens a page of a report as from disk. Whatever it asks for beside itself, every error, every word on the console, every
 * dialog and every breach of its policy is kept in `page.faults`, which the test ends by finding empty.
 */
export async function openPage(browser, file, { hash = '', width = 1280, height = 900, ...more } = {}) {
  const context = await browser.newContext({ viewport: { width, height }, permissions: [], ...more });
  const page = await context.newPage();
  const address = pathToFileURL(file).href;
  page.faults = [];
  await page.route('**/*', (route) => {
    if (route.request().url().replace(/#.*/su, '') === address) return route.continue();
    page.faults.push(`asked for ${route.request().url()}`);
    return route.abort();
  });
  page.on('request', (request) => {
    if (request.url().replace(/#.*/su, '') !== address) page.faults.push(`request ${request.url()}`);
  });
  page.on('pageerror', (error) => page.faults.push(`error ${error.stack ?? error.message}`));
  page.on('console', (message) => page.faults.push(`console ${message.type()} ${message.text()}`));
  page.on('dialog', (dialog) => {
    page.faults.push(`dialog ${dialog.message()}`);
    return dialog.dismiss();
  });
  await page.addInitScript(() => {
    globalThis.breaches = [];
    document.addEventListener('securitypolicyviolation', (event) => {
      globalThis.breaches.push(`${event.violatedDirective} ${event.blockedURI} ${event.sample}`);
    });
  });
  await page.goto(address + hash);
  return page;
}

/** Nothing left the page, nothing failed; then closes it. */
export async function closeClean(page) {
  const breaches = await page.evaluate(() => globalThis.breaches);
  assert.deepEqual([...page.faults, ...breaches], []);
  await page.context().close();
}

/** Keeps a picture of the page; those are for people to look at. */
export async function picture(page, name, options = {}) {
  await page.screenshot({ path: join(WORK, 'pictures', `${name}.png`), ...options });
}

/** What axe-core finds, a line each. */
export async function accessibilityFindings(page) {
  // Its script is evaluated by the debugger, which the page's policy does not bind.
  await page.evaluate(AXE);
  const results = await page.evaluate(() => globalThis.axe.run(document, { resultTypes: ['violations', 'incomplete'] }));
  return results.violations.flatMap((rule) =>
    rule.nodes.map((node) => `${rule.id}: ${node.target.join(' ')}: ${node.failureSummary.replaceAll(/\s+/gu, ' ')}`),
  );
}

/** Draws every table and every row of the list, as printing does. */
export async function drawAll(page) {
  await page.evaluate(() => {
    for (const stage of ['beforeprint', 'afterprint']) globalThis.dispatchEvent(new Event(stage));
  });
}
