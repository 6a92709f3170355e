// What is read from the output of wrk.
import assert from 'node:assert/strict';
import {test} from 'node:test';

import {parse} from './wrk.mjs';

const output = extra => `Running 5s test @ http://127.0.0.1:8080/onvif/device_service
  1 threads and 32 connections
  Thread Stats   Avg      Stdev     Max   +/- Stdev
    Latency     1.79ms  414.16us   7.34ms   81.72%
    Req/Sec    17.96k     1.07k   19.46k    78.00%
  Latency Distribution
     50%    1.74ms
     75%    1.94ms
     90%  912.00us
     99%    1.20s
  89303 requests in 5.00s, 62.60MB read
${extra}Requests/sec:  17855.05
Transfer/sec:     12.52MB
`;

test('reads rate and percentiles', () => assert.deepEqual(parse(output('')), {rate: 17855.05, p50: 1.74, p99: 1200}));

test('fails when requests were refused', () => {
    assert.throws(() => parse(output('  Non-2xx or 3xx responses: 7\n')), /Non-2xx or 3xx responses: 7/);
});

test('fails when connections broke', () => {
    assert.throws(() => parse(output('  Socket errors: connect 0, read 3, write 0, timeout 0\n')), /read 3/);
});
