import {ask} from '../../tests/interop/soap.mjs';
import {measureShare, pause, sizeOf, startHost} from '../program.mjs';
import {count, median, show} from '../report.mjs';
import {waitForVideo} from '../video.mjs';

export const title = 'described channels, and channels with video';

const described = [16, 64, 256, 1024];
const withVideo = [1, 16, 64];
const repetitions = 20;

const video = {codec: 'video/x-h264', width: 1920, height: 1080, rate: '25/1'};

const makeChannels = (count, properties) =>
    Object.fromEntries(Array.from({length: count}, (_, index) => [index + 1, {name: `Channel ${index + 1}`, ...properties}]));

async function timeProfiles(host, operation) {
    const times = [];
    for (let i = 0; i < repetitions; ++i) {
        const begin = performance.now();
        const {status} = await ask(host, operation);
        if (status !== 200) throw new Error(`${operation}: status ${status}`);
        times.push(performance.now() - begin);
    }
    return median(times);
}

async function measureHost(host, seconds) {
    const share = await measureShare(host.pid, seconds);
    const media = await timeProfiles(host, '<trt:GetProfiles/>');
    const media2 = await timeProfiles(host, '<tr2:GetProfiles><tr2:Type>All</tr2:Type></tr2:GetProfiles>');
    return {startMs: host.startMs, ...sizeOf(host.pid), share, media, media2};
}

function addRows(report, what, {startMs, residentKib, threads, share, media, media2}) {
    report.add(`${what}: from start to "ready"`, `${show(startMs)} ms`);
    report.add(`${what}: memory`, `${show(residentKib / 1024)} MiB resident, ${threads} threads`);
    report.add(`${what}: share of a core`, `${show(share)} %`);
    report.add(`${what}: GetProfiles over HTTP, of Media and Media2`, `${show(media)} ms and ${show(media2)} ms`);
}

// All snapshots at once: milliseconds until each is there.
async function takeSnapshots(host, count) {
    const begin = performance.now();
    return Promise.all(Array.from({length: count}, async (_, index) => {
        const response = await fetch(`http://127.0.0.1:${host.port}/snapshot/${index + 1}/latest.jpeg`);
        const bytes = (await response.arrayBuffer()).byteLength;
        return {status: response.status, bytes, milliseconds: performance.now() - begin};
    }));
}

export async function measure(context) {
    const {report} = context;
    for (const channels of described) {
        const host = await startHost({channels: makeChannels(channels, {video})});
        try {
            const result = await measureHost(host, context.seconds(10));
            report.addPoint('channels', {kind: 'described', channels, ...result});
            addRows(report, `${show(channels)} described channels`, result);
        } finally {
            await host.stop();
        }
    }
    const {once} = await context.getVideo();
    for (const channels of withVideo) {
        const host = await startHost({channels: makeChannels(channels, {source: once})});
        try {
            const begin = performance.now();
            await waitForVideo(host);
            const running = host.startMs + performance.now() - begin;
            await pause(context.seconds(5)); // until every channel holds a group of pictures
            const result = await measureHost(host, context.seconds(10));
            const snapshots = await takeSnapshots(host, channels);
            const taken = snapshots.filter(({status}) => status === 200);
            const last = Math.max(...snapshots.map(({milliseconds}) => milliseconds));
            report.addPoint('channels', {kind: '1080p at 4 Mbit/s', channels, ...result});
            const what = `${count(channels, 'channel')} of 1080p at 4 Mbit/s`;
            addRows(report, what, result);
            report.add(`${what}: from start until all run`, `${show(running)} ms`);
            report.add(`${what}: snapshots of all at once`, `${taken.length} taken, all answered within ${show(last)} ms`,
                {ratio: taken.length / channels});
        } finally {
            await host.stop();
        }
    }
}
