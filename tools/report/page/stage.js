// The picture in which the cues of the moment are drawn, and what plays and steps through them.
import { button, byId, element, foreign, formatTime } from './dom.js';
import { place, ROWS } from './placement.js';
import { Layout } from './timeline_layout.js';

const RULES =
    'Drawn from the records alone. Rules of this page where a record leaves it open: the picture has ' +
    `${ROWS} rows; line 100, which is what a cue without a line setting has, is the bottom; cues at the ` +
    'same edge stand above each other; "position" is where the box begins with align start and left, ' +
    'its middle with middle, its end with end and right; the direction of a line is that of its first letter.';

/** The box of a cue. Its lines keep their own direction. */
function cueBox(entry, shifts) {
    const { style, side, isVertical, notes } = place(entry.cue);
    const box = element('div', { class: `cue${isVertical ? ' vertical' : ''}` });
    Object.assign(box.style, style);
    const lines = (entry.cue.pcText ?? '').replace(/\n$/, '').split('\n');
    box.append(...lines.map((line) => element('div', { dir: 'auto' }, element('span', {}, line))));
    // One above the other, where several stand at the same place.
    const place_ = `${side} ${box.style[side]}`;
    const shift = shifts.get(place_) ?? 0;
    shifts.set(place_, shift + lines.length);
    if (shift > 0) {
        box.style[side] = `calc(${box.style[side]} + ${(shift * 100) / ROWS}%)`;
    }
    return { box, notes };
}

class Stage {
    #store;
    #layout = null;
    #shown = null;
    #frame = 0;
    #cues = element('div', { class: 'cues' });
    #picture = element(
        'div',
        { class: 'picture', role: 'group', 'aria-label': 'Picture' },
        this.#cues,
    );
    #notes = element('ul', { class: 'notes' });
    #clock = element('output', { class: 'clock', 'aria-label': 'Time' });
    #scrub = element('input', { type: 'range', step: 'any', 'aria-label': 'Time in the track' });
    #play = button('Play', 'Play', () => this.#store.play(!this.#store.isPlaying));
    #video = null;

    constructor(store, { video, background }) {
        this.#store = store;
        if (background) {
            this.#cues.before(element('img', { src: background, alt: '' }));
        }
        if (video) {
            this.#addVideo(video);
        }
        this.#scrub.addEventListener('input', () => this.#store.seek(Number(this.#scrub.value)));
        const rules = element(
            'details',
            {},
            element('summary', {}, 'How this is drawn'),
            element('p', {}, RULES),
        );
        byId('stage').append(this.#picture, this.#controls(), this.#notes, rules);
        store.on('track', () => this.#useTrack());
        store.on('time', () => this.#draw());
        store.on('entry', () => this.#draw());
        store.on('playing', () => this.#startOrStop());
        new ResizeObserver(([{ contentRect }]) => {
            this.#cues.style.fontSize = `${(contentRect.height / ROWS) * 0.76}px`;
            this.#cues.style.lineHeight = `${contentRect.height / ROWS}px`;
        }).observe(this.#picture);
    }

    #addVideo(link) {
        this.#video = element('video', { src: link, preload: 'metadata', 'aria-label': 'Film' });
        this.#video.playsInline = true;
        this.#video.addEventListener('error', () => {
            const words = `${decodeURI(link)} cannot be played: it has to lie where it lay when this page was made.`;
            this.#cues.before(element('p', { class: 'no-video' }, words));
            this.#video.remove();
            this.#video = null;
        });
        this.#video.addEventListener('ended', () => this.#store.play(false));
        this.#cues.before(this.#video);
    }

    #controls() {
        const store = this.#store;
        const cues = () => store.track.cues;
        const lost = () => store.track.entries.filter(({ isLost }) => isLost);
        return element(
            'div',
            { class: 'buttons', role: 'group', 'aria-label': 'Playing' },
            this.#play,
            button('Previous cue', 'Previous cue', () => store.step(cues(), -1)),
            button('Next cue', 'Next cue', () => store.step(cues(), 1)),
            button('Previous lost block', 'Previous lost block', () => store.step(lost(), -1)),
            button('Next lost block', 'Next lost block', () => store.step(lost(), 1)),
            this.#scrub,
            this.#clock,
        );
    }

    #useTrack() {
        this.#layout = new Layout(this.#store.track);
        this.#scrub.min = Math.min(this.#layout.start, 0);
        this.#scrub.max = this.#layout.end;
        this.#shown = null;
        this.#draw();
    }

    #startOrStop() {
        const { isPlaying } = this.#store;
        this.#play.textContent = isPlaying ? 'Pause' : 'Play';
        this.#play.setAttribute('aria-label', isPlaying ? 'Pause' : 'Play');
        this.#play.title = isPlaying ? 'Pause' : 'Play';
        cancelAnimationFrame(this.#frame);
        if (!isPlaying) {
            this.#video?.pause();
            return;
        }
        if (this.#store.time >= this.#layout.end) {
            this.#store.seek(Math.min(this.#layout.start, 0));
        }
        this.#video?.play().catch(() => {}); // it says itself that it cannot be played
        let last = performance.now();
        const tick = (now) => {
            const time = this.#video
                ? this.#video.currentTime
                : this.#store.time + (now - last) / 1000;
            last = now;
            this.#store.seek(time);
            if (!this.#video && time >= this.#layout.end) {
                this.#store.play(false);
            } else {
                this.#frame = requestAnimationFrame(tick);
            }
        };
        this.#frame = requestAnimationFrame(tick);
    }

    /** Brings the film to the time, unless it is what brought the time. */
    #moveVideo(time) {
        const most = this.#store.isPlaying ? 0.3 : 0.001; // a film that plays is not pulled back and forth
        const isFar = this.#video && Math.abs(this.#video.currentTime - time) > most;
        if (isFar && time >= 0) {
            this.#video.currentTime = time;
        }
    }

    #draw() {
        const { time, entry } = this.#store;
        this.#clock.textContent = formatTime(time);
        this.#scrub.value = time;
        this.#scrub.setAttribute('aria-valuetext', formatTime(time));
        this.#moveVideo(time);
        const shown = this.#layout.shownAt(time);
        const key = [entry?.isLost ? entry.index : -1, ...shown.map(({ index }) => index)].join(
            ' ',
        );
        if (key !== this.#shown) {
            this.#shown = key;
            this.#drawCues(shown, entry);
        }
    }

    #drawCues(shown, entry) {
        const shifts = new Map();
        const boxes = [];
        const notes = [];
        for (const one of shown) {
            const drawn = cueBox(one, shifts);
            boxes.push(drawn.box);
            notes.push(...drawn.notes.map((note) => `Cue on line ${one.line}: ${note}.`));
        }
        if (entry?.isLost) {
            const text = this.#store.track.textOf(entry).slice(0, 300);
            boxes.push(
                element(
                    'div',
                    { class: 'missing' },
                    element('strong', {}, `The block on line ${entry.line} is missing here: `),
                    foreign(text),
                ),
            );
        }
        this.#cues.replaceChildren(...boxes);
        this.#notes.replaceChildren(...notes.map((note) => element('li', {}, note)));
    }
}

export function showStage(store, page) {
    return new Stage(store, page);
}
