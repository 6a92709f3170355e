import {benchmark} from '../program.mjs';
import {atMost, show} from '../report.mjs';

export const title = 'Manager::Post against gSOAP alone, and GetProfiles over the number of channels';

const us = value => `${show(value)} µs`;

async function compare(context, where, processor, limit) {
    const results = await context.runExchanges(processor);
    const [module, bare] = ['ManagerPost', 'BareExchange'].map(name => results.get(`${name}/real_time_median`).real_time);
    context.report.add(`one exchange through Manager::Post, ${where}`, `${us(module)}, bare gSOAP ${us(bare)}`,
        {ratio: module / bare, aim: atMost(limit)});
}

export async function measure(context) {
    await compare(context, 'one processor', 0, 1.25);
    await compare(context, `${context.processors} processors`, undefined, 1.5);
    const results = await benchmark('profiles_benchmark', context.isQuick ? ['--benchmark_min_time=0.1'] : []);
    for (const service of ['Media', 'Media2']) {
        const time = channels => results.get(`GetProfiles/${service}/${channels}/real_time`).real_time;
        for (const channels of [16, 64, 256, 1024]) context.report.addPoint('profiles', {service, channels, milliseconds: time(channels)});
        context.report.add(`GetProfiles of ${service} for each channel, with 1,024 channels against 16`,
            `${show(time(1024))} ms and ${show(time(16))} ms in all`,
            {ratio: time(1024) / time(16) / 64, value: time(1024), aim: atMost(25, ' ms in all')});
    }
}
