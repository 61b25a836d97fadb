// All that is known of the chosen block.
import { byId, element, foreign, formatTime } from './dom.js';
import { inWords } from './session_view.js';
import { addressOf, addressOfCall } from './store.js';

const NONE = 'Choose a block in the list, on the timeline or by its line in the source.';

function findingItem(track, finding) {
    const line = `line ${finding.line}${finding.column ? `, column ${finding.column}` : ''}`;
    const item = element(
        'li',
        { class: finding.severity },
        element('a', { href: addressOf(track, finding.line) }, line),
        element('span', { class: `verdict ${finding.severity}` }, finding.severity),
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

/** Which calls of the session it came by. */
function callsOf(session, track, entry) {
    const link = (call) => element('a', { href: addressOfCall(call) }, `call ${call.call}`);
    const parts = [];
    if (entry.carrier) {
        parts.push('Completed by the chunk of ', link(entry.carrier));
    } else if (entry.isCue) {
        parts.push('No chunk completes it: it lacks the line feeds that end a track');
    }
    const call = session.call(entry.deliveredBy);
    if (call) {
        const late = session.isLate(track, entry) ? 'late, ' : '';
        const when = inWords(session.lateness(track, entry));
        parts.push('; delivered by ', link(call), `, ${late}${when}`);
    } else if (entry.fate === 'not_taken') {
        parts.push('; no call delivered it');
    }
    return element('p', { class: 'calls-of' }, ...parts, '.');
}

function entryParts(session, track, entry) {
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
    if (session && (entry.carrier || entry.isCue)) {
        parts.push(callsOf(session, track, entry));
    }
    if (entry.findings.length > 0) {
        const items = entry.findings.slice(0, 50).map((finding) => findingItem(track, finding));
        parts.push(element('ul', { class: 'findings' }, ...items));
    }
    return entry.cue ? [...parts, record(entry.cue)] : parts;
}

export function showDetails(store) {
    const live = element('div', { 'aria-live': 'polite', class: 'live' });
    byId('details').append(live);
    const show = ({ session, track, entry }) =>
        live.replaceChildren(...(entry ? entryParts(session, track, entry) : [foreign(NONE)]));
    store.on('entry', show);
    store.on('places', show);
}
