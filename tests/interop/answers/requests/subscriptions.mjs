// Subscriptions: their times and errors, and pulls that wait.
import {field} from './events.mjs';
import {addressing} from './messages.mjs';
import {pull, renew, service, subscribe} from './pull_points.mjs';

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
    const shared = await subscribe(session, 'for two pulls');
    const waiting = [];
    for (const name of ['first', 'second']) waiting.push(await session.begin(`the ${name} of two pulls`, pull('PT2S', 5), shared));
    for (const finish of waiting) await finish();
    await session.ask('the end of a subscription', '<wsnt:Unsubscribe/>', {target: shared});
}
