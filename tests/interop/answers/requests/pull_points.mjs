// Requests for subscriptions, as the other files of this folder send them.

export const service = '/onvif/events_service';

export const pull = (timeout, limit) =>
    `<tev:PullMessages><tev:Timeout>${timeout}</tev:Timeout><tev:MessageLimit>${limit}</tev:MessageLimit></tev:PullMessages>`;
export const renew = time => `<wsnt:Renew><wsnt:TerminationTime>${time}</wsnt:TerminationTime></wsnt:Renew>`;

// Returns the path of a new subscription.
export async function subscribe(session, name, arguments_ = '') {
    const operation = `<tev:CreatePullPointSubscription>${arguments_}</tev:CreatePullPointSubscription>`;
    const {body} = await session.ask(`subscription ${name}`, operation, {target: service});
    const {pathname, search} = new URL(/Address>([^<]+)</.exec(body)[1]);
    return pathname + search;
}
