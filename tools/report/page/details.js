// All that is known of the chosen block.
import { byId, element, foreign, formatTime } from './dom.js';
import { addressOf } from './store.js';

const NONE = 'Choose a block in the list, on the timeline or by its line in the source.';

function findingItem(track, finding) {
    const line = `line ${finding.line}${finding.column ? `, column ${finding.column}` : ''}`;
    const item = element(
        'li',
        { class: finding.severity },
        element('a', { href: addressOf(track, finding.line) }, line),
        element('span', { class: 'verdict' }, finding.severity),
        element('span', { class: 'code' }, `${finding.code} ${finding.name}`),
        element('p', {}, finding.message),
        element('p', { class: 'fix' }, `Fix: ${finding.hint}`),
    );
    if (finding.cause_line) {
        const cause = element(
            'a',
            { href: addressOf(track, finding.cause_line) },
            `line ${finding.cause_line}`,
        );
        item.append(element('p', {}, 'Brought about by ', cause));
    }
    return item;
}

function record(cue) {
    const list = element('dl', { class: 'record' });
    for (const [field, value] of Object.entries(cue)) {
        if (field !== 'pcText' && field !== 'pcAuxText') {
            list.append(
                element(
                    'div',
                    {},
                    element('dt', {}, field),
                    element('dd', {}, String(value ?? 'none')),
                ),
            );
        }
    }
    return element('details', {}, element('summary', {}, 'The record'), list);
}

function entryParts(track, entry) {
    const where = `line ${entry.line}, chunk ${entry.chunk + 1}`;
    const times = entry.isGuessed
        ? 'its times cannot be read: its place is that between its neighbours'
        : Number.isFinite(entry.start)
          ? `${formatTime(entry.start)} → ${formatTime(entry.end)}`
          : '';
    const parts = [
        element(
            'p',
            {},
            element('a', { href: addressOf(track, entry.line) }, where),
            ' ',
            element('span', { class: `verdict ${entry.severity}` }, entry.verdict),
            ` ${times}`,
        ),
        element('blockquote', { dir: 'auto' }, track.textOf(entry)),
    ];
    if (entry.findings.length > 0) {
        const items = entry.findings.slice(0, 50).map((finding) => findingItem(track, finding));
        parts.push(element('ul', { class: 'findings' }, ...items));
    }
    return entry.cue ? [...parts, record(entry.cue)] : parts;
}

export function showDetails(store) {
    const live = element('div', { 'aria-live': 'polite', class: 'live' });
    byId('details').append(live);
    store.on('entry', ({ track, entry }) => {
        live.replaceChildren(...(entry ? entryParts(track, entry) : [foreign(NONE)]));
    });
}
