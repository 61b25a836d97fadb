// The timeline: looked at, moved and zoomed by wheel, keys, buttons and touch.
import { callControls } from './call_controls.js';
import { callAt, heightOfCalls } from './call_painter.js';
import { button, byId, count, element, formatSpan, formatTime } from './dom.js';
import { CallLayout, Layout, View } from './timeline_layout.js';
import { heightOf, itemAt, Painter } from './timeline_painter.js';

const ZOOM = 1.25;
const HELP =
    'Arrow keys move the playhead, with Shift the view; + and - zoom, 0 shows everything; ' +
    'n and p go to the next and the previous cue, l and k to the next and the previous lost one.';
const HELP_WITH_CALLS =
    ' c and x go to the next and the previous call, m and j to the next and the previous mistake.';

/** What the timeline shows, in words; `store` is that of a session, or null. */
function describe(layout, store) {
    const lost = layout.items.filter(({ entry }) => entry.isLost).length;
    const longest = Math.max(...layout.gaps.map(({ start, end }) => end - start), 0);
    return [
        count(layout.items.length - lost, 'cue'),
        count(lost, 'lost block'),
        count(layout.lanes, 'lane'),
        count(layout.gaps.length, 'gap') +
            (longest > 0 ? `, the longest ${formatSpan(longest)}` : ''),
        ...(store ? describeCalls(store) : []),
    ].join(', ');
}

function describeCalls({ session, track }) {
    const calls = session.callsOf(track);
    const mistakes = calls.reduce((sum, call) => sum + call.mistakes.length, 0);
    const late = track.cues.filter((entry) => session.isLate(track, entry)).length;
    return [count(calls.length, 'call'), count(mistakes, 'mistake'), count(late, 'late cue')];
}

