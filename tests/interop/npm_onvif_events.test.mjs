// The npm package "onvif" as a client of the events service.
import assert from 'node:assert/strict';
import {after, before, describe, test} from 'node:test';
import {promisify} from 'node:util';

import onvif from 'onvif';

import {password, startHost} from './host.mjs';
import {ask, postEvents} from './soap.mjs';

const call = (cam, method, ...args) => promisify(cam[method].bind(cam))(...args);

function connect(options) {
    return new Promise((resolve, reject) => {
        const cam = new onvif.Cam({
            hostname: host.hostname, port: host.port, username: 'admin', password, timeout: 30000, ...options,
        }, error => error ? reject(error) : resolve(cam));
    });
}

async function until(condition, what) {
    for (const deadline = Date.now() + 20000; !await condition();) {
        assert.ok(Date.now() < deadline, `timed out: ${what}`);
        await new Promise(resolve => setTimeout(resolve, 10));
    }
}

const inField = name => ({type: 'presence', name, zone: {type: 'field'}});
const itemsOf = list => list.simpleItem.map(item => [item.$.Name, item.$.Value]);
const ruleOf = message => Object.fromEntries(itemsOf(message.message.message.source)).Rule;
const secondsLeft = answer => (answer.terminationTime - answer.currentTime) / 1000;
const pathOf = cam => cam.events.subscription.subscriptionReference.address.path;

// True if a subscription exists, checked by an independent client.
async function isAlive(path) {
    const {status, text} = await ask(host,
        '<tev:PullMessages><tev:Timeout>PT0S</tev:Timeout><tev:MessageLimit>0</tev:MessageLimit></tev:PullMessages>', {path});
    if (status !== 200) assert.match(text, /Subscription ID not found/);
    return status === 200;
}

// Number of exchanges on the host, including the one that asks.
async function countExchanges() {
    const health = await (await fetch(`http://${host.hostname}:${host.port}/api/health`)).json();
    return health.listeners.web.exchanges;
}

let host;
before(async () => {
    host = await startHost({channels: {1: {name: 'Gate', video: {codec: 'video/x-h264', width: 4, height: 3, rate: '1/1'}}}});
});
after(async () => assert.equal(await host.stop(), 0));

