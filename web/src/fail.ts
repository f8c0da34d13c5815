// Failing on purpose: one call of the platform answers a code, and the page shows what came of it.
import { type App, outcome, type View } from './app';
import { traceNode } from './ask';
import { changesNode } from './compare';
import type { Device } from './device';
import { button, code16, field, h, say, select } from './dom';
import { StatementEditor } from './editor';
import { CALLS, type Schema } from './protocol';
import { complaint } from './said';

const FIRST_CODE = '0x5243';
const NO_MEMORY = '0x0001';

function number(label: string, value: string): HTMLInputElement {
    return h('input', { type: 'number', min: 0, max: 1_000_000, value, 'aria-label': label });
}

export function makeFail(app: App, device: Device): View {
    const skip = number('Calls let through first', '0');
    const times = number('Calls that fail then', '1');
    const code = h('input', { type: 'text', value: NO_MEMORY, spellcheck: 'false', pattern: '(0[xX])?[0-9a-fA-F]{1,8}' });
    const answer = h('section', { class: 'stack', 'aria-label': 'What came of it' });
    const databases = h('span');
    let database = 'department_db';
    let failing = 'alloc';
    let schema: Schema = { databases: [] };

    const editor = new StatementEditor({
        label: 'Statement that is to fail',
        device,
        database: () => database,
        run: () => void run(),
    });
    editor.text = "UPDATE DEPT_TBL SET NAME = 'X' WHERE ID < 4";

    function wanted(): { call: number; skip: number; times: number; code: number } | null {
        const given = /^(?:0x)?([0-9a-f]{1,8})$/i.exec(code.value.trim());
        return given === null
            ? null
            : {
                  call: CALLS.indexOf(failing),
                  skip: Number(skip.value) || 0,
                  times: Number(times.value) || 0,
                  code: Number.parseInt(given[1]!, 16),
              };
    }

    async function run(): Promise<void> {
        const fault = wanted();
        if (fault === null) {
            answer.replaceChildren(h('div', { class: 'said bad' }, 'The code is a hexadecimal number, such as 0x5243.'));
            say('The code is a hexadecimal number.');
            return;
        }
        const statement = editor.statement;
        const before = await device.save();
        try {
            const report = await app.run(device, { database, statement }, { fault });
            const after = await device.save();
            const written = await device.difference(before, after);
            answer.replaceChildren(
                h(
                    'div',
                    { class: 'tools' },
                    h('span', { class: report.ok ? 'tag good' : 'tag bad' }, `${report.name} ${code16(report.code)}`),
                    h('strong', {}, outcome(report)),
                    h('span', { class: 'space' }),
                    !written.equal ? button('Put the records back', () => void putBack(before)) : '',
                ),
                ...(report.refusal !== null || report.notes.length > 0 ? complaint(report, statement) : []),
                h('h2', {}, 'Trace'),
                traceNode(report.traces ?? []),
                h('h2', {}, 'What was written'),
                changesNode(written, 'before', 'after'),
            );
        } catch (error) {
            answer.replaceChildren(h('div', { class: 'said warn' }, (error as Error).message));
        }
    }

    async function putBack(snapshot: string): Promise<void> {
        await device.load(snapshot);
        app.changed();
        answer.replaceChildren(h('div', { class: 'said good' }, 'The records are as they were before.'));
        say('The records are as they were before.');
    }

    const calls = select(CALLS, failing, (name) => {
        failing = name;
        code.value = name === 'alloc' ? NO_MEMORY : FIRST_CODE;
    });
    return {
        node: h(
            'div',
            { class: 'stack' },
            h('p', { class: 'soft' }, 'One call of the platform is made to fail while the statement runs.'),
            h(
                'div',
                { class: 'tools' },
                databases,
                field('Platform call', calls),
                field('Let through', skip),
                field('Fail', times),
                field('With code', code),
                h('span', { class: 'space' }),
                button('Run and fail', () => void run(), { class: 'first' }),
            ),
            editor.node,
            answer,
        ),
        async show() {
            schema = await device.schema();
            databases.replaceChildren(
                field('Database', select(schema.databases.map((one) => one.name), database, (name) => {
                    database = name;
                    editor.schedule();
                })),
            );
        },
    };
}
