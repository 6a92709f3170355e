// Series of measurements as comma-separated values, with the names of the columns in the first line.

// points: objects of numbers and texts with the same keys. Throws when a text would not be read back.
export function formatSeries(points) {
    const columns = Object.keys(points[0]);
    const lines = [columns, ...points.map(point => columns.map(column => String(point[column])))];
    const wrong = lines.flat().find(cell => /[,\n]/.test(cell));
    if (wrong) throw new Error(`a series cannot hold ${JSON.stringify(wrong)}`);
    return lines.map(cells => `${cells.join(',')}\n`).join('');
}

// Returns the points; what reads as a number becomes one.
export function readSeries(text) {
    const [columns, ...lines] = text.trimEnd().split('\n').map(line => line.split(','));
    const read = cell => cell !== '' && Number.isFinite(Number(cell)) ? Number(cell) : cell;
    return lines.map(cells => Object.fromEntries(columns.map((column, index) => [column, read(cells[index])])));
}
