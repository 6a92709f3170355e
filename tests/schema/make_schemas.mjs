// Creates a set of schemas with which xmllint can validate complete SOAP messages, from a folder of the published ONVIF
// WSDLs. The copies differ from the originals as follows:
// - The schema inside a WSDL gets its own file, with the prefixes of the WSDL.
// - libxml2 reads one document per namespace but the ONVIF schema has two, so a new document includes both.
// - libxml2 rejects a wildcard for the schema's own namespace after a repeated element as ambiguous; it is removed.
// - A topic set may hold any element; message descriptions get a declaration so that they are validated.
import {mkdirSync, readFileSync, writeFileSync} from 'node:fs';
import {join, resolve} from 'node:path';
import {pathToFileURL} from 'node:url';

const typesNamespace = 'http://www.onvif.org/ver10/schema';
const services = {
    device: 'ver10/device/wsdl/devicemgmt.wsdl',
    media: 'ver10/media/wsdl/media.wsdl',
    media2: 'ver20/media/wsdl/media.wsdl',
    events: 'ver10/events/wsdl/event.wsdl',
    analytics: 'ver20/analytics/wsdl/analytics.wsdl',
};
const published = {
    'http://www.w3.org/2003/05/soap-envelope': 'http://www.w3.org/2003/05/soap-envelope',
    'http://docs.oasis-open.org/wsn/b-2': 'http://docs.oasis-open.org/wsn/b-2.xsd',
};

const importOf = (namespace, location) => `<xs:import namespace="${namespace}" schemaLocation="${location}"/>`;

function extractSchema(wsdl) {
    const [schema, head] = /(<xs:schema[^>]*>)[\s\S]*?<\/xs:schema>/.exec(wsdl);
    const outer = [...wsdl.matchAll(/xmlns:(\w+)="([^"]+)"/g)].filter(([, prefix]) => !head.includes(`xmlns:${prefix}=`));
    const prefixes = new Map(outer.map(([, prefix, uri]) => [prefix, uri]));
    const declarations = [...prefixes].map(([prefix, uri]) => ` xmlns:${prefix}="${uri}"`).join('');
    const body = schema.slice(head.length).replace(new RegExp(`<xs:import namespace="${typesNamespace}"[^>]*/>`, 'g'), '');
    return {
        namespace: /targetNamespace="([^"]+)"/.exec(head)[1],
        text: head.slice(0, -1) + declarations + '>' + importOf(typesNamespace, 'types.xsd') + body,
    };
}

// folder: the published WSDLs. Writes into out; returns the file to validate with and the environment for xmllint.
export function makeSchemas(folder, out) {
    const from = resolve(folder);
    mkdirSync(out, {recursive: true});
    const write = (name, ...content) => writeFileSync(join(out, name),
        `<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema" ${content.join('')}</xs:schema>`);
    for (const name of ['onvif', 'metadatastream', 'common']) {
        const text = readFileSync(join(from, 'ver10/schema', `${name}.xsd`), 'utf8');
        writeFileSync(join(out, `${name}.xsd`), text
            .replaceAll('../../ver20/', `${pathToFileURL(join(from, 'ver20'))}/`)
            .replaceAll(/<xs:any namespace="##targetNamespace"[^>]*\/>/g, ''));
    }
    write('types.xsd', `xmlns:tt="${typesNamespace}" targetNamespace="${typesNamespace}">`,
        ...['onvif', 'metadatastream'].map(name => `<xs:include schemaLocation="${name}.xsd"/>`),
        '<xs:element name="MessageDescription" type="tt:MessageDescription"/>');
    const imports = [importOf(typesNamespace, 'types.xsd')];
    for (const [namespace, location] of Object.entries(published)) imports.push(importOf(namespace, location));
    for (const [name, path] of Object.entries(services)) {
        const {namespace, text} = extractSchema(readFileSync(join(from, path), 'utf8'));
        writeFileSync(join(out, `${name}.xsd`), text);
        imports.push(importOf(namespace, `${name}.xsd`));
    }
    write('all.xsd', '>', ...imports);
    return {schema: join(out, 'all.xsd'), env: {XML_CATALOG_FILES: join(from, 'catalog.xml')}};
}
