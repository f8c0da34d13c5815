// One record: its values, the bytes of its elements as the device holds them, and which members lie where in them.
import type { Device } from './device';
import { h, openDialog } from './dom';
import { type Cell, type SavedTable, type SchemaColumn, type SchemaTable, shown, type Snapshot } from './protocol';

interface Element {
    id: number;
    size: number;
    members: SchemaColumn[];
}

const BYTES_IN_LINE = 16;
const SHORT = 8; // bytes of an element that is shown in one line

// The columns by element; an element is as large as its farthest member.
function elementsOf(table: SchemaTable): Element[] {
    const elements = new Map<number, Element>();
    for (const column of table.columns) {
        const element = elements.get(column.element) ?? { id: column.element, size: 0, members: [] };
        element.size = Math.max(element.size, column.offset + column.size);
        element.members.push(column);
        elements.set(column.element, element);
    }
    elements.forEach((element) => element.members.sort((a, b) => a.offset - b.offset));
    return [...elements.values()].sort((a, b) => a.id - b.id);
}

function sameCell(a: Cell | undefined, b: Cell | undefined): boolean {
    return JSON.stringify(a) === JSON.stringify(b);
}

// The number of the record with these values, as the snapshot tells it: known by its key, or, without one, by all.
export function recordNumber(saved: SavedTable | undefined, table: SchemaTable, values: Cell[]): number | null {
    const keys = table.columns.some((column) => column.key) ? table.columns.filter((column) => column.key) : table.columns;
    let number = -1;
    for (const record of saved?.records ?? []) {
        number = typeof record['record'] === 'number' ? record['record'] : number + 1;
        const isSame = keys.every((column) => {
            const otherwise = column.type === 'str' ? '' : 0;
            const value = record[column.name] ?? saved?.default?.[column.name] ?? otherwise;
            return sameCell(unsigned(value, column), values[table.columns.indexOf(column)]);
        });
        if (isSame) {
            return number;
        }
    }
    return null;
}

// Snapshots may write a 32-bit number as the negative one of the same bits.
function unsigned(value: Cell, column: SchemaColumn): Cell {
    return typeof value === 'number' && value < 0 && column.type !== 'int' ? value >>> 0 : value;
}

// The device is big-endian: the numbers among the bytes are turned round.
function asOnDevice(bytes: number[], element: Element): number[] {
    const turned = [...bytes];
    for (const member of element.members.filter((one) => one.type !== 'str' && one.size > 1)) {
        const end = member.offset + member.size;
        turned.splice(member.offset, member.size, ...bytes.slice(member.offset, end).reverse());
    }
    return turned;
}

function hex(byte: number): string {
    return byte.toString(16).toUpperCase().padStart(2, '0');
}

function byteLines(bytes: number[]): HTMLElement {
    let end = bytes.length;
    while (end > 1 && bytes[end - 1] === 0) {
        --end;
    }
    const lines: HTMLElement[] = [];
    for (let at = 0; at < end; at += BYTES_IN_LINE) {
        const part = bytes.slice(at, Math.min(at + BYTES_IN_LINE, end));
        const letters = part.map((byte) => (byte >= 0x20 && byte < 0x7f ? String.fromCharCode(byte) : '·')).join('');
        lines.push(
            h(
                'div',
                { class: 'byte-line' },
                h('span', { class: 'at' }, at.toString(16).toUpperCase().padStart(3, '0')),
                h('span', {}, part.map(hex).join(' ').padEnd(BYTES_IN_LINE * 3 - 1)),
                h('span', { class: 'at' }, letters),
            ),
        );
    }
    if (end < bytes.length) {
        lines.push(h('div', { class: 'zero' }, `and ${bytes.length - end} zero bytes`));
    }
    return h('div', { class: 'bytes', tabindex: 0, role: 'group', 'aria-label': 'Bytes' }, ...lines);
}

// Where each member lies in a composite element; members may overlap.
function memberMap(element: Element, valueOf: (column: SchemaColumn) => string): HTMLElement {
    return h(
        'div',
        { class: 'members' },
        ...element.members.map((member) => {
            const bar = h('i');
            bar.style.left = (100 * member.offset) / element.size + '%';
            bar.style.width = (100 * member.size) / element.size + '%';
            const last = member.offset + member.size - 1;
            return h(
                'div',
                { class: 'member' },
                h('span', {}, h('code', {}, member.name), h('span', { class: 'at' }, ` ${member.offset}–${last}`)),
                h('span', { class: 'span', role: 'img', 'aria-label': `${member.name}: bytes ${member.offset} to ${last}` }, bar),
                h('span', { class: 'value' }, valueOf(member)),
            );
        }),
    );
}

function elementNode(element: Element, bytes: number[], valueOf: (column: SchemaColumn) => string): HTMLElement {
    const only = element.members.length === 1 ? element.members[0]! : null;
    const isShort = only !== null && bytes.length > 0 && bytes.length <= SHORT;
    return h(
        'section',
        { class: isShort ? 'element short' : 'element' },
        h(
            'div',
            { class: 'element-head' },
            h('code', {}, h('strong', {}, only?.name ?? 'composite of ' + element.members.length)),
            only?.key === true && h('span', { class: 'tag key' }, 'key'),
            h('span', { class: 'soft small' }, `${only?.type ?? ''} @${element.id.toString(16).toUpperCase()}, ${element.size} B`),
            isShort && h('code', { class: 'inline' }, asOnDevice(bytes, element).map(hex).join(' ')),
            h('span', { class: 'value' }, only === null ? '' : valueOf(only)),
        ),
        only === null && memberMap(element, valueOf),
        !isShort && (bytes.length === 0 ? h('p', { class: 'bytes zero' }, 'not read') : byteLines(asOnDevice(bytes, element))),
    );
}

export async function openRecord(device: Device, database: string, table: SchemaTable, values: Cell[]): Promise<void> {
    const saved = JSON.parse(await device.save()) as Snapshot;
    const number = recordNumber(saved.databases[database]?.[table.name], table, values);
    const elements = elementsOf(table);
    const bytes = number === null ? elements.map(() => []) : await device.elements(table.category, number, elements);
    const valueOf = (column: SchemaColumn) => shown(values[table.columns.indexOf(column)]);
    const name = number === null ? 'A record' : `Record ${number}`;
    openDialog(`${name} of ${table.name}`, () =>
        h(
            'div',
            { class: 'stack' },
            h(
                'p',
                { class: 'soft small' },
                `${database}, category 0x${table.category.toString(16).toUpperCase().padStart(8, '0')}. ` +
                    'The bytes are those of the device, whose numbers begin with their highest byte.',
            ),
            ...elements.map((element, index) => elementNode(element, bytes[index] ?? [], valueOf)),
        ),
    );
}
