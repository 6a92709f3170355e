// The npm package "onvif" as a client that logs in for a long time, and often.
import assert from 'node:assert/strict';
import {after, before, describe, test} from 'node:test';
import {setTimeout as wait} from 'node:timers/promises';
import {promisify} from 'node:util';

import onvif from 'onvif';

import {password, startHost} from './host.mjs';

for (const useWSSecurity of [true, false]) {
    describe(`npm onvif ${useWSSecurity ? 'with' : 'without'} its WS-Security header`, () => {
        let host;
        let cam;
        before(async () => {
            host = await startHost({
                settings: {
                    web_port: 0, rtsp_port: 0, onvif: {enabled: false}, authentication: {enabled: true, nonce_seconds: 1},
                },
                channels: {1: {name: 'Gate'}},
            });
            cam = new onvif.Cam({
                hostname: host.hostname, port: host.port, username: 'admin', password, useWSSecurity, timeout: 10000,
                autoconnect: false,
            });
        });
        after(async () => assert.equal(await host.stop(), 0));

        const getModel = async () => {
            const {model} = await promisify(cam.getDeviceInformation.bind(cam))();
            assert.equal(model, 'Würfel');
        };

        test('goes on over the expiry of its nonces', async () => {
            for (const end = Date.now() + 2500; Date.now() < end; await wait(100)) await getModel();
        });

        test('logs in many times at once', () => Promise.all(Array.from({length: 200}, getModel)));
    });
}
