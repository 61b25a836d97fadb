// A recorded session as the page knows it: the calls and the host's mistakes, as quill replay shows them.
import { count } from './dom.js';
import { unpack } from './model.js';

// A cue is late when it comes a frame of film and more after its start.
const FRAME = 0.04;
const FRONT = /^H\d+ at call .*?: /s;

/** A mistake: what was found, and what is to be done instead. */
class Mistake {
    constructor({ code, text, call: number }, calls, taken) {
        this.code = /^H\d{1,9}$/.test(code) ? code : 'H0';
        this.call = calls.get(number) ?? null;
        const id = `${this.code}-${number}`;
        const before = taken.get(id) ?? 0;
        taken.set(id, before + 1);
        /** What stands in its address. */
        this.id = before > 0 ? `${id}-${before + 1}` : id;
        const words = text.replace(FRONT, '');
        const at = words.lastIndexOf(' What to do: ');
        this.what = at >= 0 ? words.slice(0, at) : words;
        this.remedy = at >= 0 ? words.slice(at + ' What to do: '.length) : '';
        this.place = text.slice(0, text.length - words.length).replace(/: $/, '');
        this.call?.mistakes.push(this);
    }
}

/** One call of the host, with what came of it. */
class Call {
    constructor(row, index) {
        Object.assign(this, row);
        this.index = index;
        /** Microseconds of the session, at which it returned and delivered; null for one that did not. */
        this.ended_us = row.took === null ? null : row.us + row.took;
        this.delivered_us = row.delivered_after === null ? null : row.us + row.delivered_after;
        this.mistakes = [];
        /** What of a track it fed: {index, begin, end}, of bytes; null for other calls. */
        this.chunk = null;
        /** The cues that it delivered, and those that its chunk completed. */
        this.delivered = [];
        this.completed = [];
        /** Where it stands on the timeline. */
        this.place = { start: 0, end: 0 };
    }

    get name() {
        return this.function;
    }

    /** "call 3, pfnParse, parser 1, 50 bytes". */
    get words() {
        const parts = [`call ${this.call}`, this.name];
        parts.push(this.parser ? `parser ${this.parser}` : 'no parser');
        if (this.size !== null && this.size !== undefined) {
            parts.push(count(this.size, 'byte'));
        }
        if (this.ticks !== null && this.ticks !== undefined) {
            parts.push(`${this.ticks} ticks`);
        }
        return parts.join(', ');
    }

    /** What came of it, in a few words. */
    get result() {
        if (this.outcome === null) {
            return 'did not return';
        }
        if (!this.passed) {
            return this.name === 'pfnRelease' ? 'put off' : 'not passed on';
        }
        return this.cues === null ? lastLine(this.outcome) : count(this.cues, 'cue');
    }

    get isFeeding() {
        return this.name === 'pfnParse';
    }

    get isTaking() {
        return this.name === 'pfnGetParseResult';
    }
}

/** What stands last in an outcome is its result or exception, before that is what was printed. */
function lastLine(outcome) {
    const last = outcome.split('\n').at(-1);
    return /^(= |throws )/.test(last) ? last : '';
}

/** Numbers and times count from the call before. */
function addUp(rows) {
    rows.forEach((row, at) => {
        row.call += rows[at - 1]?.call ?? 0;
        row.us += rows[at - 1]?.us ?? 0;
    });
    return rows;
}

export class Session {
    #calls = new Map();
    #chunks = new Map(); // of each parser, the calls that fed it something
    #clocks = new Map(); // of each track

