// Collects what the parts measure: rows of the table that is printed at the end, and series for the pictures.
import {mkdirSync, writeFileSync} from 'node:fs';
import {join} from 'node:path';

import {formatSeries} from './series.mjs';

export function median(values) {
    const sorted = [...values].sort((a, b) => a - b);
    const middle = sorted.length >> 1;
    return sorted.length % 2 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2;
}

// At most `digits` significant digits, with commas between thousands.
export function show(value, digits = 3) {
    const whole = Math.ceil(Math.log10(Math.abs(value) + 1));
    return Number(value.toPrecision(Math.max(digits, whole))).toLocaleString('en', {maximumFractionDigits: 6});
}

// A number of things.
export const count = (number, thing) => `${show(number)} ${thing}${number === 1 ? '' : 's'}`;

// An aim of a row: {text, isMet(value)}.
export const atMost = (limit, unit = '') => ({text: `at most ${show(limit)}${unit}`, isMet: value => value <= limit});
export const atLeast = (limit, unit = '') => ({text: `at least ${show(limit)}${unit}`, isMet: value => value >= limit});

export function formatTable(head, rows) {
    const widths = head.map((title, column) => Math.max(title.length, ...rows.map(row => row[column].length)));
    const line = cells => `| ${cells.map((cell, column) => cell.padEnd(widths[column])).join(' | ')} |`;
    return [line(head), `|${widths.map(width => '-'.repeat(width + 2)).join('|')}|`, ...rows.map(line)].join('\n');
}

export class Report {
    #rows = [];
    #series = new Map();

    // folder: receives the series
    constructor(folder) {
        this.folder = folder;
        mkdirSync(folder, {recursive: true});
    }

    // A row of the table. ratio: number, or undefined where there is nothing to compare with; aims: of the ratio, or, with
    // `value`, of that number; a row without an aim is information.
    add(what, measured, {ratio, aim, value = ratio} = {}) {
        const met = aim ? aim.isMet(value) ? 'yes' : 'no' : '';
        const row = [what, measured, ratio === undefined ? '' : show(ratio), aim?.text ?? '', met];
        this.#rows.push(row);
        console.log(`   ${row.filter(cell => cell).join(' | ')}`);
    }

    // A point of a series, which is an object of numbers and texts; all points of a series have the same keys.
    addPoint(series, point) {
        if (!this.#series.has(series)) this.#series.set(series, []);
        this.#series.get(series).push(point);
    }

    // How many aims were met and missed.
    summarize() {
        const [met, missed] = ['yes', 'no'].map(answer => this.#rows.filter(row => row.at(-1) === answer).length);
        return `${count(met, 'aim')} met, ${missed} missed`;
    }

    format() { return formatTable(['what', 'measured', 'ratio', 'aim', 'met'], this.#rows); }

    // Writes each series to a file of its own. Series of parts that were not run keep their last file.
    write() {
        for (const [name, points] of this.#series) writeFileSync(join(this.folder, `${name}.csv`), formatSeries(points));
        writeFileSync(join(this.folder, 'table.md'), `${this.format()}\n`);
    }
}
