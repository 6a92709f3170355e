// Events, and what clients with and without filters receive of them.
import {pull, subscribe} from './pull_points.mjs';

const start = '2026-01-31T12:00:00.250Z';
export const field = type => ({
    type, name: 'Tür <1>', start, channel: 1, zone: {type: 'field'}, objects: [{id: 12, class: 'person'}, {id: 3}], count: -3,
});
const families = ['presence', 'direction', 'directional-crossing', 'enter', 'exit', 'appear', 'disappear', 'fall', 'tailgating', 'and',
    'not', 'or', 'dwell', 'stopped', 'aggressive-behaviour', 'count', 'unknown'];
const events = [
    ...families.flatMap(type => [
        field(type), {...field(type), zone: {type: 'line'}}, {type, name: '', start}, {...field(type), zone: {type: 7}},
    ]),
    {...field('presence'), objects: []},
    {...field('presence'), objects: [{id: 4, name: 'Anna & Bob'}]},
    {type: 'count', start, channel: 4294967295},
    {type: 'count', start: '2026-01-31T13:00:00+01:00', counts: [1, 2]},
    {type: 'presence', start, channels: [2, 1], zones: [{type: 'line'}, {type: 'field'}]},
];

const wrong = [
    {}, {type: 7}, {type: 'count', color: 'red'}, {type: 'count', start: 'yesterday'}, [], [field('fall'), {}], 'text',
    {type: 'count', objects: [{id: 'x'}]},
];

const topics = ['tns1:RuleEngine/FieldDetector/ObjectsInside', 'tns1:RuleEngine//.', 'tns1:RuleEngine/LineDetector//.',
    'tns1:RuleEngine/CountAggregation/Counter', 'tns1:RuleEngine/FieldDetector/Enter|tns1:RuleEngine/LineDetector/Crossed',
    'tns1:Device//.', 'x:y', '', '  ', 'a|', '*', '//.'];
const concrete = 'http://docs.oasis-open.org/wsn/t-1/TopicExpression/Concrete';
const topicSet = 'http://www.onvif.org/ver10/tev/topicExpression/ConcreteSet';
const filterOf = (topic, dialect) => `<tev:Filter><wsnt:TopicExpression Dialect="${dialect}">${topic}</wsnt:TopicExpression></tev:Filter>`;

// Every kind of event, through every kind of filter, pulled one by one and all together.
export async function sendEvents(session) {
    const filters = topics.flatMap(topic => [concrete, topicSet].map(dialect =>
        ({name: `of "${topic}", ${dialect}`, filter: filterOf(topic, dialect)})));
    const all = {name: 'of everything', filter: ''};
    const contentFilter = '<tev:Filter><wsnt:MessageContent Dialect="urn:x">true()</wsnt:MessageContent></tev:Filter>';
    const content = {name: 'with a filter of content', filter: contentFilter};
    const subscriptions = [];
    for (const {name, filter} of [all, {...all, name: 'of everything, too'}, ...filters, content]) {
        const target = await subscribe(session, name, `${filter}<tev:InitialTerminationTime>PT1H</tev:InitialTerminationTime>`);
        subscriptions.push({name, target});
    }
    for (const event of events) await session.postEvents('one event', event);
    await session.postEvents('a list of events', events);
    const [first, ...others] = subscriptions;
    for (let i = 0; i < events.length; ++i) await session.ask(`${first.name}: pull ${i}`, pull('PT0S', 1), first);
    for (const {name, target} of [first, ...others]) {
        for (const limit of [3, 0, -1, 1000]) await session.ask(`${name}: ${limit} messages`, pull('PT0S', limit), {target});
    }
    for (const {name, target} of subscriptions) await session.ask(`${name}: end`, '<wsnt:Unsubscribe/>', {target});
    for (const event of wrong) await session.postEvents(`a wrong event, ${JSON.stringify(event).slice(0, 40)}`, event);
}
