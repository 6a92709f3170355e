// Sends requests to a host one after the other and records the responses in their normal form.
import {createHash} from 'node:crypto';

import {password} from '../host.mjs';
import {Connection} from './connection.mjs';
import {Subscriptions, toNormalForm} from './normal_form.mjs';

const md5 = text => createHash('md5').update(text).digest('hex');

const account = 'admin';

const soapType = 'Content-Type: application/soap+xml; charset=utf-8';

const namespaces = {
    a: 'http://www.w3.org/2005/08/addressing', tt: 'http://www.onvif.org/ver10/schema',
    tds: 'http://www.onvif.org/ver10/device/wsdl', trt: 'http://www.onvif.org/ver10/media/wsdl',
    tr2: 'http://www.onvif.org/ver20/media/wsdl', tev: 'http://www.onvif.org/ver10/events/wsdl',
    tan: 'http://www.onvif.org/ver20/analytics/wsdl', wsnt: 'http://docs.oasis-open.org/wsn/b-2',
    xsi: 'http://www.w3.org/2001/XMLSchema-instance', tns1: 'http://www.onvif.org/ver10/topics',
};
const declarations = Object.entries(namespaces).map(([prefix, uri]) => ` xmlns:${prefix}="${uri}"`).join('');

// A SOAP message around an operation.
export function envelope(operation, {header = '', version = 'http://www.w3.org/2003/05/soap-envelope'} = {}) {
    return `<?xml version="1.0" encoding="UTF-8"?><s:Envelope xmlns:s="${version}"${declarations}>` +
        `${header && `<s:Header>${header}</s:Header>`}<s:Body>${operation}</s:Body></s:Envelope>`;
}

export class Session {
    records = []; // [{name, text}]
    #subscriptions = new Subscriptions();
    #count = 0;

    // host  as startHost returns it; tls: whether its web port speaks TLS
    constructor(host, tls) {
        this.host = host;
        this.tls = tls;
    }

    record(name, response) {
        this.records.push({name, text: toNormalForm(response, this.#subscriptions)});
        return response;
    }

    connect() { return Connection.open(this.host.port, this.tls); }

    // Sends bytes on the connection of the session, which is opened again after a response that ended it.
    async send(name, bytes, {method = 'POST', recorded = true} = {}) {
        this.connection ??= await this.connect();
        this.connection.send(bytes);
        const response = await this.connection.read(method)
            .catch(error => ({head: `{${error.message}}`, body: Buffer.alloc(0), kept: false}));
        if (!response.kept) this.connection = undefined;
        return recorded ? this.record(name, response) : response;
    }

    // The bytes of a request with a body. fields: further header lines; target: path and query.
    request(target, body = '', {method = 'POST', fields = [soapType], host = `127.0.0.1:${this.host.port}`} = {}) {
        const bytes = Buffer.from(body);
        return Buffer.concat([Buffer.from([`${method} ${target} HTTP/1.1`, `Host: ${host}`, ...fields,
            ...bytes.length > 0 || method === 'POST' ? [`Content-Length: ${bytes.length}`] : [], '', ''].join('\r\n'), 'latin1'), bytes]);
    }

    // The field that logs in for one request, by the challenge of the last `challenge`.
    login(target, {method = 'POST', secret = password} = {}) {
        const nc = (++this.#count).toString(16).padStart(8, '0');
        const cnonce = 'c0ffee';
        const {realm, nonce} = this.challenge;
        const response = md5([md5(`${account}:${realm}:${secret}`), nonce, nc, cnonce, 'auth', md5(`${method}:${target}`)].join(':'));
        return `Authorization: Digest username="${account}", realm="${realm}", nonce="${nonce}", uri="${target}", algorithm=MD5, qop=auth, ` +
            `nc=${nc}, cnonce="${cnonce}", response="${response}"`;
    }

    // Fetches a challenge; without one, the host asks for no login.
    async fetchChallenge() {
        const {head} = await this.send('challenge', this.request('/onvif/device_service', envelope('<tds:GetUsers/>')));
        const value = name => new RegExp(`${name}="([^"]*)"`).exec(head)?.[1];
        this.challenge = value('nonce') ? {realm: value('realm'), nonce: value('nonce')} : undefined;
    }

    // Sends an operation, with a login where the host asks for one.
    ask(name, operation, {target = '/onvif/device_service', ...options} = {}) {
        return this.send(name, this.request(target, envelope(operation, options), {fields: [soapType, ...this.#logins(target)]}));
    }

    #logins(target, method = 'POST') { return this.challenge ? [this.login(target, {method})] : []; }

    get(name, target, {method = 'GET', recorded} = {}) {
        return this.send(name, this.request(target, '', {method, fields: this.#logins(target, method)}), {method, recorded});
    }

    // Posts events as an analytics program does.
    postEvents(name, events) {
        const target = '/api/events';
        const fields = ['Content-Type: application/json', ...this.#logins(target)];
        return this.send(name, this.request(target, JSON.stringify(events), {fields}));
    }

    // Sends an operation on a connection of its own and returns once the host works on it. The result of the function
    // that is returned is the recorded response.
    async begin(name, operation, target) {
        const connection = await this.connect();
        const before = await this.countExchanges();
        connection.send(this.request(target, envelope(operation), {fields: [soapType, ...this.#logins(target)]}));
        for (const deadline = Date.now() + 20000; await this.countExchanges() <= before;) {
            if (Date.now() > deadline) throw new Error(`${name}: the host does not begin`);
        }
        return async () => {
            this.record(name, await connection.read('POST'));
            connection.close();
        };
    }

    // The status of the host; undefined while it has too many requests to tell.
    async readHealth() {
        const request = this.request('/api/health', '', {method: 'GET', fields: []});
        const {head, body} = await this.send('', request, {method: 'GET', recorded: false});
        return head.startsWith('HTTP/1.1 200') ? JSON.parse(body) : undefined;
    }

    async countExchanges() { return (await this.readHealth())?.listeners.web.exchanges ?? Infinity; }
}
