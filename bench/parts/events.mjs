import {benchmark, pathOf, run} from '../program.mjs';
import {atMost, count, show} from '../report.mjs';

export const title = 'events into the queues of subscriptions, waits meanwhile, and a minute of events to clients';

const counts = [1, 10, 100, 1000]; // subscriptions

async function measureQueues({report}) {
    const results = await benchmark('events_benchmark', ['--benchmark_filter=QueueEvent']);
    for (const subscriptions of counts) {
        const [, result] = [...results].find(([name]) => name.startsWith(`QueueEvent/${subscriptions}/`));
        const nanoseconds = result['per event and subscription'] * 1e9;
        report.addPoint('queues', {subscriptions, nanoseconds, microsecondsInAll: nanoseconds * subscriptions / 1000});
        if (subscriptions !== counts[0] && subscriptions !== counts.at(-1)) continue;
        const bytes = result['bytes per event and subscription'];
        report.add(`one event into ${count(subscriptions, 'queue')}, each`, `${show(nanoseconds)} ns, ${show(bytes)} bytes`,
            {value: nanoseconds, aim: atMost(200, ' ns')});
    }
}

// [name of the benchmark, what waits]
const waits = [['Pop', 'a pull'], ['Create', 'a new subscription'], ['Publish', 'another program']];

async function measureWaits({report}) {
    const results = await benchmark('events_benchmark', ['--benchmark_filter=WaitForAList']);
    const of = what => [...results].find(([name]) => name.startsWith(`WaitForAList/${what}/`))[1];
    for (const [name, what] of waits) {
        const {longest, p99} = of(name);
        report.add(`10,000 events to 1,000 subscriptions: longest wait of ${what}`,
            `${show(longest * 1000)} ms, p99 ${show(p99 * 1e6)} µs`, {value: longest * 1000, aim: atMost(5, ' ms')});
    }
    const {longest, step} = of('Nothing');
    report.add('the same: longest time without the processor; longest processor time of one event',
        `${show(longest * 1000)} ms; ${show(step * 1000)} ms`);
}

async function measureLoads(context) {
    const time = context.seconds(60);
    const output = await run(pathOf('event_load_tests'), [], {
        env: {...process.env, ZARN_EVENT_LOAD_SECONDS: String(time)}, stdio: ['pipe', 'pipe', 'ignore'],
    });
    // Each test first sends for a moment to warm up.
    const loads = [...output.matchAll(/^(\d+) events to (\d+) clients in ([\d.]+) s$/gm)].filter((_, index) => index % 2);
    for (const [, events, clients, took] of loads) {
        context.report.add(`${show(events / time)} events per second to ${show(Number(clients))} clients, ${time} s`,
            `${show(Number(events))} events, complete and in order, in ${show(Number(took))} s`,
            {ratio: took / time, aim: atMost(1.02)});
    }
}

export async function measure(context) {
    await measureQueues(context);
    await measureWaits(context);
    await measureLoads(context);
}
