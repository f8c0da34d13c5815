// Two devices compared: the tables that differ, and in them record by record what differs.
import type { App, View } from './app';
import type { Device } from './device';
import { field, h, plural, say, select } from './dom';
import { type Cell, type Change, type Difference, shown } from './protocol';

const ROWS_MAX = 1000; // of one table, shown at once

function keyText(key: Change['key']): string {
    return typeof key === 'string'
        ? key
        : Object.entries(key).map(([name, value]) => `${name} ${shown(value)}`).join(', ');
}

function recordText(record: Change['a']): string {
    return Object.entries(record as Record<string, Cell>)
        .filter(([, value]) => value !== 0 && value !== '')
        .map(([name, value]) => `${name} ${shown(value)}`)
        .join(', ');
}

function changeRow(change: Change, a: string, b: string): HTMLElement {
    const key = h('th', { scope: 'row' }, keyText(change.key));
    if (change.column === null) {
        const [only, mark, record] = change.b === null ? [a, 'del', change.a] : [b, 'ins', change.b];
        return h(
            'tr',
            {},
            key,
            h('td', { class: 'soft' }, 'only in ' + only),
            h('td', { colspan: 2 }, h(mark as 'del' | 'ins', {}, recordText(record))),
        );
    }
    return h(
        'tr',
        {},
        key,
        h('td', {}, h('code', {}, change.column)),
        h('td', {}, h('del', {}, shown(change.a as Cell) || '(empty)')),
        h('td', {}, h('ins', {}, shown(change.b as Cell) || '(empty)')),
    );
}

export function changesNode(difference: Difference, a: string, b: string): HTMLElement {
    if (difference.equal) {
        return h('p', { class: 'said good' }, 'Nothing: the records are the same.');
    }
    return h(
        'div',
        { class: 'stack' },
        difference.text !== undefined && h('p', { class: 'said bad' }, shown(difference.text)),
        ...difference.tables.map((table) =>
            h(
                'section',
                { class: 'sheet stack', 'aria-label': table.table },
                h(
                    'div',
                    { class: 'tools' },
                    h('h3', {}, table.table),
                    h('span', { class: 'soft small' }, table.database),
                    h('span', { class: 'tag warn' }, plural(table.changes.length, 'difference')),
                ),
                h(
                    'table',
                    { class: 'plain' },
                    h('thead', {}, h('tr', {}, ...['Record', 'Column', a, b].map((one) => h('th', { scope: 'col' }, one)))),
                    h('tbody', {}, ...table.changes.slice(0, ROWS_MAX).map((change) => changeRow(change, a, b))),
                ),
                table.changes.length > ROWS_MAX && h('p', { class: 'soft' }, `and ${plural(table.changes.length - ROWS_MAX, 'more difference')}`),
            ),
        ),
    );
}

export function makeCompare(app: App, device: Device): View {
    const bar = h('div', { class: 'tools' });
    const result = h('div', { class: 'stack' });
    let other: Device | undefined;

    async function compare(): Promise<void> {
        if (other === undefined) {
            return;
        }
        const difference = await device.difference(await device.save(), await other.save());
        result.replaceChildren(changesNode(difference, device.name, other.name));
        const number = difference.tables.reduce((sum, table) => sum + table.changes.length, 0);
        say(difference.equal ? 'The records are the same.' : `${plural(number, 'difference')} in ${plural(difference.tables.length, 'table')}.`);
    }

    return {
        node: h('div', { class: 'stack' }, bar, result),
        async show() {
            const others = app.devices.filter((one) => one !== device);
            if (others.length === 0) {
                bar.replaceChildren(h('p', { class: 'said' }, 'Open a second device to compare this one with.'));
                result.replaceChildren();
                return;
            }
            other = others.includes(other!) ? other : others[0];
            bar.replaceChildren(
                h('h2', {}, device.name),
                field('compared with', select(others.map((one) => one.name), other!.name, (name) => {
                    other = others.find((one) => one.name === name);
                    void compare();
                })),
            );
            await compare();
        },
    };
}
