// The way of a statement through the library as a picture: read, searched key by key, sorted, joined, answered; of a
// refused one up to the place that refused.
import { findTable, outcome, type Question } from './app';
import type { Device } from './device';
import { code16, fillBar, h, plural } from './dom';
import { type Condition, type Explanation, type Report, shown } from './protocol';
import { caretLines } from './said';

interface Station {
    what: string;
    detail?: Node | string;
    count?: string;
    part?: [number, number]; // a bar: so many of so many
    kind?: 'stopped' | 'unreached' | 'end';
}

function station({ what, detail, count, part, kind }: Station): HTMLElement {
    return h(
        'li',
        { class: 'station ' + (kind ?? '') },
        h('div', { class: 'top' }, h('span', { class: 'what' }, what), count !== undefined && h('span', { class: 'count soft' }, count)),
        detail !== undefined && h('div', {}, detail),
        part !== undefined && fillBar(part[0], part[1]),
    );
}

// A condition as the dialect writes it, without the table before its column: a count asks one table alone.
function conditionText(condition: Condition): string {
    const column = shown(condition.column).replace(/^.*\./, '');
    const value = shown(condition.value);
    const written = condition.operation === 'LIKE' ? value + '%' : value;
    return `${column} ${condition.operation} ${condition.quoted ? `'${written}'` : written}`;
}

// How many records are left after each of a table's conditions: the library counts them itself.
async function countsLeft(device: Device, database: string, table: string, conditions: Condition[]): Promise<(number | null)[]> {
    const counts: (number | null)[] = [];
    let text = '';
    for (const condition of conditions) {
        text += (text === '' ? '' : ` ${condition.join} `) + conditionText(condition);
        const report = await device.run(database, `SELECT COUNT(*) FROM ${table} WHERE ${text}`, { readonly: true });
        const value = report.rows?.[0]?.[0];
        counts.push(typeof value === 'number' ? value : null);
    }
    return counts;
}

// A key behind AND visits what the one before it left, one behind OR what none before it took.
function visitsOf(conditions: Condition[], counts: (number | null)[], inUse: number): number[] {
    return conditions.map((condition, index) => {
        const before = index === 0 ? null : (counts[index - 1] ?? 0);
        if (before === null) {
            return inUse;
        }
        return condition.join === 'OR' ? inUse - before : before;
    });
}

function isLink(condition: Condition, explained: Explanation): boolean {
    return explained.tables.length > 1 && explained.tables.some((table) => shown(condition.value).startsWith(shown(table) + '.'));
}

function belongsTo(condition: Condition, table: string, explained: Explanation): boolean {
    return explained.tables.length === 1 || (shown(condition.column).startsWith(table + '.') && !isLink(condition, explained));
}

// The search of one table, measured.
interface Search {
    table: string;
    capacity: number;
    inUse: number;
    conditions: Condition[];
    counts: (number | null)[];
}
export interface MeasuredWay {
    explained: Explanation;
    searches: Search[];
}

// What a statement searches, with the records as they are now.
export async function measureWay(device: Device, question: Question): Promise<MeasuredWay> {
    const explained = await device.explain(question.database, question.statement);
    const schema = await device.schema();
    const searches: Search[] = [];
    const tables = explained.ok && !['insert', 'create'].includes(explained.kind) ? explained.tables.map(shown) : [];
    for (const table of tables) {
        const known = findTable(schema, question.database, table);
        const conditions = explained.conditions.filter((one) => belongsTo(one, table, explained));
        const counts = await countsLeft(device, question.database, table, conditions);
        searches.push({ table, capacity: known?.capacity ?? 0, inUse: known?.in_use ?? 0, conditions, counts });
    }
    return { explained, searches };
}

// The stations of one table's search: every record is visited once for each key.
function searchOf({ table, capacity, inUse, conditions, counts }: Search, explained: Explanation): HTMLElement {
    const keys = explained.keys.filter((one) => shown(one.table) === table).map((one) => shown(one.key));
    const ownKeys = keys.slice(0, Math.max(0, keys.length - conditions.length));
    const visits = visitsOf(conditions, counts, inUse);
    const stations = [
        station({ what: table, count: plural(capacity, 'record'), part: [capacity, capacity] }),
        station({
            what: 'In use',
            detail: ownKeys.length > 0 ? h('code', {}, ownKeys.join(' ')) : 'without a key to tell by, every record is',
            count: ownKeys.length > 0 ? `${capacity} visited, ${inUse} left` : `${inUse}`,
            part: [inUse, capacity],
        }),
        ...conditions.map((condition, index) =>
            station({
                what: `Key ${index + 1}`,
                detail: h('code', {}, keys[ownKeys.length + index] ?? conditionText(condition)),
                count: counts[index] === null ? '' : `${visits[index]} visited, ${counts[index]} left`,
                part: [counts[index] ?? 0, capacity],
            }),
        ),
    ];
    return h('ol', { class: 'lane', 'aria-label': 'Search of ' + table }, ...stations);
}

