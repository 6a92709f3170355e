// How a difference is shown.
import assert from 'node:assert/strict';
import {test} from 'node:test';

import {describeDifference} from './difference.mjs';

test('shows the lines between the first difference and the last', () => {
    assert.equal(describeDifference('a\r\nb\r\nc', 'a\r\nx\r\ny\r\nc'), '  - b\\r\n  + x\\r\n  + y\\r');
});

test('shows elements as lines', () => {
    assert.equal(describeDifference('<a><b/><c/></a>', '<a><b/></a>'), '  - <c/>');
});

test('shows head and body separately', () => {
    assert.equal(describeDifference('A: 1\r\nB: c\r\n\r\n<a/><b/>', 'A: 2\r\nB: c\r\n\r\n<a/><d/>'), '  - A: 1\\r\n  + A: 2\\r\n  - <b/>\n  + <d/>');
});

test('shortens what is long', () => {
    const shown = describeDifference(`${'a\n'.repeat(50)}b`, 'x'.repeat(1000));
    assert.match(shown, /and 39 lines more/);
    assert.match(shown, /x\.\.\.$/);
});
