// Runs a real zarn-host for the tests in this folder, with its own home, free ports and a known password.
import {execFile, spawn} from 'node:child_process';
import {mkdtempSync, rmSync, writeFileSync} from 'node:fs';
import {tmpdir} from 'node:os';
import {join} from 'node:path';
import {createInterface} from 'node:readline';

export const password = 'interop-Päss';

const defaults = {
    identity: {
        manufacturer: 'Zarnsuite', model: 'Würfel', firmware: '1.2.3', hardware: 'rack', name: '北门', location: 'Halle 3',
    },
    settings: {web_port: 0, rtsp_port: 0, onvif: {enabled: false}, authentication: {enabled: true}},
    channels: {
        1: {name: 'Gate', source: 'test:ball?width=320&height=240&rate=10'},
        2: {name: 'Grüner Hof', source: 'test:smpte?codec=h265&width=640&height=360&rate=12'},
    },
};

// Starts a host and waits until it is ready. program: its zarn-host; args, environment: further
// options and variables for it; log: destination of its standard error, as for child_process.
// Returns {url, hostname, port, pid, stop()}; stopping twice is harmless.
export async function startHost(configuration = {}, {program = process.env.ZARN_HOST, args = [], environment = {}, log = 'inherit'} = {}) {
    if (!program) throw new Error('ZARN_HOST must name the zarn-host to test');
    const folder = mkdtempSync(join(tmpdir(), 'zarn-interop-'));
    const file = join(folder, 'config.json');
    writeFileSync(file, JSON.stringify({...defaults, ...configuration}));
    const child = spawn(program, ['--config', file, ...args], {
        env: {...process.env, ...environment, ZARN_HOST_PASSWORD: password}, stdio: ['ignore', 'pipe', log],
    });
    const exit = new Promise(resolve => child.once('exit', code => resolve(code)));
    const ready = new Promise((resolve, reject) => {
        createInterface({input: child.stdout}).on('line', line => {
            const match = /^ready (\S+)$/.exec(line);
            if (match) resolve(match[1]);
        });
        exit.then(code => reject(new Error(`zarn-host ended with ${code} before it was ready`)));
        setTimeout(() => reject(new Error('zarn-host was not ready within 60 seconds')), 60000).unref();
    });
    const stop = async () => {
        child.kill('SIGTERM');
        const code = await exit;
        rmSync(folder, {recursive: true, force: true});
        return code;
    };
    try {
        const url = new URL(await ready);
        return {url: url.href, hostname: url.hostname, port: Number(url.port), pid: child.pid, stop};
    } catch (error) {
        await stop();
        throw error;
    }
}

// Waits until the health page reports video on every channel.
export async function waitForVideo(host, deadline = Date.now() + 60000) {
    for (;;) {
        const health = await (await fetch(`http://${host.hostname}:${host.port}/api/health`)).json();
        if (health.channels.every(channel => channel.state === 'running')) return health;
        if (Date.now() > deadline) throw new Error(`no video: ${JSON.stringify(health.channels)}`);
        await new Promise(resolve => setTimeout(resolve, 50));
    }
}

// Runs a program to its end. Returns {code, stdout, stderr}.
export function run(program, args, options = {}) {
    return new Promise(resolve => {
        execFile(program, args, {timeout: 60000, maxBuffer: 64 * 1024 * 1024, ...options},
            (error, stdout, stderr) => resolve({code: error ? error.code ?? 1 : 0, stdout, stderr}));
    });
}

// Adds the account to an address, in the form that players accept.
export function withAccount(uri) {
    const url = new URL(uri);
    url.username = 'admin';
    url.password = password;
    return url.href;
}
