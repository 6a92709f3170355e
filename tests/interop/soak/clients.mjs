// Periodic client actions. Each throws when the device does not respond as expected.
import assert from 'node:assert/strict';
import {promisify} from 'node:util';

import onvif from 'onvif';

import {password, run, withAccount} from '../host.mjs';
import {ask} from '../soap.mjs';

export const call = (cam, method, ...args) => promisify(cam[method].bind(cam))(...args);

export function connect(host) {
    return new Promise((resolve, reject) => {
        const cam = new onvif.Cam({
            hostname: host.hostname, port: host.port, username: 'admin', password, timeout: 20000,
        }, error => error ? reject(error) : resolve(cam));
    });
}

const tokenOf = turn => `channels.${turn % 2 + 1}`;

async function logIn(host) {
    const cam = await connect(host);
    assert.equal((await call(cam, 'getDeviceInformation')).model, 'Würfel');
    assert.equal((await call(cam, 'getProfiles')).length, 2);
    assert.equal((await call(cam, 'getServices', true)).length, 5);
    assert.equal((await call(cam, 'getScopes')).length, 8);
    assert.ok((await call(cam, 'getEventProperties')).topicSet.ruleEngine);
}

async function readVideo(host, turn) {
    const cam = await connect(host);
    assert.equal((await call(cam, 'getVideoSources')).length, 2);
    const encoders = await call(cam, 'getVideoEncoderConfigurations');
    const options = await call(cam, 'getVideoEncoderConfigurationOptions', {configurationToken: tokenOf(turn)});
    assert.equal(options.bitrateRange.max, 10000);
    assert.deepEqual(await call(cam, 'setVideoEncoderConfiguration', encoders[turn % 2]), encoders);
}

async function downloadSnapshot(host, turn) {
    const url = `http://${host.hostname}:${host.port}/snapshot/${turn % 2 + 1}/latest.jpeg`;
    const {code, stdout, stderr} = await run('curl', ['-sS', '--fail', '--digest', '-u', `admin:${password}`, url], {encoding: 'buffer'});
    assert.equal(code, 0, String(stderr));
    assert.equal(stdout.subarray(0, 2).toString('hex'), 'ffd8', 'a snapshot is not a JPEG');
}

async function playStream(host, turn) {
    const cam = await connect(host);
    const {uri} = await call(cam, 'getStreamUri', {protocol: 'RTSP', profileToken: tokenOf(turn)});
    const {code, stdout, stderr} = await run('ffmpeg', ['-v', 'error', '-rtsp_transport', turn % 4 < 2 ? 'tcp' : 'udp',
        '-i', withAccount(uri), '-frames:v', '15', '-c', 'copy', '-f', 'framecrc', '-']);
    assert.equal(code, 0, stderr);
    assert.equal(stdout.split('\n').filter(line => /^0,/.test(line)).length, 15, 'a stream ended early');
}

async function guessPassword(host) {
    const {status} = await ask(host, '<tds:GetDeviceInformation/>', {secret: 'guessed'});
    assert.equal(status, 401);
}

async function findDevice(host) {
    const found = await promisify(onvif.Discovery.probe)({timeout: 2000});
    assert.deepEqual(found.map(cam => Number(cam.port)), [host.port]);
}

// Periods divide a minute, so that the load is the same every minute.
export const clients = [
    {name: 'login', period: 5, offset: 0, action: logIn},
    {name: 'video settings', period: 10, offset: 2, action: readVideo},
    {name: 'snapshot', period: 5, offset: 1, action: downloadSnapshot},
    {name: 'stream', period: 20, offset: 3, action: playStream},
    {name: 'wrong password', period: 20, offset: 4, action: guessPassword},
    {name: 'discovery', period: 15, offset: 6, action: findDevice},
];
