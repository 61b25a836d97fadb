// Paints a timeline: an axis, a bar for each cue, gaps and the marks of findings, and the calls of a session.
import { CallPainter, heightOfCalls } from './call_painter.js';
import { formatSpan, formatTime } from './dom.js';
import { SIGNS } from './model.js';
import { axisStep } from './timeline_layout.js';

const AXIS = 20;
const MARKS = 14;
const BAND_SPACE = 10;

/** The colours of the page, from its style. */
function readColours() {
    const style = getComputedStyle(document.documentElement);
    const names = [
        'text',
        'muted',
        'line',
        'panel',
        'delivered',
        'on-delivered',
        'lost',
        'changed',
        'remark',
        'focus',
    ];
    return Object.fromEntries(
        names.map((name) => [name, style.getPropertyValue(`--${name}`).trim()]),
    );
}

/** Stripes, so that lost cues differ by more than their colour. */
function stripes(context, colours, colour) {
    const tile = document.createElement('canvas');
    tile.width = tile.height = 8;
    const painter = tile.getContext('2d');
    painter.fillStyle = colours.panel;
    painter.fillRect(0, 0, 8, 8);
    painter.strokeStyle = colour;
    painter.lineWidth = 2;
    for (const shift of [-8, 0, 8]) {
        painter.beginPath();
        painter.moveTo(shift, 8);
        painter.lineTo(shift + 8, 0);
        painter.stroke();
    }
    return context.createPattern(tile, 'repeat');
}

/** How high the lanes of a layout are. */
function laneHeight({ lanes }) {
    return Math.min(Math.max(Math.floor(160 / lanes), 3), 22);
}

function bandHeight(layout) {
    return layout.lanes * laneHeight(layout) + MARKS + BAND_SPACE;
}

/** The pixels that the layouts need, one below the other. */
export function heightOf(layouts) {
    return AXIS + layouts.reduce((sum, layout) => sum + bandHeight(layout), 0);
}

export class Painter {
    #context;
    #view;
    #width;
    #colours = readColours();

    constructor(canvas, view, width, height) {
        const ratio = devicePixelRatio || 1;
        const [wide, high] = [Math.round(width * ratio), Math.round(height * ratio)];
        if (canvas.width !== wide || canvas.height !== high) {
            [canvas.width, canvas.height] = [wide, high];
        }
        this.#context = canvas.getContext('2d');
        this.#context.setTransform(ratio, 0, 0, ratio, 0, 0);
        this.#context.clearRect(0, 0, width, height);
        this.#context.font = '12px system-ui, sans-serif';
        this.#context.textBaseline = 'middle';
        this.#view = view;
        this.#width = width;
    }

