import assert from 'node:assert/strict';
import {execFileSync} from 'node:child_process';
import {mkdtempSync, rmSync, writeFileSync} from 'node:fs';
import {tmpdir} from 'node:os';
import {join} from 'node:path';
import {test} from 'node:test';

import {chooseRange, chooseStep, draw} from './picture.mjs';

const panels = [{column: 'threads', title: 'Threads'}, {column: 'latency', title: 'Latency <ms>'}];
const samples = [0, 30, 60, 120].map(second => ({second, threads: 20 + second / 60, latency: 1.5}));
const verdict = {passed: false, warmUp: 20, lines: [{passed: true, text: 'a & b'}, {passed: false, text: 'c'}]};
const drawn = () => draw('A run', panels, samples, 120, verdict);

test('steps are round and about as many as wanted', () => {
    assert.equal(chooseStep(30, 10), 5);
    assert.equal(chooseStep(100, 10), 10);
    assert.ok(Math.abs(chooseStep(0.3, 4) - 0.1) < 1e-12);
});

test('an axis holds every value, also when all are the same', () => {
    assert.deepEqual(chooseRange([21, 29]), {from: 20, to: 30, step: 2});
    const flat = chooseRange([5, 5]);
    assert.ok(flat.from <= 5 && flat.to >= 5 && flat.to > flat.from);
});

test('every panel is a line with a point per sample, within the panel', () => {
    const lines = [...drawn().matchAll(/<polyline points="([^"]*)"/g)].map(([, points]) => points.split(' ').map(point => point.split(',').map(Number)));
    assert.deepEqual(lines.map(line => line.length), [4, 4]);
    assert.deepEqual(lines[0].map(([x]) => x), [70, 297.5, 525, 980]);
    const heights = lines[0].map(([, y]) => y);
    assert.deepEqual(heights, [...heights].sort((a, b) => b - a)); // larger values are higher up
    assert.ok(heights[0] > heights[3]);
    assert.ok(Math.min(...lines[1].map(([, y]) => y)) > Math.max(...heights), 'panels overlap');
});

test('the verdict and every line of it are told, marked and escaped', () => {
    const text = drawn();
    assert.match(text, /class="bad">failed</);
    assert.match(text, /class="good">✓ a &amp; b</);
    assert.match(text, /class="bad">✗ c</);
    assert.match(text, /Latency &lt;ms&gt;/);
});

test('it is well-formed XML', context => {
    const folder = mkdtempSync(join(tmpdir(), 'zarn-picture-'));
    context.after(() => rmSync(folder, {recursive: true}));
    const file = join(folder, 'picture.svg');
    writeFileSync(file, drawn());
    execFileSync('xmllint', ['--noout', file]); // throws when it is not well-formed
});

test('without samples there is nothing to draw', () => assert.throws(() => draw('x', panels, [], 10, verdict), /nothing to draw/));
