// A long run: a zarn-host with many kinds of clients, measured every second. Run by scripts/soak.
//   node soak.mjs MINUTES FOLDER [PICTURE]
// Writes FOLDER/soak.csv, FOLDER/host.log and the picture (default FOLDER/soak.svg). Exits with status 1 when the host
// fails.
import {setMaxListeners} from 'node:events';
import {closeSync, createWriteStream, mkdirSync, openSync, readFileSync, writeFileSync} from 'node:fs';
import {join} from 'node:path';

import {startHost, waitForVideo} from '../host.mjs';
import {ask} from '../soap.mjs';
import {clients} from './clients.mjs';
import {HttpSource, MqttSource, startBroker} from './event_sources.mjs';
import {draw} from './picture.mjs';
import {measure} from './process_size.mjs';
import {repeat} from './schedule.mjs';
import {listen, stay, visitors} from './subscriptions.mjs';
import {judge} from './verdict.mjs';

const eventsPerSecond = 5; // per source
const busySeconds = 45; // of each minute; then only permanent clients remain, so that leaks show
const brokerPort = 1883;
const columns = ['second', 'residentKib', 'anonymousKib', 'threads', 'descriptors', 'latencyMs', 'eventsSent', 'eventsReceived'];
const panels = [
    {column: 'residentKib', title: 'Resident memory (KiB)'},
    {column: 'anonymousKib', title: 'Anonymous memory (KiB)'},
    {column: 'threads', title: 'Threads'},
    {column: 'descriptors', title: 'Descriptors'},
    {column: 'latencyMs', title: 'Latency of GetSystemDateAndTime (ms)'},
];

// Small pictures at a low rate: the clients, not the encoder, should load the host.
const configuration = {
    settings: {
        web_port: 0, rtsp_port: 0, onvif: {enabled: true},
        events: {mqtt: {enabled: true, url: `mqtt://127.0.0.1:${brokerPort}`}},
    },
    channels: {
        1: {name: 'Gate', source: 'test:ball?width=320&height=240&rate=5'},
        2: {name: 'Grüner Hof', source: 'test:smpte?width=320&height=240&rate=5'},
    },
};

const whileBusy = ({period, offset}, action) => async turn => {
    if ((turn * period + offset) % 60 < busySeconds) await action(turn);
};

const health = async host => (await fetch(`http://${host.hostname}:${host.port}/api/health`)).json();

async function until(condition, what) {
    for (const deadline = Date.now() + 20000; !await condition();) {
        if (Date.now() > deadline) throw new Error(`waited in vain: ${what}`);
        await new Promise(resolve => setTimeout(resolve, 50));
    }
}

// The clients of a host and their results so far.
class Run {
    samples = [];
    errors = [];
    disorder = [];
    idle = [];
    received = 0;

    constructor(host, sources) {
        this.host = host;
        this.sources = sources;
    }

    report(name, error) {
        this.errors.push(`${new Date().toISOString()} ${name}: ${error.message}`);
        console.log(`  ${this.errors.at(-1)}`);
    }

    async subscribe() {
        const reportAs = name => error => this.report(name, error);
        this.stayers = [];
        for (const name of ['first subscriber', 'second subscriber']) {
            this.stayers.push(await stay(this.host, name, this.sources, reportAs(name)));
        }
        this.stayers.push(await listen(this.host, 'npm onvif', this.sources, reportAs('npm onvif')));
    }

    async sample(second, csv) {
        const begin = performance.now();
        const {status} = await ask(this.host, '<tds:GetSystemDateAndTime/>');
        if (status !== 200) throw new Error(`status ${status}`);
        const latencyMs = Number((performance.now() - begin).toFixed(2));
        const sample = {
            second, ...measure(this.host.pid), latencyMs, eventsSent: this.sources.reduce((sum, {begun}) => sum + begun, 0),
            eventsReceived: this.received + this.stayers.reduce((sum, {delivery}) => sum + delivery.count, 0),
        };
        this.samples.push(sample);
        csv.write(`${columns.map(column => sample[column]).join(',')}\n`);
        if (second % 60 === 59) this.tell(sample);
    }

    tell(sample) {
        console.log(`${(sample.second + 1) / 60} min: ${(sample.residentKib / 1024).toFixed(2)} MiB resident, ${(sample.anonymousKib / 1024).toFixed(2)} MiB of it anonymous, ${sample.threads} threads, ` +
            `${sample.descriptors} descriptors, ${sample.latencyMs} ms, ${sample.eventsSent} events sent, ` +
            `${sample.eventsReceived} received, ${this.errors.length} errors`);
    }

