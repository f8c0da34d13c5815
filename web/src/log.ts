// Logs explained: each known trace line gets its cause, unknown ones stay; grouped by statement, filtered.
import type { App, View } from './app';
import type { Device } from './device';
import { button, code16, field, h, plural, say, select } from './dom';
import { type Schema, shown, type TraceMeaning } from './protocol';

interface Line {
    text: string;
    meaning: TraceMeaning;
}
interface Group {
    lines: Line[];
    tables: string[];
}

const ALL = 'all';
const STATEMENT = /\b(SELECT|INSERT|UPDATE|DELETE|DROP|CREATE) /;
const GROUPS_MAX = 500; // shown at once
const EXAMPLE = `SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = 'a AND b'
trim_single_q_str():[Return]:(2512) (0x0000DB00)
divide_operate():[Return]:(1408) (0x0000DB00)
set_filter_str():[Return]:(1561) (0x0000DB00)
analyze_sql_select():[Return]:(213) (0x0000DB00)
qry_lib_db_wrapper_exec_query():[Return]:(127) (0x0000DB00)`;

// The exported functions and their wrappers trace last: with one of theirs a statement's lines end.
function isOutermost(meaning: TraceMeaning): boolean {
    return /^(qry_lib_db_|dsql_|qry_lib_tb_)/.test(shown(meaning.function));
}

// A trace line, known or not, has a function's name.
function isTrace(meaning: TraceMeaning): boolean {
    return shown(meaning.function) !== '';
}

export function groupLines(lines: Line[], tables: string[]): Group[] {
    const groups: Group[] = [];
    let open: Line[] = [];
    const close = () => {
        if (open.length > 0) {
            const text = open.map((line) => line.text).join('\n');
            groups.push({ lines: open, tables: tables.filter((table) => new RegExp(`\\b${table}\\b`).test(text)) });
            open = [];
        }
    };
    for (const line of lines) {
        if (!isTrace(line.meaning) && STATEMENT.test(line.text)) {
            close();
        }
        open.push(line);
        if (isTrace(line.meaning) && isOutermost(line.meaning)) {
            close();
        }
    }
    close();
    return groups;
}

export function makeLog(_app: App, device: Device): View {
    const text = h('textarea', { rows: 7, spellcheck: 'false', placeholder: EXAMPLE });
    const filters = h('div', { class: 'tools' });
    const shownGroups = h('div', { class: 'log' });
    let groups: Group[] = [];
    let schema: Schema = { databases: [] };
    const chosen = { function: ALL, code: ALL, table: ALL };

    async function explain(): Promise<void> {
        const lines = text.value.split(/\r?\n/).filter((line) => line.trim() !== '');
        const meanings = await device.traces(lines);
        const tables = [...new Set(schema.databases.flatMap((one) => one.tables.map((table) => table.name)))];
        groups = groupLines(lines.map((line, index) => ({ text: line, meaning: meanings[index]! })), tables);
        Object.assign(chosen, { function: ALL, code: ALL, table: ALL });
        drawFilters();
        draw();
        const known = meanings.filter((one) => one.known).length;
        say(`${plural(lines.length, 'line')} in ${plural(groups.length, 'group')}, ${known} explained.`);
    }

    function codeOf(line: Line): string {
        return line.meaning.code === null ? '' : code16(line.meaning.code);
    }

    function drawFilters(): void {
        const lines = groups.flatMap((group) => group.lines).filter((line) => isTrace(line.meaning));
        const values = (of: (line: Line) => string) => [ALL, ...[...new Set(lines.map(of))].filter((one) => one !== '').sort()];
        const filter = (label: string, name: keyof typeof chosen, options: string[]) =>
            field(label, select(options, chosen[name], (value) => {
                chosen[name] = value;
                draw();
            }));
        filters.replaceChildren(
            filter('Function', 'function', values((line) => shown(line.meaning.function))),
            filter('Code', 'code', values(codeOf)),
            filter('Table', 'table', [ALL, ...[...new Set(groups.flatMap((group) => group.tables))].sort()]),
        );
    }

    function isWanted(group: Group): boolean {
        const fits = (wanted: string, has: (line: Line) => string) => wanted === ALL || group.lines.some((line) => has(line) === wanted);
        return (
            fits(chosen.function, (line) => shown(line.meaning.function)) &&
            fits(chosen.code, codeOf) &&
            (chosen.table === ALL || group.tables.includes(chosen.table))
        );
    }

    function draw(): void {
        const wanted = groups.filter(isWanted);
        shownGroups.replaceChildren(...wanted.slice(0, GROUPS_MAX).map(groupNode));
        if (wanted.length > GROUPS_MAX) {
            shownGroups.append(h('p', { class: 'soft' }, `and ${plural(wanted.length - GROUPS_MAX, 'more group')}: filter to see them`));
        }
        say(plural(wanted.length, 'group') + ' shown.');
    }

    const node = h(
        'div',
        { class: 'stack' },
        field('Trace lines, or a whole log', text),
        h(
            'div',
            { class: 'tools' },
            button('Explain', () => void explain(), { class: 'first' }),
            button('Example', () => {
                text.value = EXAMPLE;
                void explain();
            }),
            h('span', { class: 'space' }),
            filters,
        ),
        shownGroups,
    );
    return {
        node,
        async show() {
            schema = await device.schema();
        },
    };
}

function groupNode(group: Group, index: number): HTMLElement {
    const last = [...group.lines].reverse().find((line) => line.meaning.code !== null);
    const code = last?.meaning.code ?? 0;
    return h(
        'section',
        { class: 'log-group', 'aria-label': `Group ${index + 1}` },
        h(
            'header',
            {},
            h('strong', {}, last === undefined ? 'No trace' : shown(last.meaning.function) + '()'),
            last !== undefined && h('span', { class: code === 0 ? 'tag good' : 'tag bad' }, code16(code)),
            ...group.tables.map((table) => h('span', { class: 'tag key' }, table)),
        ),
        ...group.lines.map((line) =>
            h(
                'div',
                { class: isTrace(line.meaning) ? 'log-line' : 'log-line unknown' },
                h('code', {}, line.text),
                h('span', {}, shown(line.meaning.cause)),
            ),
        ),
    );
}
