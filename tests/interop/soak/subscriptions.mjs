// Events clients: permanent ones for the whole run, and short-lived ones.
import assert from 'node:assert/strict';

import {ask} from '../soap.mjs';
import {call, connect} from './clients.mjs';
import {Delivery} from './delivery.mjs';

async function send(host, operation, path) {
    const {status, text} = await ask(host, operation, {path});
    if (status !== 200) throw new Error(`${operation}: ${status}: ${text.slice(0, 300)}`);
    return text;
}

const rules = text => [...text.matchAll(/Name="Rule" Value="([^"]*)"/g)].map(([, rule]) => rule);

// A subscription of an independent client.
export class Subscription {
    #host;
    #path;

    static async create(host, name, lifetime, sources) {
        const text = await send(host, '<tev:CreatePullPointSubscription>' +
            `<tev:InitialTerminationTime>${lifetime}</tev:InitialTerminationTime></tev:CreatePullPointSubscription>`, '/onvif/events_service');
        const address = new URL(/<wsa5:Address>([^<]*)<\/wsa5:Address>/.exec(text)[1]);
        return new Subscription(host, address.pathname + address.search, name, sources);
    }

    constructor(host, path, name, sources) {
        this.#host = host;
        this.#path = path;
        this.delivery = new Delivery(name);
        // Every event sent from now on must be delivered.
        this.from = sources.map(({series, begun}) => ({series, number: begun + 1}));
    }

    async pull(timeout) {
        const text = await send(this.#host, `<tev:PullMessages><tev:Timeout>${timeout}</tev:Timeout>` +
            '<tev:MessageLimit>100</tev:MessageLimit></tev:PullMessages>', this.#path);
        rules(text).forEach(rule => this.delivery.take(rule));
    }

    renew(lifetime) { return send(this.#host, `<wsnt:Renew><wsnt:TerminationTime>${lifetime}</wsnt:TerminationTime></wsnt:Renew>`, this.#path); }

    unsubscribe() { return send(this.#host, '<wsnt:Unsubscribe/>', this.#path); }

    async expectGone() {
        const {status, text} = await ask(this.#host, '<tev:PullMessages><tev:Timeout>PT0S</tev:Timeout>' +
            '<tev:MessageLimit>1</tev:MessageLimit></tev:PullMessages>', {path: this.#path});
        assert.equal(status, 400, text);
        assert.match(text, /Subscription ID not found/);
    }
}

// Events known to be in every subscription's queue; only HTTP sources report this.
const taken = sources => sources.filter(({acknowledged}) => acknowledged !== undefined)
    .map(({series, acknowledged}) => ({series, number: acknowledged}));

function finish({delivery, from}, to) {
    for (const {series, number} of to) delivery.finish(series, from.find(entry => entry.series === series).number, number);
}

const pause = seconds => new Promise(resolve => setTimeout(resolve, seconds * 1000));

// Subscribes, pulls for a few seconds, renews and unsubscribes.
async function visit(host, turn, sources) {
    const subscription = await Subscription.create(host, `visitor ${turn}`, 'PT20S', sources);
    await subscription.pull('PT5S');
    await subscription.renew('PT20S');
    await pause(2);
    const to = taken(sources);
    await subscription.pull('PT0S');
    await subscription.unsubscribe();
    await subscription.expectGone();
    finish(subscription, to);
    return subscription.delivery;
}

// Subscribes, pulls once and disappears without unsubscribing.
async function vanish(host, turn, sources) {
    const subscription = await Subscription.create(host, `vanishing ${turn}`, 'PT3S', sources);
    await subscription.pull('PT2S');
    await pause(3.5);
    await subscription.expectGone();
    return subscription.delivery;
}

export const visitors = [
    {name: 'visitor', period: 10, offset: 1, action: visit},
    {name: 'vanishing visitor', period: 10, offset: 5, action: vanish},
];

// Pulls for the whole run. Returns {name, delivery, from, end()}.
export async function stay(host, name, sources, report) {
    const subscription = await Subscription.create(host, name, 'PT60S', sources);
    let wanted = true;
    const loop = (async () => {
        for (let renewed = Date.now(); wanted;) {
            await subscription.pull('PT10S');
            if (Date.now() - renewed < 20000) continue;
            renewed = Date.now();
            await subscription.renew('PT60S');
        }
        await subscription.unsubscribe();
    })().catch(report);
    const end = async to => { wanted = false; await loop; finish(subscription, to); };
    return {name, delivery: subscription.delivery, end};
}

// The npm package "onvif" in normal use: it pulls and renews while it has a listener.
export async function listen(host, name, sources, report) {
    const cam = await connect(host);
    const delivery = new Delivery(name);
    cam.on('eventsError', report);
    cam.on('event', ({message}) => delivery.take([message.message.source.simpleItem].flat().find(item => item.$.Name === 'Rule').$.Value));
    for (const deadline = Date.now() + 20000; !cam.events.subscription;) {
        if (Date.now() > deadline) throw new Error(`${name}: no subscription within 20 s`);
        await pause(0.01);
    }
    const from = sources.map(({series, begun}) => ({series, number: begun + 1}));
    const end = async to => {
        // The pending pull ends with a fault when the subscription ends.
        cam.removeAllListeners('eventsError');
        cam.removeAllListeners('event');
        await call(cam, 'unsubscribe');
        finish({delivery, from}, to);
    };
    return {name, delivery, end};
}
