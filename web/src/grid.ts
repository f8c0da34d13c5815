// A grid of any number of rows, of which only those in sight are in the page. Keyboard: the arrows move, Home and End
// go along a row, Page Up and Down by screens, with Ctrl to the ends, Enter sorts by a heading or opens a row.
import { h } from './dom';
import { type Cell, shown } from './protocol';

export interface GridColumn {
    title: string;
    isNumber: boolean;
}
export interface Sorting {
    column: number;
    isDescending: boolean;
}
interface Wishes {
    label: string;
    sort?: (column: number) => void;
    open?: (row: number) => void;
}

const ROW = 28;
const CHARACTER = 7.6;
const BEYOND = 6; // rows that are drawn above and below what is in sight
const SHOWN_MAX = 400; // characters of a cell
let grids = 0;

export class Grid {
    readonly node: HTMLElement;
    private readonly head = h('div', { class: 'head', role: 'row', 'aria-rowindex': 1 });
    private readonly body = h('div', { class: 'body', role: 'rowgroup' });
    private readonly name = 'grid' + ++grids;
    private columns: GridColumn[] = [];
    private rows: Cell[][] = [];
    private widths: number[] = [];
    private drawn = new Map<number, HTMLElement>();
    private row = 0; // the active cell; -1 is the heading
    private column = 0;

    constructor(private readonly wishes: Wishes) {
        const classes = ['grid', wishes.sort ? 'sorts' : '', wishes.open ? 'opens' : ''].join(' ');
        this.node = h(
            'div',
            { class: classes, role: 'grid', tabindex: 0, 'aria-label': wishes.label, 'aria-readonly': 'true' },
            h('div', { role: 'rowgroup', class: 'head-group' }, this.head),
            this.body,
        );
        this.node.addEventListener('scroll', () => this.draw());
        this.node.addEventListener('keydown', (event) => this.press(event));
        this.node.addEventListener('click', (event) => this.click(event));
        this.node.addEventListener('focus', () => this.mark());
    }

    fill(columns: GridColumn[], rows: Cell[][], sorting?: Sorting): void {
        this.columns = columns;
        this.rows = rows;
        this.widths = columns.map((column, index) => this.widthOf(column, index));
        this.row = Math.min(this.row, rows.length - 1);
        this.column = Math.min(this.column, Math.max(0, columns.length - 1));
        this.node.setAttribute('aria-rowcount', String(rows.length + 1));
        this.node.setAttribute('aria-colcount', String(columns.length));
        this.head.replaceChildren(...columns.map((column, index) => this.heading(column, index, sorting)));
        this.body.style.height = rows.length * ROW + 'px';
        this.body.style.width = this.widths.reduce((sum, width) => sum + width, 0) + 'px';
        this.node.style.height = rows.length * ROW + ROW + 18 + 'px';
        this.drawn.forEach((line) => line.remove());
        this.drawn.clear();
        this.draw();
        requestAnimationFrame(() => this.draw());
    }

    private widthOf(column: GridColumn, index: number): number {
        const longest = this.rows.slice(0, 200).reduce((most, row) => Math.max(most, widthOfText(shown(row[index]))), 0);
        return Math.round(Math.min(38, Math.max(column.title.length + 3, longest + 1, 5)) * CHARACTER) + 20;
    }

    private heading(column: GridColumn, index: number, sorting?: Sorting): HTMLElement {
        const isSorted = sorting?.column === index;
        const cell = h(
            'div',
            {
                role: 'columnheader',
                id: `${this.name}--1-${index}`,
                class: column.isNumber ? 'number' : '',
                'aria-colindex': index + 1,
                'aria-sort': isSorted ? (sorting.isDescending ? 'descending' : 'ascending') : null,
                'data-row': -1,
                'data-column': index,
                title: column.title,
            },
            column.title,
        );
        cell.style.width = this.widths[index] + 'px';
        return cell;
    }

    private draw(): void {
        const first = Math.max(0, Math.floor(this.node.scrollTop / ROW) - BEYOND);
        const height = this.node.clientHeight || 600;
        const last = Math.min(this.rows.length, Math.ceil((this.node.scrollTop + height) / ROW) + BEYOND);
        for (const [row, line] of this.drawn) {
            if (row < first || row >= last) {
                line.remove();
                this.drawn.delete(row);
            }
        }
        for (let row = first; row < last; ++row) {
            if (!this.drawn.has(row)) {
                const line = this.line(row);
                this.drawn.set(row, line);
                this.body.append(line);
            }
        }
    }

