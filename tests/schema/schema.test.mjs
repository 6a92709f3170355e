// Validates every response of the device against the published schemas. Intentional deviations are listed with their
// operation and exact complaint; both missing and additional complaints fail the test.
// The schemas are not part of the project: ONVIF_WSDL_DIR names their folder.
import assert from 'node:assert/strict';
import {existsSync, mkdtempSync, readFileSync, rmSync, writeFileSync} from 'node:fs';
import {tmpdir} from 'node:os';
import {dirname, join} from 'node:path';
import {after, before, describe, test} from 'node:test';
import {fileURLToPath} from 'node:url';

import {run, startHost} from '../interop/host.mjs';
import {ask, postEvents} from '../interop/soap.mjs';
import {makeSchemas} from './make_schemas.mjs';

const beside = join(dirname(fileURLToPath(import.meta.url)), '../../../shared/onvif-wsdl');
const wsdl = process.env.ONVIF_WSDL_DIR ?? (existsSync(beside) ? beside : undefined);

const token = (prefix, name = 'ProfileToken') => `<${prefix}:${name}>channels.1</${prefix}:${name}>`;

// The device omits these parts of its capabilities.
const noNetwork = "Element 'tds:Security': This element is not expected. Expected is ( tds:Network ).";
// Options are omitted entirely; encoder options only when no channel is given.
const noOptions = operation => `Element '${operation}Response': Missing child element(s). Expected is (`;
// Ranges of values that cannot be set.
const noRanges = "Element 'tt:H264': Missing child element(s). Expected is one of ( tt:ResolutionsAvailable, tt:GovLengthRange ).";
// Engine and rules belong to the analytics service, which has one module without parameters.
const noEngine = element => `Element '${element}': Missing child element(s). Expected is ( tt:AnalyticsEngineConfiguration ).`;
const noParameters = element => `Element '${element}': Missing child element(s). Expected is ( tt:Parameters ).`;

// [operation, deviations]: the start of each complaint, with prefixes for namespaces. An operation of the table that is
// not among them is sent with tokens, and does not depart from the schema.
const special = [
    ['<tds:GetServices><tds:IncludeCapability>false</tds:IncludeCapability></tds:GetServices>', []],
    ['<tds:GetServices><tds:IncludeCapability>true</tds:IncludeCapability></tds:GetServices>', [noNetwork]],
    ['<tds:GetServiceCapabilities/>', [noNetwork]],
    ['<tds:GetDNS/>', []],
    [`<trt:GetProfile>${token('trt')}</trt:GetProfile>`, []],
    ['<trt:GetProfile><trt:ProfileToken>none</trt:ProfileToken></trt:GetProfile>', []],
    ['<trt:GetVideoSourceConfigurationOptions/>', [noOptions('trt:GetVideoSourceConfigurationOptions')]],
    ['<trt:GetVideoEncoderConfigurationOptions/>', []],
    [`<trt:GetVideoEncoderConfigurationOptions>${token('trt', 'ConfigurationToken')}</trt:GetVideoEncoderConfigurationOptions>`, [noRanges]],
    ['<tr2:GetProfiles/>', []],
    ['<tr2:GetProfiles><tr2:Type>All</tr2:Type></tr2:GetProfiles>', [noEngine('tr2:Analytics'), noEngine('tr2:Analytics')]],
    ['<tr2:GetProfiles><tr2:Type>VideoSource</tr2:Type><tr2:Type>VideoEncoder</tr2:Type></tr2:GetProfiles>', []],
    ['<tr2:GetProfiles><tr2:Type>Metadata</tr2:Type><tr2:Type>All</tr2:Type></tr2:GetProfiles>', []],
    ['<tr2:GetProfiles><tr2:Type>AudioSource</tr2:Type></tr2:GetProfiles>', []],
    ['<tr2:GetProfiles><tr2:Token>none</tr2:Token></tr2:GetProfiles>', []],
    ['<tr2:GetAnalyticsConfigurations/>', [noEngine('tr2:Configurations'), noEngine('tr2:Configurations')]],
    ['<tr2:GetVideoSourceConfigurationOptions/>', []],
    [`<tr2:GetVideoSourceConfigurationOptions>${token('tr2')}</tr2:GetVideoSourceConfigurationOptions>`, []],
    [`<tr2:GetVideoEncoderConfigurationOptions>${token('tr2')}</tr2:GetVideoEncoderConfigurationOptions>`, []],
    ['<tr2:GetVideoEncoderConfigurationOptions/>', [noOptions('tr2:GetVideoEncoderConfigurationOptions')]],
    ['<tan:GetSupportedAnalyticsModules/>', [noParameters('tt:AnalyticsModuleDescription')]],
    ['<tan:GetAnalyticsModules/>', [noParameters('tan:AnalyticsModule')]],
];

