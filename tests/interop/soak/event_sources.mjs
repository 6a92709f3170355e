// Sources of numbered events over HTTP and MQTT.
import {spawn} from 'node:child_process';
import {once} from 'node:events';
import {existsSync, mkdtempSync, rmSync, writeFileSync} from 'node:fs';
import {createConnection} from 'node:net';
import {tmpdir} from 'node:os';
import {join} from 'node:path';

import {postEvents} from '../soap.mjs';

const eventOf = (series, number) => ({
    type: 'presence', name: `${series} ${number}`, channel: number % 2 + 1, zone: {type: 'field'}, objects: [{id: number % 1000, class: 'person'}],
});

// begun: number of the last event sent; acknowledged: number of the last event known to be in every queue.
export class HttpSource {
    series = 'http';
    begun = 0;
    acknowledged = 0;

    async send(host, count) {
        const events = Array.from({length: count}, () => eventOf(this.series, ++this.begun));
        await postEvents(host, events);
        this.acknowledged = this.begun;
    }

    stop() {}
}

// Publishes with QoS 1 for the whole run. MQTT does not report when events reach the subscriptions' queues.
export class MqttSource {
    series = 'mqtt';
    begun = 0;
    #program;
    #ended;

    constructor(port, report) {
        this.#program = spawn('mosquitto_pub', ['-h', '127.0.0.1', '-p', `${port}`, '-q', '1', '-t', 'zarn/events', '-l'],
            {stdio: ['pipe', 'inherit', 'inherit']});
        this.#ended = once(this.#program, 'exit').then(([code]) => { if (code !== 0) report(new Error(`mosquitto_pub: ${code}`)); });
    }

    async send(_, count) {
        for (let i = 0; i < count; ++i) this.#program.stdin.write(`${JSON.stringify(eventOf(this.series, ++this.begun))}\n`);
    }

    async stop() {
        this.#program.stdin.end();
        await this.#ended;
    }
}

function isListening(port) {
    return new Promise(resolve => {
        const socket = createConnection(port, '127.0.0.1', () => { socket.destroy(); resolve(true); });
        socket.once('error', () => resolve(false));
    });
}

// Starts a broker on a loopback port. Returns {stop()}.
export async function startBroker(port) {
    const folder = mkdtempSync(join(tmpdir(), 'zarn-soak-broker-'));
    const file = join(folder, 'mosquitto.conf');
    // Without this, a broker started as root switches to an account that cannot read the folder.
    writeFileSync(file, `listener ${port} 127.0.0.1\nuser root\nallow_anonymous true\npersistence false\nlog_type error\n`);
    // Debian installs mosquitto in a directory that only administrators have on their PATH.
    const path = '/usr/sbin/mosquitto';
    const program = spawn(existsSync(path) ? path : 'mosquitto', ['-c', file], {stdio: ['ignore', 'ignore', 'inherit']});
    const ended = once(program, 'exit');
    const stop = async () => {
        program.kill('SIGTERM');
        await ended;
        rmSync(folder, {recursive: true});
    };
    for (const deadline = Date.now() + 20000; !await isListening(port);) {
        if (Date.now() > deadline) {
            await stop();
            throw new Error('the broker does not start');
        }
        await new Promise(resolve => setTimeout(resolve, 20));
    }
    return {stop};
}
