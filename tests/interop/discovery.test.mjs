// Third-party discovery clients find a zarn-host. Run it in a separate network (on_own_network.sh), where no other
// device answers and the WS-Discovery port is free.
import assert from 'node:assert/strict';
import {after, before, test} from 'node:test';
import {promisify} from 'node:util';

import nodeOnvif from 'node-onvif';
import onvif from 'onvif';

import {password, startHost} from './host.mjs';

const probe = options => promisify(onvif.Discovery.probe)({timeout: 1000, ...options});

// Searches repeatedly: the responder may start after the host, or answer after a search has ended.
async function find(search) {
    for (const deadline = Date.now() + 60000;;) {
        const found = await search();
        if (found.length > 0) return found;
        assert.ok(Date.now() < deadline, 'no device was found');
    }
}

let host;
before(async () => {
    host = await startHost({settings: {web_port: 0, rtsp_port: 0, onvif: {enabled: true}}});
});
after(async () => assert.equal(await host.stop(), 0));

test('npm onvif finds the device, and what it found logs in', async () => {
    const found = await find(() => probe());
    assert.equal(found.length, 1);
    const [cam] = found;
    assert.equal(Number(cam.port), host.port);
    assert.equal(cam.path, '/onvif/device_service');
    cam.username = 'admin';
    cam.password = password;
    await promisify(cam.connect.bind(cam))();
    const information = await promisify(cam.getDeviceInformation.bind(cam))();
    assert.equal(information.model, 'Würfel');
});

test('npm onvif is told type, scopes and address', async () => {
    const [answer] = await find(() => probe({resolve: false}));
    const match = answer.probeMatches.probeMatch;
    assert.equal(match.types, 'dn:NetworkVideoTransmitter tds:Device');
    assert.equal(match.XAddrs, host.url);
    assert.ok(match.scopes.split(' ').includes(`onvif://www.onvif.org/name/${encodeURIComponent('北门')}`), match.scopes);
});

test('npm node-onvif finds it once, however many types it asks for', async () => {
    const found = await find(() => nodeOnvif.startProbe());
    assert.deepEqual(found.map(device => device.xaddrs), [[host.url]]);
    assert.ok(found[0].scopes.includes('onvif://www.onvif.org/Profile/Streaming'), found[0].scopes);
    assert.match(found[0].urn, /^urn:uuid:/);
});

test('nobody finds a device whose setting is off', async () => {
    await host.stop();
    host = await startHost();
    assert.deepEqual(await probe({timeout: 4000}), []);
});
