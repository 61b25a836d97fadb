// A track as the page knows it: the lines that quill check and quill cues print, and its bytes.
import { SourceLines } from './source_lines.js';

/** The objects that were packed; the program's columns.h describes how. */
export function unpack({ count: size, columns }) {
    const objects = Array.from({ length: size }, () => ({}));
    for (const [key, { same, values, rows }] of Object.entries(columns)) {
        for (let row = 0; row < size; row++) {
            objects[row][key] =
                rows === undefined ? same : values === undefined ? rows[row] : values[rows[row]];
        }
    }
    return objects;
}

const VERDICTS = {
    header: 'header',
    delivered: 'delivered',
    comments: 'comment',
    cut_off: 'cut off',
    lost: 'lost',
    lost_with_chunk: 'lost with its chunk',
    rejected: 'rejected',
    remains: 'made of remains',
    not_taken: 'not delivered',
};
const LOST = new Set(['lost', 'lost_with_chunk', 'cut_off', 'rejected', 'not_taken']);
const LOST_CUES = new Set(['lost', 'lost_with_chunk', 'not_taken']);
/** The mark of a finding, which differs by more than its colour. */
export const SIGNS = { lost: '✗', changed: '≠', remark: '!' };
/** That of a host's mistake. */
export const MISTAKE_SIGN = '⚑';
const RANKS = { lost: 3, changed: 2, remark: 1 };

/** One block of a track, with all that the page says of it. */
class Entry {
    constructor(index, block, cue, call) {
        this.index = index;
        this.line = block.line;
        this.lineCount = block.lines;
        this.chunk = block.chunk;
        this.cue = cue;
        this.cueNumber = block.cue ?? 0;
        this.isLost = LOST.has(block.block);
        this.isCue = cue !== null || LOST_CUES.has(block.block);
        this.fate = block.block;
        this.start = cue ? (cue.dStartTime ?? NaN) : (block.start ?? NaN);
        this.end = cue ? (cue.dEndTime ?? NaN) : (block.end ?? NaN);
        /** Where a block without times stands is told by its neighbours. */
        this.isGuessed = false;
        /** Where its findings are marked on the timeline. */
        this.markTime = 0;
        this.findings = [];
        /** Of a session: the number of the call that delivered it, and the call that fed its end. */
        this.deliveredBy = call;
        this.carrier = null;
    }

    get verdict() {
        const changed = this.fate === 'delivered' && this.severity === 'changed';
        return changed ? 'delivered, changed' : VERDICTS[this.fate];
    }

    /** The worst that was found: "lost", "changed", "remark", or "none". */
    get severity() {
        let worst = this.fate === 'not_taken' ? 'lost' : 'none';
        for (const { severity } of this.findings) {
            if ((RANKS[severity] ?? 0) > (RANKS[worst] ?? 0)) {
                worst = severity;
            }
        }
        return worst;
    }
}

export class Track {
    #data;
    #entries = null;
    #lines = null;

    constructor(data, number) {
        this.#data = data;
        this.number = number;
        this.name = data.name;
        this.module = data.module;
        this.moduleSize = data.module_size;
        this.sums = data.sums;
        this.leftOut = data.findings.left_out + data.blocks.left_out + data.cues.left_out;
        this.codes = new Map(data.codes.map((code) => [code.code, code]));
        /** Of a session: the parser, and how many cues its host got that stand nowhere in the track. */
        this.parser = data.parser;
        this.strays = data.strays;
        this.deliveredCount = data.cues.count + data.cues.left_out;
    }

    /** Notes which calls fed and delivered what. */
    useSession(session) {
        const chunks = session.chunksOf(this);
        for (const entry of this.entries) {
            entry.carrier = chunks[entry.chunk] ?? null;
            if (entry.isCue || entry.cue) {
                entry.carrier?.completed.push(entry);
                session.call(entry.deliveredBy)?.delivered.push(entry);
            }
        }
    }

    /** The lines of the track itself. */
    get lines() {
        this.#lines ??= new SourceLines(this.#data.source);
        return this.#lines;
    }

    /** All blocks, in the order of the track. */
    get entries() {
        this.#entries ??= this.#makeEntries();
        return this.#entries;
    }

    /** Those that are cues, lost ones too. */
    get cues() {
        return this.entries.filter((entry) => entry.isCue);
    }

    /** What can be read of an entry: what a player shows, else what the track says. */
    textOf(entry) {
        if (entry.cue) {
            return entry.cue.pcText ?? '';
        }
        const shown = Math.min(entry.lineCount, 12);
        const first = entry.line;
        return Array.from({ length: shown }, (_, at) => this.lines.text(first + at)).join('\n');
    }

    /** The entry that the line is part of, or the one above it. */
    entryAt(line) {
        let [low, high] = [0, this.entries.length];
        while (low < high) {
            const middle = (low + high) >> 1;
            if (this.entries[middle].line <= line) {
                low = middle + 1;
            } else {
                high = middle;
            }
        }
        return this.entries[Math.max(low - 1, 0)] ?? null;
    }

    #makeEntries() {
        const records = unpack(this.#data.cues);
        this.#entries = unpack(this.#data.blocks).map((block, index) => {
            // In a session the record came by a call, which is no field of it.
            const { call = 0, ...cue } = (block.cue && records[block.cue - 1]) || {};
            return new Entry(index, block, Object.keys(cue).length > 0 ? cue : null, call);
        });
        for (const finding of unpack(this.#data.findings)) {
            this.entryAt(finding.line)?.findings.push(finding);
        }
        guessTimes(this.#entries);
        return this.#entries;
    }
}

/** Gives lost blocks without times the place between the cues around them. */
function guessTimes(entries) {
    let before = 0;
    entries.forEach((entry, index) => {
        if (entry.isCue && !Number.isFinite(entry.start)) {
            const next = entries
                .slice(index + 1, index + 50)
                .find((other) => other.start >= before);
            const most = 2;
            entry.isGuessed = true;
            entry.start = before;
            entry.end = Math.max(Math.min(before + most, next?.start ?? before + most), before);
        }
        entry.markTime = Number.isFinite(entry.start) ? entry.start : before;
        if (entry.isCue && Number.isFinite(entry.end)) {
            before = entry.end;
        }
    });
}
