// Compares the HTTP responses of two programs: node compare.mjs OLD NEW [FOLDER]. Run by scripts/compare-answers.
// Both get the same configurations, ports and requests, one after the other. Exits with status 1 if a response differs in
// more than normal_form.mjs replaces. FOLDER receives all responses, in a file for each program and configuration.
import {execFileSync} from 'node:child_process';
import {mkdirSync, mkdtempSync, rmSync, writeFileSync} from 'node:fs';
import {createServer} from 'node:net';
import {tmpdir} from 'node:os';
import {dirname, join} from 'node:path';

import {startHost} from '../host.mjs';
import {describeDifference} from './difference.mjs';
import {sendEvents} from './requests/events.mjs';
import {sendHealth, sendHttp, sendSnapshots} from './requests/http.mjs';
import {sendCredentials, sendGuesses as sendWrongPasswords, sendWithoutLogin} from './requests/logins.mjs';
import {sendMessages} from './requests/messages.mjs';
import {sendOperations} from './requests/operations.mjs';
import {pull, subscribe} from './requests/pull_points.mjs';
import {sendSubscriptions} from './requests/subscriptions.mjs';
import {Session} from './session.mjs';

const video = {codec: 'video/x-h264', width: 1920, height: 1080, rate: '25/1'};
const channels = {
    1: {name: 'Gate', source: 'test:ball?width=320&height=240&rate=10'},
    2: {name: 'Grüner Hof <&>', video},
    3: {name: '', video: {...video, codec: 'video/x-h265', rate: '30000/1001'}},
    4: {},
};

const failuresPerMinute = 5; // of logins, before an address is refused

async function sendEverything(session) {
    await session.fetchChallenge();
    await sendOperations(session);
    if (session.challenge) {
        await sendWithoutLogin(session);
        await sendCredentials(session);
    }
    await sendMessages(session);
    await sendHttp(session);
    await sendSnapshots(session);
    await sendSubscriptions(session);
    await sendEvents(session);
    await sendHealth(session);
}

async function sendGuesses(session) {
    await session.fetchChallenge();
    await sendWrongPasswords(session, failuresPerMinute + 2);
    await sendSnapshots(session);
}

// More requests than the host may work on, then its stop while one still waits.
async function sendTooMany(session) {
    const target = await subscribe(session, 'of a busy host');
    const waiting = [];
    for (const name of ['first', 'second']) {
        waiting.push(await session.begin(`the ${name} pull that waits while the host stops`, pull('PT1H', 1), target));
    }
    await session.ask('one request too many', '<tds:GetScopes/>');
    const stopped = session.host.stop();
    for (const finish of waiting) await finish();
    await stopped;
}

// [name, settings, requests, whether the host speaks TLS]
const runs = [
    ['open', {authentication: {enabled: false}}, sendEverything],
    ['login', {authentication: {enabled: true}, limits: {failed_logins_per_minute: 10000}}, sendEverything],
    ['tls', {authentication: {enabled: true}, limits: {failed_logins_per_minute: 10000}}, sendEverything, true],
    ['guesses', {authentication: {enabled: true}, limits: {failed_logins_per_minute: failuresPerMinute}}, sendGuesses],
    ['busy', {authentication: {enabled: false}, limits: {exchanges: 2}}, sendTooMany],
];

// A port that nobody listens on, below those that the system gives to clients.
async function findPort() {
    for (;;) {
        const port = 12000 + Math.floor(Math.random() * 18000);
        const server = createServer();
        const isFree = await new Promise(resolve => server.once('error', () => resolve(false)).listen(port, () => resolve(true)));
        if (isFree) return new Promise(resolve => server.close(() => resolve(port)));
    }
}

function makeCertificate(folder) {
    const [certificate, key] = ['certificate.pem', 'key.pem'].map(name => join(folder, name));
    execFileSync('openssl', ['req', '-x509', '-newkey', 'ec', '-pkeyopt', 'ec_paramgen_curve:P-256', '-nodes', '-subj', '/CN=localhost',
        '-days', '2', '-keyout', key, '-out', certificate], {stdio: 'ignore'});
    return {certificate, private_key: key};
}

async function waitForVideo(session) {
    for (const deadline = Date.now() + 30000;;) {
        const {channels: [first]} = await session.readHealth();
        if (first.state === 'running' && first.frame_age_ms !== null) return;
        if (Date.now() > deadline) throw new Error(`no video: ${JSON.stringify(first)}`);
        await new Promise(resolve => setTimeout(resolve, 50));
    }
}

async function record(program, settings, send, tls) {
    // A build folder that was moved or copied still names the libraries of the original.
    const environment = {LD_LIBRARY_PATH: join(dirname(program), '../lib')};
    const host = await startHost({settings, channels}, {program, environment, log: 'ignore'});
    const session = new Session(host, tls);
    try {
        await waitForVideo(session);
        await send(session);
    } finally {
        await host.stop();
    }
    return session.records;
}

function writeRecords(file, records) {
    writeFileSync(file, records.map(({name, text}) => `=== ${name}\n${text}\n`).join(''), 'latin1');
}

async function compare(programs, folder, keep) {
    const certificate = makeCertificate(folder);
    let [compared, different] = [0, 0];
    for (const [name, extra, send, tls = false] of runs) {
        const ports = {web_port: await findPort(), rtsp_port: await findPort()};
        const settings = {...ports, onvif: {enabled: false}, ...extra, ...tls && {tls: certificate}};
        const both = [];
        for (const [index, program] of programs.entries()) {
            both.push(await record(program, settings, send, tls));
            if (keep) writeRecords(join(keep, `${name}.${['old', 'new'][index]}`), both[index]);
        }
        const [old, now] = both;
        for (let i = 0; i < Math.max(old.length, now.length); ++i) {
            ++compared;
            if (old[i]?.name === now[i]?.name && old[i].text === now[i].text) continue;
            ++different;
            console.log(`${name}: ${(old[i] ?? now[i]).name}\n${describeDifference(old[i]?.text ?? '', now[i]?.text ?? '')}`);
        }
    }
    console.log(`${compared} responses, ${different} different`);
    return different === 0;
}

const [old, now, keep] = process.argv.slice(2);
if (!now) {
    console.error('usage: compare.mjs OLD NEW [FOLDER]');
    process.exit(2);
}
if (keep) mkdirSync(keep, {recursive: true});
const folder = mkdtempSync(join(tmpdir(), 'zarn-answers-'));
try {
    process.exitCode = await compare([old, now], folder, keep) ? 0 : 1;
} finally {
    rmSync(folder, {recursive: true});
}
