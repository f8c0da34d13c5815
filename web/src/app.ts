// What the page knows: the open devices, which one and which view is shown, and how files become devices.
import { type Capacities, Device, type Engines, type RunOptions } from './device';
import { button, download, h, openDialog, plural, say } from './dom';
import { excerpt, refusedByDepth, refusedBySize } from './files';
import { type Report, type Schema, shown } from './protocol';

export type ViewName = 'records' | 'ask' | 'schema' | 'log' | 'fail' | 'compare';

// A view of one device, made on first sight and kept as long as the device is open.
export interface View {
    node: HTMLElement;
    show(): void | Promise<void>;
}

export interface Question {
    database: string;
    statement: string;
}

export class App {
    devices: Device[] = [];
    current: Device | null = null;
    view: ViewName = 'records';
    history: Question[] = [];
    // A statement that a link or another view put down for the editor; it is never run by itself.
    proposed: Question | null = null;
    private listeners: (() => void)[] = [];

    constructor(readonly engines: Engines) {}

    onChange(listener: () => void): void {
        this.listeners.push(listener);
    }
    changed(): void {
        this.listeners.forEach((listener) => listener());
    }

    show(view: ViewName): void {
        this.view = view;
        this.changed();
    }
    select(device: Device): void {
        this.current = device;
        this.changed();
        say(`${device.name} is shown.`);
    }
    propose(question: Question): void {
        this.proposed = question;
        this.show('ask');
    }

    async openFile(file: File, capacities: Capacities): Promise<void> {
        const refusal = refusedBySize(file.size);
        if (refusal !== null) {
            this.refuse(file.name, refusal);
            return;
        }
        const text = await file.text();
        const tooDeep = refusedByDepth(text);
        if (tooDeep !== null) {
            this.refuse(file.name, tooDeep);
            return;
        }
        await this.openText(file.name.replace(/\.json$/i, ''), text, capacities);
    }

    async openText(name: string, text: string | null, capacities: Capacities): Promise<void> {
        try {
            const opened = await Device.open(this.freeName(name), capacities, text, this.engines);
            if (opened instanceof Device) {
                this.devices.push(opened);
                this.current = opened;
                this.view = this.proposed !== null ? 'ask' : ['log', 'compare'].includes(this.view) ? this.view : 'records';
                this.changed();
                say(`${opened.name} is open.`);
            } else {
                const place = shown(opened.place);
                this.refuse(name, shown(opened.text), place, excerpt(text ?? '', place));
            }
        } catch (error) {
            this.refuse(name, String(error));
        }
    }

    private freeName(name: string): string {
        const taken = new Set(this.devices.map((device) => device.name));
        let free = name;
        for (let i = 2; taken.has(free); ++i) {
            free = `${name} (${i})`;
        }
        return free;
    }

    private refuse(name: string, sentence: string, place = '', lines: string | null = null): void {
        openDialog('Not opened', () =>
            h(
                'div',
                { class: 'said bad', role: 'alert' },
                h('strong', {}, name),
                h('p', {}, sentence),
                place !== '' && h('p', {}, 'Place: ', h('code', {}, place)),
                lines !== null && h('pre', {}, lines),
            ),
        );
        say(`${name} was not opened. ${place} ${sentence}`);
    }

    close(device: Device): void {
        const really = () => {
            const index = this.devices.indexOf(device);
            device.close();
            this.devices.splice(index, 1);
            if (this.current === device) {
                this.current = this.devices[Math.max(0, index - 1)] ?? null;
            }
            this.changed();
            say(`${device.name} is closed.`);
        };
        if (!device.changed) {
            really();
            return;
        }
        openDialog('Close without saving?', (close) =>
            h(
                'div',
                { class: 'stack' },
                h('p', {}, `The records of ${device.name} were changed and not saved.`),
                h(
                    'div',
                    { class: 'tools' },
                    button('Save', () => void this.save(device).then(close), { class: 'first' }),
                    button('Close without saving', () => {
                        close();
                        really();
                    }),
                ),
            ),
        );
    }

    // The records as a file that opens here, and that the shell and the tests load.
    async save(device: Device): Promise<void> {
        const text = await device.save();
        download(device.name + '.json', 'application/json', JSON.stringify(JSON.parse(text), null, 2) + '\n');
        device.changed = false;
        this.changed();
        say(`${device.name} is saved.`);
    }

    // Runs a statement and tells those who cannot see what came of it.
    async run(device: Device, question: Question, options: RunOptions = {}): Promise<Report> {
        const running = device.run(question.database, question.statement, options);
        this.changed();
        try {
            const report = await running;
            say(outcome(report));
            return report;
        } catch (error) {
            say((error as Error).message);
            throw error;
        } finally {
            this.changed();
        }
    }

    async stop(): Promise<void> {
        await this.current?.stop();
        this.changed();
    }
}

export function outcome(report: Report): string {
    if (report.refusal !== null) {
        return 'Refused: ' + shown(report.refusal.text);
    }
    if (!report.ok) {
        return `Failed with ${report.name}: ${report.text}`;
    }
    if (report.rows !== undefined) {
        return plural(report.rows.length, 'row');
    }
    const { added, replaced, changed, deleted } = report.changed;
    const parts = [
        [added, 'added'],
        [replaced, 'replaced'],
        [changed, 'changed'],
        [deleted, 'deleted'],
    ] as const;
    const told = parts.filter(([number]) => number > 0).map(([number, what]) => `${plural(number, 'record')} ${what}`);
    return told.join(', ') || 'Nothing was changed.';
}

export function findTable(schema: Schema, database: string, table: string) {
    return schema.databases.find((one) => one.name === database)?.tables.find((one) => one.name === table);
}
