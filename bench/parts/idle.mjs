import {measureShare, sizeOf, startHost} from '../program.mjs';
import {atMost, median, show} from '../report.mjs';

export const title = 'start, and the idle host without video';

const starts = 5;

export async function measure(context) {
    const times = [];
    for (let i = 1; i < starts; ++i) {
        const host = await startHost();
        times.push(host.startMs);
        await host.stop();
    }
    const host = await startHost();
    try {
        times.push(host.startMs);
        const share = await measureShare(host.pid, context.seconds(10));
        const {residentKib, threads} = sizeOf(host.pid);
        context.report.add('from start to "ready", without video', `${show(median(times))} ms`,
            {value: median(times), aim: atMost(200, ' ms')});
        context.report.add('idle, without video: share of a core', `${show(share)} %`, {value: share, aim: atMost(1, ' %')});
        context.report.add('idle, without video: memory', `${show(residentKib / 1024)} MiB resident, ${threads} threads`);
    } finally {
        await host.stop();
    }
}
