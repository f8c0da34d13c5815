// Asking: the editor with its notes, what the statement answered, its way, its trace and its cost.
import { type App, outcome, type Question, type View } from './app';
import type { Device } from './device';
import { button, code16, download, field, h, plural, say, select } from './dom';
import { StatementEditor } from './editor';
import { Grid } from './grid';
import { linkOf } from './link';
import { type Counts, type Report, type Schema, shown, type Trace } from './protocol';
import { complaint } from './said';
import { Tabs } from './tabs';
import { drawWay, measureWay } from './way';

const HISTORY_MAX = 100;

function isChange(statement: string): boolean {
    return !/^\s*SELECT/.test(statement);
}

export function makeAsk(app: App, device: Device): View {
    const said = h('div', { class: 'stack', 'aria-label': 'Notes', role: 'group' });
    const headline = h('div', { class: 'tools' });
    const grid = new Grid({ label: 'Rows' });
    const noRows = h('p', { class: 'empty' });
    const way = h('div', { class: 'stack' });
    const trace = h('div', { class: 'stack' });
    const tabs = new Tabs('The answer', [
        { title: 'Rows', node: h('div', { class: 'stack' }, noRows, grid.node) },
        { title: 'Way', node: way },
        { title: 'Trace and cost', node: trace },
    ]);
    const results = h('section', { class: 'results', 'aria-label': 'Answer', hidden: true }, headline, tabs.node);
    const strict = h('input', { type: 'checkbox' });
    const link = h('input', { type: 'text', readonly: true, 'aria-label': 'Link to this statement', hidden: true, class: 'mono' });
    const past = h('ul', { class: 'history' });
    const pastBox = h('details', { hidden: true }, h('summary', {}, 'History'), past);
    let schema: Schema = { databases: [] };
    let database = 'adbk_db';
    let step = 0;
    let preferred = 0; // the tab that was shown last without being asked for
    const databases = h('span');

    const editor = new StatementEditor({
        label: 'Statement',
        device,
        database: () => database,
        run: () => void run(),
        typed: (report, statement) => said.replaceChildren(...(report === null ? [] : complaint(report, statement))),
        history: stepBack,
    });

    function setDatabase(name: string): void {
        database = name;
        databases.replaceChildren(
            field('Database', select(schema.databases.map((one) => one.name), database, (chosen) => {
                database = chosen;
                editor.schedule();
            })),
        );
    }

    function fill(question: Question): void {
        setDatabase(schema.databases.some((one) => one.name === question.database) ? question.database : database);
        editor.text = question.statement;
        editor.focus();
    }

    function stepBack(by: number): void {
        step = Math.max(0, Math.min(app.history.length, step + by));
        const question = app.history[step - 1];
        if (question !== undefined) {
            fill(question);
        }
    }

    function remember(question: Question): void {
        step = 0;
        app.history = [question, ...app.history.filter((one) => one.statement !== question.statement)].slice(0, HISTORY_MAX);
        drawHistory();
    }

    function drawHistory(): void {
        pastBox.hidden = app.history.length === 0;
        past.replaceChildren(
            ...app.history.map((one) =>
                h('li', {}, h('button', { type: 'button', click: () => fill(one) }, h('span', { class: 'tag' }, one.database), ' ', h('code', {}, one.statement))),
            ),
        );
    }

    async function run(): Promise<void> {
        const question = { database, statement: editor.statement };
        if (question.statement.trim() === '') {
            say('There is no statement.');
            return;
        }
        remember(question);
        results.setAttribute('aria-busy', 'true');
        try {
            // What a change searches is gone when it has run.
            const before = isChange(question.statement) ? await measureWay(device, question) : null;
            const report = await app.run(device, question, { strict: strict.checked });
            said.replaceChildren(...complaint(report, question.statement));
            draw(report);
            way.replaceChildren(drawWay(question, report, before ?? (await measureWay(device, question))));
        } catch (error) {
            said.replaceChildren(h('div', { class: 'said warn' }, (error as Error).message));
        } finally {
            results.removeAttribute('aria-busy');
        }
    }

    function draw(report: Report): void {
        results.hidden = false;
        headline.replaceChildren(
            h('span', { class: report.ok ? 'tag good' : 'tag bad' }, report.ok ? report.name : `${report.name} ${code16(report.code)}`),
            h('strong', {}, outcome(report)),
            h('span', { class: 'space' }),
            report.rows !== undefined ? button('CSV', () => void exportRows('csv')) : '',
            report.rows !== undefined ? button('JSON', () => void exportRows('json')) : '',
        );
        drawRows(report);
        trace.replaceChildren(traceNode(report.traces ?? []), ...(report.counts ? [costNode(report.counts)] : []));
        // Where there are no rows the way is of more use; a tab that the user chose stays.
        if (tabs.chosen === preferred) {
            preferred = report.rows === undefined ? 1 : 0;
            tabs.choose(preferred);
        }
    }

    function drawRows(report: Report): void {
        const rows = report.rows ?? [];
        grid.node.hidden = rows.length === 0;
        noRows.hidden = rows.length !== 0;
        noRows.textContent = report.rows === undefined ? outcome(report) : 'No record meets the condition.';
        const isJoin = new Set(report.columns?.map((column) => shown(column.table))).size > 1;
        grid.fill(
            (report.columns ?? []).map((column) => ({
                title: (isJoin ? shown(column.table) + '.' : '') + shown(column.name),
                isNumber: column.type === 'number',
            })),
            rows,
        );
        grid.node.setAttribute('aria-label', `Rows of the answer, ${plural(rows.length, 'row')}`);
    }

    async function exportRows(format: 'csv' | 'json'): Promise<void> {
        const exported = await device.export(format);
        if (exported.ok) {
            download(`rows.${format}`, format === 'csv' ? 'text/csv' : 'application/json', exported.text);
        }
        say(exported.ok ? `The rows are saved as ${format.toUpperCase()}.` : exported.text);
    }

    function showLink(): void {
        link.value = linkOf({ database, statement: editor.text });
        link.hidden = false;
        link.focus();
        link.select();
        navigator.clipboard?.writeText(link.value).then(
            () => say('The link is copied. It carries the statement and no records.'),
            () => say('The link is selected. It carries the statement and no records.'),
        );
    }

    const node = h(
        'div',
        { class: 'stack' },
        h(
            'section',
            { class: 'stack', 'aria-label': 'Statement' },
            h(
                'div',
                { class: 'tools' },
                databases,
                h('label', { class: 'check', title: 'A statement with a note is not run' }, strict, 'Strict'),
                h('span', { class: 'space' }),
                button('Link', showLink, { title: 'A link that carries the statement, never records' }),
                button('Run', () => void run(), { class: 'first', title: 'Ctrl+Enter' }),
            ),
            editor.node,
            h('p', { class: 'soft small' }, h('kbd', {}, 'Ctrl+Enter'), ' runs, ', h('kbd', {}, 'Alt+↑'), ' goes back, ', h('kbd', {}, 'Ctrl+Space'), ' completes, ', h('kbd', {}, 'Tab'), ' leaves'),
            link,
            said,
        ),
        pastBox,
        results,
    );
    return {
        node,
        async show() {
            schema = await device.schema();
            setDatabase(database);
            drawHistory();
            if (app.proposed !== null) {
                const question = app.proposed;
                app.proposed = null;
                fill(question);
            } else if (editor.text === '') {
                editor.focus();
            }
        },
    };
}

