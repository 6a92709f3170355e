// The reader of HTTP responses, against a server that sends the given bytes.
import assert from 'node:assert/strict';
import {once} from 'node:events';
import {createServer} from 'node:net';
import {test} from 'node:test';

import {Connection, isKept} from './connection.mjs';

// Sends each part after the request that it answers; ends the connection after the last if asked to.
async function withServer(parts, end, use) {
    const server = createServer(socket => {
        let next = 0;
        socket.on('data', () => {
            socket.write(parts[next++], 'latin1');
            if (end && next === parts.length) socket.end();
        });
    });
    await once(server.listen(0, '127.0.0.1'), 'listening');
    const connection = await Connection.open(server.address().port);
    try {
        await use(connection);
    } finally {
        connection.close();
        server.close();
    }
}

async function readOne(bytes, {end = false, method = 'GET'} = {}) {
    let response;
    await withServer([bytes], end, async connection => {
        connection.send('request');
        response = await connection.read(method);
    });
    return {...response, body: response.body.toString('latin1')};
}

test('reads a body of the announced length', async () => {
    const head = 'HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\n';
    assert.deepEqual(await readOne(`${head}abc`), {head, body: 'abc', kept: true});
});

test('keeps chunks as they were sent', async () => {
    const chunks = '3;a=b\r\nabc\r\n0\r\nT: u\r\n\r\n';
    assert.equal((await readOne(`HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n${chunks}`)).body.slice(0, 13), chunks.slice(0, 13));
});

test('reads interim responses with the final one', async () => {
    const head = 'HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 202 Accepted\r\nContent-Length: 0\r\n\r\n';
    assert.equal((await readOne(head)).head, head);
});

test('expects no body for HEAD', async () => {
    assert.deepEqual((await readOne('HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\n', {method: 'HEAD'})).body, '');
});

test('shows what follows a response that ends the connection', async () => {
    const {body, kept} = await readOne('HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: 3\r\n\r\nabcHTTP/1.1', {end: true});
    assert.deepEqual({body, kept}, {body: 'abcHTTP/1.1', kept: false});
});

test('shows that a connection ends without a response', async () => {
    assert.deepEqual(await readOne('', {end: true}), {head: '', body: '', kept: false});
});

test('reads one response after the other', async () => {
    const head = 'HTTP/1.1 200 OK\r\nContent-Length: 1\r\n\r\n';
    await withServer([`${head}a${head}b`], false, async connection => {
        connection.send('requests');
        for (const text of ['a', 'b']) assert.equal((await connection.read('GET')).body.toString(), text);
    });
});

for (const [head, kept] of [
    ['HTTP/1.1 200 OK\r\n\r\n', true], ['HTTP/1.1 200 OK\r\nConnection: Close\r\n\r\n', false],
    ['HTTP/1.0 200 OK\r\n\r\n', false], ['HTTP/1.0 200 OK\r\nConnection: keep-alive\r\n\r\n', true],
]) test(`knows whether ${JSON.stringify(head)} ends the connection`, () => assert.equal(isKept(head), kept));
