// Notes and refusals as sentences with the place below the statement.
import { h } from './dom';
import { characterAt, type Place, type Report, shown } from './protocol';

// Characters that are shown on either side of a place, by what the screen holds.
function around(): number {
    return document.documentElement.clientWidth < 760 ? 18 : 60;
}

// The statement's line around a place, and carets below what is meant. Wide characters take two columns.
export function caretLines(statement: string, place: Place): HTMLElement {
    const text = statement.replace(/\s/g, ' ');
    const from = characterAt(text, place.from);
    const to = Math.max(from + 1, characterAt(text, place.to));
    const reach = around();
    const start = Math.max(0, from - reach);
    const before = text.slice(start, from);
    const marked = text.slice(from, to);
    return h(
        'pre',
        {},
        text.slice(start, Math.min(to, from + reach) + reach) + '\n' + ' '.repeat(columns(before)),
        h('span', { class: 'caret' }, '^'.repeat(Math.max(1, Math.min(columns(marked), reach)))),
    );
}

function columns(text: string): number {
    let width = 0;
    for (const character of text) {
        width += character.codePointAt(0)! >= 0x1100 ? 2 : 1;
    }
    return width;
}

export function placeNode(kind: 'bad' | 'warn', word: string, place: Place, statement: string): HTMLElement {
    const hint = shown(place.hint);
    return h(
        'div',
        { class: 'said ' + kind },
        h('strong', {}, `${word}: ${shown(place.text)}`),
        hint !== '' && h('p', {}, hint),
        caretLines(statement, place),
    );
}

// What is to be said of a statement: its refusal, its notes, or its code.
export function complaint(report: Report, statement: string): HTMLElement[] {
    const said = report.notes.map((note) => placeNode('warn', 'Note', note, statement));
    if (report.refusal !== null) {
        said.unshift(placeNode('bad', 'Refused', report.refusal, statement));
    } else if (!report.ok && report.code !== 0) {
        said.unshift(h('div', { class: 'said bad' }, h('strong', {}, report.name), report.text));
    }
    return said;
}
