// Runs the programs that measure and are measured.
import {spawn} from 'node:child_process';
import {readFileSync, writeFileSync} from 'node:fs';
import {dirname, join} from 'node:path';
import {createInterface} from 'node:readline';
import {fileURLToPath} from 'node:url';

import {startHost as startAnyHost} from '../tests/interop/host.mjs';
import {measure} from '../tests/interop/soak/process_size.mjs';

export const root = join(dirname(fileURLToPath(import.meta.url)), '..');
const programs = join(root, 'build/release/bin');
const ticksPerSecond = 100; // of /proc; fixed on Linux

export const pause = seconds => new Promise(resolve => setTimeout(resolve, seconds * 1000));

export const pathOf = name => join(programs, name);

// A program whose lines of output are read one by one.
export class Program {
    #lines;
    #exit;

    // path: of the program; options: of child_process.spawn
    constructor(path, args = [], options = {}) {
        this.name = path;
        this.child = spawn(path, args, {stdio: ['pipe', 'pipe', 'inherit'], ...options});
        this.child.stdin.on('error', () => {}); // it may end before it has read everything
        this.#exit = new Promise(resolve => this.child.once('error', resolve).once('exit', (code, signal) => resolve(code ?? signal)));
        this.#lines = createInterface({input: this.child.stdout})[Symbol.asyncIterator]();
    }

    get pid() { return this.child.pid; }

    // The next line. Throws when the program ends first.
    async readLine() {
        const {value, done} = await this.#lines.next();
        if (done) throw new Error(`${this.name} ended with ${await this.#exit}`);
        return value;
    }

    writeLine(text = '') { this.child.stdin.write(`${text}\n`); }

    // Ends standard input and returns the remaining output. Throws unless the program ends with status 0.
    async finish() {
        this.child.stdin.end();
        const lines = [];
        for (let {value, done} = await this.#lines.next(); !done; {value, done} = await this.#lines.next()) lines.push(value);
        const status = await this.#exit;
        if (status !== 0) throw new Error(`${this.name} ended with ${status}`);
        return lines.join('\n');
    }

    async kill() {
        this.child.kill('SIGTERM');
        await this.#exit;
    }
}

export const run = (path, args, options) => new Program(path, args, options).finish();

// Results of a program that Google Benchmark makes, by name. processor: the one to run on; undefined: all.
export async function benchmark(name, args = [], processor = undefined) {
    const bound = processor === undefined ? [] : ['taskset', '-c', String(processor)];
    const [command, ...rest] = [...bound, pathOf(name), ...args, '--benchmark_format=json'];
    const {benchmarks} = JSON.parse(await run(command, rest, {stdio: ['pipe', 'pipe', 'ignore']}));
    const failed = benchmarks.find(each => each.error_occurred);
    if (failed) throw new Error(`${failed.name}: ${failed.error_message}`);
    return new Map(benchmarks.map(each => [each.name, each]));
}

const limits = {connections: 16384, connections_per_address: 16384, exchanges: 16384, failed_logins_per_minute: 10000};

// Whether zarn-host knows a setting.
export async function knowsSetting(folder, setting) {
    const file = join(folder, 'check.json');
    writeFileSync(file, JSON.stringify({settings: {}, channels: {}}));
    const child = new Program(pathOf('zarn-host'), ['--config', file, '--set', setting, '--check'], {stdio: ['pipe', 'pipe', 'ignore']});
    return child.finish().then(() => true, () => false);
}

// A zarn-host whose limits allow the load. settings, channels: of its configuration.
// Returns what startHost of the interop tests returns, with startMs and the RTSP port.
export async function startHost({settings = {}, channels = {}} = {}) {
    const begin = performance.now();
    const host = await startAnyHost({
        identity: {},
        settings: {
            web_port: 0, rtsp_port: 0, authentication: {enabled: false}, ...settings, limits: {...limits, ...settings.limits},
        },
        channels,
    }, {program: pathOf('zarn-host'), args: ['--log-level', 'warning']});
    const startMs = performance.now() - begin;
    return {...host, startMs};
}

// The status page of a host without TLS.
export const readHealth = async host => (await fetch(`http://127.0.0.1:${host.port}/api/health`)).json();

// {residentKib, threads, descriptors} of a process.
export const sizeOf = measure;

function processorTime(pid) {
    const fields = readFileSync(`/proc/${pid}/stat`, 'latin1').replace(/^.*\) /s, '').split(' ');
    return (Number(fields[11]) + Number(fields[12])) / ticksPerSecond; // utime and stime
}

// Starts to measure a process. The function that is returned gives its share of one core in percent since then.
export function beginShare(pid) {
    const [time, begin] = [processorTime(pid), performance.now()];
    return () => (processorTime(pid) - time) / (performance.now() - begin) * 1e5;
}

// The share of one core in percent over a time.
export async function measureShare(pid, seconds) {
    const share = beginShare(pid);
    await pause(seconds);
    return share();
}
