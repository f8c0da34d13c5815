// A worker with an engine of its own: the engine's store is one for each module, so a device is a worker.
import createEngine from 'qrylib-engine';

import type { Answered, Asked, Fault, Question } from './protocol';

interface Engine {
    HEAPU8: Uint8Array;
    [name: string]: unknown;
}
type Call = (...values: number[]) => number;

const READONLY = 1;
const STRICT = 2;
const TRACES = 4;
const COUNTS = 8;

let engine: Engine;
const sessions = new Map<string, number>();
const encoder = new TextEncoder();
const decoder = new TextDecoder();

function call(name: string, ...values: number[]): number {
    return (engine['_' + name] as Call)(...values);
}

// Calls `use` with copies of the texts in the engine's memory.
function withTexts<T>(texts: string[], use: (...places: number[]) => T): T {
    const places: number[] = [];
    try {
        for (const text of texts) {
            const bytes = encoder.encode(text + '\0');
            const place = call('malloc', bytes.length);
            if (place === 0) {
                throw new Error('The engine has no memory left for this.');
            }
            places.push(place);
            engine.HEAPU8.set(bytes, place);
        }
        return use(...places);
    } finally {
        places.forEach((place) => call('free', place));
    }
}

function textAt(place: number): string {
    const heap = engine.HEAPU8;
    return decoder.decode(heap.subarray(place, heap.indexOf(0, place)));
}

function json(place: number): unknown {
    return JSON.parse(textAt(place));
}

function session(database: string, flags: number): number {
    const name = database + ' ' + flags;
    let known = sessions.get(name);
    if (known === undefined) {
        known = withTexts([database], (place) => call('qrytext_open', place, flags));
        sessions.set(name, known);
    }
    return known;
}

// Rows are exported from the session that ran what the user asked: neither what the page reads for itself nor what is
// made to fail.
let lastAsked = 0;

function run(question: Question & { ask: 'run' }): unknown {
    const flags = TRACES | COUNTS | (question.strict ? STRICT : 0) | (question.readonly ? READONLY : 0);
    const place = session(question.database, flags);
    if (!question.readonly && question.fault === undefined) {
        lastAsked = place;
    }
    return withFault(question.fault, () =>
        withTexts([question.statement], (text) => json(call('qrytext_run', place, text, 0))),
    );
}

function withFault<T>(fault: Fault | undefined, use: () => T): T {
    if (fault === undefined) {
        return use();
    }
    call('qryhost_fail_clear');
    call('qryhost_fail', fault.call, fault.skip, fault.times, fault.code);
    try {
        return use();
    } finally {
        call('qryhost_fail_clear');
    }
}

// The bytes of a record's elements; an element that cannot be read has none.
function elements(question: Question & { ask: 'elements' }): number[][] {
    return question.elements.map(({ id, size }) => {
        const place = call('malloc', Math.max(size, 4));
        try {
            const code = call('qry_lib_tb_get_stc_table', question.category, question.record, id, place);
            return code === 0 ? Array.from(engine.HEAPU8.subarray(place, place + size)) : [];
        } finally {
            call('free', place);
        }
    });
}

function answer(question: Question): unknown {
    switch (question.ask) {
        case 'load':
            return withTexts([question.text], (text) => json(call('qrytext_load', text, 0)));
        case 'save':
            return textAt(call('qrytext_save', 0));
        case 'schema':
            return json(call('qrytext_schema'));
        case 'run':
            return run(question);
        case 'check':
            return withTexts([question.statement], (text) =>
                json(call('qrytext_check', session(question.database, 0), text)),
            );
        case 'explain':
            return withTexts([question.statement], (text) =>
                json(call('qrytext_explain', session(question.database, 0), text)),
            );
        case 'complete':
            return withTexts([question.text], (text) =>
                json(call('qrytext_complete', session(question.database, 0), text, question.cursor)),
            );
        case 'export':
            return withTexts([question.format], (format) => json(call('qrytext_export', lastAsked, format)));
        case 'trace':
            return question.lines.map((line) =>
                withTexts([line], (text) => json(call('qrytext_trace', text))),
            );
        case 'diff':
            return withTexts([question.a, question.b], (a, b) => json(call('qrytext_diff', a, b)));
        case 'elements':
            return elements(question);
    }
}

function tell(message: Answered): void {
    postMessage(message);
}

// The first message is the compiled module, every other one a question.
async function start(module: WebAssembly.Module): Promise<void> {
    engine = (await createEngine({
        instantiateWasm(imports: WebAssembly.Imports, done: (instance: WebAssembly.Instance) => void) {
            WebAssembly.instantiate(module, imports).then(done);
            return {};
        },
    })) as Engine;
    const { version } = json(call('qrytext_version')) as { version: string };
    tell({ number: 0, ready: version });
}

onmessage = (first: MessageEvent<WebAssembly.Module>) => {
    const ready = start(first.data);
    onmessage = async (message: MessageEvent<Asked>) => {
        await ready;
        const { number, question } = message.data;
        try {
            tell({ number, answer: answer(question) });
        } catch (error) {
            tell({ number, error: String(error) });
        }
    };
};