const VERBS: Record<string, string> = {
    count: 'Counted', insert: 'Written', update: 'Written', delete: 'Deleted', drop: 'Deleted', create: 'Nothing is done',
};

function wayOfAccepted(question: Question, report: Report, measured: MeasuredWay): HTMLElement[] {
    const { explained } = measured;
    const tables = explained.tables.map(shown);
    const searches = measured.searches.map((search) => searchOf(search, explained));
    const parts: HTMLElement[] = [
        station({ what: 'Read', detail: `${explained.kind.toUpperCase()} on ${tables.join(', ') || 'nothing'}` }),
    ];
    if (searches.length === 1) {
        parts.push(...([...searches[0]!.children] as HTMLElement[]));
    } else if (searches.length > 1) {
        parts.push(h('li', { class: 'lanes' }, ...searches));
    }
    if (explained.links.length > 0) {
        parts.push(station({ what: 'Joined', detail: h('code', {}, explained.links.map(shown).join(', ')), count: report.rows ? plural(report.rows.length, 'row') : '' }));
    }
    if (explained.order !== null) {
        parts.push(station({ what: 'Sorted', detail: h('code', {}, `${shown(explained.order.column)} ${explained.order.direction}`.trim()) }));
    }
    if (!report.ok) {
        parts.push(stopped(report, question));
    } else {
        parts.push(station({ what: VERBS[explained.kind] ?? 'Answered', count: outcome(report), kind: 'end' }));
    }
    return parts;
}

function stopped(report: Report, question: Question): HTMLElement {
    const first = report.traces?.[0];
    const where = first === undefined ? '' : ` in ${shown(first.function)}(), line ${first.line}`;
    return station({
        what: `Stopped${where}`,
        count: `${report.name} ${code16(report.code)}`,
        detail: h(
            'div',
            { class: 'stack' },
            shown(first?.cause ?? '') !== '' && h('p', {}, shown(first!.cause)),
            report.refusal !== null && h('div', {}, h('p', {}, shown(report.refusal.text)), caretLines(question.statement, report.refusal)),
        ),
        kind: 'stopped',
    });
}

// The stages of a text that was refused. What the library had called when it stopped tells how far it came.
const STAGES = [
    { what: 'Clauses', of: /divide_(keyword|two_keyword|where_str|select_reserve)|analyze_sql$/ },
    { what: 'Conditions', of: /set_filter|divide_operate|trim_|set_link_filter/ },
    { what: 'Tables and columns', of: /set_select|get_is_|filter_key|analyze_sql_select/ },
    { what: 'Search', of: /exec_/ },
];

function wayOfRefused(report: Report, question: Question): HTMLElement[] {
    const first = shown(report.traces?.[0]?.function ?? '');
    const at = Math.max(0, STAGES.findIndex((stage) => stage.of.test(first)));
    const called = (report.traces ?? []).map((one) => shown(one.function) + '()').reverse();
    return [
        station({ what: 'Read', detail: report.kind.toUpperCase() }),
        ...STAGES.slice(0, at).map((stage) => station({ what: stage.what, count: 'done' })),
        station({ what: STAGES[at]!.what, detail: called.length > 0 ? h('code', {}, called.join(' → ')) : 'before the library was asked' }),
        stopped(report, question),
        ...STAGES.slice(at + 1).map((stage) => station({ what: stage.what, count: 'not reached', kind: 'unreached' })),
    ];
}

export function drawWay(question: Question, report: Report, measured: MeasuredWay): HTMLElement {
    const stations = measured.explained.ok ? wayOfAccepted(question, report, measured) : wayOfRefused(report, question);
    const calls = Object.entries(report.counts?.calls ?? {});
    return h(
        'figure',
        { class: 'stack', 'aria-label': 'The way of the statement' },
        h('ol', { class: 'way' }, ...stations),
        h(
            'figcaption',
            { class: 'calls' },
            h('span', { class: 'soft small' }, 'Platform calls:'),
            ...calls.map(([name, times]) => h('span', { class: 'tag' }, `${name} ${times.toLocaleString('en')}`)),
            calls.length === 0 && h('span', { class: 'soft small' }, 'none'),
        ),
    );
}
