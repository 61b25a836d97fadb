// The table of all tracks, where there are several.
import { byId, element, foreign } from './dom.js';

const COLUMNS = [
    ['Track', (track) => track.name],
    ['Module', (track) => track.module],
    ['Cues', ({ sums }) => sums.cues_delivered],
    ['Lost', ({ sums }) => sums.findings.lost],
    ['Changed', ({ sums }) => sums.findings.changed],
    ['Remarks', ({ sums }) => sums.findings.remark],
    ['Bytes', ({ sums }) => sums.size],
];

function compare(one, other) {
    return typeof one === 'number' ? one - other : one.localeCompare(other);
}

function trackRow(store, track) {
    const name = element(
        'a',
        { href: `#T${track.number}`, 'aria-current': track === store.track ? 'true' : false },
        foreign(track.name),
    );
    const cells = COLUMNS.slice(1).map(([, value]) => {
        const held = value(track);
        const isNumber = typeof held === 'number';
        return element(
            'td',
            { class: isNumber ? 'number' : false },
            isNumber ? held.toLocaleString('en') : foreign(held),
        );
    });
    return element('tr', {}, element('th', { scope: 'row' }, name), ...cells);
}

export function showOverview(store) {
    if (store.tracks.length < 2) {
        return;
    }
    const section = byId('overview');
    const body = element('tbody', {});
    let sorted = { column: -1, direction: 1 };

    const headings = COLUMNS.map(([name], column) =>
        element(
            'th',
            { scope: 'col' },
            element('button', { type: 'button', click: () => sortBy(column) }, name),
        ),
    );

    function sortBy(column) {
        // Names begin with the first, numbers with the largest.
        const direction = column < 2 ? 1 : -1;
        sorted = { column, direction: sorted.column === column ? -sorted.direction : direction };
        headings.forEach((heading, index) => {
            heading.removeAttribute('aria-sort');
            if (index === column) {
                const words = sorted.direction > 0 ? 'ascending' : 'descending';
                heading.setAttribute('aria-sort', words);
            }
        });
        draw();
    }

    function draw() {
        const tracks = [...store.tracks];
        if (sorted.column >= 0) {
            const value = COLUMNS[sorted.column][1];
            tracks.sort((one, other) => compare(value(one), value(other)) * sorted.direction);
        }
        body.replaceChildren(...tracks.map((track) => trackRow(store, track)));
    }

    const head = element('thead', {}, element('tr', {}, ...headings));
    const table = element('table', { 'aria-labelledby': 'overview-heading' }, head, body);
    section.append(
        element(
            'div',
            { class: 'wide', role: 'group', 'aria-label': 'Table of tracks', tabindex: 0 },
            table,
        ),
    );
    section.hidden = false;
    store.on('track', draw);
}
