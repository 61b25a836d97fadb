// What a recorded session came to: the host's mistakes, and all that is known of the chosen call.
import { secondsOf } from './calls.js';
import { byId, count, element, foreign, formatSpan, formatTime } from './dom.js';
import { addressOf, addressOfCall, addressOfMistake } from './store.js';

const NO_CALL = 'Choose a call in the list, on the timeline or by a cue that it delivered.';
// More cues than these are counted only.
const MOST_CUES = 30;

/** What has to be known of a log before anything else. */
function notesOn(session, track) {
    return [
        session.hidden &&
            'This session was recorded with the text hidden: letters and digits of what the cues say are ' +
                'replaced. Times, settings, calls and mistakes are what they were.',
        session.cut_off &&
            'The log is cut off in its last line: what came then is not here, and a call may lack its return.',
        session.stopped &&
            'The log was stopped at the limit of its size: what came then is not here.',
        session.leftOut > 0 &&
            `The last ${session.leftOut.toLocaleString('en')} calls are left out here; quill replay --show prints all.`,
        track.parser === 0 && 'No parser was fed anything: there is no track to show.',
        track.strays > 0 &&
            `Found nowhere in the track, as this module reads it: ${count(track.strays, 'cue')} of the host.`,
    ].filter(Boolean);
}

/** A list of names and values. */
function terms(pairs) {
    const list = element('dl', {});
    for (const [name, ...value] of pairs) {
        list.append(element('div', {}, element('dt', {}, name), element('dd', {}, ...value)));
    }
    return list;
}

function sessionSums({ calls, mistakes, recorder, module, started, name }) {
    const parsers = new Set(calls.map(({ parser }) => parser).filter(Boolean));
    const last = Math.max(0, ...[calls.at(-1)].map((call) => call?.ended_us ?? call?.us ?? 0));
    return terms([
        ['Log', foreign(name)],
        ['Recorded by', foreign(recorder || 'unknown')],
        ['With the module', foreign(module || 'unknown')],
        ['Began', foreign(started || 'unknown')],
        ['Took', formatSpan(last / 1e6)],
        ['Calls', calls.length.toLocaleString('en')],
        ['Parsers', parsers.size.toLocaleString('en')],
        ['Threads', new Set(calls.map(({ thread }) => thread)).size.toLocaleString('en')],
        ['Mistakes', mistakes.length.toLocaleString('en')],
    ]);
}

function mistakeItem(mistake) {
    const item = element(
        'li',
        { class: 'lost', id: mistake.id },
        element('a', { href: addressOfMistake(mistake) }, `${mistake.code}`),
        element('span', {}, foreign(mistake.call ? mistake.call.words : mistake.place)),
        element('p', {}, foreign(mistake.what)),
    );
    if (mistake.remedy) {
        item.append(element('p', { class: 'fix' }, 'What to do: ', foreign(mistake.remedy)));
    }
    return item;
}

/** The mistakes of the whole session, the chosen one marked. */
class MistakeList {
    #items = new Map();

