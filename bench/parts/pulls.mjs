import {postEvents} from '../../tests/interop/soap.mjs';
import {Program, measureShare, pathOf, pause, sizeOf, startHost} from '../program.mjs';
import {atMost, show} from '../report.mjs';

export const title = 'PullMessages that wait, and one event that answers all of them';

const settleSeconds = 2; // until the host has taken the last pulls

// Until idle workers have ended (ten seconds) and the host has given memory back, which it does every ten seconds.
const restSeconds = 30;

// [pulls, rounds]
const loads = [[100, 50], [1000, 20], [5000, 5]];

// The host's share of a core and memory before and with waiting pulls, and the latency of the answers.
async function measureLoad(context, pulls, rounds) {
    const host = await startHost();
    const seconds = context.seconds(10);
    try {
        const before = sizeOf(host.pid).residentKib;
        const idle = await measureShare(host.pid, seconds);
        const clients = new Program(pathOf('pull_latency'), [host.port, pulls, context.isQuick ? 2 : rounds].map(String));
        const latency = JSON.parse(await clients.readLine());
        await clients.readLine(); // "waiting"
        await pause(settleSeconds);
        const waiting = await measureShare(host.pid, seconds);
        const {residentKib, threads} = sizeOf(host.pid);
        clients.child.stdin.end();
        await clients.finish();
        await postEvents(host, [{type: 'count', count: 1}]); // ends the exchanges, which still wait although their clients have gone
        await pause(context.seconds(restSeconds));
        const after = sizeOf(host.pid).residentKib;
        return {...latency, share: waiting - idle, idle, kib: (residentKib - before) / pulls, threads, before, after};
    } finally {
        await host.stop();
    }
}

export async function measure(context) {
    const {report, processors} = context;
    const {pullUs} = await context.measureBare();
    for (const [pulls, rounds] of loads) {
        const {p50, p99, last, client, share, idle, kib, threads, before, after} = await measureLoad(context, pulls, rounds);
        const bare = pullUs / 1000 * pulls / processors; // milliseconds for so many exchanges in gSOAP alone, on all processors
        const count = show(pulls);
        const against = `${count} bare exchanges ${show(bare)} ms`;
        report.addPoint('pulls', {pulls, p50, p99, last, bare, share, kib, processors});
        report.add(`from an event to the answers of ${count} waiting pulls, p99`, `${show(p99)} ms (p50 ${show(p50)} ms), ${against}`,
            {ratio: p99 / bare, ...pulls === 100 && {aim: atMost(3)}});
        report.add(`from an event to the last answer of ${count} waiting pulls, median`,
            `${show(last)} ms, of which the clients took ${show(client * pulls / 1000)} ms; ${against}`,
            {ratio: last / bare, ...pulls === 5000 && {aim: atMost(3)}});
        report.add(`share of a core while ${count} pulls wait`, `${show(share)} % more than idle (${show(idle)} %)`,
            pulls === 1000 ? {value: share, aim: atMost(0.3, ' %')} : {});
        report.add(`memory of each of ${count} waiting pulls`, `${show(kib)} KiB resident; ${show(threads)} threads in all`,
            pulls === 5000 ? {value: kib, aim: atMost(100, ' KiB')} : {});
        report.add(`memory when ${count} pulls have ended`,
            `${show(after / 1024)} MiB resident, ${show(before / 1024)} MiB before the first of them`);
    }
}
