// Resources used by a process, from proc(5).
import {readFileSync, readdirSync} from 'node:fs';

// Returns {residentKib, ownKib, threads, descriptors}; throws when there is no such process. ownKib is the part of the resident memory
// that belongs to no file: the kernel maps and reclaims the pages of program files as it likes.
export function measure(pid) {
    const status = readFileSync(`/proc/${pid}/status`, 'utf8');
    const field = name => Number(new RegExp(`^${name}:\\s*(\\d+)`, 'm').exec(status)[1]);
    return {
        residentKib: field('VmRSS'), ownKib: field('RssAnon'), threads: field('Threads'), descriptors: readdirSync(`/proc/${pid}/fd`).length,
    };
}