    constructor(data, tracks) {
        Object.assign(this, data);
        this.calls = addUp(unpack(data.calls)).map((row, index) => new Call(row, index));
        for (const call of this.calls) {
            this.#calls.set(call.call, call);
            this.#addChunk(call);
        }
        const taken = new Map();
        this.mistakes = unpack(data.mistakes).map((row) => new Mistake(row, this.#calls, taken));
        this.leftOut = data.calls.left_out;
        /** How calls stand on the timeline: "cues", where their cues are, or "clock", when they were made. */
        this.placing = 'cues';
        for (const track of tracks) {
            track.useSession(this);
            this.#guessClock(track);
        }
        if (tracks.some((track) => this.#wasInStep(track))) {
            this.placing = 'clock';
        }
    }

    /** A call by its number; null when there is none. */
    call(number) {
        return this.#calls.get(number) ?? null;
    }

    mistake(id) {
        return this.mistakes.find((mistake) => mistake.id === id) ?? null;
    }

    chunksOf(track) {
        return this.#chunks.get(track.parser) ?? [];
    }

    /** The calls on the parser of a track, and those on none. */
    callsOf(track) {
        return this.calls.filter(({ parser }) => !parser || parser === track.parser);
    }

    #addChunk(call) {
        const size = call.fed ?? call.size;
        if (!call.isFeeding || !call.parser || !size) {
            return;
        }
        const chunks = this.#chunks.get(call.parser) ?? [];
        this.#chunks.set(call.parser, chunks);
        const begin = chunks.at(-1)?.chunk.end ?? 0;
        call.chunk = { index: chunks.length, begin, end: begin + size };
        chunks.push(call);
    }

    // ---- The clock: when the film stands where ----

    /** Where the film stands at a moment of the session, in seconds; the moment is in microseconds. */
    filmAt(track, moment) {
        const { began, film } = this.#clocks.get(track);
        return (moment - began) / 1e6 + film;
    }

    /** Where it stands when the first chunk of the track is fed. */
    filmAtFirstChunk(track) {
        const [first] = this.chunksOf(track);
        return first ? this.filmAt(track, first.us) : 0;
    }

    setFilmAtFirstChunk(track, seconds) {
        const [first] = this.chunksOf(track);
        this.#clocks.set(track, { began: first?.us ?? 0, film: seconds });
    }

    /** How much later than its start a cue came, below 0 for how much earlier; NaN for one that did not. */
    lateness(track, entry) {
        const call = this.call(entry.deliveredBy);
        return call ? this.filmAt(track, call.delivered_us ?? call.us) - entry.start : NaN;
    }

    isLate(track, entry) {
        return this.lateness(track, entry) > FRAME;
    }

    /**
     * A track begins with the film, or goes on where the one before it ends, as the segments of a stream
     * do: then its first cue is not before the place to which the film has come by its first chunk.
     */
    #guessClock(track) {
        const [first] = this.chunksOf(track);
        const began = this.calls.find(({ chunk }) => chunk)?.us ?? 0;
        this.#clocks.set(track, { began, film: 0 });
        const start = track.cues.find((entry) => Number.isFinite(entry.start))?.start ?? 0;
        if (!first || start < this.filmAt(track, first.us) - FRAME) {
            this.setFilmAtFirstChunk(track, 0);
        }
    }

    // ---- Places on the timeline ----

    /** Gives the calls of a track their places on its timeline, whose cues take the time from start to end. */
    place(track, start, end) {
        if (this.placing === 'cues') {
            this.#placeAtCues(track, start, Math.max((end - start) / 20, 1));
            return;
        }
        for (const call of this.callsOf(track)) {
            call.place = {
                start: this.filmAt(track, call.us),
                end: this.filmAt(track, call.ended_us ?? call.us),
            };
        }
    }

    /** Calls that are about no cue stand between those that are, and within the rim before and behind them. */
    #placeAtCues(track, start, rim) {
        let [at, between] = [start - rim, []];
        const spread = (until) => {
            const step = Math.max(until - at, 0) / (between.length + 1);
            between.forEach((call, index) => {
                const time = at + step * (index + 1);
                call.place = { start: time, end: time };
            });
        };
        for (const call of this.callsOf(track)) {
            const span = spanOf(call.chunk ? this.#cuesIn(track, call.chunk) : call.delivered);
            if (span) {
                spread(span.start);
                call.place = span;
                [at, between] = [span.end, []];
            } else {
                between.push(call);
            }
        }
        spread(at + rim);
    }

    /** The cues of which a chunk holds something. */
    #cuesIn(track, { begin, end }) {
        const first = track.entryAt(track.lines.lineOf(begin))?.index ?? 0;
        const last = track.entryAt(track.lines.lineOf(end - 1))?.index ?? -1;
        return track.entries.slice(first, last + 1).filter(({ isCue }) => isCue);
    }

    /** Whether the host took a tenth of the time that its cues take, or more, as one that plays does. */
    #wasInStep(track) {
        const calls = this.callsOf(track);
        const took = ((calls.at(-1)?.us ?? 0) - (calls[0]?.us ?? 0)) / 1e6;
        const span = spanOf(track.cues);
        return span !== null && took > (span.end - span.start) / 10;
    }
}

/** From the first start to the last end; null when there is none. */
function spanOf(entries) {
    const timed = entries.filter(
        ({ start, end }) => Number.isFinite(start) && Number.isFinite(end),
    );
    if (timed.length === 0) {
        return null;
    }
    let [start, end] = [Infinity, -Infinity];
    for (const entry of timed) {
        start = Math.min(start, entry.start);
        end = Math.max(end, entry.end, entry.start);
    }
    return { start, end };
}