export function traceNode(traces: Trace[]): HTMLElement {
    if (traces.length === 0) {
        return h('p', { class: 'soft' }, 'The library traced nothing.');
    }
    return h(
        'table',
        { class: 'plain' },
        h('thead', {}, h('tr', {}, ...['Function', 'Line', 'Code', 'Cause'].map((one) => h('th', { scope: 'col' }, one)))),
        h(
            'tbody',
            {},
            ...traces.map((one) =>
                h(
                    'tr',
                    {},
                    h('td', {}, h('code', {}, shown(one.function))),
                    h('td', { class: 'number' }, String(one.line)),
                    h('td', {}, h('code', {}, one.code === null ? '' : code16(one.code))),
                    h('td', {}, shown(one.cause)),
                ),
            ),
        ),
    );
}

function costNode(counts: Counts): HTMLElement {
    return h(
        'div',
        { class: 'stack' },
        h(
            'p',
            {},
            `${(counts.microseconds / 1000).toLocaleString('en')} ms, ${plural(counts.blocks, 'block')} of memory, at most ` +
                `${plural(counts.peak_bytes, 'byte')} at once`,
        ),
        h(
            'table',
            { class: 'plain' },
            h('thead', {}, h('tr', {}, h('th', { scope: 'col' }, 'Platform call'), h('th', { scope: 'col', class: 'number' }, 'Times'))),
            h(
                'tbody',
                {},
                ...Object.entries(counts.calls).map(([name, times]) =>
                    h('tr', {}, h('td', {}, h('code', {}, name)), h('td', { class: 'number' }, times.toLocaleString('en'))),
                ),
            ),
        ),
    );
}