    constructor(store) {
        const { mistakes } = store.session;
        for (const mistake of mistakes) {
            this.#items.set(mistake, mistakeItem(mistake));
        }
        this.element =
            mistakes.length > 0
                ? element('ul', { class: 'findings mistakes' }, ...this.#items.values())
                : element('p', {}, 'No mistake of the host was found.');
        store.on('call', ({ mistake }) => this.#mark(mistake));
    }

    #mark(chosen) {
        for (const [mistake, item] of this.#items) {
            item.classList.toggle('chosen', mistake === chosen);
            const link = item.querySelector('a');
            if (mistake === chosen) {
                link.setAttribute('aria-current', 'true');
            } else {
                link.removeAttribute('aria-current');
            }
        }
    }
}

/** How a cue that came stands to the moment at which it was to be shown. */
export function inWords(lateness) {
    const span = formatSpan(Math.abs(lateness));
    return lateness > 0 ? `${span} after its start` : `${span} before its start`;
}

/** Links to the cues of a call. */
function cueLinks(track, entries, after) {
    const items = entries
        .slice(0, MOST_CUES)
        .map((entry) =>
            element(
                'li',
                {},
                element('a', { href: addressOf(track, entry.line) }, `L${entry.line}`),
                ` ${formatTime(entry.start)} → ${formatTime(entry.end)} `,
                foreign(track.textOf(entry).trim().replaceAll('\n', ' ⏎ ').slice(0, 120)),
                after(entry),
            ),
        );
    if (entries.length > MOST_CUES) {
        items.push(element('li', {}, `and ${entries.length - MOST_CUES} more`));
    }
    return element('ul', { class: 'notes' }, ...items);
}

function chunkParts(track, call) {
    const { index, begin, end } = call.chunk;
    const [first, last] = [track.lines.lineOf(begin), track.lines.lineOf(end - 1)];
    const lines = first === last ? `line ${first}` : `lines ${first} to ${last}`;
    const parts = [
        element(
            'p',
            {},
            `It fed chunk ${index + 1}, bytes ${begin + 1} to ${end}: `,
            element('a', { href: addressOf(track, first) }, lines),
            call.completed.length > 0 ? ', which completed' : ', which completed no cue.',
        ),
    ];
    if (call.completed.length > 0) {
        const fate = (entry) => (entry.isLost ? ` – ${entry.verdict}` : '');
        parts.push(cueLinks(track, call.completed, fate));
    }
    return parts;
}

function deliveryParts(session, track, call) {
    const said = `It delivered ${count(call.cues, 'cue')}`;
    if (call.delivered.length === 0) {
        return [element('p', {}, `${said}.`)];
    }
    const late = (entry) => ` – ${inWords(session.lateness(track, entry))}`;
    const strays = call.cues - call.delivered.length;
    const others =
        strays > 0
            ? [element('p', {}, `Found nowhere in the track: ${count(strays, 'cue')}.`)]
            : [];
    return [
        element('p', {}, `${said}, ${secondsOf(call.delivered_us)} s after the session began:`),
        cueLinks(track, call.delivered, late),
        ...others,
    ];
}

/** All that is known of a call. */
function callParts({ session, tracks }, call) {
    const track = tracks.find(({ parser }) => parser === call.parser);
    const took =
        call.ended_us === null ? '' : `, took ${formatSpan((call.ended_us - call.us) / 1e6)}`;
    const outer = call.within === null ? null : session.call(call.within);
    const parts = [
        element(
            'p',
            {},
            element('a', { href: addressOfCall(call) }, call.words),
            ` ${call.result}`,
        ),
        element('p', { class: 'status' }, `${secondsOf(call.us)} s, thread ${call.thread}${took}`),
    ];
    if (outer) {
        const link = element('a', { href: addressOfCall(outer) }, `call ${outer.call}`);
        parts.push(element('p', {}, 'It was made in the callback of ', link, '.'));
    }
    if (track && call.chunk) {
        parts.push(...chunkParts(track, call));
    }
    if (track && call.cues !== null) {
        parts.push(...deliveryParts(session, track, call));
    }
    if (call.mistakes.length > 0) {
        const copies = call.mistakes.map((mistake) => mistakeItem(mistake));
        copies.forEach((copy) => copy.removeAttribute('id'));
        parts.push(element('ul', { class: 'findings' }, ...copies));
    }
    if (call.outcome) {
        const lines = call.outcome
            .split('\n')
            .map((line) => element('li', {}, element('code', {}, line)));
        const summary = element('summary', {}, 'What came of it, as quill replay says it');
        parts.push(element('details', {}, summary, element('ul', { class: 'notes' }, ...lines)));
    }
    return parts;
}

export function showSession(store) {
    if (!store.session) {
        return;
    }
    const notes = element('div', {});
    byId('session').append(notes, sessionSums(store.session), new MistakeList(store).element);
    byId('session').hidden = false;
    const live = element('div', { 'aria-live': 'polite', class: 'live' });
    byId('call').append(live);
    const showCall = ({ call }) =>
        live.replaceChildren(...(call ? callParts(store, call) : [foreign(NO_CALL)]));
    store.on('track', ({ session, track }) => {
        notes.replaceChildren(
            ...notesOn(session, track).map((words) =>
                element('p', { class: 'note', role: 'note' }, words),
            ),
        );
        showCall(store);
    });
    store.on('call', showCall);
    store.on('places', showCall);
    store.on('call', ({ mistake }) => {
        document.getElementById(mistake?.id)?.scrollIntoView({ block: 'nearest' });
    });
}
