// Checks the numbered events ("http 1", "http 2", …; "mqtt 1", …) of one subscription: each once, in order, without
// gaps.
export class Delivery {
    #name;
    #last = new Map();
    #problems = [];
    #count = 0;

    constructor(name) { this.#name = name; }

    get problems() { return this.#problems; }
    get count() { return this.#count; }

    last(series) { return this.#last.get(series)?.number ?? 0; }

    take(text) {
        const [series, digits] = text.split(' ');
        const number = Number(digits);
        const former = this.#last.get(series);
        if (former && number !== former.number + 1) {
            this.#problems.push(`${this.#name}: after ${series} ${former.number} came ${series} ${number}`);
        }
        this.#last.set(series, {first: former?.first ?? number, number});
        ++this.#count;
    }

    // Final check: all events from number `from` to `to` are required; earlier and later ones are optional.
    finish(series, from, to) {
        if (to < from) return;
        const {first, number} = this.#last.get(series) ?? {first: Infinity, number: -Infinity};
        if (first > from || number < to) {
            const came = number < 0 ? 'none' : `${first} to ${number}`;
            this.#problems.push(`${this.#name}: of ${series} ${from} to ${to} came ${came}`);
        }
    }
}
