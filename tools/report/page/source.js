// The track itself, line by line, with what cannot be seen made visible.
import { byId, element } from './dom.js';
import { SIGNS } from './model.js';
import { visiblePieces } from './source_lines.js';
import { addressOf } from './store.js';
import { VirtualRows } from './virtual_rows.js';

// A line longer than this goes on in the file, not on the page.
const LONGEST = 2000;

/** The worst finding of each line that has one. */
function markedLines(track) {
    const ranks = ['remark', 'changed', 'lost'];
    const marked = new Map();
    for (const { line, severity } of track.entries.flatMap((entry) => entry.findings)) {
        if (ranks.indexOf(severity) > ranks.indexOf(marked.get(line))) {
            marked.set(line, severity);
        }
    }
    return marked;
}

function lineRow(store, number, severity) {
    const { track, entry } = store;
    const text = track.lines.text(number);
    const isCut = text.length > LONGEST;
    const code = element('code', {});
    for (const { text: piece, hidden } of visiblePieces(
        text.slice(0, LONGEST),
        isCut ? '' : track.lines.lineEnd(number),
    )) {
        code.append(hidden ? element('span', { class: 'hidden-character' }, piece) : piece);
    }
    if (isCut) {
        code.append('…');
    }
    const isChosen = entry && number >= entry.line && number < entry.line + entry.lineCount;
    const sign = severity
        ? element('span', { class: `sign ${severity}`, title: severity }, SIGNS[severity])
        : '';
    const said = severity ? `Line ${number}, ${severity}` : `Line ${number}`;
    return element(
        'li',
        { class: `source-line${isChosen ? ' chosen' : ''}`, value: number },
        element('a', { href: addressOf(track, number), 'aria-label': said }, String(number)),
        element('span', { class: 'mark', 'aria-hidden': 'true' }, sign),
        element('bdi', { dir: 'auto' }, code),
    );
}

export function showSource(store) {
    let marked = new Map();
    const rows = element('ol', { role: 'list' });
    const frame = element(
        'div',
        { class: 'frame lines', role: 'group', 'aria-label': 'Source of the track', tabindex: 0 },
        rows,
    );
    const view = new VirtualRows(frame, rows, (index) =>
        lineRow(store, index + 1, marked.get(index + 1)),
    );
    byId('source').append(frame);
    store.on('track', ({ track }) => {
        marked = markedLines(track);
        view.setSize(track.lines.size);
        frame.scrollTop = 0;
    });
    store.on('entry', ({ entry }) => {
        if (entry) {
            view.show(entry.line - 1);
        }
        view.refresh();
    });
}
