// A list of any length of which only the rows in sight are in the page.

import { element } from './dom.js';

// Printing has no scrolling: then all rows are there, up to so many.
const MOST_PRINTED = 5000;
const ROWS_AROUND = 8;

export class VirtualRows {
    #frame;
    #rows;
    #make;
    #size = 0;
    #shown = '';
    #isPrinting = false;

    /** `frame` scrolls, `rows` holds them; `make(index)` makes one. Their height is --row-height. */
    constructor(frame, rows, make) {
        this.#frame = frame;
        this.#rows = rows;
        this.#make = make;
        rows.classList.add('rows');
        frame.addEventListener('scroll', () => this.#draw(), { passive: true });
        new ResizeObserver(() => this.refresh()).observe(frame);
        addEventListener('beforeprint', () => this.#print(true));
        addEventListener('afterprint', () => this.#print(false));
    }

    get rowHeight() {
        return parseFloat(getComputedStyle(this.#frame).getPropertyValue('--row-height')) || 24;
    }

    setSize(size) {
        this.#size = size;
        this.refresh();
    }

    /** Draws the rows anew. */
    refresh() {
        this.#shown = '';
        this.#draw();
    }

    /** Scrolls until the row is in sight. */
    show(index) {
        const top = index * this.rowHeight;
        const { scrollTop, clientHeight } = this.#frame;
        if (top < scrollTop || top + this.rowHeight > scrollTop + clientHeight) {
            this.#frame.scrollTop = Math.max(top - (clientHeight - this.rowHeight) / 2, 0);
        }
        this.#draw();
    }

    #print(isPrinting) {
        this.#isPrinting = isPrinting;
        this.refresh();
    }

    #draw() {
        const height = this.rowHeight;
        const all = this.#isPrinting;
        const first = all
            ? 0
            : Math.max(Math.floor(this.#frame.scrollTop / height) - ROWS_AROUND, 0);
        const inSight = Math.ceil(this.#frame.clientHeight / height) + 2 * ROWS_AROUND;
        const last = Math.min(all ? MOST_PRINTED : first + inSight, this.#size);
        const shown = `${first} ${last} ${height}`;
        if (shown === this.#shown) {
            return;
        }
        this.#shown = shown;
        this.#rows.style.paddingTop = `${first * height}px`;
        this.#rows.style.paddingBottom = `${all ? 0 : (this.#size - last) * height}px`;
        const made = [];
        for (let index = first; index < last; index++) {
            made.push(this.#make(index));
        }
        if (all && last < this.#size) {
            const tag = this.#rows.tagName === 'OL' ? 'li' : 'div';
            made.push(element(tag, {}, `and ${this.#size - last} more, which are not printed`));
        }
        this.#rows.replaceChildren(...made);
    }
}
