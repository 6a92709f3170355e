// Series of measurements are read as they were written.
import assert from 'node:assert/strict';
import {test} from 'node:test';

import {formatSeries, readSeries} from './series.mjs';

test('reads what it wrote', () => {
    const points = [{kind: 'described', channels: 16, share: 0.25}, {kind: '1080p at 4 Mbit/s', channels: 64, share: 0}];
    assert.deepEqual(readSeries(formatSeries(points)), points);
});

test('refuses a text that would become two', () => assert.throws(() => formatSeries([{mode: 'TLS, closing'}]), /TLS, closing/));
