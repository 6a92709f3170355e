// A connection on which requests are sent byte by byte and whole HTTP responses are read, as they are on the wire.
import {once} from 'node:events';
import {connect as connectTcp} from 'node:net';
import {connect as connectTls} from 'node:tls';

const patience = 30000; // milliseconds for each read

const headEnd = Buffer.from('\r\n\r\n');

function valueOf(head, name) { return new RegExp(`^${name}: *(.*)\r$`, 'im').exec(head)?.[1]; }

// True if the connection stays open after a response with this head (RFC 9112, 9.3).
export function isKept(head) {
    const options = (valueOf(head, 'Connection') ?? '').toLowerCase().split(/ *, */);
    return head.startsWith('HTTP/1.0') ? options.includes('keep-alive') : !options.includes('close');
}

export class Connection {
    #socket;
    #received = Buffer.alloc(0);
    #ended = false;
    #wake = () => {};

    // port  of 127.0.0.1; tls: whether to speak TLS, without verifying the certificate
    static async open(port, tls) {
        const connection = new Connection();
        connection.#socket = tls ? connectTls({port, host: '127.0.0.1', rejectUnauthorized: false}) : connectTcp(port, '127.0.0.1');
        const socket = connection.#socket;
        socket.on('data', data => { connection.#received = Buffer.concat([connection.#received, data]); connection.#wake(); });
        socket.on('close', () => { connection.#ended = true; connection.#wake(); });
        await once(socket, tls ? 'secureConnect' : 'connect');
        socket.on('error', () => {}); // a reset ends the connection like a close
        return connection;
    }

    send(bytes) { this.#socket.write(bytes, 'latin1'); }

    close() { this.#socket.destroy(); }

    // Waits until the condition returns something else than undefined, which is returned, or the connection ends.
    async #until(condition) {
        const deadline = Date.now() + patience;
        for (;;) {
            const found = condition();
            if (found !== undefined || this.#ended) return found;
            const left = deadline - Date.now();
            if (left <= 0) throw new Error('no response in time');
            await new Promise(resolve => {
                const timer = setTimeout(resolve, left);
                this.#wake = () => { clearTimeout(timer); resolve(); };
            });
        }
    }

    #take(count) {
        const taken = this.#received.subarray(0, count);
        this.#received = this.#received.subarray(count);
        return taken;
    }

    async #takeAtLeast(count) { await this.#until(() => this.#received.length >= count || undefined); return this.#take(count); }

    async #takeThrough(mark) {
        const at = await this.#until(() => { const index = this.#received.indexOf(mark); return index < 0 ? undefined : index; });
        return this.#take(at === undefined ? this.#received.length : at + mark.length);
    }

    async #takeChunks() {
        const parts = [];
        for (;;) {
            const line = await this.#takeThrough(Buffer.from('\r\n'));
            const size = parseInt(line.toString('latin1'), 16);
            parts.push(line);
            if (size > 0) parts.push(await this.#takeAtLeast(size + 2));
            else return Buffer.concat([...parts, await this.#takeThrough(Buffer.from('\r\n'))]);
        }
    }

    // Reads to the end of a head, or of the connection.
    async readHead() { return (await this.#takeThrough(headEnd)).toString('latin1'); }

    // Reads a response with the interim ones before it. Returns {head, body, kept}: the head with its line ends, the
    // body as it was sent (with the frames of chunks), whether the connection is still open. A response that is to end
    // the connection is read to that end, so that nothing that follows it goes unnoticed.
    async read(method) {
        let head = '';
        let last;
        do {
            last = await this.readHead();
            head += last;
        } while (/^HTTP\/1\.1 1\d\d/.test(last));
        const status = Number(/^HTTP\/1\.[01] (\d{3})/.exec(last)?.[1]);
        const length = valueOf(last, 'Content-Length');
        const empty = method === 'HEAD' || status === 204 || status === 304;
        let body = Buffer.alloc(0);
        if (!empty && /chunked/i.test(valueOf(last, 'Transfer-Encoding') ?? '')) body = await this.#takeChunks();
        else if (!empty && length !== undefined) body = await this.#takeAtLeast(Number(length));
        const kept = !this.#ended && isKept(last);
        if (!kept) {
            await this.#until(() => undefined);
            body = Buffer.concat([body, this.#take(this.#received.length)]);
            this.close();
        }
        return {head, body, kept};
    }
}
