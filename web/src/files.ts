// Snapshots from files: what is refused before it is read, and the sample.
import sample from '../../examples/office.json';

export const SIZE_MAX = 8 * 1024 * 1024;
export const DEPTH_MAX = 16;

export function sampleText(): string {
    return JSON.stringify(sample);
}

// Why a file is not even read; null: it may be.
export function refusedBySize(bytes: number): string | null {
    return bytes > SIZE_MAX
        ? `It has ${Math.ceil(bytes / 1024 / 1024)} MB; snapshots up to ${SIZE_MAX / 1024 / 1024} MB are read.`
        : null;
}

// Why a text is not parsed; null: it may be. A snapshot is five levels deep.
export function refusedByDepth(text: string): string | null {
    let depth = 0;
    let inString = false;
    for (let i = 0; i < text.length; ++i) {
        const character = text.charCodeAt(i);
        if (inString) {
            if (character === 0x5c) {
                ++i;
            } else if (character === 0x22) {
                inString = false;
            }
        } else if (character === 0x22) {
            inString = true;
        } else if (character === 0x7b || character === 0x5b) {
            if (++depth > DEPTH_MAX) {
                return `It is nested deeper than ${DEPTH_MAX} levels at character ${i + 1}.`;
            }
        } else if (character === 0x7d || character === 0x5d) {
            --depth;
        }
    }
    return null;
}

// The line that a refusal names ("line 2, column 23"), with a caret below the place; null: it names none.
export function excerpt(text: string, place: string): string | null {
    const found = /line (\d+), column (\d+)/.exec(place);
    if (found === null) {
        return null;
    }
    const line = text.split('\n')[Number(found[1]) - 1] ?? '';
    const column = Math.max(0, Number(found[2]) - 1);
    const from = Math.max(0, column - 60);
    return line.slice(from, column + 40) + '\n' + ' '.repeat(column - from) + '^';
}
