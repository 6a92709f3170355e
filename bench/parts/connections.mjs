import {join} from 'node:path';

import {password} from '../../tests/interop/host.mjs';
import {run, startHost} from '../program.mjs';
import {count, show} from '../report.mjs';
import {wrk} from '../wrk.mjs';

export const title = 'GetDeviceInformation with 1, 32 and 256 connections: kept and closed, with and without login, over TLS';

const counts = [1, 32, 256];

// [mode, host, what becomes of a connection, login]
const modes = [
    ['keep-alive', 'open', 'keep', false], ['closing', 'open', 'close', false],
    ['digest', 'login', 'keep', true], ['closing with digest', 'login', 'close', true],
    ['TLS', 'tls', 'keep', false], ['closing with TLS', 'tls', 'close', false],
];

async function makeCertificate(folder) {
    const [certificate, key] = ['certificate.pem', 'key.pem'].map(name => join(folder, name));
    await run('openssl', ['req', '-x509', '-newkey', 'ec', '-pkeyopt', 'ec_paramgen_curve:P-256', '-nodes', '-subj', '/CN=localhost',
        '-days', '2', '-keyout', key, '-out', certificate], {stdio: ['pipe', 'pipe', 'ignore']});
    return {certificate, private_key: key};
}

// A fresh challenge: [realm, nonce, password]. The host remembers only so many logins of one nonce.
async function fetchLogin(url) {
    const response = await fetch(url, {method: 'POST'});
    const challenge = response.headers.get('www-authenticate');
    return [...['realm', 'nonce'].map(name => new RegExp(`${name}="([^"]*)"`).exec(challenge)[1]), password];
}

export async function measure(context) {
    const settings = {
        open: {}, login: {authentication: {enabled: true}}, tls: {tls: await makeCertificate(context.folder)},
    };
    const plain = new Map();
    for (const [mode, kind, then, needsLogin] of modes) {
        const host = await startHost({settings: settings[kind]});
        try {
            for (const connections of counts) {
                const args = [then, ...needsLogin ? await fetchLogin(host.url) : []];
                const {rate, p50, p99} = await wrk(host.url, {connections, seconds: context.seconds(5), script: 'information.lua', args});
                if (mode === 'keep-alive') plain.set(connections, rate);
                context.report.add(`${mode}, ${count(connections, 'connection')}`,
                    `${show(rate)} per second, p50 ${show(p50)} ms, p99 ${show(p99)} ms`, {ratio: rate / plain.get(connections)});
                context.report.addPoint('connections', {mode, connections, rate, p50, p99});
            }
        } finally {
            await host.stop();
        }
    }
}