    note(delivery) {
        this.received += delivery.count;
        this.disorder.push(...delivery.problems);
    }

    // Runs all clients concurrently until the time is over.
    async work(seconds, csv) {
        const stop = new AbortController();
        setMaxListeners(0, stop.signal); // one listener per loop
        const loop = async (name, schedule, action) => {
            const rounds = await repeat(schedule, action, error => this.report(name, error), stop.signal);
            if (rounds === 0) this.idle.push(name);
        };
        const loops = [
            loop('sample', {period: 1}, second => second < seconds ? this.sample(second, csv) : stop.abort()),
            ...this.sources.map(source => loop(source.series, {period: 1}, () => source.send(this.host, eventsPerSecond))),
            ...clients.map(({name, action, ...schedule}) => loop(name, schedule, whileBusy(schedule, turn => action(this.host, turn)))),
            ...visitors.map(({name, action, ...schedule}) => loop(name, schedule, whileBusy(schedule,
                async turn => this.note(await action(this.host, turn, this.sources))))),
        ];
        await Promise.all(loops);
    }

    // Waits until everything that was sent has been delivered, then ends the subscriptions.
    async finish() {
        await Promise.all(this.sources.map(source => source.stop()));
        const to = this.sources.map(({series, begun}) => ({series, number: begun}));
        const complete = ({delivery}) => to.every(({series, number}) => delivery.last(series) >= number);
        await until(() => this.stayers.every(complete), 'for the last events').catch(error => this.report('events', error));
        for (const {name, end, delivery} of this.stayers) {
            await end(to).catch(error => this.report(name, error));
            this.note(delivery);
        }
        await until(async () => (await health(this.host)).events.subscriptions.count === 0, 'for the end of every subscription')
            .catch(error => this.report('subscriptions', error));
    }
}

async function stopTimely(host) {
    const begin = Date.now();
    const code = await host.stop();
    const milliseconds = Date.now() - begin;
    return code === 0 && milliseconds < 2000 ? [] : [`status ${code} after ${milliseconds} ms`];
}

async function soak(seconds, folder, picture) {
    mkdirSync(folder, {recursive: true});
    const logFile = join(folder, 'host.log');
    const log = openSync(logFile, 'w');
    const csv = createWriteStream(join(folder, 'soak.csv'));
    csv.write(`${columns.join(',')}\n`);
    const broker = await startBroker(brokerPort);
    let run;
    let end;
    try {
        const host = await startHost(configuration, {log});
        try {
            await waitForVideo(host);
            await until(async () => (await health(host)).events.mqtt.state === 'connected', 'for the broker');
            run = new Run(host, [new HttpSource(), new MqttSource(brokerPort, error => run.report('mqtt', error))]);
            await run.subscribe();
            console.log(`running for ${seconds / 60} minutes; ${folder} has measurements and log`);
            await run.work(seconds, csv);
            await run.finish();
        } finally {
            end = await stopTimely(host);
        }
    } finally {
        await broker.stop();
        csv.end();
        closeSync(log);
    }
    const verdict = judge(run.samples, seconds, {
        'error of a client': run.errors, 'lost, repeated or disordered event': run.disorder, 'client without a round': run.idle,
        'bad end': end, 'error in the log': readFileSync(logFile, 'utf8').split('\n').filter(line => /^\S+ (error|critical) /.test(line)),
    });
    const sample = run.samples.at(-1);
    if (sample) {
        const title = `zarn-host, ${seconds / 60} minutes: ${sample.eventsSent} events sent, ${run.received} received`;
        writeFileSync(picture, draw(title, panels, run.samples, seconds, verdict));
    }
    for (const {passed, text} of verdict.lines) console.log(`${passed ? 'passed' : 'FAILED'}  ${text}`);
    run.errors.concat(run.disorder).slice(0, 20).forEach(text => console.log(`  ${text}`));
    return verdict.passed;
}

const [minutes, folder, picture] = process.argv.slice(2);
if (!(Number(minutes) > 0 && Number(minutes) <= 10080) || !folder) {
    console.error('usage: soak.mjs MINUTES FOLDER [PICTURE]; minutes: more than 0, up to 10080');
    process.exit(2);
}
process.exit(await soak(Math.round(Number(minutes) * 60), folder, picture ?? join(folder, 'soak.svg')) ? 0 : 1);
