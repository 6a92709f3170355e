// Replaces the parts of a response in which two runs of the same host differ. A part is replaced only where it has the
// form that it must have, so that a malformed one remains visible as a difference.

const time = String.raw`\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d(?:\.\d+)?Z`;

// Numbers subscriptions by their first appearance, since their ids may be chosen at random.
export class Subscriptions {
    #names = new Map();

    name(id) {
        if (!this.#names.has(id)) this.#names.set(id, `subscription-${this.#names.size + 1}`);
        return this.#names.get(id);
    }
}

const minute = 60000; // in milliseconds
const year = 365 * 24 * 60 * minute;

// The end of a subscription, as the time from the answer until then, rounded up to five minutes: exact enough to tell
// apart the times that the requests ask for, and coarse enough for a slow machine, on which the end comes nearer from one
// answer to the next. A time that is far away was asked for as such.
function replaceTermination(body) {
    const current = new RegExp(`CurrentTime>(${time})<`).exec(body)?.[1];
    if (!current) return body;
    return body.replace(new RegExp(`(TerminationTime>)(${time})(?=<)`, 'g'), (whole, before, value) => {
        const left = Date.parse(value) - Date.parse(current);
        return Math.abs(left) > year ? whole : `${before}{in ${Math.ceil(left / minute / 5) * 5} min}`;
    });
}

function replaceInBody(body, subscriptions) {
    return replaceTermination(body)
        .replace(new RegExp(`(CurrentTime>)${time}(?=<)`, 'g'), '$1{time}')
        .replace(/(<tt:(?:Hour|Minute|Second|Year|Month|Day)>)\d+(?=<)/g, '$1{number}')
        .replace(/(Subscription\?Idx=)(\w+)/g, (_, before, id) => before + subscriptions.name(id))
        .replace(/("id":)(\d+)(?=,"queued":)/g, (_, before, id) => before + subscriptions.name(id))
        .replace(/("uptime_seconds":)\d+/g, '$1{number}')
        .replace(/("frame_age_ms":)\d+/g, '$1{number}');
}

function replaceInHead(head) {
    return head
        .replace(/^(Date: )[A-Z][a-z]{2}, \d\d [A-Z][a-z]{2} \d{4} \d\d:\d\d:\d\d GMT(?=\r$)/gim, '$1{date}')
        .replace(/(nonce=")[^"]+(?=")/gi, '$1{nonce}')
        .replace(/^(Retry-After: )\d+(?=\r$)/gim, '$1{number}');
}

// A response as text. A length is adjusted to the replaced body only if it is the one of the body as it was sent.
// response  {head, body, kept} of Connection.read
export function toNormalForm({head, body, kept}, subscriptions) {
    const isPicture = /^Content-Type: image\//im.test(head);
    const sent = body.toString('latin1');
    const text = isPicture && sent.startsWith('\xff\xd8') ? '{picture}' : replaceInBody(sent, subscriptions);
    const lengthened = head.replace(/^(Content-Length: )(\d+)(?=\r$)/gim, (line, before, length) => {
        if (isPicture && body.length === 0) return `${before}{number}`; // the answer to HEAD
        return Number(length) === body.length ? before + text.length : line;
    });
    return `${replaceInHead(lengthened)}${text}${kept ? '' : '\n{the connection ends}'}`;
}
