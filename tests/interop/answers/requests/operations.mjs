// Every operation of the table.
import {readFileSync} from 'node:fs';

// From the table that the device is made of: [{access, prefix, name}]. An element calls the first operation of its name.
export const operations = [...readFileSync(new URL('../../../../interface/operations.h', import.meta.url), 'utf8')
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
        '<trt:GetStreamUri><trt:StreamSetup><tt:Stream>RTP-Unicast</tt:Stream><tt:Transport><tt:Protocol>RTSP</tt:Protocol>' +
            `</tt:Transport></trt:StreamSetup>${tokens('trt', token)}</trt:GetStreamUri>`,
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
        for (const token of ['channels.1', 'none']) {
            await session.ask(`${element} of ${token}`, `<${element}>${tokens(prefix, token)}</${element}>`);
        }
    }
    for (const operation of variants) await session.ask(operation, operation);
}
