// The formulas of docs/scaling.md.
import assert from 'node:assert/strict';
import {test} from 'node:test';

import {countCameras, readInputs} from './sizing.mjs';

const series = {
    channels: [
        {kind: 'described', channels: 1024, residentKib: 99, share: 0}, {kind: '1080p', channels: 1, residentKib: 3000, share: 0.5},
        {kind: '1080p', channels: 64, residentKib: 3000 + 63 * 2000, share: 0.5 + 63 * 0.25},
    ],
    viewers: [{server: 'GStreamer', viewers: 50, share: 9, kib: 9}, {server: 'zarn-host', viewers: 50, share: 0.5, kib: 600}],
    pulls: [{pulls: 100, last: 1, kib: 1}, {pulls: 5000, last: 250, kib: 80}],
};

test('reads what one channel, viewer and pull cost', () => {
    assert.deepEqual(readInputs(series, 2), {
        idleKib: 1000, channelCores: 0.0025, channelKib: 2000, viewerCores: 0.005, viewerKib: 600, answerSeconds: 0.0001, pullKib: 80,
    });
});

test('divides each resource by what a camera takes of it', () => {
    const site = {viewers: 2, megabits: 4, events: 1, clients: 25, processors: 3, memory: 4, link: 1000, rtsp: 500, used: 0.5};
    const input = {idleKib: 52, channelCores: 0.0025, channelKib: 1000, viewerCores: 0.005, viewerKib: 500, answerSeconds: 0.0001, pullKib: 4};
    const cameras = countCameras(input, site);
    assert.deepEqual({...cameras, processors: Math.round(cameras.processors)},
        {processors: 100, memory: (2 * 1048576 - 152) / 2000, network: 62.5, connections: 250});
});
