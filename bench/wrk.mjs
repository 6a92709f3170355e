// Runs wrk and reads its output.
import {join} from 'node:path';

import {root, run} from './program.mjs';

const units = {us: 1e-3, ms: 1, s: 1e3, m: 6e4};

// {rate, p50, p99} of wrk's output, with requests per second and milliseconds. Throws when a request failed.
export function parse(output) {
    const refused = /Non-2xx or 3xx responses: (\d+)/.exec(output);
    const broken = /Socket errors: (.*)/.exec(output);
    if (refused || broken) throw new Error(`wrk: ${(refused ?? broken)[0]}`);
    const latency = part => {
        const [, value, unit] = new RegExp(`^ +${part}% +([\\d.]+)(us|ms|s|m)$`, 'm').exec(output);
        return Number(value) * units[unit];
    };
    return {rate: Number(/^Requests\/sec: +([\d.]+)$/m.exec(output)[1]), p50: latency(50), p99: latency(99)};
}

// script: in this folder; args: for the script
export async function wrk(url, {connections, seconds, script, args = []}) {
    const load = ['-t1', `-c${connections}`, `-d${seconds}s`];
    return parse(await run('wrk', [...load, '--latency', '-s', join(root, 'bench', script), String(url), '--', ...args]));
}
