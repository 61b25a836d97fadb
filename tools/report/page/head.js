// The top of the page: which track this is, what it comes to, and where its bytes went.
import { byId, count, element, foreign } from './dom.js';

const PARTS = [
    ['signature', 'signature'],
    ['header_used', 'header, used'],
    ['header_ignored', 'header, ignored'],
    ['blank_lines', 'blank lines'],
    ['delivered', 'delivered'],
    ['comments', 'comments'],
    ['cut_off', 'cut off'],
    ['lost', 'lost'],
    ['lost_with_chunk', 'lost with the chunk'],
    ['rejected', 'rejected'],
];

function sumsOf(track, session) {
    const { sums } = track;
    const missing = track.entries.filter(({ fate }) => fate === 'not_taken').length;
    const delivered = session
        ? [
              ['Cues delivered', track.deliveredCount.toLocaleString('en')],
              ['Cues not delivered', missing.toLocaleString('en')],
          ]
        : [['Cues delivered', sums.cues_delivered.toLocaleString('en')]];
    const chunks = session
        ? ['Chunks', session.chunksOf(track).length.toLocaleString('en')]
        : ['Chunk size', count(sums.chunk_size, 'byte')];
    const lost = [
        count(sums.lost.cues, 'cue'),
        count(sums.lost.lines, 'other line'),
        ...(sums.lost.tracks ? ['the whole track'] : []),
    ];
    return [
        ...delivered,
        ['Lost', lost.join(', ')],
        ['Changed', count(sums.findings.changed, 'finding')],
        ['Remarks', count(sums.findings.remark, 'finding')],
        ['Comments', sums.comments.toLocaleString('en')],
        ['Size', count(sums.size, 'byte')],
        chunks,
    ];
}

/** The bar of where the bytes went, with a legend that says the same in numbers. */
function byteBar({ sums }) {
    const held = PARTS.filter(([key]) => sums.bytes[key] > 0);
    const percent = (key) => (sums.bytes[key] / sums.size) * 100;
    const words = held.map(([key, name]) => `${name} ${percent(key).toFixed(1)} %`).join(', ');
    const bar = element('div', { class: 'bytes', role: 'img', 'aria-label': `Bytes: ${words}` });
    const legend = element('ul', { class: 'legend' });
    for (const [key, name] of held) {
        const kind = `part ${key.replaceAll('_', '-')}`;
        const part = element('span', { class: kind });
        part.style.flexGrow = sums.bytes[key];
        bar.append(part);
        legend.append(
            element(
                'li',
                {},
                element('span', { class: `key ${kind}`, 'aria-hidden': 'true' }),
                `${name}: ${sums.bytes[key].toLocaleString('en')} (${percent(key).toFixed(1)} %)`,
            ),
        );
    }
    return [bar, legend];
}

export function showHead(store, page) {
    store.on('track', ({ track, tracks, session }) => {
        document.title = `${track.name} – caption report`;
        const module = element('span', {}, 'module ', foreign(track.module));
        if (track.moduleSize !== null) {
            module.append(`, ${count(track.moduleSize, 'byte')}`);
        }
        byId('head').replaceChildren(
            element(
                'h1',
                {},
                tracks.length > 1 ? `Track ${track.number}: ` : '',
                foreign(track.name),
            ),
            element('p', { class: 'made' }, `quill ${page.quill}, `, module),
        );
        const list = element('dl', { class: 'sums' });
        for (const [name, value] of sumsOf(track, session)) {
            list.append(element('div', {}, element('dt', {}, name), element('dd', {}, value)));
        }
        const notes = [];
        if (track.leftOut > 0) {
            const words =
                `This page holds about three bytes for each of the track's. The last ` +
                `${track.leftOut.toLocaleString('en')} of its blocks, findings and cues are ` +
                `left out here; quill check --all prints everything.`;
            notes.push(element('p', { class: 'note', role: 'note' }, words));
        }
        const heading = byId('sums-heading');
        byId('sums').replaceChildren(heading, list, ...byteBar(track), ...notes);
    });
}