for (const useWSSecurity of [true, false]) {
    describe(`npm onvif ${useWSSecurity ? 'with' : 'without'} its WS-Security header`, () => {
        let cam;
        before(async () => { cam = await connect({useWSSecurity}); });

        test('reads the topics', async () => {
            const {topicSet, topicExpressionDialect} = await call(cam, 'getEventProperties');
            assert.deepEqual(Object.keys(topicSet.ruleEngine),
                ['fieldDetector', 'lineDetector', 'loiteringDetector', 'countAggregation']);
            assert.equal(Object.keys(topicSet.ruleEngine.fieldDetector).length, 9);
            const counter = topicSet.ruleEngine.countAggregation.counter;
            assert.deepEqual(counter.messageDescription.data.simpleItemDescription.map(item => item.$.Name), ['ObjectId', 'Count']);
            assert.ok(topicSet.videoSource.motionAlarm.$['wstop:topic']);
            assert.equal(topicExpressionDialect.length, 2);
        });

        test('reads the capabilities of the service', async () => {
            const capabilities = await call(cam, 'getEventServiceCapabilities');
            assert.equal(capabilities.WSPullPointSupport, true);
            assert.equal(capabilities.MaxPullPoints, 2147483647);
        });

        test('is given what is posted while it waits', async () => {
            const left = secondsLeft(await call(cam, 'createPullPointSubscription'));
            assert.ok([119, 120].includes(left), `${left} seconds`); // both times are truncated to seconds
            let waits = true;
            const pull = call(cam, 'pullMessages', {messageLimit: 2}).finally(() => { waits = false; });
            await until(async () => await countExchanges() > 1, 'for the pull to reach the host');
            assert.ok(waits);
            await postEvents(host, {
                ...inField('Tür'), channel: 1, start: '2026-01-31T12:00:00.250Z', objects: [{id: 12, class: 'person'}],
            });
            const {notificationMessage: message} = await pull;
            assert.equal(message.topic._, 'tns1:RuleEngine/FieldDetector/ObjectsInside');
            const {$: attributes, source, data} = message.message.message;
            assert.equal(attributes.UtcTime.toISOString(), '2026-01-31T12:00:00.000Z');
            assert.equal(attributes.PropertyOperation, 'Changed');
            assert.deepEqual(itemsOf(source), [['VideoSource', 'channels.1'], ['Rule', 'Tür']]);
            assert.deepEqual(itemsOf(data), [['ObjectId', '12 '], ['ClassTypes', 'person '], ['IsInside', true]]);
        });

        test('pulls no more than it asks for, in order', async () => {
            await postEvents(host, ['one', 'two', 'three'].map(inField));
            const first = await call(cam, 'pullMessages', {messageLimit: 2});
            assert.deepEqual(first.notificationMessage.map(ruleOf), ['one', 'two']);
            assert.equal(ruleOf((await call(cam, 'pullMessages', {messageLimit: 2})).notificationMessage), 'three');
        });

        test('renews and unsubscribes', async () => {
            assert.equal(secondsLeft(await call(cam, 'renew', {})), 120);
            const path = pathOf(cam);
            assert.ok(await isAlive(path));
            await call(cam, 'unsubscribe');
            assert.ok(!await isAlive(path));
        });

        test('emits events for as long as somebody listens', async () => {
            const rules = [];
            const failures = [];
            cam.on('eventsError', error => failures.push(error));
            cam.on('event', message => rules.push(ruleOf(message)));
            await until(() => cam.events.subscription, 'for its subscription');
            const path = pathOf(cam);
            await postEvents(host, ['one', 'two', 'three'].map(inField));
            await until(() => rules.length >= 3, 'for three events');
            await postEvents(host, ['four', 'five'].map(inField));
            await until(() => rules.length >= 5, 'for two more');
            assert.deepEqual(rules, ['one', 'two', 'three', 'four', 'five']);
            assert.deepEqual(failures, []);
            // The package unsubscribes when it has no listener after the next pull.
            cam.removeAllListeners('event');
            await until(async () => {
                await postEvents(host, inField('unheard'));
                return !await isAlive(path);
            }, 'for the end of its subscription');
            assert.equal(rules.length, 5);
        });
    });

    test(`two clients of npm onvif ${useWSSecurity ? 'with' : 'without'} its WS-Security header each hear everything`, async () => {
        const clients = [];
        for (let i = 0; i < 2; ++i) {
            const cam = await connect({useWSSecurity});
            const heard = {cam, rules: [], failures: []};
            cam.on('eventsError', error => heard.failures.push(error));
            cam.on('event', message => heard.rules.push(ruleOf(message)));
            clients.push(heard);
        }
        const [first, second] = clients;
        await until(() => clients.every(({cam}) => cam.events.subscription), 'for both subscriptions');
        assert.notEqual(pathOf(first.cam), pathOf(second.cam));
        await postEvents(host, ['one', 'two', 'three'].map(inField));
        await until(() => clients.every(({rules}) => rules.length >= 3), 'for three events each');
        // Ending one subscription does not affect the other.
        const path = pathOf(first.cam);
        first.cam.removeAllListeners('event');
        await until(async () => {
            await postEvents(host, inField('meanwhile'));
            return !await isAlive(path);
        }, 'for the end of the first subscription');
        await postEvents(host, inField('last'));
        await until(() => second.rules.at(-1) === 'last', 'for the last event');
        assert.deepEqual(first.rules, ['one', 'two', 'three']);
        assert.deepEqual(second.rules.filter(rule => rule !== 'meanwhile'), ['one', 'two', 'three', 'last']);
        for (const {failures} of clients) assert.deepEqual(failures, []);
        const other = pathOf(second.cam);
        second.cam.removeAllListeners('event');
        await until(async () => {
            await postEvents(host, inField('unheard'));
            return !await isAlive(other);
        }, 'for the end of the second subscription');
    });

    test(`npm onvif ${useWSSecurity ? 'with' : 'without'} its WS-Security header gets no subscription with a wrong password`, async () => {
        const client = await connect({useWSSecurity});
        client.password = 'wrong';
        await assert.rejects(call(client, 'createPullPointSubscription'), /401/);
    });
}
