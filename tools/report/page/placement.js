// Where a player draws a cue, by its record alone, and what the record leaves to the player.

// Rows of text that fit into the picture one above the other, and columns side by side.
export const ROWS = 15;
const MOST_PERCENT = 100;
const NO_LINE = 100;

const ALIGNS = ['start', 'middle', 'end', 'left', 'right'];
const TEXT_ALIGNS = ['start', 'center', 'end', 'left', 'right'];
const MODES = ['horizontal-tb', 'vertical-lr', 'vertical-rl'];

/** Along the lines: {begin, length} in percent. */
function along(record, notes) {
    const align = ALIGNS[record.eTextAlign] ?? 'middle';
    const position = record.u1Position;
    const room = {
        start: MOST_PERCENT - position,
        left: MOST_PERCENT - position,
        middle: 2 * Math.min(position, MOST_PERCENT - position),
        end: position,
        right: position,
    }[align];
    const length = Math.min(record.u1Size, room);
    if (record.u1Size > room) {
        notes.push(
            `the size of ${record.u1Size} % is made ${room} %, which fits at position ${position} %`,
        );
    }
    const shares = { start: 0, left: 0, middle: 0.5, end: 1, right: 1 };
    return { begin: position - shares[align] * length, length };
}

/** Across the lines: an edge to stand at, and the distance from it in percent. */
function across(record, notes) {
    const number = record.i4Line;
    if (!record.fgSnapToLines) {
        return { edge: 'before', distance: Math.min(Math.max(number, 0), MOST_PERCENT) };
    }
    if (number === NO_LINE) {
        notes.push('no line is set (100): it stands at the bottom');
        return { edge: 'after', distance: 0 };
    }
    const isBelow = number >= ROWS || number < -ROWS;
    if (isBelow) {
        notes.push(`line ${number} is outside of the ${ROWS} rows: it stands at the bottom`);
    }
    return number < 0 || isBelow
        ? { edge: 'after', distance: isBelow ? 0 : ((-number - 1) * MOST_PERCENT) / ROWS }
        : { edge: 'before', distance: (number * MOST_PERCENT) / ROWS };
}

/** What the style of a cue's box is to be, and notes on what the record does not say. */
export function place(record) {
    const notes = [];
    const inLine = along(record, notes);
    const { edge, distance } = across(record, notes);
    const mode = MODES[record.eVertical] ?? MODES[0];
    const isVertical = mode !== MODES[0];
    const style = { writingMode: mode, textAlign: TEXT_ALIGNS[record.eTextAlign] ?? 'center' };
    style[isVertical ? 'top' : 'left'] = `${inLine.begin}%`;
    style[isVertical ? 'height' : 'width'] = `${inLine.length}%`;
    const sides = {
        'horizontal-tb': { before: 'top', after: 'bottom' },
        'vertical-lr': { before: 'left', after: 'right' },
        'vertical-rl': { before: 'right', after: 'left' },
    };
    const side = sides[mode][edge];
    style[side] = `${distance}%`;
    if (!(record.dStartTime < record.dEndTime)) {
        notes.push('it does not end after it starts: a player shows nothing');
    }
    return { style, side, isVertical, notes };
}
