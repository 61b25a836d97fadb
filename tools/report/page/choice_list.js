// A list of any length of which one item can be chosen, by click and by keys.
import { element } from './dom.js';
import { VirtualRows } from './virtual_rows.js';

export class ChoiceList {
    #items = [];
    #chosen = null;
    #rows;
    #view;
    #choose;

    /** `parts(item)` gives {id, kind, parts} for a row; `choose(item)` is told what was chosen. */
    constructor({ label, name, parts, choose }) {
        this.#choose = choose;
        this.#rows = element('div', {
            role: 'listbox',
            'aria-label': label,
            tabindex: 0,
            keydown: (event) => this.#key(event),
        });
        this.frame = element('div', { class: `frame ${name}` }, this.#rows);
        this.#view = new VirtualRows(this.frame, this.#rows, (at) => this.#row(at, parts));
    }

    setItems(items) {
        this.#items = items;
        this.#view.setSize(items.length);
    }

    /** Shows which one is chosen, if it is in the list. */
    mark(item) {
        this.#chosen = item;
        const at = this.#items.indexOf(item);
        if (at >= 0) {
            this.#view.show(at);
        }
        this.#view.refresh();
        const row = at >= 0 && this.#rows.querySelector('[aria-selected=true]');
        if (row) {
            this.#rows.setAttribute('aria-activedescendant', row.id);
        } else {
            this.#rows.removeAttribute('aria-activedescendant');
        }
    }

    #row(at, parts) {
        const item = this.#items[at];
        const { id, kind, parts: children } = parts(item);
        return element(
            'div',
            {
                id,
                class: `row ${kind}`,
                role: 'option',
                'aria-selected': item === this.#chosen ? 'true' : 'false',
                'aria-posinset': at + 1,
                'aria-setsize': this.#items.length,
                click: () => this.#choose(item),
            },
            ...children,
        );
    }

    #key(event) {
        const page = Math.max(Math.floor(this.frame.clientHeight / this.#view.rowHeight) - 1, 1);
        const steps = { ArrowDown: 1, ArrowUp: -1, PageDown: page, PageUp: -page };
        const at = this.#items.indexOf(this.#chosen);
        const ends = { Home: 0, End: this.#items.length - 1 };
        const next =
            event.key in steps
                ? Math.max(at, steps[event.key] > 0 ? -1 : 0) + steps[event.key]
                : ends[event.key];
        if (next !== undefined && this.#items.length > 0) {
            event.preventDefault();
            this.#choose(this.#items[Math.min(Math.max(next, 0), this.#items.length - 1)]);
        }
    }
}
