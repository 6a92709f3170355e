// Draws measurements as an SVG: the verdict, then one panel per column on a common time axis.

const width = 1000;
const left = 70;
const right = 20;
const panelHeight = 120;
const panelGap = 42;
const lineHeight = 17;

const escape = text => String(text).replace(/[&<>"]/g, c => ({'&': '&amp;', '<': '&lt;', '>': '&gt;', '"': '&quot;'})[c]);
const round = value => Number(value.toFixed(1));

export function text(x, y, content, attributes = '') { return `<text x="${round(x)}" y="${round(y)}"${attributes}>${escape(content)}</text>`; }

// Chooses an axis step of 1, 2 or 5 times a power of ten, so that about `count` steps cover the span.
export function chooseStep(span, count) {
    const rough = Math.max(span, 1e-9) / count;
    const power = 10 ** Math.floor(Math.log10(rough));
    return power * [1, 2, 5, 10].find(factor => factor * power >= rough * 0.999);
}

// Chooses the limits of an axis: multiples of the step around the values, at least one step apart.
export function chooseRange(values, count = 4) {
    const [low, high] = [Math.min(...values), Math.max(...values)];
    const step = chooseStep(Math.max(high - low, Math.abs(high) * 0.02, 0.1), count);
    const from = Math.floor(low / step) * step;
    return {from, to: Math.max(Math.ceil(high / step) * step, from + step), step};
}

export function ticks({from, to, step}) {
    return Array.from({length: Math.round((to - from) / step) + 1}, (_, index) => Number((from + index * step).toPrecision(12)));
}

function drawPanel({column, title}, samples, seconds, warmUp, top) {
    const range = chooseRange(samples.map(sample => sample[column]));
    const x = second => left + second / seconds * (width - left - right);
    const y = value => top + panelHeight - (value - range.from) / (range.to - range.from) * panelHeight;
    const points = samples.map(sample => `${round(x(sample.second))},${round(y(sample[column]))}`).join(' ');
    const minutes = {from: 0, to: seconds / 60, step: chooseStep(seconds / 60, 10)};
    return [
        `<rect class="warm" x="${left}" y="${top}" width="${round(x(warmUp) - left)}" height="${panelHeight}"/>`,
        text(left, top - 8, title, ' class="title"'),
        ...ticks(range).flatMap(value => [
            `<path class="grid" d="M${left} ${round(y(value))}H${width - right}"/>`, text(left - 8, y(value) + 4, value, ' text-anchor="end"')]),
        ...ticks(minutes).filter(minute => minute * 60 <= seconds).map(minute =>
            text(x(minute * 60), top + panelHeight + 15, `${minute} min`, ' text-anchor="middle"')),
        `<polyline points="${points}"/>`,
    ];
}

// panels   [{column, title}]
// verdict  result of judge()
// Returns the SVG text.
export function draw(title, panels, samples, seconds, verdict) {
    if (samples.length === 0) throw new Error('there is nothing to draw');
    const head = 40 + (verdict.lines.length + 1) * lineHeight;
    const height = head + panels.length * (panelHeight + panelGap) + 10;
    const lines = [
        text(left, 28, title, ' class="title"'),
        text(left, 30 + lineHeight, verdict.passed ? 'passed' : 'failed', ` class="${verdict.passed ? 'good' : 'bad'}"`),
        ...verdict.lines.map((line, index) => text(left, 30 + (index + 2) * lineHeight, `${line.passed ? '✓' : '✗'} ${line.text}`,
            ` class="${line.passed ? 'good' : 'bad'}"`)),
        ...panels.flatMap((panel, index) =>
            drawPanel(panel, samples, seconds, verdict.warmUp, head + panelGap / 2 + index * (panelHeight + panelGap))),
    ];
    return `<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 ${width} ${height}" font-family="sans-serif" font-size="11">
<style>polyline{fill:none;stroke:#1f5fa8;stroke-width:1.2}.grid{stroke:#ddd}.warm{fill:#f3f3f3}.title{font-size:13px;font-weight:bold}.good{fill:#17692b}.bad{fill:#b00020}</style>
<rect width="${width}" height="${height}" fill="#fff"/>
${lines.join('\n')}
</svg>
`;
}
