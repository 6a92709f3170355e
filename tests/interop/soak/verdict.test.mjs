import assert from 'node:assert/strict';
import {test} from 'node:test';

import {divide, judge} from './verdict.mjs';

const steady = {residentKib: 50000, threads: 30, descriptors: 40};
const run = (seconds, change = () => ({})) =>
    Array.from({length: seconds}, (_, second) => ({second, ...steady, ...change(second)}));
const failures = verdict => verdict.lines.filter(line => !line.passed).map(line => line.text);

test('the warm-up is five minutes, a sixth of a shorter run', () => {
    assert.deepEqual(divide(1800), {warmUp: 300, window: 600});
    assert.deepEqual(divide(60), {warmUp: 10, window: 25});
});

test('a host that keeps its size passes, also after a warm-up in which it grew', () => {
    const verdict = judge(run(1800, second => second < 300 ? {residentKib: 20000, threads: 10} : {}), 1800, {});
    assert.ok(verdict.passed, failures(verdict).join());
    assert.ok(verdict.lines.length >= 3);
});

test('memory may grow by less than 1 MiB', () => {
    const grow = by => judge(run(1800, second => second >= 900 ? {residentKib: 50000 + by} : {}), 1800, {});
    assert.ok(grow(1023).passed);
    assert.deepEqual(failures(grow(1024)),
        ['resident memory: 50000 KiB after the warm-up, 51024 KiB at the end (may grow by less than 1024 KiB)']);
});

for (const column of ['threads', 'descriptors']) {
    test(`a single one of ${column} that stays fails`, () => {
        const verdict = judge(run(1800, second => second >= 900 ? {[column]: steady[column] + 1} : {}), 1800, {});
        assert.deepEqual(failures(verdict), [`${column}: ${steady[column]} after the warm-up, ${steady[column] + 1} at the end (may grow by less than 1)`]);
    });

    test(`a single one of ${column} that appears in the last minute and stays fails`, () => {
        assert.ok(!judge(run(1800, second => second >= 1740 ? {[column]: steady[column] + 1} : {}), 1800, {}).passed);
    });

    test(`a sample with fewer ${column} says nothing, whenever it is`, () => {
        for (const dip of [358, 1799]) {
            const verdict = judge(run(1800, second => second === dip ? {[column]: steady[column] - 1} : {}), 1800, {});
            assert.ok(verdict.passed, failures(verdict).join());
        }
    });

    test(`${column} that come and go with the clients pass, one that stays below them fails`, () => {
        const wave = second => second % 10 < 3 ? 8 : 0;
        const leaking = extra => judge(run(1800, second =>
            ({[column]: steady[column] + wave(second) + (second >= 900 ? extra : 0)})), 1800, {});
        assert.ok(leaking(0).passed);
        assert.ok(!leaking(1).passed);
    });
}

test('a measurement with holes fails', () => {
    const samples = run(1800).filter(({second}) => second < 1400 || second % 2);
    assert.match(failures(judge(samples, 1800, {}))[0], /^the last window has 400 of 600 samples/);
    assert.ok(!judge([], 60, {}).passed);
});

test('any problem fails and is told', () => {
    const verdict = judge(run(60), 60, {'error of a client': ['snapshot: 503', 'x'], 'lost event': []});
    assert.deepEqual(failures(verdict), ['error of a client: 2, the first: snapshot: 503']);
    assert.ok(verdict.lines.some(line => line.text === 'no lost event'));
});
