// What is chosen on the page, and who wants to know when that changes.

export class Store {
    #listeners = new Map();

    constructor(tracks) {
        this.tracks = tracks;
        this.track = tracks[0];
        this.entry = null;
        this.time = 0;
        this.isPlaying = false;
    }

    /** "track", "entry", "time" and "playing" are told; the listener gets this store. */
    on(what, listener) {
        this.#listeners.set(what, [...(this.#listeners.get(what) ?? []), listener]);
    }

    #tell(what) {
        for (const listener of this.#listeners.get(what) ?? []) {
            listener(this);
        }
    }

    chooseTrack(track) {
        this.track = track;
        this.entry = null;
        this.time = track.cues.find(({ cue }) => cue)?.start ?? 0;
        this.isPlaying = false;
        this.#tell('track');
        this.#tell('playing');
        this.#tell('entry');
        this.#tell('time');
    }

    /** Chooses an entry of the track, and goes to its time. */
    chooseEntry(entry) {
        this.entry = entry;
        this.#tell('entry');
        if (entry && Number.isFinite(entry.start)) {
            this.seek(entry.start);
        }
    }

    seek(time) {
        this.time = time;
        this.#tell('time');
    }

    play(isPlaying) {
        this.isPlaying = isPlaying;
        this.#tell('playing');
    }

    /** The next of these entries behind the chosen one, or behind the time; -1 looks back. */
    step(entries, direction) {
        const timed = entries.filter((entry) => Number.isFinite(entry.start));
        const ordered = direction > 0 ? timed : timed.toReversed();
        const found = ordered.find((entry) =>
            this.entry
                ? (entry.index - this.entry.index) * direction > 0
                : (entry.start - this.time) * direction > 0,
        );
        if (found) {
            this.chooseEntry(found);
        }
    }
}

/** The address of a line of a track in this page: "#L17", and "#T2L17" of the second track. */
export function addressOf(track, line) {
    return `#${track.number > 1 ? `T${track.number}` : ''}L${line}`;
}

/** Track number and line of an address; the line is 0 for "#T2", null is for anything else. */
export function readAddress(hash) {
    const parts = /^#(?:T(\d{1,9}))?(?:L(\d{1,9}))?$/.exec(hash);
    return parts && hash.length > 1
        ? { track: Number(parts[1] ?? 1), line: Number(parts[2] ?? 0) }
        : null;
}
