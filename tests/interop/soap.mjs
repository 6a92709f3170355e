// Sends SOAP 1.2 requests and events to a host.
import {createHash, randomBytes} from 'node:crypto';

import {password} from './host.mjs';

const namespaces = {
    a: 'http://www.w3.org/2005/08/addressing', tt: 'http://www.onvif.org/ver10/schema',
    tds: 'http://www.onvif.org/ver10/device/wsdl', trt: 'http://www.onvif.org/ver10/media/wsdl',
    tr2: 'http://www.onvif.org/ver20/media/wsdl', tev: 'http://www.onvif.org/ver10/events/wsdl',
    tan: 'http://www.onvif.org/ver20/analytics/wsdl', wsnt: 'http://docs.oasis-open.org/wsn/b-2',
};

const md5 = text => createHash('md5').update(text).digest('hex');

function answer(challenge, uri, secret) {
    const value = name => new RegExp(`${name}="([^"]*)"`).exec(challenge)[1];
    const [realm, nonce] = [value('realm'), value('nonce')];
    const cnonce = randomBytes(8).toString('hex');
    const nc = '00000001';
    const response = md5([md5(`admin:${realm}:${secret}`), nonce, nc, cnonce, 'auth', md5(`POST:${uri}`)].join(':'));
    return `Digest username="admin", realm="${realm}", nonce="${nonce}", uri="${uri}", algorithm=MD5, qop=auth, ` +
        `nc=${nc}, cnonce="${cnonce}", response="${response}"`;
}

// Posts a body, with HTTP digest on demand, and returns {status, text}. The path may include a query.
export async function post(host, path, type, body, secret = password) {
    const send = headers => fetch(new URL(path, host.url), {
        method: 'POST', body, headers: {'Content-Type': type, ...headers},
    });
    let response = await send({});
    if (response.status === 401) {
        await response.arrayBuffer();
        response = await send({Authorization: answer(response.headers.get('www-authenticate'), path, secret)});
    }
    return {status: response.status, text: await response.text()};
}

export function ask(host, operation, {header = '', path = '/onvif/device_service', secret} = {}) {
    const declarations = Object.entries(namespaces).map(([prefix, uri]) => ` xmlns:${prefix}="${uri}"`).join('');
    const body = `<?xml version="1.0" encoding="UTF-8"?><s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope"${declarations}>` +
        `${header && `<s:Header>${header}</s:Header>`}<s:Body>${operation}</s:Body></s:Envelope>`;
    return post(host, path, 'application/soap+xml; charset=utf-8', body, secret);
}

// Posts events as an analytics program does. On return they are in the subscriptions' queues.
export async function postEvents(host, events) {
    const {status, text} = await post(host, '/api/events', 'application/json', JSON.stringify(events));
    if (status !== 202) throw new Error(`${status}: ${text}`);
}
