// Draws the pictures of docs/scaling.md from what scripts/bench has written: node bench/plot.mjs [FROM [TO]]
// FROM holds the series (default: build/bench), TO receives the pictures (default: docs). Pictures whose series is missing
// stay as they are.
import {existsSync, readFileSync, writeFileSync} from 'node:fs';
import {dirname, join} from 'node:path';
import {fileURLToPath} from 'node:url';

import {drawChart} from './chart.mjs';
import {readSeries} from './series.mjs';

const root = join(dirname(fileURLToPath(import.meta.url)), '..');

// The lines of a panel: the values of `y` over those of `x`, one line for each value of `by`.
function linesBy(points, by, x, y) {
    return [...new Set(points.map(point => point[by]))].map(name => ({
        name: String(name), points: points.filter(point => point[by] === name).map(point => ({x: point[x], y: point[y]})),
    }));
}

// One line for each of the columns: [[column, name]].
const linesOf = (points, x, columns) => columns.map(([column, name]) => ({name, points: points.map(point => ({x: point[x], y: point[column]}))}));

const scale = (points, column, factor) => points.map(point => ({...point, [column]: point[column] * factor}));

// A horizontal axis for numbers of things, so that costs in proportion to them are straight lines.
const number = title => ({title, isLinear: true});

// For each picture, its series and the panels made of them.
const pictures = {
    connections: {series: ['connections'], draw: ({connections}) => [
        {title: 'Rate', x: {title: 'connections'}, y: {title: 'requests per second'}, lines: linesBy(connections, 'mode', 'connections', 'rate')},
        {title: 'Latency with keep-alive', x: {title: 'connections'}, y: {title: 'milliseconds'},
            lines: linesOf(connections.filter(({mode}) => mode === 'keep-alive'), 'connections', [['p50', '50th percentile'], ['p99', '99th percentile']])},
    ]},
    pulls: {series: ['pulls'], draw: ({pulls}) => [
        {title: 'From an event to the answers', x: number('waiting pulls'), y: {title: 'milliseconds'},
            lines: linesOf(pulls, 'pulls', [['p50', '50th percentile'], ['p99', '99th percentile'], ['bare', 'so many exchanges in gSOAP alone']])},
        {title: 'Memory', x: number('waiting pulls'), y: {title: 'KiB resident for each'}, lines: linesOf(pulls, 'pulls', [['kib', 'zarn-host']])},
    ]},
    channels: {series: ['channels'], draw: ({channels}) => {
        const inMebibytes = scale(channels, 'residentKib', 1 / 1024);
        const [described, real] = [true, false].map(wanted => inMebibytes.filter(({kind}) => (kind === 'described') === wanted));
        return [
            {title: 'Memory with video', x: number('channels'), y: {title: 'MiB resident'}, lines: linesBy(real, 'kind', 'channels', 'residentKib')},
            {title: 'Processor with video', x: number('channels'), y: {title: '% of a core'}, lines: linesBy(real, 'kind', 'channels', 'share')},
            {title: 'Memory without video', x: number('described channels'), y: {title: 'MiB resident'}, lines: linesOf(described, 'channels', [['residentKib', 'zarn-host']])},
            {title: 'GetProfiles over HTTP', x: number('described channels'), y: {title: 'milliseconds'},
                lines: linesOf(described, 'channels', [['media', 'Media'], ['media2', 'Media2']])},
        ];
    }},
    subscriptions: {series: ['subscriptions', 'queues'], draw: ({subscriptions, queues}) => [
        {title: 'Memory', x: number('subscriptions'), y: {title: 'MiB resident more than without'},
            lines: linesOf(subscriptions.map(({during, before, ...point}) => ({...point, more: (during - before) / 1024})), 'subscriptions', [['more', 'zarn-host']])},
        {title: 'Rate', x: number('subscriptions'), y: {title: 'requests per second'},
            lines: linesOf(subscriptions, 'subscriptions', [['create', 'CreatePullPointSubscription'], ['renew', 'Renew'], ['end', 'Unsubscribe']])},
        {title: 'One event into all queues', x: number('subscriptions'), y: {title: 'microseconds'}, lines: linesOf(queues, 'subscriptions', [['microsecondsInAll', 'Publish']])},
    ]},
    viewers: {series: ['viewers'], draw: ({viewers}) => {
        const ofOneChannel = viewers.filter(({channels}) => channels === 1);
        return [['Processor', 'share', '% of a core for each viewer'], ['Longest gap between pictures', 'max', 'milliseconds'],
            ['Time to the first picture, median', 'firstP50', 'milliseconds'], ['Threads', 'threads', 'threads of the process']].map(([title, column, unit]) =>
            ({title, x: number('viewers of one channel'), y: {title: unit}, lines: linesBy(ofOneChannel, 'server', 'viewers', column)}));
    }},
};

const [from = join(root, 'build/bench'), to = join(root, 'docs')] = process.argv.slice(2);
for (const [name, {series, draw}] of Object.entries(pictures)) {
    const files = series.map(each => join(from, `${each}.csv`));
    const missing = files.find(file => !existsSync(file));
    if (missing) {
        console.log(`${name}: ${missing} is missing`);
        continue;
    }
    const points = Object.fromEntries(series.map((each, index) => [each, readSeries(readFileSync(files[index], 'utf8'))]));
    const file = join(to, `scaling-${name}.svg`);
    writeFileSync(file, drawChart(draw(points)));
    console.log(file);
}
