// The requests whose answers are compared: each function takes a Session and sends its part in a fixed order.
import {readFileSync} from 'node:fs';

import {password} from '../host.mjs';
import {envelope} from './session.mjs';

// From the table that the device is made of: [{access, prefix, name}]. An element calls the first operation of its name.
export const operations = [...readFileSync(new URL('../../../interface/operations.h', import.meta.url), 'utf8')
    .matchAll(/^ +X\((\w+), (\w+), (\w*[A-Za-z])[,)]/gm)].map(([, access, prefix, name]) => ({access, prefix, name}));

const tokens = (prefix, value) => ['ConfigurationToken', 'ProfileToken', 'Token', 'VideoSourceToken', 'VideoSourceConfigurationToken']
    .map(name => `<${prefix}:${name}>${value}</${prefix}:${name}>`).join('');

// Operations with arguments of their own.
const variants = [
    '<tds:GetServices><tds:IncludeCapability>true</tds:IncludeCapability></tds:GetServices>',
    '<tds:GetServices><tds:IncludeCapability>false</tds:IncludeCapability></tds:GetServices>',
    '<tds:GetServices><tds:IncludeCapability>perhaps</tds:IncludeCapability></tds:GetServices>',
    ...['All', 'Analytics', 'Device', 'Events', 'Imaging', 'Media', 'PTZ', 'None'].map(category =>
        `<tds:GetCapabilities><tds:Category>${category}</tds:Category></tds:GetCapabilities>`),
    ...['All', 'VideoSource', 'VideoEncoder', 'Metadata', 'Analytics', 'AudioSource'].map(type =>
        `<tr2:GetProfiles><tr2:Type>${type}</tr2:Type></tr2:GetProfiles>`),
    ...['channels.1', 'channels.3', 'none', ''].flatMap(token => ['trt', 'tr2'].map(prefix =>
        `<${prefix}:GetProfiles><${prefix}:Token>${token}</${prefix}:Token><${prefix}:Type>All</${prefix}:Type></${prefix}:GetProfiles>`)),
    ...['channels.1', 'channels.2', 'channels.3', 'channels.4', 'none', '&lt;a&gt;&amp;', 'Grün'].flatMap(token => [
        `<trt:GetProfile>${tokens('trt', token)}</trt:GetProfile>`,
        `<trt:GetStreamUri><trt:StreamSetup><tt:Stream>RTP-Unicast</tt:Stream><tt:Transport><tt:Protocol>RTSP</tt:Protocol></tt:Transport>` +
            `</trt:StreamSetup>${tokens('trt', token)}</trt:GetStreamUri>`,
        `<trt:GetSnapshotUri>${tokens('trt', token)}</trt:GetSnapshotUri>`,
        `<tr2:GetStreamUri><tr2:Protocol>RtspUnicast</tr2:Protocol>${tokens('tr2', token)}</tr2:GetStreamUri>`,
        `<tr2:GetStreamUri><tr2:Protocol>RTSP</tr2:Protocol>${tokens('tr2', token)}</tr2:GetStreamUri>`,
        `<tr2:GetSnapshotUri>${tokens('tr2', token)}</tr2:GetSnapshotUri>`,
        `<tr2:GetVideoEncoderConfigurationOptions>${tokens('tr2', token)}</tr2:GetVideoEncoderConfigurationOptions>`,
    ]),
];

// Every operation: empty, nil, with the tokens of a channel, and with those of none.
export async function sendOperations(session) {
    for (const {prefix, name} of operations) {
        const element = `${prefix}:${name}`;
        await session.ask(`${element}, empty`, `<${element}/>`);
        await session.ask(`${element}, nil`, `<${element} xsi:nil="true"/>`);
        for (const token of ['channels.1', 'none']) await session.ask(`${element} of ${token}`, `<${element}>${tokens(prefix, token)}</${element}>`);
    }
    for (const operation of variants) await session.ask(operation, operation);
}

