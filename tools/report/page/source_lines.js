// The bytes of a track, cut into lines as the module cuts them.

const LF = 10;
const CR = 13;

export class SourceLines {
    #bytes;
    #begins = [0];

    /** `base64` holds the bytes. */
    constructor(base64) {
        const binary = atob(base64);
        this.#bytes = Uint8Array.from(binary, (character) => character.charCodeAt(0));
        const bytes = this.#bytes;
        for (let at = 0; at < bytes.length; at++) {
            if (bytes[at] === LF || (bytes[at] === CR && bytes[at + 1] !== LF)) {
                this.#begins.push(at + 1);
            }
        }
        if (this.#begins.at(-1) === bytes.length && this.#begins.length > 1) {
            this.#begins.pop(); // nothing stands behind the last line end
        }
    }

    get size() {
        return this.#begins.length;
    }

    /** The number of the line that holds the byte. */
    lineOf(offset) {
        let [low, high] = [0, this.#begins.length];
        while (low < high) {
            const middle = (low + high) >> 1;
            if (this.#begins[middle] <= offset) {
                low = middle + 1;
            } else {
                high = middle;
            }
        }
        return Math.max(low, 1);
    }

    /** A line by its number, from 1, without its line end. Bytes that are no UTF-8 are U+FFFD. */
    text(number) {
        const bytes = this.#line(number);
        const end = bytes.length - this.lineEnd(number).length;
        return new TextDecoder('utf-8', { ignoreBOM: true }).decode(bytes.subarray(0, end));
    }

    /** Its line end. */
    lineEnd(number) {
        const bytes = this.#line(number);
        const last = bytes.at(-1);
        if (last === CR) {
            return '\r';
        }
        return last !== LF ? '' : bytes.at(-2) === CR ? '\r\n' : '\n';
    }

    #line(number) {
        return this.#bytes.subarray(
            this.#begins[number - 1] ?? this.#bytes.length,
            this.#begins[number] ?? this.#bytes.length,
        );
    }
}

const NAMES = new Map([
    ['\t', '→'],
    [' ', '·'],
    ['\u00a0', '⍽'],
    ['\n', '↵'],
    ['\r', '\\r'],
    ['\ufffd', '�'],
]);

/** Whether a character cannot be seen, or changes how those around it are seen. */
function isHidden(character) {
    return NAMES.has(character) || /[\p{Cc}\p{Cf}\p{Zl}\p{Zp}\p{Zs}]/u.test(character);
}

/** What stands for a character that cannot be seen. */
function signFor(character) {
    const code = character.codePointAt(0);
    if (NAMES.has(character)) {
        return NAMES.get(character);
    }
    return code < 0x80
        ? `\\x${code.toString(16).toUpperCase().padStart(2, '0')}`
        : `[U+${code.toString(16).toUpperCase().padStart(4, '0')}]`;
}

/** Pieces of a line: {text, hidden}; a hidden one shows signs in the place of its characters. */
export function visiblePieces(text, lineEnd) {
    const pieces = [];
    const add = (piece, hidden) => {
        const last = pieces.at(-1);
        if (last && last.hidden === hidden) {
            last.text += piece;
        } else {
            pieces.push({ text: piece, hidden });
        }
    };
    for (const character of text) {
        const hidden = isHidden(character);
        add(hidden ? signFor(character) : character, hidden);
    }
    for (const character of lineEnd) {
        add(signFor(character), true);
    }
    return pieces;
}
