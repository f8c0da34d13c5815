// Databases and tables with what is in use of them; a table as a grid, sorted and filtered by the dialect itself.
import type { App, View } from './app';
import { type Device } from './device';
import { button, field, fillBar, h, plural, say } from './dom';
import { Grid, type Sorting } from './grid';
import type { Report, Schema, SchemaTable, Snapshot } from './protocol';
import { openRecord } from './record';
import { complaint } from './said';

interface Chosen {
    database: string;
    table: SchemaTable;
}

export function makeRecords(app: App, device: Device): View {
    const tables = h('nav', { class: 'tables sheet', 'aria-label': 'Tables' });
    const pick = h('select', { 'aria-label': 'Table' });
    const title = h('h2', {}, '');
    const tags = h('span', { class: 'soft small' });
    const condition = h('input', { type: 'text', spellcheck: 'false', autocomplete: 'off', placeholder: 'NAME LIKE \'S%\' AND ID < 50' });
    const said = h('div', { class: 'stack' });
    const sql = h('code', { class: 'sql', tabindex: 0, 'aria-label': 'The statement of this grid' });
    const grid = new Grid({ label: 'Records', sort: sortBy, open: (row) => void openRow(row) });
    let schema: Schema = { databases: [] };
    let chosen: Chosen | null = null;
    let sorting: Sorting | undefined;
    let report: Report | null = null;
    let statement = '';

    const filter = h(
        'form',
        {
            class: 'tools',
            submit: (event: Event) => {
                event.preventDefault();
                void read();
            },
        },
        field('Condition, as in WHERE', condition, true),
        h('button', { type: 'submit' }, 'Filter'),
        button('Clear', () => {
            condition.value = '';
            sorting = undefined;
            void read();
        }),
        h('span', { class: 'space' }),
        button('Open in Ask', () => chosen && app.propose({ database: chosen.database, statement })),
    );
    pick.addEventListener('change', () => {
        const [database = '', table = ''] = pick.value.split('.');
        choose(database, table);
    });

    function textOfStatement(one: Chosen): string {
        const columns = one.table.columns.map((column) => column.name).join(', ');
        const where = condition.value.trim() === '' ? '' : ' WHERE ' + condition.value.trim();
        const order =
            sorting === undefined
                ? ''
                : ` ORDER BY ${one.table.columns[sorting.column]!.name}${sorting.isDescending ? ' DESC' : ''}`;
        return `SELECT ${columns} FROM ${one.table.name}${where}${order}`;
    }

    async function read(): Promise<void> {
        if (chosen === null) {
            return;
        }
        statement = textOfStatement(chosen);
        sql.textContent = statement;
        title.textContent = chosen.table.name;
        tags.textContent = `${plural(chosen.table.in_use, 'record')} in use of ${chosen.table.capacity}`;
        try {
            report = await app.run(device, { database: chosen.database, statement }, { readonly: true });
        } catch {
            return; // stopped, and said so
        }
        grid.node.hidden = !report.ok;
        said.replaceChildren(...complaint(report, statement));
        const columns = report.columns?.map((column) => ({ title: String(column.name), isNumber: column.type === 'number' })) ?? [];
        grid.fill(columns, report.rows ?? [], sorting);
        grid.node.setAttribute('aria-label', `Records of ${chosen.table.name}, ${plural(report.rows?.length ?? 0, 'row')}`);
        if (report.ok && report.rows?.length === 0) {
            said.append(h('p', { class: 'empty' }, chosen.table.in_use === 0 ? emptySentence(chosen.table) : 'No record meets the condition.'));
            grid.node.hidden = true;
        }
    }

    function sortBy(column: number): void {
        if (sorting?.column !== column) {
            sorting = { column, isDescending: false };
        } else {
            sorting = sorting.isDescending ? undefined : { column, isDescending: true };
        }
        void read().then(() => say(sortSentence()));
    }

    function sortSentence(): string {
        const name = sorting === undefined ? '' : chosen!.table.columns[sorting.column]!.name;
        return sorting === undefined ? 'In stored order.' : `Sorted by ${name}, ${sorting.isDescending ? 'descending' : 'ascending'}.`;
    }

    async function openRow(row: number): Promise<void> {
        const values = report?.rows?.[row];
        if (chosen !== null && values !== undefined) {
            await openRecord(device, chosen.database, chosen.table, values);
        }
    }

    function choose(database: string, name: string): void {
        const table = schema.databases.find((one) => one.name === database)?.tables.find((one) => one.name === name);
        if (table === undefined) {
            return;
        }
        if (chosen?.table.name !== name || chosen.database !== database) {
            condition.value = '';
            sorting = undefined;
        }
        chosen = { database, table };
        mark();
        void read();
    }

    function mark(): void {
        const name = chosen === null ? '' : chosen.database + '.' + chosen.table.name;
        for (const entry of tables.querySelectorAll<HTMLElement>('.table')) {
            if (entry.dataset['name'] === name) {
                entry.setAttribute('aria-current', 'true');
            } else {
                entry.removeAttribute('aria-current');
            }
        }
        pick.value = name;
    }

    function entry(database: string, table: SchemaTable): HTMLElement {
        return h(
            'button',
            {
                type: 'button',
                class: table.in_use === 0 ? 'table none' : 'table',
                'data-name': database + '.' + table.name,
                title: `${plural(table.in_use, 'record')} of ${table.capacity}`,
                click: () => choose(database, table.name),
            },
            h('span', { class: 'name' }, table.name),
            h('span', { class: 'used' }, `${table.in_use} / ${table.capacity}`),
            usedBar(table),
        );
    }

    async function show(): Promise<void> {
        schema = await device.schema();
        tables.replaceChildren(
            ...schema.databases.flatMap(({ name, tables: list }) => [
                h('h2', {}, name),
                ...list.map((table) => entry(name, table)),
            ]),
        );
        pick.replaceChildren(
            ...schema.databases.map(({ name, tables: list }) =>
                h(
                    'optgroup',
                    { label: name },
                    ...list.map((table) =>
                        h('option', { value: `${name}.${table.name}` }, `${table.name}  ${table.in_use} / ${table.capacity}`),
                    ),
                ),
            ),
        );
        const first = chosen ?? fullest(schema, JSON.parse(await device.save()) as Snapshot);
        if (first !== null) {
            choose(first.database, first.table.name);
        }
    }

    const right = h(
        'section',
        { class: 'stack', 'aria-label': 'Table' },
        h('div', { class: 'tools' }, title, tags),
        filter,
        said,
        grid.node,
        sql,
    );
    return { node: h('div', { class: 'split' }, tables, h('div', { class: 'pick' }, pick), right), show };
}

// How full a table is; a full one takes no more records.
function usedBar(table: SchemaTable): HTMLElement {
    const bar = fillBar(table.in_use, table.capacity);
    bar.classList.add('used-bar');
    return bar;
}

function emptySentence(table: SchemaTable): string {
    return table.capacity === 0
        ? 'The device has no room for records of this table.'
        : `No record is in use; there is room for ${table.capacity}.`;
}

// The table that the snapshot has the most records of. What is in use does not tell: a table without a key has all of
// its records in use.
function fullest(schema: Schema, snapshot: Snapshot): Chosen | null {
    const savedOf = (one: Chosen) => snapshot.databases[one.database]?.[one.table.name]?.records?.length ?? 0;
    const all = schema.databases.flatMap(({ name, tables }) => tables.map((table) => ({ database: name, table })));
    return [...all].sort((a, b) => savedOf(b) - savedOf(a))[0] ?? null;
}
