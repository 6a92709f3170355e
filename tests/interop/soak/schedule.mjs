// Repeats actions in step with the clock until stopped.

// Returns early when `stop` is signalled.
const sleep = (milliseconds, stop) => new Promise(resolve => {
    const wake = () => {
        clearTimeout(timer);
        stop.removeEventListener('abort', wake);
        resolve();
    };
    const timer = setTimeout(wake, milliseconds);
    stop.addEventListener('abort', wake);
});

// A promise that is rejected when the given one takes too long.
function within(seconds, promise) {
    let timer;
    const late = new Promise((_, reject) => { timer = setTimeout(() => reject(new Error(`no end within ${seconds} s`)), seconds * 1000); });
    return Promise.race([promise, late]).finally(() => clearTimeout(timer));
}

// Calls action(round) every `period` seconds, starting at `offset`. Calls never overlap, and each may take `limit`
// seconds. Errors go to report(error) without ending the rounds. Returns the number of rounds once `stop` (an
// AbortSignal) is signalled and the last call has ended.
export async function repeat({period, offset = 0, limit = 30}, action, report, stop) {
    const begin = Date.now() + offset * 1000;
    let rounds = 0;
    for (let turn = 0; ; turn = Math.max(turn + 1, Math.ceil((Date.now() - begin) / 1000 / period))) {
        await sleep(Math.max(0, begin + turn * period * 1000 - Date.now()), stop);
        if (stop.aborted) return rounds;
        try {
            await within(limit, action(turn));
            ++rounds;
        } catch (error) {
            report(error);
        }
    }
}
