import assert from 'node:assert/strict';
import {test} from 'node:test';

import {repeat} from './schedule.mjs';

const fail = error => { throw error; };

test('rounds come in their period until they are to stop', async () => {
    const stop = new AbortController();
    const begin = Date.now();
    const times = [];
    const rounds = await repeat({period: 0.05}, async () => {
        times.push(Date.now());
        if (times.length === 4) stop.abort();
    }, fail, stop.signal);
    assert.equal(rounds, 4);
    assert.ok(times[3] - begin >= 149, `${times.map(time => time - begin)}`);
});

test('rounds do not overlap: one that takes long makes others drop out', async () => {
    const stop = new AbortController();
    const turns = [];
    let running = 0;
    await repeat({period: 0.02}, async turn => {
        assert.equal(++running, 1);
        await new Promise(resolve => setTimeout(resolve, 50));
        --running;
        if (turns.push(turn) === 2) stop.abort();
    }, fail, stop.signal);
    assert.equal(turns[0], 0);
    assert.ok(turns[1] >= 3, `${turns}`);
});

test('an error and a round without end are reported, and the rounds go on', async () => {
    const stop = new AbortController();
    const errors = [];
    const rounds = await repeat({period: 0.01, limit: 0.05}, turn => {
        if (errors.length === 0) return Promise.reject(new Error('refused'));
        if (errors.length === 1) return new Promise(() => {});
        stop.abort();
        return Promise.resolve(turn);
    }, error => errors.push(error.message), stop.signal);
    assert.deepEqual(errors, ['refused', 'no end within 0.05 s']);
    assert.equal(rounds, 1);
});
