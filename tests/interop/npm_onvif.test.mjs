// The npm package "onvif" as a client: the first steps of a video management system.
import assert from 'node:assert/strict';
import {mkdtemp, rm} from 'node:fs/promises';
import os from 'node:os';
import {join} from 'node:path';
import {after, before, describe, test} from 'node:test';
import {promisify} from 'node:util';

import onvif from 'onvif';

import {password, run, startHost, waitForVideo, withAccount} from './host.mjs';

const channels = [
    {token: 'channels.1', name: 'Gate', width: 320, height: 240, codec: 'h264', encoding: 'H264', rate: 10},
    {token: 'channels.2', name: 'Grüner Hof', width: 640, height: 360, codec: 'hevc', encoding: 'H265', rate: 12},
];

function connect(host, options = {}) {
    return new Promise((resolve, reject) => {
        const cam = new onvif.Cam({
            hostname: host.hostname, port: host.port, username: 'admin', password, timeout: 30000, ...options,
        }, error => error ? reject(error) : resolve(cam));
        cam.on('warning', warning => reject(new Error(warning)));
    });
}

const call = (cam, method, ...args) => promisify(cam[method].bind(cam))(...args);

let host;
before(async () => {
    host = await startHost();
    await waitForVideo(host);
});
after(async () => assert.equal(await host.stop(), 0));

for (const useWSSecurity of [true, false]) {
    describe(`npm onvif ${useWSSecurity ? 'with' : 'without'} its WS-Security header`, () => {
        let cam;
        before(async () => { cam = await connect(host, {useWSSecurity}); });

        test('reads the device information', async () => {
            const information = await call(cam, 'getDeviceInformation');
            assert.equal(information.manufacturer, 'Zarnsuite');
            assert.equal(information.model, 'Würfel');
            assert.equal(information.firmwareVersion, '1.2.3');
            assert.equal(information.hardwareId, 'rack');
            assert.equal(information.serialNumber, os.hostname());
        });

        test('finds the five services at the address it connected to', async () => {
            const services = await call(cam, 'getServices', true);
            assert.deepEqual(services.map(service => new URL(service.XAddr).pathname), [
                '/onvif/events_service', '/onvif/device_service', '/onvif/media_service', '/onvif/media2_service',
                '/onvif/analytics_service',
            ]);
            for (const service of services) assert.equal(new URL(service.XAddr).host, new URL(host.url).host);
        });

        test('reads the capabilities', async () => {
            const capabilities = await call(cam, 'getCapabilities');
            assert.equal(capabilities.events.WSPullPointSupport, true);
            assert.equal(capabilities.media.XAddr, host.url.replace('device_service', 'media_service'));
        });

        test('reads the scopes', async () => {
            const scopes = (await call(cam, 'getScopes')).map(scope => scope.scopeItem);
            assert.equal(scopes.length, 8);
            assert.ok(scopes.includes('onvif://www.onvif.org/name/北门'));
            assert.ok(scopes.includes('onvif://www.onvif.org/location/Halle 3'));
        });

        test('reads the clock, to the second', async () => {
            const date = await call(cam, 'getSystemDateAndTime');
            assert.ok(Math.abs(date.getTime() - Date.now()) < 5000, `${date} is not now`);
        });

        test('reads host name, interfaces, protocols and users', async () => {
            assert.equal((await call(cam, 'getHostname')).name, os.hostname());
            const interfaces = [(await call(cam, 'getNetworkInterfaces'))].flat();
            const addresses = interfaces.map(entry => entry.IPv4.config.fromDHCP.address);
            assert.ok(addresses.includes(host.hostname), `${addresses} lacks ${host.hostname}`);
            const {networkProtocols: protocols} = await call(cam, 'getNetworkProtocols');
            assert.deepEqual(protocols.map(protocol => protocol.name), ['HTTP', 'RTSP']);
            assert.equal(Number(protocols[0].port), host.port);
            assert.deepEqual((await call(cam, 'getUsers')).map(user => [user.username, user.userLevel]),
                [['admin', 'Administrator']]);
        });

        test('lists a profile per channel with its name, size and codec', async () => {
            const profiles = await call(cam, 'getProfiles');
            assert.deepEqual(profiles.map(profile => [profile.$.token, profile.name]),
                channels.map(channel => [channel.token, channel.name]));
            for (const [index, profile] of profiles.entries()) {
                const encoder = profile.videoEncoderConfiguration;
                assert.equal(encoder.resolution.width, channels[index].width);
                assert.equal(encoder.resolution.height, channels[index].height);
                assert.equal(encoder.encoding, channels[index].encoding);
            }
        });

        test('takes the device for one of Media2', () => assert.equal(cam.media2Support, true));

        test('reads the encoder of every channel and what can be set of it, and sets it as it is', async () => {
            const encoders = await call(cam, 'getVideoEncoderConfigurations');
            assert.deepEqual(encoders.map(encoder => [encoder.$.token, encoder.encoding, encoder.resolution.height]),
                channels.map(channel => [channel.token, channel.encoding, channel.height]));
            for (const [index, channel] of channels.entries()) {
                const options = await call(cam, 'getVideoEncoderConfigurationOptions', {configurationToken: channel.token});
                assert.equal(options.encoding, channel.encoding);
                assert.equal(options.resolutionsAvailable.width, channel.width);
                assert.equal(options.bitrateRange.max, 10000);
                assert.deepEqual(await call(cam, 'setVideoEncoderConfiguration', encoders[index]), encoders);
            }
        });

        test('lists the video sources', async () => {
            const sources = await call(cam, 'getVideoSources');
            assert.deepEqual(sources.map(source => [source.$.token, source.framerate, source.resolution.width]),
                channels.map(channel => [channel.token, channel.rate, channel.width]));
        });

        test('is told where the streams and the snapshots are', async () => {
            for (const [index, {token}] of channels.entries()) {
                const stream = await call(cam, 'getStreamUri', {protocol: 'RTSP', profileToken: token});
                assert.equal(new URL(stream.uri).pathname, `/channels/${index + 1}`);
                const snapshot = await call(cam, 'getSnapshotUri', {profileToken: token});
                assert.equal(new URL(snapshot.uri).pathname, `/snapshot/${index + 1}/latest.jpeg`);
            }
        });
    });

    test(`npm onvif ${useWSSecurity ? 'with' : 'without'} its WS-Security header is refused with a wrong password`, async () => {
        const answer = await new Promise(resolve => {
            const client = new onvif.Cam({
                hostname: host.hostname, port: host.port, username: 'admin', password: 'wrong', useWSSecurity, autoconnect: false,
            });
            client.getDeviceInformation(error => resolve(error));
        });
        assert.match(String(answer), /Digest authentication failed 401/);
    });
}

