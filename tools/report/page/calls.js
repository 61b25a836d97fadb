// The list of a session's calls, and what of it is wanted.
import { ChoiceList } from './choice_list.js';
import { byId, count, element, foreign } from './dom.js';
import { MISTAKE_SIGN } from './model.js';

const CALL_KINDS = [
    ['all', 'all calls', () => true],
    ['mistaken', 'with a mistake', ({ mistakes }) => mistakes.length > 0],
    ['feeding', 'that fed a chunk', ({ chunk }) => chunk !== null],
    ['taking', 'that delivered a cue', ({ cues }) => cues > 0],
    [
        'late',
        'that delivered a cue late',
        (call, { session, track }) => hasLate(call, session, track),
    ],
];

function hasLate({ delivered }, session, track) {
    return delivered.some((entry) => session.isLate(track, entry));
}

/** Seconds of the session, as quill replay writes them. */
export function secondsOf(microseconds) {
    return (microseconds / 1e6).toFixed(6);
}

function wordsOf(call) {
    const said = call.mistakes.map(({ code, what, remedy }) => `${code} ${what} ${remedy}`);
    return [call.words, call.result, call.outcome ?? '', ...said].join('\n').toLowerCase();
}

/** What it fed or delivered. */
function aboutCues({ tracks }, call) {
    const track = tracks.find(({ parser }) => parser === call.parser);
    const cues = call.isFeeding ? call.completed : call.delivered;
    if (!track || (!call.chunk && cues.length === 0)) {
        return '';
    }
    const more = cues.length > 1 ? ` and ${cues.length - 1} more` : '';
    const [first] = cues;
    const cue = first
        ? `L${first.line} ${track.textOf(first).trim().replaceAll('\n', ' ⏎ ')}`
        : 'no cue';
    const fed = call.chunk ? `chunk ${call.chunk.index + 1}, ` : '';
    return `${fed}${cue.slice(0, 200)}${more}`;
}

function callRow(store, call) {
    const { session, track } = store;
    const [mistake] = call.mistakes;
    const isLate = hasLate(call, session, track);
    const parts = [
        element('span', { class: 'line' }, `C${call.call}`),
        element('span', { class: 'times' }, `${secondsOf(call.us)} s`),
        element(
            'span',
            { class: isLate ? 'verdict changed' : 'verdict' },
            isLate ? `${call.result}, late` : call.result,
        ),
        element('span', { class: 'text' }, call.words.replace(/^call \d+, /, '')),
    ];
    if (!mistake) {
        parts.push(element('span', { class: 'reason' }, foreign(aboutCues(store, call))));
    } else {
        const more = call.mistakes.length > 1 ? ` (and ${call.mistakes.length - 1} more)` : '';
        parts.push(
            element('span', { class: 'code' }, `${MISTAKE_SIGN} ${mistake.code}`),
            element('span', { class: 'reason' }, foreign(`${mistake.what}${more}`)),
        );
    }
    return {
        id: `call-${call.index}`,
        kind: mistake ? 'lost' : isLate ? 'changed' : 'none',
        parts,
    };
}

export function showCalls(store) {
    if (!store.session) {
        return;
    }
    const list = new ChoiceList({
        label: 'Calls of the session',
        name: 'calls',
        parts: (call) => callRow(store, call),
        choose: (call) => store.chooseCall(call, call.mistakes[0] ?? null),
    });
    const options = CALL_KINDS.map(([value, name]) => element('option', { value }, name));
    const kind = element('select', { change: () => update() }, ...options);
    const text = element('input', { type: 'search', input: () => update() });
    const form = element(
        'form',
        { class: 'filter', submit: (event) => event.preventDefault() },
        element('label', {}, 'Show ', kind),
        element('label', {}, 'Text ', text),
    );
    const status = element('p', { class: 'status', role: 'status' });

    function update() {
        const [, , isWanted] = CALL_KINDS.find(([value]) => value === kind.value);
        const words = text.value.toLowerCase();
        const { calls } = store.session;
        const wanted = calls.filter(
            (call) => isWanted(call, store) && (words === '' || wordsOf(call).includes(words)),
        );
        status.textContent = `${wanted.length.toLocaleString('en')} of ${count(calls.length, 'call')}`;
        list.setItems(wanted);
        list.mark(store.call);
    }

    byId('calls').append(form, status, list.frame);
    byId('calls-pair').hidden = false;
    store.on('track', update);
    store.on('places', update);
    store.on('call', () => list.mark(store.call));
}
