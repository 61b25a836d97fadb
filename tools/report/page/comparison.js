// What two tracks, or two modules, make differently: which cues came, went, moved or changed.
import { byId, count, element, foreign, formatTime } from './dom.js';
import { addressOf } from './store.js';

const SETTINGS = ['i4Line', 'fgSnapToLines', 'u1Position', 'u1Size', 'eTextAlign', 'eVertical'];
// More rows than this are counted only.
const MOST_ROWS = 2000;

const textKey = ({ cue }) => cue.pcText ?? '';
const settingsKey = ({ cue }) => SETTINGS.map((field) => cue[field]).join(' ');
const timesKey = ({ cue }) => `${cue.dStartTime} ${cue.dEndTime}`;

/** Takes out the pairs of entries that have the same key, each entry once, in order. */
function takePairs(before, after, keyOf) {
    const waiting = new Map();
    for (const entry of after) {
        const key = keyOf(entry);
        if (!waiting.has(key)) {
            waiting.set(key, { entries: [], taken: 0 });
        }
        waiting.get(key).entries.push(entry);
    }
    const pairs = [];
    const left = [];
    for (const entry of before) {
        const queue = waiting.get(keyOf(entry));
        const found = queue?.entries[queue.taken++];
        if (found) {
            pairs.push([entry, found]);
        } else {
            left.push(entry);
        }
    }
    const taken = new Set(pairs.map(([, found]) => found));
    return { pairs, before: left, after: after.filter((entry) => !taken.has(entry)) };
}

function differenceOf(one, other) {
    const said = [];
    if (textKey(one) !== textKey(other)) {
        said.push('text');
    }
    if (settingsKey(one) !== settingsKey(other)) {
        said.push('settings');
    }
    return said.join(' and ');
}

/** {same, rows}: rows of {kind, before, after, words}, in the order of time. */
export function compareTracks(one, other) {
    const delivered = (track) => track.entries.filter(({ cue }) => cue !== null);
    const same = takePairs(delivered(one), delivered(other), (entry) =>
        [timesKey(entry), settingsKey(entry), textKey(entry)].join('\n'),
    );
    const moved = takePairs(same.before, same.after, (entry) =>
        [settingsKey(entry), textKey(entry)].join('\n'),
    );
    const changed = takePairs(moved.before, moved.after, timesKey);
    const rows = [
        ...moved.pairs.map(([before, after]) => {
            const by = after.start - before.start;
            const words = `by ${by < 0 ? '-' : '+'}${formatTime(Math.abs(by))}`;
            return { kind: 'moved', before, after, words };
        }),
        ...changed.pairs.map(([before, after]) => {
            return { kind: 'changed', before, after, words: differenceOf(before, after) };
        }),
        ...changed.before.map((before) => ({ kind: 'went', before, after: null, words: '' })),
        ...changed.after.map((after) => ({ kind: 'came', before: null, after, words: '' })),
    ];
    const timeOf = ({ before, after }) => (before ?? after).start;
    rows.sort((first, second) => timeOf(first) - timeOf(second));
    return { same: same.pairs.length, rows };
}

function cell(track, entry) {
    if (!entry) {
        return element('td', {}, '–');
    }
    const link = element('a', { href: addressOf(track, entry.line) }, `L${entry.line}`);
    const text = element('p', { dir: 'auto' }, track.textOf(entry).trim());
    return element('td', {}, link, ` ${formatTime(entry.start)} → ${formatTime(entry.end)}`, text);
}

export function showComparison(store, page) {
    if (!page.against) {
        return;
    }
    const [one, other] = store.tracks;
    const { same, rows } = compareTracks(one, other);
    const kinds = ['moved', 'changed', 'went', 'came'];
    const sums = kinds.map((kind) => {
        return `${rows.filter((row) => row.kind === kind).length.toLocaleString('en')} ${kind}`;
    });
    const words = `${count(same, 'cue')} the same, ${sums.join(', ')}`;
    const body = element('tbody', {});
    for (const { kind, before, after, words: how } of rows.slice(0, MOST_ROWS)) {
        body.append(
            element(
                'tr',
                { class: kind },
                element('th', { scope: 'row' }, `${kind} ${how}`.trim()),
                cell(one, before),
                cell(other, after),
            ),
        );
    }
    const heading = (track) =>
        element('th', { scope: 'col' }, foreign(track.name), ' with ', foreign(track.module));
    const head = element(
        'tr',
        {},
        element('th', { scope: 'col' }, 'What'),
        heading(one),
        heading(other),
    );
    const table = element(
        'table',
        { 'aria-labelledby': 'comparison-heading' },
        element('thead', {}, head),
        body,
    );
    const section = byId('comparison');
    section.append(element('p', { class: 'status' }, words));
    if (rows.length > 0) {
        const label = 'Table of differences';
        section.append(
            element(
                'div',
                { class: 'wide differences', role: 'group', 'aria-label': label, tabindex: 0 },
                table,
            ),
        );
    }
    if (rows.length > MOST_ROWS) {
        section.append(element('p', {}, `and ${rows.length - MOST_ROWS} more`));
    }
    section.hidden = false;
}
