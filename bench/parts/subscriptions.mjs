import {Program, pathOf, sizeOf, startHost} from '../program.mjs';
import {show} from '../report.mjs';

export const title = 'subscriptions created, renewed and ended';

const counts = [1000, 5000, 10000];
const connections = 16;

// Rates per second of the three steps, and memory in KiB before, with and after all of them.
async function measureCount(count) {
    const host = await startHost();
    try {
        const before = sizeOf(host.pid).residentKib;
        const client = new Program(pathOf('subscriptions_load'), [host.port, count, connections].map(String));
        const create = JSON.parse(await client.readLine()).rate;
        const during = sizeOf(host.pid).residentKib;
        client.writeLine();
        const renew = JSON.parse(await client.readLine()).rate;
        client.writeLine();
        const end = JSON.parse(await client.readLine()).rate;
        const after = sizeOf(host.pid).residentKib;
        await client.finish();
        return {create, renew, end, before, during, after};
    } finally {
        await host.stop();
    }
}

export async function measure({report}) {
    for (const count of counts) {
        const {create, renew, end, before, during, after} = await measureCount(count);
        const each = (during - before) / count;
        report.addPoint('subscriptions', {subscriptions: count, create, renew, end, before, during, after, each});
        report.add(`${show(count)} subscriptions created, renewed, ended`, `${show(create)}, ${show(renew)}, ${show(end)} per second`);
        report.add(`${show(count)} subscriptions: memory`,
            `${show(before / 1024)} MiB before, ${show(during / 1024)} MiB with, ${show(after / 1024)} MiB after; ${show(each)} KiB each`);
    }
}
