import {readFileSync, writeFileSync} from 'node:fs';

import {ask, postEvents} from '../../tests/interop/soap.mjs';
import {startHost} from '../program.mjs';
import {atMost, show} from '../report.mjs';

export const title = 'one pull of events that a filter holds back';

const events = 40000;
const perList = 10000;
const mebibyte = 1024; // in the unit of /proc

const concrete = 'http://docs.oasis-open.org/wsn/t-1/TopicExpression/Concrete';

const residentOf = (pid, field) => Number(new RegExp(`^${field}:\\s*(\\d+)`, 'm').exec(readFileSync(`/proc/${pid}/status`, 'utf8'))[1]);

// Lets VmHWM start again from the present size.
const resetPeak = pid => writeFileSync(`/proc/${pid}/clear_refs`, '5');

const pull = '<tev:PullMessages><tev:Timeout>PT0S</tev:Timeout><tev:MessageLimit>100</tev:MessageLimit></tev:PullMessages>';

export async function measure({report}) {
    const host = await startHost({settings: {limits: {body_bytes: 16 << 20}}});
    try {
        // This subscription keeps the events, so that the pull cannot use the memory of those that it has passed.
        await ask(host, '<tev:CreatePullPointSubscription/>');
        const topic = `<wsnt:TopicExpression Dialect="${concrete}">tns1:RuleEngine/LineDetector/Crossed</wsnt:TopicExpression>`;
        const {text} = await ask(host,
            `<tev:CreatePullPointSubscription><tev:Filter>${topic}</tev:Filter></tev:CreatePullPointSubscription>`);
        const {pathname, search} = new URL(/Address>([^<]+)</.exec(text)[1]);
        const path = pathname + search;
        const list = Array.from({length: perList}, (_, index) =>
            ({type: 'presence', name: `Rule ${index}`, channel: 1, zone: {type: 'field'}, objects: [{id: index, class: 'person'}]}));
        for (let sent = 0; sent < events; sent += perList) await postEvents(host, list);
        resetPeak(host.pid);
        const before = residentOf(host.pid, 'VmRSS');
        const begin = performance.now();
        const answer = await ask(host, pull, {path});
        const milliseconds = performance.now() - begin;
        if (answer.status !== 200 || answer.text.includes('NotificationMessage')) throw new Error(`unexpected answer: ${answer.text}`);
        const growth = (residentOf(host.pid, 'VmHWM') - before) / mebibyte;
        report.add(`one pull of ${show(events)} events that a filter holds back`,
            `${show(growth)} MiB more at its peak, ${show(milliseconds)} ms`, {value: growth, aim: atMost(1, ' MiB')});
    } finally {
        await host.stop();
    }
}