    private line(row: number): HTMLElement {
        const line = h(
            'div',
            { class: row % 2 ? 'line odd' : 'line', role: 'row', 'aria-rowindex': row + 2 },
            ...this.rows[row]!.map((value, index) => {
                const text = shown(value);
                const cell = h(
                    'div',
                    {
                        role: 'gridcell',
                        id: `${this.name}-${row}-${index}`,
                        class: this.columns[index]?.isNumber ? 'number' : '',
                        'aria-colindex': index + 1,
                        'data-row': row,
                        'data-column': index,
                    },
                    text.length > SHOWN_MAX ? text.slice(0, SHOWN_MAX) + '…' : text,
                );
                cell.style.width = this.widths[index] + 'px';
                return cell;
            }),
        );
        line.style.top = row * ROW + 'px';
        return line;
    }

    private click(event: MouseEvent): void {
        const cell = (event.target as Element).closest<HTMLElement>('[data-row]');
        if (cell !== null) {
            this.go(Number(cell.dataset['row']), Number(cell.dataset['column']));
            this.act();
        }
    }

    private act(): void {
        if (this.row < 0) {
            this.wishes.sort?.(this.column);
        } else if (this.row < this.rows.length) {
            this.wishes.open?.(this.row);
        }
    }

    private press(event: KeyboardEvent): void {
        const screen = Math.max(1, Math.floor(this.node.clientHeight / ROW) - 2);
        const lowest = this.wishes.sort ? -1 : 0;
        const last = this.rows.length - 1;
        const goals: Record<string, [number, number]> = {
            ArrowDown: [this.row + 1, this.column],
            ArrowUp: [this.row - 1, this.column],
            ArrowRight: [this.row, this.column + 1],
            ArrowLeft: [this.row, this.column - 1],
            PageDown: [this.row + screen, this.column],
            PageUp: [this.row - screen, this.column],
            Home: [event.ctrlKey ? lowest : this.row, 0],
            End: [event.ctrlKey ? last : this.row, this.columns.length - 1],
        };
        const goal = goals[event.key];
        if (event.key === 'Enter') {
            this.act();
        } else if (goal === undefined) {
            return;
        } else {
            this.go(Math.max(lowest, Math.min(last, goal[0])), Math.max(0, Math.min(this.columns.length - 1, goal[1])));
        }
        event.preventDefault();
    }

    private go(row: number, column: number): void {
        this.row = row;
        this.column = column;
        this.reveal();
        this.draw();
        this.mark();
    }

    // Scrolls no farther than it must for the active cell to be in sight.
    private reveal(): void {
        const top = this.row * ROW;
        if (this.row >= 0 && top < this.node.scrollTop) {
            this.node.scrollTop = top;
        } else if (top + 2 * ROW + 18 > this.node.scrollTop + this.node.clientHeight) {
            this.node.scrollTop = top + 2 * ROW + 18 - this.node.clientHeight;
        }
        const left = this.widths.slice(0, this.column).reduce((sum, width) => sum + width, 0);
        const right = left + (this.widths[this.column] ?? 0);
        if (left < this.node.scrollLeft) {
            this.node.scrollLeft = left;
        } else if (right > this.node.scrollLeft + this.node.clientWidth) {
            this.node.scrollLeft = right - this.node.clientWidth;
        }
    }

    private mark(): void {
        this.node.querySelector('.active')?.classList.remove('active');
        const id = `${this.name}-${this.row}-${this.column}`;
        const cell = this.node.querySelector('#' + CSS.escape(id));
        cell?.classList.add('active');
        if (cell) {
            this.node.setAttribute('aria-activedescendant', id);
        } else {
            this.node.removeAttribute('aria-activedescendant');
        }
    }
}

// A text's width in characters: those from Hangul on take two.
function widthOfText(text: string): number {
    let width = 0;
    for (const character of text.slice(0, 60)) {
        width += character.codePointAt(0)! >= 0x1100 ? 2 : 1;
    }
    return width;
}
