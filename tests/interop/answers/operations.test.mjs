// The operations whose answers are compared are those of the table.
import assert from 'node:assert/strict';
import {readFileSync} from 'node:fs';
import {test} from 'node:test';

import {operations} from './requests/operations.mjs';

test('takes every row of the table that has an element', () => {
    const rows = [...readFileSync(new URL('../../../interface/operations.h', import.meta.url), 'utf8').matchAll(/^ +X\(\w+, (\w+, \w+)/gm)]
        .map(([, row]) => row).filter(row => !row.endsWith('_'));
    assert.ok(rows.length > 200);
    assert.deepEqual(operations.map(({prefix, name}) => `${prefix}, ${name}`), rows);
});
