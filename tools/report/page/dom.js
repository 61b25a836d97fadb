// Making elements, and writing numbers and times. Whatever comes from a track goes through text nodes
// and attribute values here: nothing of it can become markup.

/** An element. Functions among the attributes listen to the event of that name. */
export function element(tag, attributes = {}, ...children) {
    const made = document.createElement(tag);
    for (const [name, value] of Object.entries(attributes)) {
        if (typeof value === 'function') {
            made.addEventListener(name, value);
        } else if (value !== false && value !== undefined) {
            made.setAttribute(name, value === true ? '' : value);
        }
    }
    made.append(...children);
    return made;
}

/** A text of a track in a line of the page's own, which keeps its direction to itself. */
export function foreign(text) {
    return element('bdi', {}, text);
}

/** HH:MM:SS.mmm, as quill writes times; a dash for what is no time. */
export function formatTime(seconds) {
    if (!Number.isFinite(seconds)) {
        return '–';
    }
    const all = Math.round(Math.abs(seconds) * 1000);
    const two = (number) => String(number).padStart(2, '0');
    const hours = Math.floor(all / 3600000);
    const sign = seconds < 0 && all > 0 ? '-' : '';
    return (
        `${sign}${two(hours)}:${two(Math.floor(all / 60000) % 60)}:` +
        `${two(Math.floor(all / 1000) % 60)}.${String(all % 1000).padStart(3, '0')}`
    );
}

/** A length of time in a few characters, for marks on the timeline. */
export function formatSpan(seconds) {
    if (seconds < 60) {
        return `${Number(seconds.toPrecision(3))} s`;
    }
    return seconds < 3600
        ? `${Math.floor(seconds / 60)} min ${Math.round(seconds % 60)} s`
        : `${Math.floor(seconds / 3600)} h ${Math.round((seconds % 3600) / 60)} min`;
}

/** "1,234 cues", "1 cue". */
export function count(number, word) {
    return `${number.toLocaleString('en')} ${word}${number === 1 ? '' : 's'}`;
}

export function byId(id) {
    return document.getElementById(id);
}

/** A button of the page. */
export function button(text, name, click) {
    return element('button', { type: 'button', 'aria-label': name, title: name, click }, text);
}
