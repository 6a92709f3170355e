// The npm package "onvif" as a client with long sessions and many logins.
import assert from 'node:assert/strict';
import {describe, test} from 'node:test';
import {setTimeout as wait} from 'node:timers/promises';
import {promisify} from 'node:util';

import onvif from 'onvif';

import {password, startHost} from './host.mjs';

// Starts a host and calls `run` with a function that logs in and reads the model.
async function logIn(authentication, useWSSecurity, run) {
    const host = await startHost({
        settings: {web_port: 0, rtsp_port: 0, onvif: {enabled: false}, authentication: {enabled: true, ...authentication}},
        channels: {1: {name: 'Gate'}},
    });
    const cam = new onvif.Cam({
        hostname: host.hostname, port: host.port, username: 'admin', password, useWSSecurity, autoconnect: false,
    });
    try {
        await run(async () => {
            const {model} = await promisify(cam.getDeviceInformation.bind(cam))();
            assert.equal(model, 'Würfel');
        });
    } finally {
        assert.equal(await host.stop(), 0);
    }
}

for (const useWSSecurity of [true, false]) {
    describe(`npm onvif ${useWSSecurity ? 'with' : 'without'} its WS-Security header`, () => {
        // The client treats a refused answer as a wrong password, so each answer must arrive before its nonce expires.
        test('goes on over the expiry of its nonces', () => logIn({nonce_seconds: 5}, useWSSecurity, async getModel => {
            await getModel();
            for (const end = Date.now() + 5500; Date.now() < end; await wait(100)) await getModel();
        }));

        test('logs in many times at once', () => logIn({}, useWSSecurity,
            getModel => Promise.all(Array.from({length: 200}, getModel))));
    });
}
