import {Program, pathOf, startHost} from '../program.mjs';
import {atLeast, atMost, median, show} from '../report.mjs';
import {wrk} from '../wrk.mjs';

export const title = 'GetSystemDateAndTime over keep-alive connections, against a bare Beast server';

const few = 32;
const many = 256;

// Size of the body that the host answers with, so that the bare server sends as much.
async function readBodySize(url) {
    const body = '<s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope"><s:Body>' +
        '<GetSystemDateAndTime xmlns="http://www.onvif.org/ver10/device/wsdl"/></s:Body></s:Envelope>';
    const response = await fetch(url, {method: 'POST', body, headers: {'Content-Type': 'application/soap+xml'}});
    return (await response.arrayBuffer()).byteLength;
}

// Median over rounds of what wrk measures, for each server and number of connections. The servers take turns.
async function measureRounds(servers, rounds, seconds) {
    const results = new Map();
    for (let round = 0; round < rounds; ++round) {
        for (const connections of [few, many]) {
            for (const [name, url] of servers) {
                const key = `${name} ${connections}`;
                results.set(key, [...results.get(key) ?? [], await wrk(url, {connections, seconds, script: 'request.lua'})]);
            }
        }
    }
    return (name, connections, field) => median(results.get(`${name} ${connections}`).map(result => result[field]));
}

export async function measure(context) {
    const {report, processors} = context;
    const host = await startHost();
    const bare = new Program(pathOf('fixed_answer_server'), [String(await readBodySize(host.url))]);
    try {
        const bareUrl = new URL(host.url);
        bareUrl.hostname = '127.0.0.1';
        bareUrl.port = await bare.readLine();
        const of = await measureRounds([['host', host.url], ['bare', bareUrl]], context.isQuick ? 1 : 3, context.seconds(5));
        const [rate, bareRate] = [of('host', few, 'rate'), of('bare', few, 'rate')];
        const {exchangeUs} = await context.measureBare();
        report.add(`HTTP keep-alive, ${few} connections`, `${show(rate)} per second, bare Beast ${show(bareRate)}`,
            {ratio: rate / bareRate, aim: atLeast(0.4)});
        const ceiling = 1 / (1 / bareRate + exchangeUs / 1e6 / processors);
        report.add('the rate if an exchange took no more than bare Beast and bare gSOAP together',
            `${show(ceiling)} per second (gSOAP ${show(exchangeUs)} µs on each of ${processors} processors)`, {ratio: ceiling / bareRate});
        report.add('the same, reached by the host', `${show(rate)} of ${show(ceiling)} per second`, {ratio: rate / ceiling});
        report.add(`rate with ${many} connections against ${few}`, `${show(of('host', many, 'rate'))} per second`,
            {ratio: of('host', many, 'rate') / rate, aim: atLeast(0.95)});
        report.add(`the same, bare Beast`, `${show(of('bare', many, 'rate'))} per second`, {ratio: of('bare', many, 'rate') / bareRate});
        report.add(`99th percentile with ${many} connections against the median with ${few}`,
            `${show(of('host', many, 'p99'))} ms, ${show(of('host', few, 'p50'))} ms`,
            {ratio: of('host', many, 'p99') / of('host', few, 'p50'), aim: atMost(10)});
        report.add(`the same, bare Beast`, `${show(of('bare', many, 'p99'))} ms, ${show(of('bare', few, 'p50'))} ms`,
            {ratio: of('bare', many, 'p99') / of('bare', few, 'p50')});
    } finally {
        await bare.kill();
        await host.stop();
    }
}
