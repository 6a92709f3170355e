// The rows and series of scripts/bench.
import assert from 'node:assert/strict';
import {mkdtempSync, readFileSync, rmSync} from 'node:fs';
import {tmpdir} from 'node:os';
import {join} from 'node:path';
import {after, test} from 'node:test';

import {Report, atLeast, atMost, count, formatTable, median, show} from './report.mjs';

const folder = mkdtempSync(join(tmpdir(), 'zarn-report-'));
after(() => rmSync(folder, {recursive: true}));

test('takes the middle of the values', () => {
    assert.equal(median([3, 1, 2]), 2);
    assert.equal(median([4, 1, 2, 3]), 2.5);
});

test('shows three digits, or the whole number', () => {
    assert.deepEqual([0.29342, 1.5, 37660.4, 0, -12.345].map(value => show(value)), ['0.293', '1.5', '37,660', '0', '-12.3']);
});

test('names one thing and several', () => {
    assert.deepEqual([1, 1000].map(number => count(number, 'viewer')), ['1 viewer', '1,000 viewers']);
});

test('knows what an aim allows', () => {
    assert.deepEqual([1.2, 1.25, 1.3].map(atMost(1.25).isMet), [true, true, false]);
    assert.deepEqual([0.39, 0.4].map(atLeast(0.4).isMet), [false, true]);
    assert.equal(atMost(100, ' KiB').text, 'at most 100 KiB');
});

test('aligns the columns of the table', () => {
    assert.equal(formatTable(['a', 'b'], [['long', 'c']]), '| a    | b |\n|------|---|\n| long | c |');
});

test('judges the ratio, or the value that is given', () => {
    const report = new Report(folder);
    report.add('slow', '3', {ratio: 3, aim: atMost(2)});
    report.add('small', '10 KiB', {ratio: 3, value: 10, aim: atMost(20, ' KiB')});
    report.add('information', '5');
    const cells = report.format().split('\n').slice(2).map(line => line.split('|').slice(1, -1).map(cell => cell.trim()));
    assert.deepEqual(cells, [
        ['slow', '3', '3', 'at most 2', 'no'], ['small', '10 KiB', '3', 'at most 20 KiB', 'yes'], ['information', '5', '', '', ''],
    ]);
    assert.equal(report.summarize(), '1 aim met, 1 missed');
});

test('writes each series to its file', () => {
    const report = new Report(folder);
    report.addPoint('viewers', {viewers: 10, share: 0.5});
    report.addPoint('viewers', {viewers: 20, share: 0.25});
    report.write();
    assert.equal(readFileSync(join(folder, 'viewers.csv'), 'utf8'), 'viewers,share\n10,0.5\n20,0.25\n');
});