    #x(time) {
        return ((time - this.#view.start) / this.#view.span) * this.#width;
    }

    /** `calls` is the layout of those of a session, or null. */
    paint(layouts, calls, store) {
        this.#axis();
        let top = AXIS;
        for (const layout of layouts) {
            this.#gaps(layout, top);
            this.#bars(layout, top, store);
            this.#marks(layout, top + layout.lanes * laneHeight(layout));
            top += bandHeight(layout);
        }
        if (calls) {
            const { entry, session } = store;
            const related = [entry?.carrier, entry && session.call(entry.deliveredBy)];
            const x = (time) => this.#x(time);
            new CallPainter(this.#context, this.#colours, this.#view, x).paint(
                calls,
                top,
                store,
                related.filter(Boolean),
            );
        }
        this.#context.fillStyle = this.#colours.focus;
        this.#context.fillRect(this.#x(store.time) - 1, 0, 2, top + heightOfCalls(calls));
    }

    #axis() {
        const context = this.#context;
        const step = axisStep(this.#view.span / this.#width, 100);
        context.fillStyle = this.#colours.muted;
        for (let at = Math.ceil(this.#view.start / step); at * step <= this.#view.end; at++) {
            const x = this.#x(at * step);
            context.fillRect(x, 0, 1, 6);
            context.fillText(formatTime(at * step).replace(/\.000$/, ''), x + 3, 11);
        }
    }

    #gaps(layout, top) {
        const context = this.#context;
        const height = layout.lanes * laneHeight(layout);
        const first = layout.gaps.findIndex(({ end }) => end >= this.#view.start);
        for (let at = Math.max(first, 0); at < layout.gaps.length; at++) {
            const { start, end } = layout.gaps[at];
            if (start > this.#view.end) {
                break;
            }
            const [x, width] = [this.#x(start), this.#x(end) - this.#x(start)];
            if (width >= 3) {
                context.strokeStyle = this.#colours.line;
                context.strokeRect(x + 0.5, top + 0.5, width - 1, height - 1);
            }
            if (width > 60) {
                const text = formatSpan(end - start);
                context.fillStyle = this.#colours.muted;
                context.fillText(
                    text,
                    x + (width - context.measureText(text).width) / 2,
                    top + height - 8,
                );
            }
        }
    }

    #bars(layout, top, store) {
        const { entry: chosen, call, session } = store;
        const context = this.#context;
        const high = laneHeight(layout);
        const lostFill = stripes(context, this.#colours, this.#colours.lost);
        const lateFill = stripes(context, this.#colours, this.#colours.changed);
        const painted = []; // the last pixel of each lane and kind
        for (const item of layout.within(this.#view.start, this.#view.end)) {
            const { entry, lane } = item;
            const x = this.#x(item.start);
            const width = Math.max(this.#x(item.end) - x - 1, 2);
            const kind = lane * 2 + (entry.isLost ? 1 : 0);
            const isOfCall = call?.delivered.includes(entry) || call?.completed.includes(entry);
            if (x + width <= (painted[kind] ?? -1) && entry !== chosen && !isOfCall) {
                continue; // less than a pixel beside the one before
            }
            painted[kind] = Math.ceil(x + width);
            const y = top + lane * high;
            context.fillStyle = entry.isLost ? lostFill : this.#colours.delivered;
            context.fillRect(x, y, width, high - 1);
            if (entry.isLost && width > 4) {
                context.strokeStyle = this.#colours.lost;
                context.setLineDash(entry.isGuessed ? [3, 3] : []);
                context.strokeRect(x + 0.5, y + 0.5, width - 1, high - 2);
                context.setLineDash([]);
            }
            if (session?.placing === 'clock' && session.isLate(layout.track, entry)) {
                const missed = this.#x(item.start + session.lateness(layout.track, entry)) - x;
                context.fillStyle = lateFill;
                context.fillRect(x, y, Math.min(Math.max(missed, 3), width), high - 1);
            } else if (!entry.isLost && width > 30 && high > 14) {
                this.#text(layout.track.textOf(entry), x, y, width, high);
            }
            if (entry === chosen || isOfCall) {
                context.strokeStyle = this.#colours.focus;
                context.lineWidth = entry === chosen ? 3 : 2;
                context.strokeRect(x, y, width, high - 1);
                context.lineWidth = 1;
            }
        }
    }

    #text(text, x, y, width, high) {
        const context = this.#context;
        context.save();
        context.beginPath();
        context.rect(x + 2, y, width - 4, high);
        context.clip();
        context.fillStyle = this.#colours['on-delivered'];
        context.fillText(text.slice(0, 200).replaceAll('\n', ' '), x + 4, y + high / 2);
        context.restore();
    }

    #marks(layout, top) {
        const context = this.#context;
        const painted = {};
        for (const entry of layout.track.entries) {
            const kind = entry.severity;
            if (
                kind === 'none' ||
                !(entry.markTime >= this.#view.start && entry.markTime <= this.#view.end)
            ) {
                continue;
            }
            const x = this.#x(entry.markTime);
            if (Math.abs(x - (painted[kind] ?? -Infinity)) >= 8) {
                painted[kind] = x;
                context.fillStyle = this.#colours[kind];
                context.fillText(SIGNS[kind], x, top + MARKS / 2);
            }
        }
    }
}

/** The item at a point of what was painted, and its layout; null where there is none. */
export function itemAt(layouts, view, width, x, y) {
    const reach = (view.span / width) * 3;
    const time = view.start + (x / width) * view.span;
    let top = AXIS;
    for (const layout of layouts) {
        const lane = Math.floor((y - top) / laneHeight(layout));
        const found = layout
            .within(time - reach, time + reach)
            .filter((item) => item.lane === lane)
            .sort((one, other) => distance(one, time) - distance(other, time))[0];
        if (found && y >= top) {
            return { track: layout.track, entry: found.entry };
        }
        top += bandHeight(layout);
    }
    return null;
}

function distance({ start, end }, time) {
    return Math.max(start - time, time - end, 0);
}
