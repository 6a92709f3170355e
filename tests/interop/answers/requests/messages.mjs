// SOAP messages.
import {envelope} from '../session.mjs';

// Asks for an answer that relates to the request.
export const addressing = '<a:MessageID>urn:uuid:1</a:MessageID>' +
    '<a:ReplyTo><a:Address>http://www.w3.org/2005/08/addressing/anonymous</a:Address></a:ReplyTo>' +
    '<a:To>http://h/onvif</a:To><a:Action>http://www.onvif.org/a</a:Action>';
const security = '<w:Security s:mustUnderstand="1" ' +
    'xmlns:w="http://docs.oasis-open.org/wss/2004/01/oasis-200401-wss-wssecurity-secext-1.0.xsd">' +
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
        ['with an unknown mandatory header for another role',
            envelope(scopes, {header: '<x:a xmlns:x="urn:x" s:mustUnderstand="1" s:role="urn:y"/>'})],
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
