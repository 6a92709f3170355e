import {Program, beginShare, knowsSetting, measureShare, pathOf, readHealth, sizeOf, startHost} from '../program.mjs';
import {atMost, show} from '../report.mjs';
import {rate, waitForVideo} from '../video.mjs';

export const title = '1080p streams over RTSP/TCP, against GStreamer\'s own server with shared media';

// [viewers, channels]
const audiences = [[10, 1], [50, 1], [100, 1], [200, 20], [500, 1]];
const costly = 50; // viewers that tell what one costs
const connections = 2000;
const picture = 1000 / rate; // interval in milliseconds

const paths = channels => Array.from({length: channels}, (_, index) => `/channels/${index + 1}`);

// What the viewers saw, with the server's share of a core in percent and its threads meanwhile.
async function watch(pid, port, [viewers, channels], seconds) {
    const audience = new Program(pathOf('viewers'), [port, viewers, seconds, rate].map(String).concat(paths(channels)));
    await audience.readLine(); // "watching"
    const share = beginShare(pid);
    const result = JSON.parse(await audience.readLine());
    const {threads, residentKib} = sizeOf(pid);
    const used = share();
    await audience.finish();
    return {...result, share: used, threads, residentKib};
}

// Starts zarn-host with the channels; returns {pid, port, idle, stop}, idle being its share of a core without viewers.
async function startOwn(file, channels, seconds, limits) {
    const sources = Object.fromEntries(paths(channels).map((_, index) => [index + 1, {source: file}]));
    const host = await startHost({settings: {limits}, channels: sources});
    try {
        await waitForVideo(host);
        const {residentKib} = sizeOf(host.pid);
        const idle = await measureShare(host.pid, seconds);
        return {pid: host.pid, port: (await readHealth(host)).listeners.rtsp.port, idle, residentKib, stop: () => host.stop()};
    } catch (error) {
        await host.stop();
        throw error;
    }
}

// GStreamer's server reads its file for viewers only, so that all of its share is theirs.
async function startShared(file, channels) {
    const server = new Program(pathOf('shared_media_server'), [file, String(channels)]);
    const port = await server.readLine();
    return {pid: server.pid, port, idle: 0, residentKib: sizeOf(server.pid).residentKib, stop: () => server.kill()};
}

async function measureServer(start, audience, seconds) {
    const server = await start();
    try {
        const seen = await watch(server.pid, server.port, audience, seconds);
        return {...seen, each: (seen.share - server.idle) / audience[0], kib: (seen.residentKib - server.residentKib) / audience[0]};
    } finally {
        await server.stop();
    }
}

// Adds the rows of an audience. own is undefined when the host cannot serve so many.
function addRows(report, [viewers, channels], own, shared) {
    const what = `${viewers} viewers of ${channels === 1 ? 'one channel' : `${channels} channels`}`;
    if (!own) {
        report.add(what, 'not measured: this host has no settings.limits.rtsp_connections');
        return;
    }
    // A row for a column: what the host reached, and GStreamer's server.
    const add = (name, column, describe, aim) => report.add(`${what}: ${name}`, `${describe(own)}; GStreamer's server ${describe(shared)}`,
        {ratio: shared[column] > 0 ? own[column] / shared[column] : undefined, ...aim});
    add('longest gap between pictures, in picture intervals', 'max', ({max, p99}) => `${show(max / picture)} (p99 ${show(p99 / picture)})`,
        viewers >= 200 && {value: own.max / picture, aim: atMost(2)});
    add('viewers that stuttered', 'stuttered', ({stuttered}) => String(stuttered),
        viewers >= 200 && {value: own.stuttered, aim: atMost(0)});
    add('time to the first picture', 'firstP50', ({firstP50, firstMax}) => `${show(firstP50)} ms, at most ${show(firstMax)} ms`);
    add('share of a core for each', 'each', ({each}) => `${show(each)} %`, viewers === costly && {value: own.each, aim: atMost(0.5, ' %')});
    add('threads of the process', 'threads', ({threads}) => String(threads), viewers === costly && {value: own.threads, aim: atMost(40)});
    add('memory for each', 'kib', ({kib}) => `${show(kib)} KiB`);
    const lost = own.lost + shared.lost;
    if (lost > 0) report.add(`${what}: packets lost`, `${own.lost}; GStreamer's server ${shared.lost}`);
}

export async function measure(context) {
    const {report} = context;
    const seconds = context.seconds(20);
    const {long} = await context.getVideo();
    const isBounded = !await knowsSetting(context.folder, `settings.limits.rtsp_connections=${connections}`);
    const limits = isBounded ? {} : {rtsp_connections: connections};
    for (const audience of audiences) {
        const [viewers, channels] = audience;
        const shared = await measureServer(() => startShared(long, channels), audience, seconds);
        const own = isBounded && viewers > 100 ? undefined :
            await measureServer(() => startOwn(long, channels, context.seconds(10), limits), audience, seconds);
        addRows(report, audience, own, shared);
        for (const [server, seen] of [['GStreamer', shared], ...own ? [['zarn-host', own]] : []]) {
            const {each, p50, p99, max, stuttered, joining, firstP50, firstMax, kib, threads} = seen;
            report.addPoint('viewers', {
                server, viewers, channels, share: each, p50, p99, max, stuttered, joining, firstP50, firstMax, kib, threads,
            });
        }
    }
}
