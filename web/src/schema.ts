// A picture of a database: its tables with their keys, and through which columns they join.
import type { App, View } from './app';
import type { Device } from './device';
import { button, field, h, select, svg } from './dom';
import type { Schema, SchemaTable } from './protocol';

interface Meeting {
    column: string;
    tables: string[];
}

const LINE = 18;
const SHOWN_COLUMNS = 3; // beside those that join

// Columns that are part of a key somewhere and stand in several tables: what tables are joined by.
export function meetings(tables: SchemaTable[]): Meeting[] {
    const keys = new Set(tables.flatMap((table) => table.columns.filter((column) => column.key).map((column) => column.name)));
    return [...keys]
        .map((column) => ({
            column,
            tables: tables.filter((table) => table.columns.some((one) => one.name === column)).map((table) => table.name),
        }))
        .filter((meeting) => meeting.tables.length > 1);
}

function columnLines(table: SchemaTable, joining: Set<string>): { text: string; isKey: boolean; joins: string | null }[] {
    const first = table.columns.filter((column) => column.key || joining.has(column.name));
    const others = table.columns.filter((column) => !first.includes(column));
    const lines = [...first, ...others.slice(0, SHOWN_COLUMNS)].map((column) => ({
        text: `${column.name} ${column.type}${column.type === 'str' ? ` ${column.size}` : ''}`,
        isKey: column.key,
        joins: joining.has(column.name) ? column.name : null,
    }));
    const left = others.length - SHOWN_COLUMNS;
    return left > 0 ? [...lines, { text: `and ${left} more`, isKey: false, joins: null }] : lines;
}

const BOX = 220;
const WIDE = 620; // from here on tables stand on both sides

interface End {
    x: number;
    y: number;
}

function box(table: SchemaTable, joining: Set<string>, x: number, y: number, width: number, ends: Map<string, End[]>, isLeft: boolean) {
    const lines = columnLines(table, joining);
    const height = LINE * (lines.length + 1) + 8;
    const parts = [
        svg('rect', { class: 'box', x, y, width, height, rx: 5 }),
        svg('rect', { class: 'box-head', x: x + 1, y: y + 1, width: width - 2, height: LINE + 2, rx: 4 }),
        svg('text', { class: 'title', x: x + 9, y: y + 15 }, table.name),
        svg('text', { class: 'soft', x: x + width - 8, y: y + 15, 'text-anchor': 'end' }, String(table.capacity)),
    ];
    lines.forEach((line, index) => {
        const at = y + LINE * (index + 2);
        parts.push(svg('text', { class: line.isKey ? 'title' : 'soft', x: x + 9, y: at + 1 }, (line.isKey ? '• ' : '  ') + line.text));
        if (line.joins !== null) {
            const end = { x: isLeft ? x + width : x, y: at - 3 };
            ends.set(line.joins, [...(ends.get(line.joins) ?? []), end]);
        }
    });
    return { parts, height };
}

function picture(tables: SchemaTable[], width: number): SVGElement {
    const found = meetings(tables);
    const joining = new Set(found.map((one) => one.column));
    const isWide = width >= WIDE;
    const boxWidth = isWide ? BOX : Math.min(BOX, width * 0.6);
    const parts: SVGElement[] = [];
    const ends = new Map<string, End[]>();
    const y = [2, 2]; // where the next table goes, left and right
    for (const table of tables) {
        const side = isWide && y[1]! < y[0]! ? 1 : 0;
        const drawn = box(table, joining, side === 0 ? 1 : width - boxWidth - 1, y[side]!, boxWidth, ends, side === 0);
        parts.push(...drawn.parts);
        y[side]! += drawn.height + 10;
    }
    const hubX = isWide ? width / 2 : boxWidth + (width - boxWidth) * 0.3;
    const hubs = spread(found.map((meeting) => middleOf(ends.get(meeting.column) ?? [])));
    found.forEach((meeting, index) => parts.unshift(...hub(meeting, ends.get(meeting.column) ?? [], hubX, hubs[index]!, isWide)));
    const height = Math.max(...y);
    return svg('svg', { class: 'schema', viewBox: `0 0 ${width} ${height}`, width, height, role: 'img', 'aria-label': describe(tables, found) }, ...parts);
}

