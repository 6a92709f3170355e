import assert from 'node:assert/strict';
import {once} from 'node:events';
import {closeSync, openSync} from 'node:fs';
import {connect, createServer} from 'node:net';
import {test} from 'node:test';

import {measure} from './process_size.mjs';

// Connects this process to itself, then calls use(client, connection) with both ends.
async function withConnection(use) {
    const server = createServer({allowHalfOpen: true}).listen(0, '127.0.0.1');
    await once(server, 'listening');
    const client = connect(server.address().port, '127.0.0.1');
    try {
        const [connection] = await once(server, 'connection');
        await use(client, connection);
        connection.destroy();
    } finally {
        client.destroy();
        server.close();
    }
}

test('a file is a descriptor', () => {
    const before = measure(process.pid).descriptors;
    const file = openSync('/dev/null');
    assert.equal(measure(process.pid).descriptors, before + 1);
    closeSync(file);
    assert.equal(measure(process.pid).descriptors, before);
});

test('a connection that a client keeps is not counted, one that the client has closed is', async () => {
    await withConnection(async (client, connection) => {
        const open = measure(process.pid).descriptors;
        client.end();
        connection.resume();
        await once(connection, 'end');
        assert.equal(measure(process.pid).descriptors, open + 1);
    });
});

test('a listening port and an outgoing connection are counted', async () => {
    const before = measure(process.pid).descriptors;
    await withConnection(() => assert.equal(measure(process.pid).descriptors, before + 2));
});

test('anonymous memory is part of the resident memory', () => {
    const {residentKib, anonymousKib} = measure(process.pid);
    assert.ok(anonymousKib > 0 && anonymousKib < residentKib);
});

test('a process that does not exist is an error', () => assert.throws(() => measure(2 ** 22 + 1)));
