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
const linesOf = (points, x, columns) =>
    columns.map(([column, name]) => ({name, points: points.map(point => ({x: point[x], y: point[column]}))}));

// A horizontal axis for numbers of things, so that costs in proportion to them are straight lines.
const number = title => ({title, isLinear: true});

const panel = (title, x, unit, lines) => ({title, x, y: {title: unit}, lines});

function drawConnections({connections}) {
    const kept = connections.filter(({mode}) => mode === 'keep-alive');
    const x = {title: 'connections'};
    return [
        panel('Rate', x, 'requests per second', linesBy(connections, 'mode', 'connections', 'rate')),
        panel('Latency with keep-alive', x, 'milliseconds',
            linesOf(kept, 'connections', [['p50', '50th percentile'], ['p99', '99th percentile']])),
    ];
}

function drawPulls({pulls}) {
    const x = number('waiting pulls');
    return [
        panel('From an event to the answers', x, 'milliseconds',
            linesOf(pulls, 'pulls', [['p50', '50th percentile'], ['p99', '99th percentile'], ['bare', 'so many exchanges in gSOAP alone']])),
        panel('Memory', x, 'KiB resident for each', linesOf(pulls, 'pulls', [['kib', 'zarn-host']])),
    ];
}

function drawChannels({channels}) {
    const points = channels.map(point => ({...point, mebibytes: point.residentKib / 1024}));
    const [described, real] = [true, false].map(wanted => points.filter(({kind}) => (kind === 'described') === wanted));
    const x = number('channels');
    const xDescribed = number('described channels');
    return [
        panel('Memory with video', x, 'MiB resident', linesBy(real, 'kind', 'channels', 'mebibytes')),
        panel('Processor with video', x, '% of a core', linesBy(real, 'kind', 'channels', 'share')),
        panel('Memory without video', xDescribed, 'MiB resident', linesOf(described, 'channels', [['mebibytes', 'zarn-host']])),
        panel('GetProfiles over HTTP', xDescribed, 'milliseconds', linesOf(described, 'channels', [['media', 'Media'], ['media2', 'Media2']])),
    ];
}

function drawSubscriptions({subscriptions, queues}) {
    const points = subscriptions.map(point => ({...point, more: (point.during - point.before) / 1024}));
    const x = number('subscriptions');
    return [
        panel('Memory', x, 'MiB resident more than without', linesOf(points, 'subscriptions', [['more', 'zarn-host']])),
        panel('Rate', x, 'requests per second',
            linesOf(points, 'subscriptions', [['create', 'CreatePullPointSubscription'], ['renew', 'Renew'], ['end', 'Unsubscribe']])),
        panel('One event into all queues', x, 'microseconds', linesOf(queues, 'subscriptions', [['microsecondsInAll', 'Publish']])),
    ];
}

function drawViewers({viewers}) {
    const points = viewers.filter(({channels}) => channels === 1);
    const draw = (title, column, unit) => panel(title, number('viewers of one channel'), unit, linesBy(points, 'server', 'viewers', column));
    return [
        draw('Processor', 'share', '% of a core for each viewer'), draw('Longest gap between pictures', 'max', 'milliseconds'),
        draw('Time to the first picture, median', 'firstP50', 'milliseconds'), draw('Threads', 'threads', 'threads of the process'),
    ];
}

// [name, series that it is made of, function that makes its panels]
const pictures = [
    ['connections', ['connections'], drawConnections],
    ['pulls', ['pulls'], drawPulls],
    ['channels', ['channels'], drawChannels],
    ['subscriptions', ['subscriptions', 'queues'], drawSubscriptions],
    ['viewers', ['viewers'], drawViewers],
];

const [from = join(root, 'build/bench'), to = join(root, 'docs')] = process.argv.slice(2);
for (const [name, series, draw] of pictures) {
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
