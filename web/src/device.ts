// An open device: a worker with an engine, asked one question after the other, and what it holds as a snapshot, so
// that a statement that is stopped leaves nothing behind.
import type {
    Answered, Completion, Difference, Explanation, Fault, Loaded, Question, Report, Schema, TraceMeaning,
} from './protocol';

export type Capacities = 'shipped' | 'roomy';

// Where engines come from: the worker's source and the two compiled modules.
export interface Engines {
    worker(): Worker;
    module(capacities: Capacities): Promise<WebAssembly.Module>;
}

export class Stopped extends Error {
    constructor() {
        super('The statement was stopped; the device is as it was before it.');
    }
}

export interface RunOptions {
    strict?: boolean;
    readonly?: boolean;
    fault?: Fault;
}

interface Waiting {
    resolve(answer: unknown): void;
    reject(reason: Error): void;
}

export class Device {
    version = '';
    changed = false;
    // The records as they are, unless a statement is running that changes them.
    private snapshot = '';
    private isSnapshotOld = true;
    private worker!: Worker;
    private waiting = new Map<number, Waiting>();
    private last = 0;
    private running = 0;
    private starting: Promise<void> = Promise.resolve();

    private constructor(
        readonly name: string,
        readonly capacities: Capacities,
        private readonly engines: Engines,
    ) {}

    // A device with the records of a snapshot's text; null: without records. Rejects with the text that was refused
    // as `Loaded`, where it was.
    static async open(name: string, capacities: Capacities, text: string | null, engines: Engines): Promise<Device | Loaded> {
        const device = new Device(name, capacities, engines);
        await device.start();
        if (text !== null) {
            const loaded = (await device.ask({ ask: 'load', text })) as Loaded;
            if (!loaded.ok) {
                device.close();
                return loaded;
            }
        }
        await device.keep();
        return device;
    }

    private async start(): Promise<void> {
        const module = await this.engines.module(this.capacities);
        const worker = this.engines.worker();
        this.worker = worker;
        const ready = new Promise<void>((resolve, reject) => {
            worker.onmessage = (message: MessageEvent<Answered>) => {
                if (message.data.ready !== undefined) {
                    this.version = message.data.ready;
                    resolve();
                } else {
                    this.take(message.data);
                }
            };
            worker.onerror = (event) => {
                reject(new Error(event.message));
                this.abandon(new Error('The engine ended: ' + event.message));
            };
        });
        worker.postMessage(module);
        await ready;
    }

    private take(answered: Answered): void {
        const waiting = this.waiting.get(answered.number);
        this.waiting.delete(answered.number);
        if (answered.error !== undefined) {
            waiting?.reject(new Error(answered.error));
        } else {
            waiting?.resolve(answered.answer);
        }
    }

    private abandon(reason: Error): void {
        const abandoned = [...this.waiting.values()];
        this.waiting.clear();
        abandoned.forEach((one) => one.reject(reason));
    }

    private async ask(question: Question): Promise<unknown> {
        const number = ++this.last;
        return new Promise((resolve, reject) => {
            this.waiting.set(number, { resolve, reject });
            this.worker.postMessage({ number, question });
        });
    }

    private async askWhenStarted<T>(question: Question): Promise<T> {
        await this.starting;
        return (await this.ask(question)) as T;
    }

    // Takes the snapshot that a stopped statement goes back to.
    private async keep(): Promise<void> {
        if (this.isSnapshotOld) {
            this.snapshot = (await this.ask({ ask: 'save' })) as string;
            this.isSnapshotOld = false;
        }
    }

    get isBusy(): boolean {
        return this.running > 0;
    }

    async run(database: string, statement: string, options: RunOptions = {}): Promise<Report> {
        ++this.running;
        try {
            return await this.runAndKeep(database, statement, options);
        } finally {
            --this.running;
        }
    }

    private async runAndKeep(database: string, statement: string, options: RunOptions): Promise<Report> {
        await this.starting;
        await this.keep();
        const { strict = false, readonly = false, fault } = options;
        const report = (await this.ask({ ask: 'run', database, statement, strict, readonly, ...(fault ? { fault } : {}) })) as Report;
        const { added, replaced, changed, deleted } = report.changed;
        if (added + replaced + changed + deleted > 0 || (!['select', 'count'].includes(report.kind) && !readonly)) {
            this.isSnapshotOld = true;
            const before = this.snapshot;
            await this.keep();
            this.changed ||= this.snapshot !== before;
        }
        return report;
    }

    // Ends what runs, and starts another engine with the records as they were before it.
    async stop(): Promise<void> {
        this.worker.terminate();
        this.abandon(new Stopped());
        this.isSnapshotOld = false;
        this.starting = this.start().then(async () => {
            await this.ask({ ask: 'load', text: this.snapshot });
        });
        await this.starting;
    }

    // The records as a snapshot's text; a device is saved once its text has been handed out.
    async save(): Promise<string> {
        await this.starting;
        await this.keep();
        return this.snapshot;
    }

    // Replaces the records by those of a snapshot of this device.
    async load(snapshot: string): Promise<void> {
        await this.askWhenStarted({ ask: 'load', text: snapshot });
        this.snapshot = snapshot;
    }

    schema(): Promise<Schema> {
        return this.askWhenStarted({ ask: 'schema' });
    }
    check(database: string, statement: string): Promise<Report> {
        return this.askWhenStarted({ ask: 'check', database, statement });
    }
    explain(database: string, statement: string): Promise<Explanation> {
        return this.askWhenStarted({ ask: 'explain', database, statement });
    }
    complete(database: string, text: string, cursor: number): Promise<Completion> {
        return this.askWhenStarted({ ask: 'complete', database, text, cursor });
    }
    // The rows of the last statement that neither only read for the page nor was made to fail.
    export(format: string): Promise<{ ok: boolean; text: string }> {
        return this.askWhenStarted({ ask: 'export', format });
    }
    traces(lines: string[]): Promise<TraceMeaning[]> {
        return this.askWhenStarted({ ask: 'trace', lines });
    }
    difference(a: string, b: string): Promise<Difference> {
        return this.askWhenStarted({ ask: 'diff', a, b });
    }
    elements(category: number, record: number, elements: { id: number; size: number }[]): Promise<number[][]> {
        return this.askWhenStarted({ ask: 'elements', category, record, elements });
    }

    close(): void {
        this.worker.terminate();
        this.abandon(new Error('The device was closed.'));
    }
}
