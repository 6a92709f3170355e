// Resources used by a process, from proc(5).
import {readFileSync, readdirSync} from 'node:fs';

// Returns {residentKib, threads, descriptors}; throws when there is no such process.
export function measure(pid) {
    const status = readFileSync(`/proc/${pid}/status`, 'utf8');
    const field = name => Number(new RegExp(`^${name}:\\s*(\\d+)`, 'm').exec(status)[1]);
    return {residentKib: field('VmRSS'), threads: field('Threads'), descriptors: readdirSync(`/proc/${pid}/fd`).length};
}
