import {benchmark, pathOf, run} from '../program.mjs';
import {atMost, count, show} from '../report.mjs';

export const title = 'events into the queues of subscriptions, and a minute of events to clients';

const counts = [1, 10, 100, 1000]; // subscriptions

async function measureQueues({report}) {
    const results = await benchmark('events_benchmark', ['--benchmark_filter=QueueEvent']);
    for (const subscriptions of counts) {
        const [, result] = [...results].find(([name]) => name.startsWith(`QueueEvent/${subscriptions}/`));
        const nanoseconds = result['per event and subscription'] * 1e9;
        report.addPoint('queues', {subscriptions, nanoseconds, microsecondsInAll: nanoseconds * subscriptions / 1000});
        if (subscriptions !== counts[0] && subscriptions !== counts.at(-1)) continue;
        report.add(`one event into ${count(subscriptions, 'queue')}, each`,
            `${show(nanoseconds)} ns, ${show(result['bytes per event and subscription'])} bytes`, {value: nanoseconds, aim: atMost(200, ' ns')});
    }
}

async function measureLoads(context) {
    const time = context.seconds(60);
    const output = await run(pathOf('event_load_tests'), [], {
        env: {...process.env, ZARN_EVENT_LOAD_SECONDS: String(time)}, stdio: ['pipe', 'pipe', 'ignore'],
    });
    // Each test first sends for a moment to warm up.
    for (const [, events, clients, took] of [...output.matchAll(/^(\d+) events to (\d+) clients in ([\d.]+) s$/gm)].filter((_, index) => index % 2)) {
        context.report.add(`${show(events / time)} events per second to ${show(Number(clients))} clients, ${time} s`,
            `${show(Number(events), 9)} events, complete and in order, in ${show(Number(took))} s`, {ratio: took / time, aim: atMost(1.02)});
    }
}

export async function measure(context) {
    await measureQueues(context);
    await measureLoads(context);
}
