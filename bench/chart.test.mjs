// Line charts: what is drawn, and where.
import assert from 'node:assert/strict';
import {test} from 'node:test';

import {drawChart} from './chart.mjs';

const panel = (points, more = {}) => ({
    title: 'Rate', x: {title: 'connections'}, y: {title: 'requests per second'}, lines: [{name: 'kept', points}], ...more,
});
const points = [{x: 1, y: 100}, {x: 4, y: 50}, {x: 16, y: 0}];

const dotsOf = svg => [...svg.matchAll(/cx="([\d.]+)" cy="([\d.]+)"/g)].map(([, x, y]) => [Number(x), Number(y)]);

test('labels axes and lines', () => {
    const svg = drawChart([panel(points)]);
    for (const label of ['Rate', 'connections', 'requests per second', 'kept', '>1<', '>16<', '>100<']) {
        assert.ok(svg.includes(label), label);
    }
});

test('shows each doubling as the same distance', () => {
    const [[first], [second], [third]] = dotsOf(drawChart([panel(points)]));
    assert.equal(second - first, third - second);
});

test('shows numbers of things in proportion', () => {
    const [[first], [second], [third]] = dotsOf(drawChart([panel(points, {x: {title: 'viewers', isLinear: true}})]));
    assert.equal((third - first) / (second - first), 5);
});

test('shows values above zero in proportion', () => {
    const [[, high], [, middle], [, low]] = dotsOf(drawChart([panel(points)]));
    assert.equal(middle - high, low - middle);
});

test('puts every second panel beside the one before', () => {
    const dots = dotsOf(drawChart([panel(points), panel(points), panel(points)]));
    assert.ok(dots[3][0] > dots[0][0] && dots[3][1] === dots[0][1]);
    assert.ok(dots[6][0] === dots[0][0] && dots[6][1] > dots[0][1]);
});

test('draws a single value', () => assert.equal(dotsOf(drawChart([panel([{x: 5, y: 3}])])).length, 1));

test('has colors for light and dark pages', () => assert.match(drawChart([panel(points)]), /prefers-color-scheme:dark/));

test('escapes names', () => assert.ok(drawChart([panel(points, {lines: [{name: 'a<b', points}]})]).includes('a&lt;b</text>')));

test('refuses what it cannot draw', () => {
    assert.throws(() => drawChart([]), /nothing to draw/);
    assert.throws(() => drawChart([panel([])]), /nothing to draw/);
    assert.throws(() => drawChart([panel(points, {lines: Array(7).fill({name: 'a', points})})]), /more than 6 lines/);
});