function middleOf(ends: End[]): number {
    return ends.reduce((sum, end) => sum + end.y, 0) / Math.max(1, ends.length);
}

// Keeps meeting points apart.
function spread(places: number[]): number[] {
    let last = -Infinity;
    const order = places.map((place, index) => ({ place, index })).sort((a, b) => a.place - b.place);
    const moved = [...places];
    for (const { place, index } of order) {
        last = Math.max(place, last + 34);
        moved[index] = last;
    }
    return moved;
}

function hub(meeting: Meeting, ends: End[], x: number, y: number, isWide: boolean): SVGElement[] {
    const wires = ends.map((end) =>
        svg('path', { class: 'wire', d: `M ${end.x} ${end.y} C ${(end.x + x) / 2} ${end.y}, ${(end.x + x) / 2} ${y}, ${x} ${y}` }),
    );
    return [
        ...wires,
        svg('circle', { class: 'hub', cx: x, cy: y, r: 6 }),
        svg('text', { class: 'title name', x: isWide ? x : x + 10, y: isWide ? y - 11 : y + 4, 'text-anchor': isWide ? 'middle' : 'start' }, meeting.column),
    ];
}

function describe(tables: SchemaTable[], found: Meeting[]): string {
    const joins = found.map((one) => `${one.column} joins ${one.tables.join(', ')}`).join('; ');
    return `${tables.length} tables. ${joins === '' ? 'None of them join by a key.' : joins}`;
}

function joinStatement(meeting: Meeting, tables: SchemaTable[]): string {
    const [a = '', b = ''] = meeting.tables;
    const other = (name: string) =>
        tables.find((table) => table.name === name)?.columns.find((column) => column.name !== meeting.column)?.name ?? meeting.column;
    return `SELECT ${a}.${meeting.column}, ${a}.${other(a)}, ${b}.${other(b)} FROM ${a}, ${b} WHERE ${a}.${meeting.column} = ${b}.${meeting.column}`;
}

export function makeSchema(app: App, device: Device): View {
    const place = h('div', { class: 'sheet scroll', tabindex: 0, role: 'group', 'aria-label': 'Picture of the database' });
    const list = h('div', { class: 'sheet stack' });
    const bar = h('div', { class: 'tools' });
    let schema: Schema = { databases: [] };
    let database = '';

    function draw(): void {
        const tables = schema.databases.find((one) => one.name === database)?.tables ?? [];
        place.replaceChildren(picture(tables, Math.max(310, Math.min(860, place.clientWidth - 28))));
        const found = meetings(tables);
        list.replaceChildren(
            h('h2', {}, 'What joins with what'),
            ...(found.length === 0
                ? [h('p', { class: 'soft' }, 'No column of a key stands in several tables here.')]
                : found.map((meeting) =>
                      h(
                          'p',
                          {},
                          h('code', {}, meeting.column),
                          h('span', { class: 'soft' }, ' joins '),
                          meeting.tables.join(', ') + ' ',
                          button(`Ask for a join by ${meeting.column}`, () => app.propose({ database, statement: joinStatement(meeting, tables) }), {
                              class: 'link',
                          }),
                      ),
                  )),
            h('p', { class: 'soft small' }, 'A dot marks a column of the key; the number in a heading is the table’s capacity.'),
        );
    }

    return {
        node: h('div', { class: 'stack' }, bar, place, list),
        async show() {
            schema = await device.schema();
            const names = schema.databases.map((one) => one.name);
            database = database === '' ? (names[0] ?? '') : database;
            bar.replaceChildren(
                field('Database', select(names, database, (name) => {
                    database = name;
                    draw();
                })),
            );
            draw();
        },
    };
}