// Every operation without credentials and with wrong ones.
export async function sendWithoutLogin(session) {
    for (const {prefix, name} of operations) {
        await session.send(`${prefix}:${name} without credentials`, session.request('/onvif/device_service', envelope(`<${prefix}:${name}/>`)));
    }
    for (const {prefix, name} of operations.filter(({access}) => access === 'Login')) {
        const target = '/onvif/device_service';
        await session.send(`${prefix}:${name} with a wrong password`, session.request(target, envelope(`<${prefix}:${name}/>`),
            {fields: ['Content-Type: application/soap+xml', session.login(target, {secret: 'wrong'})]}));
    }
}

// Other forms of credentials, and credentials that are used twice.
export async function sendCredentials(session) {
    const target = '/onvif/device_service';
    const send = (name, field) => session.send(`credentials: ${name}`,
        session.request(target, envelope('<tds:GetUsers/>'), {fields: ['Content-Type: application/soap+xml', field]}));
    const used = session.login(target);
    await send('right ones', used);
    await send('used ones', used);
    await send('of an unknown challenge', session.login(target).replace(/nonce="[^"]*/, 'nonce="unknown'));
    await send('for another algorithm', session.login(target).replace('MD5', 'SHA-256'));
    await send('for MD5-sess', session.login(target).replace('MD5', 'MD5-sess'));
    await send('for auth-int', session.login(target).replace('qop=auth', 'qop=auth-int'));
    await send('for another realm', session.login(target).replace(/realm="[^"]*/, 'realm="elsewhere'));
    await send('for another target', session.login('/elsewhere'));
    await send('without a response', session.login(target).replace(/, response=.*/, ''));
    await send('of Basic', `Authorization: Basic ${Buffer.from(`admin:${password}`).toString('base64')}`);
    await send('of an unknown scheme', 'Authorization: Bearer abc');
    await send('that cannot be parsed', 'Authorization: Digest ,,,=,"');
    await send('in lower case', session.login(target).replace('Digest', 'digest').replace('username', 'USERNAME'));
    const other = '/onvif/media_service?a=b';
    await session.ask('credentials: with a query', '<tds:GetUsers/>', {target: other});
    await session.send('credentials: without a body', session.request(target, '', {fields: ['Content-Type: application/soap+xml']}));
}

// Wrong passwords until the host refuses the address, and what it still answers then.
export async function sendGuesses(session, count) {
    const target = '/onvif/device_service';
    for (let i = 0; i < count; ++i) {
        await session.send(`guess ${i}`, session.request(target, envelope('<tds:GetUsers/>'), {fields: [session.login(target, {secret: 'wrong'})]}));
    }
    await session.ask('right credentials after guesses', '<tds:GetUsers/>');
    await session.send('no credentials after guesses', session.request(target, envelope('<tds:GetScopes/>')));
}

const addressing = '<a:MessageID>urn:uuid:1</a:MessageID><a:ReplyTo><a:Address>http://www.w3.org/2005/08/addressing/anonymous</a:Address></a:ReplyTo>' +
    '<a:To>http://h/onvif</a:To><a:Action>http://www.onvif.org/a</a:Action>';
const security = '<w:Security s:mustUnderstand="1" xmlns:w="http://docs.oasis-open.org/wss/2004/01/oasis-200401-wss-wssecurity-secext-1.0.xsd">' +
    '<w:UsernameToken><w:Username>admin</w:Username></w:UsernameToken></w:Security>';

