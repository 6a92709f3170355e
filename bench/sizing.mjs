// How many hosts a site needs, by the formulas of docs/scaling.md and the last run of scripts/bench:
//   node sizing.mjs [--NAME NUMBER]...
// The names are those of `defaults` below.
import {existsSync, readFileSync} from 'node:fs';
import {dirname, join} from 'node:path';
import {fileURLToPath} from 'node:url';

import {readSeries} from './series.mjs';

const defaults = {
    cameras: 10000,
    viewers: 1.1, // of each camera
    megabits: 4, // per second of a stream
    events: 0.1, // per second of each camera
    clients: 4, // of each host
    processors: 2, // of a machine
    memory: 4, // of a machine, in GiB
    link: 1000, // of a machine, in Mbit/s
    rtsp: 1000, // connections of a host
    used: 0.7, // the part of each that may be used
};

const kibPerGib = 1 << 20;

// The measured inputs of the formulas: shares in cores, memory in KiB, time in seconds.
// series: {channels, viewers, pulls}; processors: of the machine that measured
export function readInputs({channels, viewers, pulls}, processors) {
    const [one, most] = [Math.min, Math.max].map(choose => {
        const real = channels.filter(({kind}) => kind !== 'described');
        return real.find(point => point.channels === choose(...real.map(each => each.channels)));
    });
    const perChannel = column => (most[column] - one[column]) / (most.channels - one.channels);
    const viewer = viewers.find(point => point.server === 'zarn-host' && point.viewers === 50);
    const pull = pulls.at(-1);
    return {
        idleKib: one.residentKib - perChannel('residentKib'),
        channelCores: perChannel('share') / 100,
        channelKib: perChannel('residentKib'),
        viewerCores: viewer.share / 100,
        viewerKib: viewer.kib,
        answerSeconds: pull.last / 1000 * processors / pull.pulls,
        pullKib: pull.kib,
    };
}

// The cameras that one host can carry, by resource.
export function countCameras(input, site) {
    return {
        processors: site.used * site.processors /
            (input.channelCores + site.viewers * input.viewerCores + site.events * site.clients * input.answerSeconds),
        memory: (site.used * site.memory * kibPerGib - input.idleKib - site.clients * input.pullKib) /
            (input.channelKib + site.viewers * input.viewerKib),
        network: site.used * site.link / (site.viewers * site.megabits),
        connections: site.rtsp / site.viewers,
    };
}

function readArguments(given) {
    const site = {...defaults};
    for (let i = 0; i < given.length; i += 2) {
        const name = given[i].replace(/^--/, '');
        const value = Number(given[i + 1]);
        if (!(name in defaults) || !(value > 0)) {
            console.error(`usage: sizing.mjs [--NAME NUMBER]...; names: ${Object.keys(defaults).join(' ')}; numbers above 0`);
            process.exit(2);
        }
        site[name] = value;
    }
    return site;
}

async function main() {
    const site = readArguments(process.argv.slice(2));
    const folder = join(dirname(fileURLToPath(import.meta.url)), '../build/bench');
    const series = {};
    for (const name of ['channels', 'viewers', 'pulls']) {
        const file = join(folder, `${name}.csv`);
        if (!existsSync(file)) {
            console.error(`${file} is missing: run scripts/bench ${name}`);
            process.exit(1);
        }
        series[name] = readSeries(readFileSync(file, 'utf8'));
    }
    const input = readInputs(series, series.pulls.at(-1).processors);
    for (const [name, value] of Object.entries(input)) console.log(`${name.padEnd(14)} ${Number(value.toPrecision(3))}`);
    const cameras = countCameras(input, site);
    for (const [resource, count] of Object.entries(cameras)) console.log(`cameras for each host by ${resource}: ${Math.floor(count)}`);
    const each = Math.floor(Math.min(...Object.values(cameras)));
    console.log(each < 1 ? 'such a machine carries no camera' : `hosts for ${site.cameras} cameras: ${Math.ceil(site.cameras / each)}`);
}

if (process.argv[1] === fileURLToPath(import.meta.url)) await main();
