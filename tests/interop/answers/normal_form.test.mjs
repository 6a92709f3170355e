// Which differences between two responses are hidden, and which are not.
import assert from 'node:assert/strict';
import {test} from 'node:test';

import {Subscriptions, toNormalForm} from './normal_form.mjs';

const response = (fields, body = '', kept = true) => ({head: `HTTP/1.1 200 OK\r\n${fields}\r\n\r\n`, body: Buffer.from(body), kept});
const normal = (...given) => toNormalForm(response(...given), new Subscriptions());

const now = '2026-11-22T18:50:06Z';
const longAgo = '2000-01-01T00:00:00Z';
const kept = 'A: b';
const times = (current, end) => `<tev:CurrentTime>${current}</tev:CurrentTime><tev:TerminationTime>${end}</tev:TerminationTime>`;

// [what, a response, another]
const alike = [
    ['date', ['Date: Sun, 22 Nov 2026 18:50:06 GMT'], ['Date: Mon, 01 Feb 2027 01:02:03 GMT']],
    ['nonce', ['WWW-Authenticate: Digest nonce="a", qop="auth"'], ['WWW-Authenticate: Digest nonce="b", qop="auth"']],
    ['present time and the same end',
        [kept, times(now, '2026-11-22T18:55:06Z')], [kept, times('2027-11-22T18:50:06Z', '2027-11-22T18:55:05Z')]],
    ['end that comes nearer while a client pulls',
        [kept, times(now, '2026-11-22T19:50:06Z')], [kept, times('2026-11-22T18:54:06Z', '2026-11-22T19:50:06Z')]],
    ['time since an end that is long ago', [kept, times(now, longAgo)], [kept, times('2026-11-22T18:55:06Z', longAgo)]],
    ['length that follows from a replaced body',
        ['Content-Length: 23', '<tt:Hour>9</tt:Hour>ab'.padEnd(23)],
        ['Content-Length: 24', '<tt:Hour>10</tt:Hour>ab'.padEnd(24)]],
    ['subscription', ['A: b', 'Subscription?Idx=1 Subscription?Idx=2'], ['A: b', 'Subscription?Idx=9 Subscription?Idx=4']],
];
const different = [
    ['form of a date', ['Date: Sun, 22 Nov 2026 18:50:06 GMT'], ['Date: 2026-11-22']],
    ['order of fields', ['A: b\r\nC: d'], ['C: d\r\nA: b']],
    ['case of a field', ['Content-length: 0'], ['Content-Length: 0']],
    ['missing nonce', ['WWW-Authenticate: Digest nonce="a"'], ['WWW-Authenticate: Digest nonce=""']],
    ['end of a subscription', [kept, times(now, '2026-11-22T18:55:06Z')], [kept, times(now, '2026-11-22T18:57:06Z')]],
    ['end that is long ago', [kept, times(now, longAgo)], [kept, times(now, '2000-01-01T00:00:01Z')]],
    ['form of a time', [kept, times(now, '2026-11-22T18:55:06Z')], [kept, times(now, '2026-11-22 18:55:06')]],
    ['time of an event', ['A: b', 'UtcTime="2026-11-22T18:50:06Z"'], ['A: b', 'UtcTime="2026-11-22T18:50:07Z"']],
    ['wrong length', ['Content-Length: 20', '<tt:Hour>9</tt:Hour>'], ['Content-Length: 21', '<tt:Hour>9</tt:Hour>']],
    ['repeated subscription', ['A: b', 'Subscription?Idx=1 Subscription?Idx=2'], ['A: b', 'Subscription?Idx=1 Subscription?Idx=1']],
    ['white space', ['A: b', '<a/>\n'], ['A: b', '<a/>']],
    ['end of the connection', ['A: b', '', true], ['A: b', '', false]],
];

for (const [what, one, other] of alike) test(`hides another ${what}`, () => assert.equal(normal(...one), normal(...other)));
for (const [what, one, other] of different) test(`shows another ${what}`, () => assert.notEqual(normal(...one), normal(...other)));

test('hides the bytes of a picture, not that there is one', () => {
    const picture = bytes => toNormalForm(
        {...response(`Content-Type: image/jpeg\r\nContent-Length: ${bytes.length}`), body: Buffer.from(bytes)}, new Subscriptions());
    assert.equal(picture([0xff, 0xd8, 1]), picture([0xff, 0xd8, 2, 3]));
    assert.notEqual(picture([0xff, 0xd8, 1]), picture([1, 2, 3]));
});
