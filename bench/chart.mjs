// Draws line charts as SVG, readable on light and dark pages.
import {chooseRange, text, ticks} from '../tests/interop/soak/picture.mjs';

const width = 1000;
const columns = 2;
const panelWidth = 400;
const panelHeight = 220;
const margin = {left: 70, top: 40, right: 30, bottom: 50};
const legendLine = 16;
const dash = ['', '6 3', '2 2', '8 3 2 3', '1 3', '10 4'];

const light = {ink: '#1f2328', paper: '#fff', grid: '#d8dee4', lines: ['#0969da', '#bc4c00', '#1a7f37', '#8250df', '#9a6700', '#cf222e']};
const dark = {ink: '#e6edf3', paper: '#0d1117', grid: '#30363d', lines: ['#58a6ff', '#f0883e', '#3fb950', '#bc8cff', '#d29922', '#ff7b72']};

const rules = ({ink, paper, grid, lines}) => `text{fill:${ink}}.paper{fill:${paper}}.grid{stroke:${grid}}` +
    lines.map((color, index) => `.line.s${index}{stroke:${color}}.dot.s${index}{fill:${color}}`).join('');

const round = value => Number(value.toFixed(1));

// Positions of an axis that shows values as they are, from zero.
function linear(values) {
    const range = chooseRange([0, ...values]);
    return {marks: ticks(range), place: value => (value - range.from) / (range.to - range.from)};
}

// Positions of an axis that shows each doubling as the same distance; only the values themselves are marked.
function logarithmic(values) {
    const marks = [...new Set(values)].sort((a, b) => a - b);
    const [low, high] = [marks[0], marks.at(-1)].map(Math.log2);
    return {marks, place: value => high === low ? 0.5 : (Math.log2(value) - low) / (high - low)};
}

function drawLine({points}, index, x, y) {
    const places = points.map(point => [round(x(point.x)), round(y(point.y))]);
    return [
        `<polyline class="line s${index}" stroke-dasharray="${dash[index]}" points="${places.map(place => place.join()).join(' ')}"/>`,
        ...places.map(([cx, cy]) => `<circle class="dot s${index}" cx="${cx}" cy="${cy}" r="3"/>`),
    ];
}

// panel: {title, x: {title, isLinear}, y: {title}, lines: [{name, points: [{x, y}]}]}; at most six lines
function drawPanel({title, x: xAxis, y: yAxis, lines}, left, top) {
    const points = lines.flatMap(line => line.points);
    const horizontal = (xAxis.isLinear ? linear : logarithmic)(points.map(point => point.x));
    const vertical = linear(points.map(point => point.y));
    const x = value => left + horizontal.place(value) * panelWidth;
    const y = value => top + (1 - vertical.place(value)) * panelHeight;
    const middle = top + panelHeight / 2;
    return [
        text(left, top - 14, title, ' class="title"'),
        ...vertical.marks.flatMap(value => [
            `<path class="grid" d="M${left} ${round(y(value))}h${panelWidth}"/>`,
            text(left - 8, y(value) + 4, value.toLocaleString('en'), ' text-anchor="end"'),
        ]),
        ...horizontal.marks.map(value => text(x(value), top + panelHeight + 16, value.toLocaleString('en'), ' text-anchor="middle"')),
        text(left + panelWidth / 2, top + panelHeight + 34, xAxis.title, ' text-anchor="middle"'),
        text(left - 54, middle, yAxis.title, ` text-anchor="middle" transform="rotate(-90 ${left - 54} ${middle})"`),
        ...lines.flatMap((line, index) => drawLine(line, index, x, y)),
        ...lines.flatMap(({name}, index) => {
            const at = top + panelHeight + 52 + index * legendLine;
            const sample = `<path class="line s${index}" stroke-dasharray="${dash[index]}" d="M${left} ${at - 4}h28"/>`;
            return [sample, text(left + 36, at, name)];
        }),
    ];
}

// Returns the SVG text with the panels in two columns.
export function drawChart(panels) {
    if (panels.length === 0 || panels.some(({lines}) => lines.length === 0 || lines.some(({points}) => points.length === 0))) {
        throw new Error('there is nothing to draw');
    }
    if (panels.some(({lines}) => lines.length > dash.length)) throw new Error(`a panel has more than ${dash.length} lines`);
    const legend = Math.max(...panels.map(({lines}) => lines.length)) * legendLine;
    const rowHeight = margin.top + panelHeight + margin.bottom + legend;
    const content = panels.flatMap((panel, index) => drawPanel(panel, margin.left + (index % columns) * (width / columns),
        margin.top + Math.floor(index / columns) * rowHeight));
    const height = Math.ceil(panels.length / columns) * rowHeight + 10;
    return `<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 ${width} ${height}" font-family="sans-serif" font-size="11">
<style>
.title{font-size:13px;font-weight:bold}.line{fill:none;stroke-width:1.8}
${rules(light)}
@media(prefers-color-scheme:dark){${rules(dark)}}
</style>
<rect class="paper" width="${width}" height="${height}"/>
${content.join('\n')}
</svg>
`;
}