// The addresses do not depend on the login method.
describe('the video that npm onvif is told', () => {
    let cam;
    before(async () => { cam = await connect(host); });

    test('plays, and has the size and codec of its profile', async () => {
        for (const channel of channels) {
            const {uri} = await call(cam, 'getStreamUri', {protocol: 'RTSP', profileToken: channel.token});
            const probe = await run('ffprobe', ['-v', 'error', '-rtsp_transport', 'tcp', '-select_streams', 'v',
                '-show_entries', 'stream=codec_name,width,height', '-of', 'json', withAccount(uri)]);
            assert.equal(probe.code, 0, probe.stderr);
            const stream = JSON.parse(probe.stdout).streams[0];
            assert.deepEqual([stream.codec_name, stream.width, stream.height],
                [channel.codec, channel.width, channel.height]);
            const decode = await run('ffmpeg', ['-v', 'error', '-rtsp_transport', 'tcp', '-i', withAccount(uri),
                '-frames:v', '20', '-f', 'framemd5', '-']);
            assert.equal(decode.code, 0, decode.stderr);
            const frames = decode.stdout.split('\n').filter(line => /^0,/.test(line)).map(line => line.split(',').at(-1));
            assert.equal(frames.length, 20);
            assert.ok(new Set(frames).size > 1, 'the picture does not change');
        }
    });

    test('has a snapshot that decodes to the size of the channel', async context => {
        const folder = await mkdtemp(join(os.tmpdir(), 'zarn-snapshot-'));
        context.after(() => rm(folder, {recursive: true}));
        for (const channel of channels) {
            const {uri} = await call(cam, 'getSnapshotUri', {profileToken: channel.token});
            const anonymous = await fetch(uri);
            assert.equal(anonymous.status, 401);
            const file = join(folder, `${channel.token}.jpeg`);
            // A busy host answers 503 with Retry-After; curl then asks again.
            const download = await run('curl', ['-sS', '--fail', '--retry', '20', '--retry-max-time', '50',
                '--digest', '-u', `admin:${password}`, '-o', file, uri]);
            assert.equal(download.code, 0, download.stderr);
            const probe = await run('ffprobe', ['-v', 'error', '-show_entries', 'stream=codec_name,width,height',
                '-of', 'csv=p=0', file]);
            assert.equal(probe.stdout.trim(), `mjpeg,${channel.width},${channel.height}`);
        }
    });
});
