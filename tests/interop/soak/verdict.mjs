// Judges whether a host's resource use stayed constant over a long run.

const slice = 60; // seconds: every minute has the same load

// Permitted growth of the level between the first and the last window. The level is the median of the minima of minutes: a leak raises
// the minimum of every minute, whatever the clients do, while one sample may fall below it at any time. At the end the minimum of the last
// minute counts if it is higher, so that a late leak shows. The host returns unused memory every ten seconds, so that its minimum is what
// it uses.
export const growthRules = [
    {name: 'resident memory', column: 'residentKib', unit: 'KiB', below: 1024},
    {name: 'threads', column: 'threads', unit: '', below: 1},
    {name: 'descriptors', column: 'descriptors', unit: '', below: 1},
];

// The warm-up, which is ignored (five minutes, or a sixth of a shorter run), and the length of the two windows
// compared: ten minutes, or half of what remains.
export function divide(seconds) {
    const warmUp = Math.min(300, Math.floor(seconds / 6));
    return {warmUp, window: Math.min(10 * slice, Math.floor((seconds - warmUp) / 2))};
}

function median(values) {
    const sorted = [...values].sort((a, b) => a - b);
    const middle = sorted.length >> 1;
    return sorted.length % 2 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2;
}

// The minimum of each minute of a window that begins with a second; a shorter window counts as one.
function minima(samples, column, begin, window) {
    const count = Math.max(1, Math.floor(window / slice));
    const parts = Array.from({length: count}, () => []);
    for (const sample of samples) parts[Math.min(count - 1, Math.floor((sample.second - begin) / window * count))].push(sample[column]);
    return parts.filter(part => part.length > 0).map(part => Math.min(...part));
}

function judgeGrowth({name, column, unit, below}, windows, window) {
    const [first, last] = windows.map(({samples, begin}) => minima(samples, column, begin, window));
    const [before, after] = [median(first), Math.max(median(last), last.at(-1))];
    const suffix = unit && ` ${unit}`;
    return {
        passed: after - before < below,
        text: `${name}: ${before}${suffix} after the warm-up, ${after}${suffix} at the end (may grow by less than ${below}${suffix})`,
    };
}

function judgeNone(what, list) {
    return {passed: list.length === 0, text: list.length === 0 ? `no ${what}` : `${what}: ${list.length}, the first: ${list[0]}`};
}

// samples   one per second, {second, residentKib, threads, descriptors, ...}
// problems  lists of texts by kind: {"error of a client": [...], ...}; each must be empty
// Returns {passed, warmUp, window, lines: [{passed, text}]}.
export function judge(samples, seconds, problems) {
    const {warmUp, window} = divide(seconds);
    const windows = [['first', warmUp], ['last', seconds - window]].map(([name, begin]) =>
        ({name, begin, samples: samples.filter(({second}) => second >= begin && second < begin + window)}));
    const lines = [];
    // A window with missing samples proves nothing.
    for (const {name, samples: part} of windows) {
        if (part.length >= window * 0.9 && part.length > 0) continue;
        lines.push({passed: false, text: `the ${name} window has ${part.length} of ${window} samples`});
    }
    if (lines.length === 0) lines.push(...growthRules.map(rule => judgeGrowth(rule, windows, window)));
    lines.push(...Object.entries(problems).map(([what, list]) => judgeNone(what, list)));
    return {passed: lines.every(line => line.passed), warmUp, window, lines};
}