// The elements of the operations that are served, each for a channel: from the table that the device is made of.
const table = readFileSync(new URL('../../interface/operations.h', import.meta.url), 'utf8');
const served = [...table.matchAll(/X\((?:Open|Accepted|Login), (\w+), (\w+)/g)].map(([, prefix, name]) => ({
    start: new RegExp(`^<${prefix}:${name}[/>]`),
    element: `<${prefix}:${name}>${token(prefix, 'ConfigurationToken')}${token(prefix)}</${prefix}:${name}>`,
}));
assert.ok(served.length > 40);
const responses = [
    ...served.filter(({start}) => !special.some(([operation]) => start.test(operation))).map(({element}) => [element, []]),
    ...special,
];

// [what, operation, status, fault, password]: refusals are validated against the SOAP schema.
const refused = [
    ['an operation of media2 that is not served', '<tr2:GetOSDs/>', 500, 'Not supported'],
    ['an operation of analytics that is not served', '<tan:GetRules/>', 500, 'Not supported'],
    ['a wrong password', '<tds:GetUsers/>', 401, 'Error 401: HTTP 401 Unauthorized', 'wrong'],
];

// Input events: every kind that produces a message.
const rows = [
    ...['presence', 'direction', 'directional-crossing', 'enter', 'exit', 'appear', 'disappear', 'tailgating', 'fall', 'and', 'not', 'or']
        .map(type => ({type, zone: {type: 'field'}})),
    ...['presence', 'direction', 'directional-crossing', 'tailgating', 'and', 'not', 'or'].map(type => ({type, zone: {type: 'line'}})),
    ...['dwell', 'stopped', 'aggressive-behaviour', 'count'].map(type => ({type})),
];

const pull = '<tev:PullMessages><tev:Timeout>PT0S</tev:Timeout><tev:MessageLimit>100</tev:MessageLimit></tev:PullMessages>';
const renew = '<wsnt:Renew><wsnt:TerminationTime>PT1M</wsnt:TerminationTime></wsnt:Renew>';
const noSuch = '/onvif/events_service/Subscription?Idx=999';
const noId = '/onvif/events_service';

// [what, operation, status, path]: without a path, the address of the existing subscription is used.
const ofSubscriptions = [
    ['a subscription with filter and time', '<tev:CreatePullPointSubscription><tev:Filter><wsnt:TopicExpression Dialect="urn:x">a|b' +
        '</wsnt:TopicExpression></tev:Filter><tev:InitialTerminationTime>PT1M</tev:InitialTerminationTime></tev:CreatePullPointSubscription>', 200, noId],
    ['no messages', pull, 200],
    ['messages without an address', pull, 400, noId],
    ['messages of no subscription', pull, 400, noSuch],
    ['a renewal', renew, 200],
    ['a renewal without a time', '<wsnt:Renew/>', 200],
    ['a renewal without an address', renew, 400, noId],
    ['a renewal of no subscription', renew, 400, noSuch],
    ['the end of no subscription', '<wsnt:Unsubscribe/>', 200, noSuch],
    ['what is not served', '<wsnt:GetCurrentMessage/>', 500],
    ['the end of a subscription', '<wsnt:Unsubscribe/>', 200],
];

const prefixes = {
    tt: 'http://www.onvif.org/ver10/schema', tds: 'http://www.onvif.org/ver10/device/wsdl',
    trt: 'http://www.onvif.org/ver10/media/wsdl', tr2: 'http://www.onvif.org/ver20/media/wsdl',
    tan: 'http://www.onvif.org/ver20/analytics/wsdl',
};

function complaintsOf(output) {
    const complaints = [...output.matchAll(/validity error : (.*)/g)].map(match => match[1]);
    return complaints.map(text => Object.entries(prefixes).reduce(
        (shorter, [prefix, uri]) => shorter.replaceAll(`{${uri}}`, `${prefix}:`), text));
}

if (!wsdl) {
    console.log('skipped: ONVIF_WSDL_DIR does not name the published schemas');
    process.exitCode = 77; // SKIP_RETURN_CODE in CMakeLists.txt
} else {
    const folder = mkdtempSync(join(tmpdir(), 'zarn-schema-'));
    const {schema, env} = makeSchemas(wsdl, folder);
    let host;
    before(async () => {
        const video = {codec: 'video/x-h264', width: 1920, height: 1080, rate: '25/1'};
        host = await startHost({channels: {1: {name: 'Grün', video}, 2: {name: '北', video: {...video, codec: 'video/x-h265'}}}});
    });
    after(async () => {
        await host.stop();
        rmSync(folder, {recursive: true});
    });
    const header = '<a:MessageID>urn:uuid:1</a:MessageID>';
    const expect = async (text, deviations) => {
        const file = join(folder, 'response.xml');
        writeFileSync(file, text);
        const {stderr} = await run('xmllint', ['--nonet', '--noout', '--schema', schema, file], {env: {...process.env, ...env}});
        assert.match(stderr, /response\.xml (validates|fails to validate)/);
        const complaints = complaintsOf(stderr);
        assert.deepEqual(complaints.map((complaint, index) => deviations[index] && complaint.startsWith(deviations[index])
            ? deviations[index] : complaint), deviations, text);
    };
    for (const [operation, deviations] of responses) {
        test(operation, async () => expect((await ask(host, operation, {header})).text, deviations));
    }
    for (const [what, operation, status, fault, secret] of refused) {
        test(what, async () => {
            const answer = await ask(host, operation, {header, secret});
            assert.equal(answer.status, status);
            assert.match(answer.text, new RegExp(`Text[^>]*>${fault}<`));
            await expect(answer.text, []);
        });
    }
    const subscribe = async () => {
        const {text} = await ask(host, '<tev:CreatePullPointSubscription/>');
        const {pathname, search} = new URL(/Address>([^<]+)</.exec(text)[1]);
        return pathname + search;
    };
    describe('subscription', () => {
        let subscription;
        before(async () => { subscription = await subscribe(); });
        for (const [what, operation, status, path] of ofSubscriptions) {
            test(what, async () => {
                const answer = await ask(host, operation, {header, path: path ?? subscription});
                assert.equal(answer.status, status);
                await expect(answer.text, []);
            });
        }
    });
    describe('message', () => {
        for (const row of rows) {
            test(`${row.type} ${row.zone?.type ?? ''}`, async () => {
                const path = await subscribe();
                await postEvents(host, {
                    ...row, name: 'Tür <1>', channel: 1, objects: [{id: 12, class: 'person'}, {id: 3}], count: -3,
                });
                const {text} = await ask(host, pull, {header, path});
                assert.equal(text.split('<wsnt:NotificationMessage>').length, 2, text);
                await expect(text, []);
            });
        }
    });
}
