import {pathOf, run} from '../program.mjs';
import {atMost, show} from '../report.mjs';

export const title = 'memory of the module alone, and of exchanges that wait in it';

const exchanges = 1000;

export async function measure({report}) {
    const [bare, module] = await Promise.all(['bare', 'module'].map(what => run(pathOf('waiting_memory'), [what, String(exchanges)])));
    const own = Number(/^process (\d+)/m.exec(module)[1]) / 1024;
    const [each, bareEach] = [module, bare].map(text => Number(text.trim().split('\n').at(-1)));
    report.add('the idle module with the libraries of the host', `${show(own)} MiB resident`, {value: own, aim: atMost(30, ' MiB')});
    report.add(`each of ${show(exchanges)} waiting PullMessages in the module`, `${show(each)} KiB, bare gSOAP ${show(bareEach)} KiB`,
        {ratio: each / bareEach, aim: atMost(1.3)});
}
