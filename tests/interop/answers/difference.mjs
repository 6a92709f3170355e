// Describes how two responses differ: in head and body, the lines or elements between the first difference and the last.

const shown = 12;
const longest = 200;

const splitUp = text => text.replaceAll('><', '>\n<').split('\n').map(line => line.replace(/\r$/, '\\r'));

const show = (mark, lines) => [
    ...lines.slice(0, shown).map(line => `  ${mark} ${line.length > longest ? `${line.slice(0, longest)}...` : line}`),
    ...lines.length > shown ? [`  ${mark} and ${lines.length - shown} lines more`] : [],
];

function describePart(old, now) {
    const [before, after] = [splitUp(old), splitUp(now)];
    let first = 0;
    while (first < Math.min(before.length, after.length) && before[first] === after[first]) ++first;
    let last = 0;
    while (last < Math.min(before.length, after.length) - first && before.at(-1 - last) === after.at(-1 - last)) ++last;
    return [...show('-', before.slice(first, before.length - last)), ...show('+', after.slice(first, after.length - last))];
}

// Head and body are compared separately, since a body of another length changes both.
export function describeDifference(old, now) {
    const [before, after] = [old, now].map(text => /^([^]*?\r\n\r\n|)([^]*)$/.exec(text));
    return [1, 2].flatMap(part => before[part] === after[part] ? [] : describePart(before[part], after[part])).join('\n');
}
