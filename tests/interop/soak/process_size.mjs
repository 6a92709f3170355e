// Resources used by a process, from proc(5).
import {readFileSync, readdirSync, readlinkSync} from 'node:fs';

const listening = '0A';
const established = '01';

// Inodes of the connections to a process's ports that neither side has closed.
function findOpenConnections(pid) {
    const sockets = ['tcp', 'tcp6'].flatMap(table => readFileSync(`/proc/${pid}/net/${table}`, 'latin1').trim().split('\n').slice(1))
        .map(line => line.trim().split(/\s+/))
        .map(([, local, , state, , , , , , inode]) => ({port: local.split(':')[1], state, inode}));
    const ports = new Set(sockets.filter(({state}) => state === listening).map(({port}) => port));
    return new Set(sockets.filter(({port, state}) => state === established && ports.has(port)).map(({inode}) => inode));
}

function countDescriptors(pid) {
    const open = findOpenConnections(pid);
    const folder = `/proc/${pid}/fd`;
    return readdirSync(folder).filter(name => {
        try {
            const [, inode] = /^socket:\[(\d+)\]$/.exec(readlinkSync(`${folder}/${name}`)) ?? [];
            return !open.has(inode);
        } catch {
            return false; // closed since
        }
    }).length;
}

// Returns {residentKib, anonymousKib, threads, descriptors}; throws when there is no such process.
// anonymousKib  resident memory without file pages, which the kernel may drop and reload at any time
// descriptors   without open connections from clients, because clients decide how long to keep them
export function measure(pid) {
    const status = readFileSync(`/proc/${pid}/status`, 'utf8');
    const field = name => Number(new RegExp(`^${name}:\\s*(\\d+)`, 'm').exec(status)[1]);
    return {residentKib: field('VmRSS'), anonymousKib: field('RssAnon'), threads: field('Threads'), descriptors: countDescriptors(pid)};
}