// SOAP messages that are special or wrong.
export async function sendMessages(session) {
    const time = '<tds:GetSystemDateAndTime/>';
    const scopes = '<tds:GetScopes/>';
    const soap11 = 'http://schemas.xmlsoap.org/soap/envelope/';
    const rows = [
        ['with addressing', envelope(scopes, {header: addressing})],
        ['with addressing, a fault', envelope('<tds:GetDNS/>', {header: addressing})],
        ['with a markup as message ID', envelope(scopes, {header: '<a:MessageID>&lt;&amp;"</a:MessageID>'})],
        ['with a security header', envelope(scopes, {header: security})],
        ['with an unknown header', envelope(scopes, {header: '<x:a xmlns:x="urn:x">b</x:a>'})],
        ['with an unknown mandatory header', envelope(scopes, {header: '<x:a xmlns:x="urn:x" s:mustUnderstand="1"/>'})],
        ['with an unknown mandatory header for another role', envelope(scopes, {header: '<x:a xmlns:x="urn:x" s:mustUnderstand="1" s:role="urn:y"/>'})],
        ['of SOAP 1.1', envelope(scopes, {version: soap11})],
        ['of SOAP 1.1, a fault', envelope('<tds:GetDNS/>', {version: soap11})],
        ['of an unknown version', envelope(scopes, {version: 'urn:soap'})],
        ['with an unknown element', envelope('<tds:MakeCoffee/>')],
        ['with an element of an unknown namespace', envelope('<x:GetScopes xmlns:x="urn:x"/>')],
        ['with an element without a namespace', envelope('<GetScopes/>')],
        ['with an undeclared prefix', envelope('<q:GetScopes/>')],
        ['with an empty body', envelope('')],
        ['with two operations', envelope(time + scopes)],
        ['with unknown content', envelope('<tds:GetScopes a="b"><x:y xmlns:x="urn:x">z</x:y>text</tds:GetScopes>')],
        ['with a comment', envelope(`<!-- a -->${scopes}`)],
        ['with a document type', `<!DOCTYPE a>${envelope(scopes)}`],
        ['that is truncated', envelope(scopes).slice(0, -20)],
        ['that is truncated in a name', envelope(scopes).slice(0, 200)],
        ['with wrong nesting', envelope('<tds:GetScopes></tds:GetDNS>')],
        ['that is not XML', 'hello'],
        ['that is JSON', '{"a": 1}'],
        ['that is white space', '   \r\n'],
        ['that is another document', '<?xml version="1.0"?><a/>'],
        ['of 70 levels', envelope(`<tr2:GetStreamUri>${'<a>'.repeat(70)}${'</a>'.repeat(70)}</tr2:GetStreamUri>`)],
        ['of 600 attributes', envelope(`<tds:GetScopes ${Array.from({length: 600}, (_, i) => `a${i}="b"`).join(' ')}/>`)],
        ['with a long text', envelope(`<tds:GetScopes><a>${'b'.repeat(900000)}</a></tds:GetScopes>`)],
        ['with an invalid number', envelope('<tev:PullMessages><tev:MessageLimit>many</tev:MessageLimit></tev:PullMessages>')],
        ['with an invalid character reference', envelope('<trt:GetProfile><trt:ProfileToken>&#1;</trt:ProfileToken></trt:GetProfile>')],
        ['with an unknown entity', envelope('<trt:GetProfile><trt:ProfileToken>&nobody;</trt:ProfileToken></trt:GetProfile>')],
    ];
    for (const [name, body] of rows) await session.send(`message ${name}`, session.request('/onvif/device_service', body));
    for (const service of ['device_service', 'media_service', 'media2_service', 'events_service', 'analytics_service', 'unknown', '']) {
        await session.ask(`message at ${service || 'the root of the services'}`, scopes, {target: `/onvif/${service}`});
    }
}

