import assert from 'node:assert/strict';
import {test} from 'node:test';

import {Delivery} from './delivery.mjs';

function take(...texts) {
    const delivery = new Delivery('gate');
    for (const text of texts) delivery.take(text);
    return delivery;
}

test('two series in order are no problem, however they mix', () => {
    const delivery = take('http 4', 'mqtt 9', 'mqtt 10', 'http 5', 'http 6');
    delivery.finish('http', 5, 6);
    delivery.finish('mqtt', 9, 10);
    assert.deepEqual(delivery.problems, []);
    assert.equal(delivery.count, 5);
    assert.equal(delivery.last('http'), 6);
});

test('an event that is left out, comes twice or too early is a problem', () => {
    assert.deepEqual(take('http 1', 'http 3').problems, ['gate: after http 1 came http 3']);
    assert.deepEqual(take('http 1', 'http 1').problems, ['gate: after http 1 came http 1']);
    assert.deepEqual(take('http 2', 'http 1').problems, ['gate: after http 2 came http 1']);
});

test('events that had to come and did not are a problem, at the begin, at the end and altogether', () => {
    for (const [from, to] of [[1, 3], [2, 4]]) {
        const delivery = take('http 2', 'http 3');
        delivery.finish('http', from, to);
        assert.deepEqual(delivery.problems, [`gate: of http ${from} to ${to} came 2 to 3`]);
    }
    const silent = take();
    silent.finish('http', 1, 1);
    assert.deepEqual(silent.problems, ['gate: of http 1 to 1 came none']);
});

test('a subscription that lived between two events had to get none', () => {
    const delivery = take();
    delivery.finish('http', 5, 4);
    assert.deepEqual(delivery.problems, []);
});
