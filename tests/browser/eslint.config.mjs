// The linter of the page's script and of these tests. Its modules lie in the folder that CODEBOOK_NODE_MODULES names.
import { createRequire } from 'node:module';
import { join, resolve } from 'node:path';

const require = createRequire(join(resolve(process.env.CODEBOOK_NODE_MODULES), 'of.js'));
const js = require('@eslint/js');
const globals = require('globals');

const common = {
  'array-callback-return': 'error',
  eqeqeq: 'error',
  'no-eval': 'error',
  'no-implied-eval': 'error',
  'no-param-reassign': 'error',
  'no-shadow': 'error',
  'no-template-curly-in-string': 'error',
  'no-undef-init': 'error',
  'no-unneeded-ternary': 'error',
  'no-unused-vars': 'error',
  'no-use-before-define': ['error', { functions: false, variables: false }],
  'no-var': 'error',
  'object-shorthand': 'error',
  'prefer-const': 'error',
  'require-unicode-regexp': 'error',
};

// What would read text as markup or as code.
const markup = ['innerHTML', 'outerHTML', 'insertAdjacentHTML', 'write', 'writeln', 'srcdoc'].map((property) => ({
  property,
  message: 'Nothing that comes from the data is ever read as markup.',
}));

export default [
  js.configs.recommended,
  { languageOptions: { ecmaVersion: 2023, sourceType: 'module' }, rules: common },
  {
    files: ['runtime/**/*.js'],
    languageOptions: { globals: globals.browser },
    rules: { 'no-restricted-properties': ['error', ...markup], 'no-console': 'error', 'no-alert': 'error' },
  },
  { files: ['tests/browser/**/*.mjs'], languageOptions: { globals: { ...globals.node, ...globals.browser } } },
];
