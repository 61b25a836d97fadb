// The list of all blocks of a track, and what of it is wanted.
import { ChoiceList } from './choice_list.js';
import { byId, count, element, foreign, formatTime } from './dom.js';

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
function blockRow(track, entry) {
    const [finding] = entry.findings;
    const more = entry.findings.length > 1 ? ` (and ${entry.findings.length - 1} more)` : '';
    const text = track.textOf(entry).trim().replaceAll('\n', ' ⏎ ');
    const parts = [
        element('span', { class: 'line' }, `L${entry.line}`),
        element('span', { class: 'times' }, times(entry)),
        element('span', { class: `verdict ${entry.severity}` }, entry.verdict),
        element('span', { class: 'text' }, foreign(text)),
    ];
    if (finding) {
        parts.push(
            element('span', { class: 'code' }, finding.code),
            element('span', { class: 'reason' }, `${finding.message}; ${finding.hint}${more}`),
        );
    }
    return { id: `block-${entry.index}`, kind: entry.severity, parts };
}

export function showList(store) {
    const list = new ChoiceList({
        label: 'Blocks of the track',
        name: 'blocks',
        parts: (entry) => blockRow(store.track, entry),
        choose: (entry) => store.chooseEntry(entry),
    });
    const status = element('p', { class: 'status', role: 'status' });
    const filter = new Filter(() => update());

    function update() {
        const entries = filter.apply(store.track);
        status.textContent = `${entries.length.toLocaleString('en')} of ${count(store.track.entries.length, 'block')}`;
        list.setItems(entries);
        list.mark(store.entry);
    }

    byId('list').append(filter.form, status, list.frame);
    store.on('track', () => {
        filter.useCodesOf(store.track);
        update();
    });
    store.on('entry', () => list.mark(store.entry));
}