class Timeline {
    #store;
    #canvas = element('canvas', { 'aria-hidden': 'true' });
    #slider = element('div', {
        class: 'slider',
        role: 'slider',
        tabindex: 0,
        'aria-label': 'Playhead on the timeline',
        'aria-describedby': 'timeline-help',
        'aria-valuemin': 0,
    });
    #summary = element('p', { class: 'status' });
    #layouts = [];
    #calls = null;
    #view;
    #pointers = new Map();
    #moved = 0;
    #isDue = false;

    constructor(store, bothTracks) {
        this.#store = store;
        const { session } = store;
        this.#view = new View(0, 1, session ? 0.01 : 0.25);
        this.#slider.append(this.#canvas);
        byId('timeline').append(
            this.#summary,
            this.#slider,
            this.#buttons(),
            ...(session ? callControls(store) : []),
            element(
                'p',
                { class: 'help', id: 'timeline-help' },
                HELP,
                session ? HELP_WITH_CALLS : '',
            ),
        );
        store.on('track', () => this.#useTracks(bothTracks ? store.tracks : [store.track]));
        store.on('entry', ({ entry }) => this.#reveal(entry?.start));
        store.on('time', ({ time }) => this.#reveal(time));
        store.on('call', () => this.#draw());
        store.on('places', () => this.#useTracks([store.track]));
        this.#slider.addEventListener('keydown', (event) => this.#key(event));
        this.#slider.addEventListener('wheel', (event) => this.#wheel(event), { passive: false });
        this.#slider.addEventListener('pointerdown', (event) => this.#press(event));
        this.#slider.addEventListener('pointermove', (event) => this.#drag(event));
        this.#slider.addEventListener('pointerup', (event) => this.#release(event));
        this.#slider.addEventListener('pointercancel', ({ pointerId }) =>
            this.#pointers.delete(pointerId),
        );
        new ResizeObserver(() => this.#draw()).observe(this.#slider);
        matchMedia('(prefers-color-scheme: dark)').addEventListener('change', () => this.#draw());
    }

    get layout() {
        return this.#layouts.find(({ track }) => track === this.#store.track);
    }

    #useTracks(tracks) {
        const { session } = this.#store;
        if (session || tracks.some((track, at) => this.#layouts[at]?.track !== track)) {
            this.#layouts = tracks.map((track) => new Layout(track));
            this.#calls = session && this.#placeCalls(session);
            const filled = [...this.#layouts, this.#calls].filter(
                (layout) => layout?.items.length > 0,
            );
            const start = Math.min(...filled.map((layout) => layout.start), Infinity);
            const end = Math.max(...filled.map((layout) => layout.end), -Infinity);
            this.#view.setWhole(...(filled.length > 0 ? [start, end] : [0, 1]));
        }
        this.#summary.textContent = describe(this.layout, this.#calls && this.#store);
        this.#slider.setAttribute('aria-valuemin', this.#view.whole.start);
        this.#slider.setAttribute('aria-valuemax', this.#view.whole.end);
        this.#draw();
    }

    #placeCalls(session) {
        const { track } = this.#store;
        const hasCues = this.layout.items.length > 0;
        session.place(track, ...(hasCues ? [this.layout.start, this.layout.end] : [0, 1]));
        return new CallLayout(session.callsOf(track));
    }

    #buttons() {
        const bar = element('div', {
            class: 'buttons',
            role: 'group',
            'aria-label': 'View of the timeline',
        });
        const act = (text, name, action) =>
            bar.append(button(text, name, () => this.#change(action)));
        act('−', 'Zoom out', () => this.#zoom(ZOOM));
        act('+', 'Zoom in', () => this.#zoom(1 / ZOOM));
        act('⟷', 'Show everything', (view) => view.zoom(Infinity));
        act('◀', 'Move the view back', (view) => view.pan(-0.25));
        act('▶', 'Move the view on', (view) => view.pan(0.25));
        return bar;
    }

    #change(action) {
        action(this.#view);
        this.#draw();
    }

    /** Around the playhead, if that is in sight. */
    #zoom(factor) {
        const part = (this.#store.time - this.#view.start) / this.#view.span;
        this.#view.zoom(factor, part >= 0 && part <= 1 ? part : 0.5);
    }

    #reveal(time) {
        if (Number.isFinite(time)) {
            this.#view.reveal(time);
        }
        this.#draw();
    }

    /** Once a frame, however often it is asked for. */
    #draw() {
        if (!this.#isDue) {
            this.#isDue = true;
            requestAnimationFrame(() => this.#paint());
        }
    }

    #paint() {
        this.#isDue = false;
        const width = this.#slider.clientWidth;
        const height = heightOf(this.#layouts) + heightOfCalls(this.#calls);
        this.#canvas.style.height = `${height}px`;
        const painter = new Painter(this.#canvas, this.#view, width, height);
        painter.paint(this.#layouts, this.#calls, this.#store);
        this.#slider.setAttribute('aria-valuenow', this.#store.time.toFixed(3));
        const shown = this.layout.shownAt(this.#store.time);
        const words = shown.map((entry) => this.#store.track.textOf(entry).trim()).join('; ');
        const call = this.#store.call ? `; ${this.#store.call.words}` : '';
        this.#slider.setAttribute(
            'aria-valuetext',
            `${formatTime(this.#store.time)}, ${words || 'no cue'}${call}`,
        );
        this.#slider.dataset.span = this.#view.span.toFixed(3);
    }

    #key(event) {
        const { cues } = this.#store.track;
        const lost = () => this.#store.track.entries.filter(({ isLost }) => isLost);
        const calls = this.#store.session?.callsOf(this.#store.track) ?? [];
        const mistaken = () => calls.filter(({ mistakes }) => mistakes.length > 0);
        const forward = event.key === 'ArrowRight' ? 1 : -1;
        const arrow = () =>
            event.shiftKey
                ? this.#change((view) => view.pan(0.1 * forward))
                : this.#store.seek(
                      this.#clamp(this.#store.time + (forward * this.#view.span) / 100),
                  );
        const actions = {
            ArrowLeft: arrow,
            ArrowRight: arrow,
            Home: () => this.#store.seek(this.layout.start),
            End: () => this.#store.seek(this.layout.end),
            '+': () => this.#change(() => this.#zoom(1 / ZOOM)),
            '-': () => this.#change(() => this.#zoom(ZOOM)),
            0: () => this.#change((view) => view.zoom(Infinity)),
            n: () => this.#store.step(cues, 1),
            p: () => this.#store.step(cues, -1),
            l: () => this.#store.step(lost(), 1),
            k: () => this.#store.step(lost(), -1),
            c: () => this.#store.stepCalls(calls, 1),
            x: () => this.#store.stepCalls(calls, -1),
            m: () => this.#store.stepCalls(mistaken(), 1),
            j: () => this.#store.stepCalls(mistaken(), -1),
        };
        const action = actions[event.key === '=' ? '+' : event.key];
        if (action && !event.ctrlKey && !event.metaKey && !event.altKey) {
            event.preventDefault();
            action();
        }
    }

    #clamp(time) {
        return Math.min(Math.max(time, this.#view.whole.start), this.#view.whole.end);
    }

    #part(event) {
        const box = this.#slider.getBoundingClientRect();
        return (event.clientX - box.left) / box.width;
    }

    #wheel(event) {
        event.preventDefault();
        const along = event.shiftKey ? event.deltaY || event.deltaX : event.deltaX;
        this.#change((view) =>
            along !== 0
                ? view.pan(along / 1000)
                : view.zoom(event.deltaY > 0 ? ZOOM : 1 / ZOOM, this.#part(event)),
        );
    }

    #press(event) {
        this.#slider.setPointerCapture(event.pointerId);
        this.#pointers.set(event.pointerId, this.#part(event));
        this.#moved = 0;
    }

    /** One finger moves the view, two stretch it. */
    #drag(event) {
        const before = this.#pointers.get(event.pointerId);
        if (before === undefined) {
            return;
        }
        const now = this.#part(event);
        this.#moved += Math.abs(now - before) * this.#slider.clientWidth;
        const other = [...this.#pointers].find(([id]) => id !== event.pointerId)?.[1];
        this.#pointers.set(event.pointerId, now);
        this.#change((view) => {
            if (other === undefined) {
                view.pan(before - now);
            } else if (Math.abs(now - other) > 0.01) {
                view.zoom(Math.abs(before - other) / Math.abs(now - other), (now + other) / 2);
            }
        });
    }

    /** A press that went nowhere chooses a cue, or a time. */
    #release(event) {
        const wasAlone = this.#pointers.size === 1;
        this.#pointers.delete(event.pointerId);
        const part = this.#part(event);
        if (!wasAlone || this.#moved > 4 || !(part >= 0 && part <= 1)) {
            return;
        }
        const box = this.#slider.getBoundingClientRect();
        const [x, y] = [event.clientX - box.left, event.clientY - box.top];
        const below = y - heightOf(this.#layouts);
        if (this.#calls && below >= 0) {
            const call = callAt(this.#calls, this.#view, box.width, x, below);
            if (call) {
                this.#store.chooseCall(call, call.mistakes[0] ?? null);
            }
            return;
        }
        const found = itemAt(this.#layouts, this.#view, box.width, x, y);
        if (found && found.track !== this.#store.track) {
            this.#store.chooseTrack(found.track);
        }
        if (found) {
            this.#store.chooseEntry(found.entry);
        }
        this.#store.seek(this.#view.start + part * this.#view.span);
    }
}

export function showTimeline(store, page) {
    return new Timeline(store, page.against);
}
