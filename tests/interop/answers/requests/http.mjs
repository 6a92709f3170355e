// HTTP requests.
import {envelope} from '../session.mjs';

// HTTP requests that are special or wrong. Each is complete, or ends where the host must have refused it.
export async function sendHttp(session) {
    const body = envelope('<tds:GetScopes/>');
    const length = `Content-Length: ${Buffer.byteLength(body)}`;
    const post = (fields, text = body, version = '1.1', target = '/onvif/device_service') =>
        [`POST ${target} HTTP/${version}`, ...fields, '', text].join('\r\n');
    const own = `Host: 127.0.0.1:${session.host.port}`;
    const get = (target, fields = [own], method = 'GET') => [`${method} ${target} HTTP/1.1`, ...fields, '', ''].join('\r\n');
    const [start, rest] = [body.slice(0, 20), body.slice(20)];
    const chunks = `${start.length.toString(16)}\r\n${start}\r\n${rest.length.toString(16)};a=b\r\n${rest}\r\n0\r\nT: u\r\n\r\n`;
    const rows = [
        ['without a content type', post([own, length])],
        ['with text/xml', post([own, length, 'Content-Type: text/xml'])],
        ['with an action', post([own, length, 'Content-Type: application/soap+xml; action="urn:a"', 'SOAPAction: "urn:b"'])],
        ['with multipart', post([own, length, 'Content-Type: multipart/related; boundary=x'])],
        ['with DIME', post([own, length, 'Content-Type: application/dime'])],
        ['with gzip', post([own, length, 'Content-Encoding: gzip'])],
        ['with identity', post([own, length, 'Content-Encoding: identity'])],
        ['that closes', post([own, length, 'Connection: close'])],
        ['that is kept', post([own, length, 'Connection: keep-alive'])],
        ['of HTTP/1.0', post([own, length], body, '1.0')],
        ['of HTTP/1.0 that is kept', post([own, length, 'Connection: keep-alive'], body, '1.0')],
        ['of HTTP/1.0 without a host', post([length], body, '1.0')],
        ['of HTTP/1.2', post([own, length], body, '1.2')],
        ['of HTTP/2', 'PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n'],
        ['of chunks', post([own, 'Transfer-Encoding: chunked'], chunks)],
        ['of wrong chunks', post([own, 'Transfer-Encoding: chunked'], 'zz\r\n')],
        ['of chunks and a length', post([own, length, 'Transfer-Encoding: chunked'], '')],
        ['of an unknown coding', post([own, 'Transfer-Encoding: rot13'], '')],
        ['with an expectation', post([own, length, 'Expect: 100-continue'])],
        ['with an unknown expectation', post([own, length, 'Expect: miracle'], '')],
        ['without a length', post([own], '')],
        ['with a wrong length', post([own, 'Content-Length: -1'], '')],
        ['with two lengths', post([own, length, 'Content-Length: 1'], '')],
        ['with a body that is too long', post([own, 'Content-Length: 99999999'], '')],
        ['without a host', post([length], '')],
        ['with two hosts', post([own, own, length], '')],
        ['with a host of markup', post(['Host: <a>', length], '')],
        ['with a host of a name', post(['Host: device.example', length])],
        ['with a host of a name and port', post(['Host: device.example:8080', length])],
        ['with a host of IPv6', post(['Host: [::1]:8080', length])],
        ['with an empty host', post(['Host:', length])],
        ['with an absolute target', post([own, length], body, '1.1', 'http://other.example:99/onvif/device_service')],
        ['with a query', post([own, length], body, '1.1', '/onvif/device_service?a=b')],
        ['with a wrong scheme', get('ftp://h/api/health')],
        ['with a long target', get(`/${'a'.repeat(1000)}`)],
        ['with 101 fields', get('/api/health', [own, ...Array(100).fill('A: b')])],
        ['with a long field', get('/api/health', [own, `A: ${'b'.repeat(9000)}`])],
        ['with a folded field', get('/api/none', [own, 'A: b\r\n c'])],
        ['with a bad field', get('/api/none', [own, 'A b'])],
        ['with a bare line feed', 'GET /api/none HTTP/1.1\nHost: h\n\n'],
        ['that is garbage', 'garbage\r\n\r\n'],
        ['for an unknown path', get('/')],
        ['for an unknown path of the interface', get('/api/none')],
        ['for everything', get('*', [own], 'OPTIONS')],
    ];
    for (const [name, bytes] of rows) await session.send(`HTTP ${name}`, bytes);
    const targets = ['/onvif/device_service', '/api/events', '/snapshot/1/latest.jpeg', '/none'];
    for (const method of ['GET', 'HEAD', 'PUT', 'DELETE', 'OPTIONS', 'PATCH', 'TRACE', 'BREW']) {
        const fields = ['PUT', 'PATCH'].includes(method) ? [own, 'Content-Length: 0'] : [own];
        for (const target of ['GET', 'HEAD'].includes(method) ? targets : [...targets, '/api/health']) {
            await session.send(`HTTP ${method} ${target}`, get(target, fields, method), {method});
        }
    }
    await sendExpecting(session, post([own, length, 'Expect: 100-continue'], ''), body);
    await sendPipelined(session, post([own, length]) + get('/api/none') + post([own, length, 'Connection: close']));
}

// A client that waits for 100 before it sends its body.
async function sendExpecting(session, head, body) {
    const connection = await session.connect();
    connection.send(head);
    session.record('HTTP with an expectation, before the body', {head: await connection.readHead(), body: Buffer.alloc(0), kept: true});
    connection.send(body);
    session.record('HTTP with an expectation, after the body', await connection.read('POST'));
    connection.close();
}

async function sendPipelined(session, bytes) {
    const connection = await session.connect();
    connection.send(bytes);
    for (const name of ['first', 'second', 'last']) session.record(`HTTP pipelined, ${name}`, await connection.read('POST'));
    connection.close();
}

export async function sendSnapshots(session) {
    for (const channel of ['1', '3', 'none', '..']) {
        await session.get(`snapshot of ${channel}`, `/snapshot/${channel}/latest.jpeg`);
        await session.get(`snapshot of ${channel}, its head`, `/snapshot/${channel}/latest.jpeg`, {method: 'HEAD'});
    }
}

export const sendHealth = session => session.get('health', '/api/health');
