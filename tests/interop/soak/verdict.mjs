// Judges whether a host's resource use stayed constant over a long run.

const least = values => Math.min(...values);

// Permitted growth between the minimum of the first and of the last window: a leak raises it, whatever the clients do. The host returns
// unused memory every ten seconds, so that its minimum is what it uses.
export const growthRules = [
    {name: 'resident memory', column: 'residentKib', unit: 'KiB', below: 1024},
    {name: 'threads', column: 'threads', unit: '', below: 1},
    {name: 'descriptors', column: 'descriptors', unit: '', below: 1},
];

// The warm-up, which is ignored (five minutes, or a sixth of a shorter run), and the length of the two windows
// compared.
export function divide(seconds) {
    const warmUp = Math.min(300, Math.floor(seconds / 6));
    return {warmUp, window: Math.min(60, Math.floor((seconds - warmUp) / 2))};
}

function judgeGrowth({name, column, unit, below}, first, last) {
    const [before, after] = [first, last].map(window => least(window.map(sample => sample[column])));
    const suffix = unit && ` ${unit}`;
    return {
        passed: after - before < below,
        text: `${name}: least ${before}${suffix} after the warm-up, ${after}${suffix} at the end (may grow by less than ${below}${suffix})`,
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
    const first = samples.filter(({second}) => second >= warmUp && second < warmUp + window);
    const last = samples.filter(({second}) => second >= seconds - window && second < seconds);
    const lines = [];
    // A window with missing samples proves nothing.
    for (const [name, part] of [['first', first], ['last', last]]) {
        if (part.length >= window * 0.9 && part.length > 0) continue;
        lines.push({passed: false, text: `the ${name} window has ${part.length} of ${window} samples`});
    }
    if (lines.length === 0) lines.push(...growthRules.map(rule => judgeGrowth(rule, first, last)));
    lines.push(...Object.entries(problems).map(([what, list]) => judgeNone(what, list)));
    return {passed: lines.every(line => line.passed), warmUp, window, lines};
}
