// The script's sources: their words, their names.
import assert from 'node:assert/strict';
import { readdirSync, readFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';
import { PROJECT } from './harness.mjs';

const folder = join(PROJECT, 'runtime/output/render/html');
const scripts = readdirSync(join(folder, 'page'))
  .filter((name) => name.endsWith('.js'))
  .map((name) => ({ name, text: readFileSync(join(folder, 'page', name), 'utf8') }));

test('every word that the script asks for is in the list, and every word of the list is asked for', () => {
  const asked = new Set();
  for (const { name, text } of scripts) {
    const calls = [...text.matchAll(/(?<!function )\bword\(\s*(?<argument>'(?:[^'\\]|\\.)*'|[^)]*)/gu)];
    for (const call of calls) {
      assert.match(call.groups.argument, /^'/u, `${name} asks for a word that is no literal: ${call[0]}`);
      asked.add(call.groups.argument.slice(1, -1));
    }
  }
  const source = readFileSync(join(folder, 'pagewords.cpp'), 'utf8');
  const listed = [...source.matchAll(/N_\("(?<word>[^"]*)"\)/gu)].map((match) => match.groups.word);
  assert.ok(listed.length > 0);
  assert.deepEqual([...listed].sort(), [...asked].sort());
});

test('no name is declared by two files, which are one script in the page', () => {
  const owners = new Map();
  for (const { name, text } of scripts)
    for (const match of text.matchAll(/^(?:export )?(?:async )?(?:function|const|let|class) (?<declared>\w+)/gmu)) {
      const { declared } = match.groups;
      assert.ok(!owners.has(declared), `${declared} stands in ${owners.get(declared)} and in ${name}`);
      owners.set(declared, name);
    }
});

test('all files of the script are joined, each behind those that it imports', () => {
  const list = readFileSync(join(PROJECT, 'cmake/Page.cmake'), 'utf8');
  const order = /set\(CODEBOOK_PAGE_SCRIPTS (?<names>[^)]*)\)/u.exec(list).groups.names.trim().split(/\s+/u);
  assert.deepEqual([...order].sort(), scripts.map(({ name }) => name.replace(/\.js$/u, '')).sort());
  for (const { name, text } of scripts)
    for (const match of text.matchAll(/^import .* from '\.\/(?<imported>\w+)\.js';$/gmu)) {
      const own = order.indexOf(name.replace(/\.js$/u, ''));
      assert.ok(order.indexOf(match.groups.imported) < own, `${name} imports ${match.groups.imported}, which is joined later`);
    }
});
