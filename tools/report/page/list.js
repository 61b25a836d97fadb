// The list of all blocks of a track, and what of it is wanted.
import { byId, count, element, foreign, formatTime } from './dom.js';
import { VirtualRows } from './virtual_rows.js';

const KINDS = [
    ['lost', 'lost'],
    ['changed', 'changed'],
    ['remark', 'remark'],
    ['none', 'without a finding'],
];

/** What is wanted: the kinds that are ticked, a code, and a text that a block must hold. */
class Filter {
    constructor(changed) {
        this.kinds = KINDS.map(([key, name]) => {
            const box = element('input', { type: 'checkbox', value: key, change: changed });
            box.checked = true;
            return { box, label: element('label', {}, box, ` ${name}`) };
        });
        this.code = element('select', { change: changed });
        this.text = element('input', { type: 'search', input: changed });
        const severities = element('fieldset', {}, element('legend', {}, 'Show blocks that are'));
        severities.append(...this.kinds.map(({ label }) => label));
        this.form = element(
            'form',
            { class: 'filter', submit: (event) => event.preventDefault() },
            severities,
            element('label', {}, 'Code ', this.code),
            element('label', {}, 'Text ', this.text),
        );
    }

    useCodesOf(track) {
        const codes = [...track.codes.values()].map(({ code, name }) =>
            element('option', { value: code }, `${code} ${name}`),
        );
        this.code.replaceChildren(element('option', { value: '' }, 'all'), ...codes);
    }

    apply(track) {
        const kinds = new Set(
            this.kinds.filter(({ box }) => box.checked).map(({ box }) => box.value),
        );
        const code = this.code.value;
        const text = this.text.value.toLowerCase();
        return track.entries.filter(
            (entry) =>
                kinds.has(entry.severity) &&
                (code === '' || entry.findings.some((finding) => finding.code === code)) &&
                (text === '' || this.#words(track, entry).includes(text)),
        );
    }

    #words(track, entry) {
        const said = entry.findings.map(({ message, hint }) => `${message}\n${hint}`);
        return [track.textOf(entry), ...said].join('\n').toLowerCase();
    }
}

function times(entry) {
    if (!Number.isFinite(entry.start)) {
        return '';
    }
    const written = `${formatTime(entry.start)} → ${formatTime(entry.end)}`;
    return entry.isGuessed ? `near ${formatTime(entry.start)}` : written;
}

/** One row: line, times, verdict, text, and what was found first. */
function row(store, entry, position, size) {
    const [finding] = entry.findings;
    const more = entry.findings.length > 1 ? ` (and ${entry.findings.length - 1} more)` : '';
    const text = store.track.textOf(entry).trim().replaceAll('\n', ' ⏎ ');
    const parts = [
        element('span', { class: 'line' }, `L${entry.line}`),
        element('span', { class: 'times' }, times(entry)),
        element('span', { class: 'verdict' }, entry.verdict),
        element('span', { class: 'text' }, foreign(text)),
    ];
    if (finding) {
        parts.push(
            element('span', { class: 'code' }, finding.code),
            element('span', { class: 'reason' }, `${finding.message}; ${finding.hint}${more}`),
        );
    }
    return element(
        'div',
        {
            id: `block-${entry.index}`,
            class: `row ${entry.severity}`,
            role: 'option',
            'aria-selected': entry === store.entry ? 'true' : 'false',
            'aria-posinset': position + 1,
            'aria-setsize': size,
            click: () => store.chooseEntry(entry),
        },
        ...parts,
    );
}

export function showList(store) {
    let entries = [];
    const rows = element('div', {
        role: 'listbox',
        'aria-label': 'Blocks of the track',
        tabindex: 0,
    });
    const frame = element('div', { class: 'frame blocks' }, rows);
    const status = element('p', { class: 'status', role: 'status' });
    const view = new VirtualRows(frame, rows, (index) =>
        row(store, entries[index], index, entries.length),
    );
    const filter = new Filter(() => update());

    function update() {
        entries = filter.apply(store.track);
        status.textContent = `${entries.length.toLocaleString('en')} of ${count(store.track.entries.length, 'block')}`;
        view.setSize(entries.length);
        mark();
    }

    function mark() {
        const at = entries.indexOf(store.entry);
        if (at >= 0) {
            view.show(at);
        }
        view.refresh();
        const chosen = at >= 0 && document.getElementById(`block-${store.entry.index}`);
        if (chosen) {
            rows.setAttribute('aria-activedescendant', chosen.id);
        } else {
            rows.removeAttribute('aria-activedescendant');
        }
    }

    rows.addEventListener('keydown', (event) => {
        const page = Math.max(Math.floor(frame.clientHeight / view.rowHeight) - 1, 1);
        const steps = { ArrowDown: 1, ArrowUp: -1, PageDown: page, PageUp: -page };
        const at = entries.indexOf(store.entry);
        const ends = { Home: 0, End: entries.length - 1 };
        const next =
            event.key in steps
                ? Math.max(at, steps[event.key] > 0 ? -1 : 0) + steps[event.key]
                : ends[event.key];
        if (next !== undefined && entries.length > 0) {
            event.preventDefault();
            store.chooseEntry(entries[Math.min(Math.max(next, 0), entries.length - 1)]);
        }
    });
    byId('list').append(filter.form, status, frame);
    store.on('track', () => {
        filter.useCodesOf(store.track);
        update();
    });
    store.on('entry', mark);
}
