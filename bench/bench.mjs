// Measures the rows of docs/performance.md: node bench.mjs [--quick] [PART...]. Run by scripts/bench.
// Prints a table and writes it and the series for the pictures to build/bench.
import {mkdtempSync, rmSync} from 'node:fs';
import {cpus, tmpdir} from 'node:os';
import {join} from 'node:path';

import {benchmark, root} from './program.mjs';
import {Report} from './report.mjs';
import {makeVideo} from './video.mjs';

const names = ['exchange', 'http', 'connections', 'pulls', 'filter', 'viewers', 'channels', 'subscriptions', 'events', 'memory', 'idle'];

// What the parts share in one run.
class Context {
    processors = cpus().length;
    #bare;
    #video;

    constructor(folder, isQuick) {
        this.report = new Report(join(root, 'build/bench'));
        this.folder = folder; // for files of this run
        this.isQuick = isQuick;
    }

    // The usual time of a measurement, and the one of a run that only shows that everything works.
    seconds(usual) { return this.isQuick ? Math.max(1, Math.round(usual / 5)) : usual; }

    // The exchange benchmark on one processor: repeated, in random order, medians in microseconds.
    runExchanges(processor) {
        const repetitions = this.isQuick ? 2 : 5;
        return benchmark('exchange_benchmark', [`--benchmark_repetitions=${repetitions}`, '--benchmark_enable_random_interleaving=true',
            '--benchmark_report_aggregates_only=true', ...this.isQuick ? ['--benchmark_min_time=0.1'] : []], processor);
    }

    // {exchangeUs, pullUs}: processor time of an exchange in gSOAP alone, of GetSystemDateAndTime and of PullMessages.
    measureBare() {
        this.#bare ??= this.runExchanges(0).then(results => ({
            exchangeUs: results.get('BareExchange/real_time_median').cpu_time, pullUs: results.get('BarePull/real_time_median').cpu_time,
        }));
        return this.#bare;
    }

    // The test video, made once.
    getVideo() { return this.#video ??= makeVideo(this.folder); }
}

const given = process.argv.slice(2);
const isQuick = given.includes('--quick');
const parts = given.filter(argument => argument !== '--quick');
const unknown = parts.filter(part => !names.includes(part));
if (unknown.length > 0) {
    console.error(`${unknown[0]}: no such part\nusage: scripts/bench [--quick] [PART...]\nparts: ${names.join(' ')}`);
    process.exit(2);
}
const folder = mkdtempSync(join(tmpdir(), 'zarn-bench-'));
const context = new Context(folder, isQuick);
try {
    for (const name of parts.length > 0 ? parts : names) {
        const {title, measure} = await import(`./parts/${name}.mjs`);
        console.log(`== ${name}: ${title}`);
        await measure(context).catch(error => {
            console.error(`${name} failed: ${error.stack}`);
            process.exitCode = 1;
        });
    }
    context.report.write();
    console.log(`\n${context.report.format()}\n\n${context.report.summarize()}`);
    if (isQuick) console.log('A quick run shows that everything works; its figures say little.');
} finally {
    rmSync(folder, {recursive: true});
}