// HTTP requests that are special or wrong. Each is complete, or ends where the host must have refused it.
export async function sendHttp(session) {
    const body = envelope('<tds:GetScopes/>');
    const length = `Content-Length: ${Buffer.byteLength(body)}`;
    const post = (fields, text = body, version = '1.1', target = '/onvif/device_service') =>
        [`POST ${target} HTTP/${version}`, ...fields, '', text].join('\r\n');
    const own = `Host: 127.0.0.1:${session.host.port}`;
    const get = (target, fields = [own], method = 'GET', version = '1.1') => [`${method} ${target} HTTP/${version}`, ...fields, '', ''].join('\r\n');
    const chunks = `${(20).toString(16)}\r\n${body.slice(0, 20)}\r\n${(body.length - 20).toString(16)};a=b\r\n${body.slice(20)}\r\n0\r\nT: u\r\n\r\n`;
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
    for (const method of ['GET', 'HEAD', 'PUT', 'DELETE', 'OPTIONS', 'PATCH', 'TRACE', 'BREW']) {
        for (const target of ['/onvif/device_service', '/api/events', '/snapshot/1/latest.jpeg', '/none', ...method === 'GET' || method === 'HEAD' ? [] : ['/api/health']]) {
            await session.send(`HTTP ${method} ${target}`, get(target, method === 'PUT' || method === 'PATCH' ? [own, 'Content-Length: 0'] : [own], method), {method});
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

const start = '2026-01-31T12:00:00.250Z';
const field = type => ({type, name: 'Tür <1>', start, channel: 1, zone: {type: 'field'}, objects: [{id: 12, class: 'person'}, {id: 3}], count: -3});
const families = ['presence', 'direction', 'directional-crossing', 'enter', 'exit', 'appear', 'disappear', 'fall', 'tailgating', 'and', 'not',
    'or', 'dwell', 'stopped', 'aggressive-behaviour', 'count', 'unknown'];
const events = [
    ...families.flatMap(type => [field(type), {...field(type), zone: {type: 'line'}}, {type, name: '', start}, {...field(type), zone: {type: 7}}]),
    {...field('presence'), objects: []}, {...field('presence'), objects: [{id: 4, name: 'Anna & Bob'}]}, {type: 'count', start, channel: 4294967295},
    {type: 'count', start: '2026-01-31T13:00:00+01:00', counts: [1, 2]}, {type: 'presence', start, channels: [2, 1], zones: [{type: 'line'}, {type: 'field'}]},
];

const topics = ['tns1:RuleEngine/FieldDetector/ObjectsInside', 'tns1:RuleEngine//.', 'tns1:RuleEngine/LineDetector//.', 'tns1:RuleEngine/CountAggregation/Counter',
    'tns1:RuleEngine/FieldDetector/Enter|tns1:RuleEngine/LineDetector/Crossed', 'tns1:Device//.', 'x:y', '', '  ', 'a|', '*', '//.'];
const concrete = 'http://docs.oasis-open.org/wsn/t-1/TopicExpression/Concrete';
const topicSet = 'http://www.onvif.org/ver10/tev/topicExpression/ConcreteSet';
const filterOf = (topic, dialect) => `<tev:Filter><wsnt:TopicExpression Dialect="${dialect}">${topic}</wsnt:TopicExpression></tev:Filter>`;

const service = '/onvif/events_service';

export const pull = (timeout, limit) =>
    `<tev:PullMessages><tev:Timeout>${timeout}</tev:Timeout><tev:MessageLimit>${limit}</tev:MessageLimit></tev:PullMessages>`;
const renew = time => `<wsnt:Renew><wsnt:TerminationTime>${time}</wsnt:TerminationTime></wsnt:Renew>`;

// Returns the path of a new subscription.
export async function subscribe(session, name, arguments_ = '') {
    const {body} = await session.ask(`subscription ${name}`, `<tev:CreatePullPointSubscription>${arguments_}</tev:CreatePullPointSubscription>`, {target: service});
    const {pathname, search} = new URL(/Address>([^<]+)</.exec(body)[1]);
    return pathname + search;
}

// Every kind of event, through every kind of filter, pulled one by one and all together.
export async function sendEvents(session) {
    const filters = topics.flatMap(topic => [concrete, topicSet].map(dialect => ({name: `of "${topic}", ${dialect}`, filter: filterOf(topic, dialect)})));
    const all = {name: 'of everything', filter: ''};
    const content = {name: 'with a filter of content', filter: '<tev:Filter><wsnt:MessageContent Dialect="urn:x">true()</wsnt:MessageContent></tev:Filter>'};
    const subscriptions = [];
    for (const {name, filter} of [all, {...all, name: 'of everything, too'}, ...filters, content]) {
        subscriptions.push({name, target: await subscribe(session, name, `${filter}<tev:InitialTerminationTime>PT1H</tev:InitialTerminationTime>`)});
    }
    for (const event of events) await session.postEvents('one event', event);
    await session.postEvents('a list of events', events);
    const [first, ...others] = subscriptions;
    for (let i = 0; i < events.length; ++i) await session.ask(`${first.name}: pull ${i}`, pull('PT0S', 1), first);
    for (const {name, target} of [first, ...others]) {
        for (const limit of [3, 0, -1, 1000]) await session.ask(`${name}: ${limit} messages`, pull('PT0S', limit), {target});
    }
    for (const {name, target} of subscriptions) await session.ask(`${name}: end`, '<wsnt:Unsubscribe/>', {target});
    for (const {type} of [{}, {type: 7}]) await session.postEvents(`a wrong event, ${type}`, {type});
    for (const wrong of [{type: 'count', color: 'red'}, {type: 'count', start: 'yesterday'}, [], [field('fall'), {}], 'text', {type: 'count', objects: [{id: 'x'}]}]) {
        await session.postEvents(`a wrong event, ${JSON.stringify(wrong).slice(0, 40)}`, wrong);
    }
}

// The life of subscriptions: times, errors, and pulls that wait for an event, a timeout and an end.
export async function sendSubscriptions(session) {
    const target = await subscribe(session, 'without arguments');
    for (const time of ['PT20M', 'P1D', '2000-01-01T00:00:00Z', 'tomorrow', '-PT1M', '']) {
        await subscribe(session, `until ${time}`, `<tev:InitialTerminationTime>${time}</tev:InitialTerminationTime>`).catch(() => {});
    }
    for (const time of ['PT20M', 'P1D', 'tomorrow', '']) await session.ask(`renewal until ${time}`, renew(time), {target});
    await session.ask('renewal without a time', '<wsnt:Renew/>', {target});
    for (const where of [service, `${service}/Subscription?Idx=999999`, `${service}/Subscription?Idx=x`, `${service}/Subscription`]) {
        for (const operation of [pull('PT0S', 1), renew('PT1M'), '<wsnt:Unsubscribe/>', '<tev:SetSynchronizationPoint/>']) {
            await session.ask(`${operation} at ${where}`, operation, {target: where});
        }
    }
    for (const timeout of ['PT0S', 'PT1S', '-PT1S', 'soon', '']) await session.ask(`pull for ${timeout}`, pull(timeout, 5), {target});
    await session.ask('pull with addressing', pull('PT0S', 5), {target, header: addressing});
    await session.ask('synchronization', '<tev:SetSynchronizationPoint/>', {target});
    const woken = await session.begin('a pull that waits for an event', pull('PT1M', 5), target);
    await session.postEvents('an event for a waiting pull', field('presence'));
    await woken();
    const ended = await session.begin('a pull that waits while its subscription ends', pull('PT1M', 5), target);
    await session.ask('the end of a subscription with a waiting pull', '<wsnt:Unsubscribe/>', {target});
    await ended();
    await session.ask('a pull of an ended subscription', pull('PT0S', 1), {target});
    const first = await subscribe(session, 'for two pulls');
    const two = [await session.begin('the first of two pulls', pull('PT2S', 5), first), await session.begin('the second of two pulls', pull('PT2S', 5), first)];
    for (const finish of two) await finish();
    await session.ask('the end of a subscription', '<wsnt:Unsubscribe/>', {target: first});
}

export const sendHealth = session => session.get('health', '/api/health');
