// Where cues lie on a timeline: in time, and one above the other where they overlap.

/** Things that have a start and an end, in the order of their starts. */
class Spans {
    #reach = []; // the latest end of an item and all before it

    constructor(items) {
        this.items = items.sort((one, other) => one.start - other.start);
        let latest = -Infinity;
        for (const { end } of this.items) {
            latest = Math.max(latest, end);
            this.#reach.push(latest);
        }
        this.start = this.items[0]?.start ?? 0;
        this.end = this.#reach.at(-1) ?? 1;
    }

    /** The items that reach into the time, in their order. */
    within(start, end) {
        const first = firstWhere(this.#reach.length, (at) => this.#reach[at] >= start);
        const last = firstWhere(this.items.length, (at) => this.items[at].start > end);
        return this.items.slice(first, last).filter((item) => item.end >= start);
    }
}

/** Cues in the order of their starts, each {entry, start, end, lane}. */
export class Layout extends Spans {
    constructor(track) {
        const items = track.cues
            .filter(({ start, end }) => Number.isFinite(start) && Number.isFinite(end))
            .map((entry) => ({
                entry,
                start: Math.min(entry.start, entry.end),
                end: Math.max(entry.start, entry.end),
                lane: 0,
            }));
        super(items);
        this.track = track;
        this.lanes = Math.max(this.#giveLanes(), 1);
        this.gaps = this.#findGaps();
    }

    /** The lowest lane that is free; returns how many there are. */
    #giveLanes() {
        const ends = [];
        for (const item of this.items) {
            const free = ends.findIndex((end) => end <= item.start);
            item.lane = free >= 0 ? free : ends.length;
            ends[item.lane] = item.end;
        }
        return ends.length;
    }

    /** The times in which a player shows nothing, between the first cue and the last. */
    #findGaps() {
        const gaps = [];
        let covered = null;
        for (const { entry, start, end } of this.items) {
            if (entry.isLost) {
                continue;
            }
            if (covered !== null && start > covered) {
                gaps.push({ start: covered, end: start });
            }
            covered = Math.max(covered ?? end, end);
        }
        return gaps;
    }

    /** The cues that a player shows at that time. */
    shownAt(time) {
        return this.within(time, time)
            .filter(({ entry }) => !entry.isLost && entry.start <= time && time < entry.end)
            .map(({ entry }) => entry);
    }
}

/** Calls of a session in three lanes: what was fed, what was delivered, and all others. */
export class CallLayout extends Spans {
    static names = ['fed', 'delivered', 'other'];

    constructor(calls) {
        super(
            calls.map((call) => ({
                call,
                start: call.place.start,
                end: Math.max(call.place.end, call.place.start),
                lane: call.isFeeding ? 0 : call.isTaking ? 1 : 2,
            })),
        );
    }
}

function firstWhere(size, holds) {
    let [low, high] = [0, size];
    while (low < high) {
        const middle = (low + high) >> 1;
        if (holds(middle)) {
            high = middle;
        } else {
            low = middle + 1;
        }
    }
    return low;
}

/** The piece of time that is in sight, and where it lies in so many pixels. */
export class View {
    /** `least` is the shortest piece that can be looked at. */
    constructor(start, end, least) {
        this.least = least;
        this.setWhole(start, end);
    }

    setWhole(start, end) {
        const rim = Math.max((end - start) * 0.02, 0.5);
        this.whole = { start: start - rim, end: end + rim };
        [this.start, this.end] = [this.whole.start, this.whole.end];
    }

    get span() {
        return this.end - this.start;
    }

    /** Shows `factor` times as much, with the time at that part of the width where it is. */
    zoom(factor, part = 0.5) {
        const most = this.whole.end - this.whole.start;
        const span = Math.min(Math.max(this.span * factor, this.least), most);
        this.#moveTo(this.start + part * (this.span - span), span);
    }

    /** Moves by a part of the width. */
    pan(part) {
        this.#moveTo(this.start + part * this.span, this.span);
    }

    /** Moves until the time is in sight. */
    reveal(time) {
        if (time < this.start || time > this.end) {
            this.#moveTo(time - this.span / 2, this.span);
        }
    }

    #moveTo(start, span) {
        const latest = Math.max(this.whole.end - span, this.whole.start);
        this.start = Math.min(Math.max(start, this.whole.start), latest);
        this.end = this.start + span;
    }
}

/** A step of the axis that gives marks at least so far apart. */
export function axisStep(secondsPerPixel, pixels) {
    const steps = [
        0.001, 0.002, 0.005, 0.01, 0.02, 0.05, 0.1, 0.2, 0.5, 1, 2, 5, 10, 20, 30, 60, 120, 300,
        600, 1200, 1800, 3600,
    ];
    const wanted = secondsPerPixel * pixels;
    return steps.find((step) => step >= wanted) ?? Math.ceil(wanted / 3600) * 3600;
}
