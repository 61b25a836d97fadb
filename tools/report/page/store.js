// What is chosen on the page, and who wants to know when that changes.

export class Store {
    #listeners = new Map();

    /** `session` is null but for the report of a recorded session. */
    constructor(tracks, session) {
        this.tracks = tracks;
        this.session = session;
        this.track = tracks[0];
        this.entry = null;
        this.call = null;
        this.mistake = null;
        this.time = 0;
        this.isPlaying = false;
    }

    /**
     * "track", "entry", "time" and "playing" are told, of a session "call" and "places", where calls stand
     * on the timeline. The listener gets this store.
     */
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

    /** Chooses a call of the session, and of its mistakes the given one or none; goes to its place. */
    chooseCall(call, mistake = null) {
        const track = this.tracks.find(({ parser }) => call?.parser && parser === call.parser);
        if (track && track !== this.track) {
            this.chooseTrack(track);
        }
        this.call = call;
        this.mistake = mistake;
        this.#tell('call');
        if (call) {
            this.seek(call.place.start);
        }
    }

    /** Has the calls of the session stand elsewhere on the timeline. */
    placeCalls(placing) {
        this.session.placing = placing;
        this.#tell('places');
    }

    seek(time) {
        this.time = time;
        this.#tell('time');
    }

    play(isPlaying) {
        this.isPlaying = isPlaying;
        this.#tell('playing');
    }

    /** The next of these calls behind the chosen one, or behind the time; -1 looks back. */
    stepCalls(calls, direction) {
        const ordered = direction > 0 ? calls : calls.toReversed();
        const found = ordered.find((call) =>
            this.call
                ? (call.index - this.call.index) * direction > 0
                : (call.place.start - this.time) * direction >= 0,
        );
        if (found) {
            this.chooseCall(found, found.mistakes[0] ?? null);
        }
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

/** That of a call of a session, "#C7", and of a mistake, "#H105-7". */
export function addressOfCall(call) {
    return `#C${call.call}`;
}

export function addressOfMistake(mistake) {
    return `#${mistake.id}`;
}

/**
 * What an address names: {track, line}, where the line is 0 for "#T2", {call}, or {mistake}; null for
 * anything else.
 */
export function readAddress(hash) {
    const line = /^#(?=.)(?:T(\d{1,9}))?(?:L(\d{1,9}))?$/.exec(hash);
    if (line) {
        return { track: Number(line[1] ?? 1), line: Number(line[2] ?? 0) };
    }
    const call = /^#C(\d{1,10})$/.exec(hash);
    if (call) {
        return { call: Number(call[1]) };
    }
    const mistake = /^#(H\d{1,9}-\d{1,10}(?:-\d{1,6})?)$/.exec(hash);
    return mistake ? { mistake: mistake[1] } : null;
}
