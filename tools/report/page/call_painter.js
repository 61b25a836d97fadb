// Paints the calls of a session below the cues of a timeline: what was fed, what was delivered, the other
// calls, and the host's mistakes.
import { MISTAKE_SIGN } from './model.js';
import { CallLayout } from './timeline_layout.js';

const LANE = 16;
const LABELS = 14;
const MISTAKES = 18;

/** The pixels that the calls need. */
export function heightOfCalls(layout) {
    return layout ? CallLayout.names.length * (LANE + LABELS) + MISTAKES : 0;
}

function topOfLane(lane) {
    return LABELS + lane * (LANE + LABELS);
}

export class CallPainter {
    #context;
    #colours;
    #x;
    #view;
    #lastMark = -Infinity;

    /** `x(time)` is the place of a time in pixels. */
    constructor(context, colours, view, x) {
        this.#context = context;
        this.#colours = colours;
        this.#view = view;
        this.#x = x;
    }

    /** `related` are the calls that the chosen cue came by. */
    paint(layout, top, { call: chosen, mistake }, related) {
        const marks = top + topOfLane(CallLayout.names.length) - LABELS;
        const painted = []; // the last pixel of each lane
        for (const { call, start, end, lane } of layout.within(this.#view.start, this.#view.end)) {
            const isMarked = call === chosen || related.includes(call);
            const x = this.#x(start);
            const width = Math.max(this.#x(end) - x - 1, 3);
            if (call.mistakes.length > 0) {
                this.#mark(call.mistakes, x, marks, call.mistakes.includes(mistake));
            }
            if (x + width > (painted[lane] ?? -1) || isMarked) {
                painted[lane] = Math.ceil(x + width);
                this.#bar(call, x, top + topOfLane(lane), width, isMarked);
            }
        }
        this.#labels(top);
    }

    #bar(call, x, y, width, isMarked) {
        const context = this.#context;
        const colours = this.#colours;
        const isFull = call.isFeeding ? call.chunk !== null : call.cues > 0;
        const colour = colours[call.isFeeding ? 'remark' : isFull ? 'delivered' : 'line'];
        context.fillStyle = isFull || width < 5 ? colour : colours.panel;
        context.fillRect(x, y, width, LANE);
        if (width >= 5) {
            this.#rimAndNumber(call, x, y, width, isFull, colour);
        }
        if (isMarked) {
            context.strokeStyle = colours.focus;
            context.lineWidth = 3;
            context.strokeRect(x, y, width, LANE);
            context.lineWidth = 1;
        }
    }

    /** The rim of what did not reach the module, or did not return, is broken. */
    #rimAndNumber(call, x, y, width, isFull, colour) {
        const context = this.#context;
        context.strokeStyle = colour;
        context.setLineDash(call.passed && call.outcome !== null ? [] : [3, 3]);
        context.strokeRect(x + 0.5, y + 0.5, width - 1, LANE - 1);
        context.setLineDash([]);
        const text = String(call.call);
        if (width > context.measureText(text).width + 8) {
            context.fillStyle = this.#colours[isFull ? 'on-delivered' : 'text'];
            context.fillText(text, x + 4, y + LANE / 2);
        }
    }

    #labels(top) {
        this.#context.fillStyle = this.#colours.muted;
        CallLayout.names.forEach((name, lane) => {
            this.#context.fillText(name, 2, top + topOfLane(lane) - LABELS / 2);
        });
    }

    #mark(mistakes, x, y, isChosen) {
        if (x - this.#lastMark < 8 && !isChosen) {
            return;
        }
        const hasRoom = x - this.#lastMark > 60;
        this.#lastMark = x;
        const codes = hasRoom ? mistakes.map(({ code }) => ` ${code}`).join('') : '';
        this.#context.fillStyle = this.#colours[isChosen ? 'focus' : 'lost'];
        this.#context.fillText(MISTAKE_SIGN + codes, x, y + MISTAKES / 2);
    }
}

/** The call at a point, of which y is counted from the top of the calls; null where there is none. */
export function callAt(layout, view, width, x, y) {
    const reach = (view.span / width) * 4;
    const time = view.start + (x / width) * view.span;
    const inLanes = y < topOfLane(CallLayout.names.length);
    const lane = CallLayout.names.findIndex((_, at) => y < topOfLane(at) + LANE);
    const distance = ({ start, end }) => Math.max(start - time, time - end, 0);
    const found = layout
        .within(time - reach, time + reach)
        .filter((item) => (inLanes ? item.lane === lane : item.call.mistakes.length > 0))
        .sort((one, other) => distance(one) - distance(other))[0];
    return found?.call ?? null;
}
