// Below the timeline of a session: stepping through its calls, and where those stand.
import { button, element } from './dom.js';

const PLACINGS = [
    ['cues', 'at the cues that they are about'],
    ['clock', 'when they were made'],
];

/** What the film's place at the first chunk is, which no log says. */
function clockInput(store) {
    const input = element('input', {
        type: 'number',
        step: 'any',
        class: 'clock-input',
        change: () => {
            if (Number.isFinite(input.valueAsNumber)) {
                store.session.setFilmAtFirstChunk(store.track, input.valueAsNumber);
                store.placeCalls(store.session.placing);
            }
        },
    });
    store.on('track', ({ session, track }) => {
        input.value = Number(session.filmAtFirstChunk(track).toFixed(3));
    });
    return element('label', {}, 'With the first chunk the film stands at ', input, ' s');
}

export function callControls(store) {
    const choices = PLACINGS.map(([value, name]) => {
        const choice = element('input', {
            type: 'radio',
            name: 'placing',
            value,
            change: () => store.placeCalls(value),
        });
        choice.checked = store.session.placing === value;
        return element('label', {}, choice, ` ${name}`);
    });
    const placing = element('fieldset', {}, element('legend', {}, 'Calls stand'), ...choices);
    const calls = () => store.session.callsOf(store.track);
    const mistaken = () => calls().filter(({ mistakes }) => mistakes.length > 0);
    const steps = [
        ['Previous call', calls, -1],
        ['Next call', calls, 1],
        ['Previous mistake', mistaken, -1],
        ['Next mistake', mistaken, 1],
    ];
    const bar = element('div', { class: 'buttons', role: 'group', 'aria-label': 'Calls' });
    bar.append(
        ...steps.map(([name, among, direction]) =>
            button(name, name, () => store.stepCalls(among(), direction)),
        ),
    );
    return [bar, element('div', { class: 'filter' }, placing, clockInput(store))];
}
