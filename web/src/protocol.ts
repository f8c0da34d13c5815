// What the companion answers, what the page asks its engines, and how texts that are not UTF-8 travel.

export type Text = string | { hex: string };
export type Cell = number | Text;

export interface Place {
    from: number; // byte offsets in the statement
    to: number;
    text: Text;
    hint: Text;
}
export interface Trace {
    function: Text;
    line: number;
    code: number | null;
    cause: Text;
}
export interface Counts {
    microseconds: number;
    blocks: number;
    peak_bytes: number;
    calls: Record<string, number>;
}
export interface Changed {
    added: number;
    replaced: number;
    changed: number;
    deleted: number;
}
export interface ResultColumn {
    name: Text;
    table: Text;
    type: 'number' | 'text';
}
export interface Report {
    ok: boolean;
    kind: string;
    code: number;
    name: string;
    text: string;
    columns?: ResultColumn[];
    rows?: Cell[][];
    changed: Changed;
    notes: Place[];
    refusal: Place | null;
    traces?: Trace[];
    counts?: Counts;
}
export interface Condition {
    column: Text;
    operation: string;
    value: Text;
    quoted: boolean;
    join: 'AND' | 'OR';
}
export interface Explanation {
    ok: boolean;
    kind: string;
    tables: Text[];
    columns: { name: Text; value?: Text }[];
    conditions: Condition[];
    order: { column: Text; direction: string } | null;
    keys: { table: Text; key: Text }[];
    links: Text[];
    refusal: Place | null;
    notes: Place[];
}
export interface SchemaColumn {
    name: string;
    type: string;
    size: number;
    key: boolean;
    element: number;
    offset: number;
}
export interface SchemaTable {
    name: string;
    category: number;
    capacity: number;
    in_use: number;
    columns: SchemaColumn[];
}
export interface Schema {
    databases: { name: string; tables: SchemaTable[] }[];
}
export interface Completion {
    from: number;
    to: number;
    candidates: { text: string; kind: string }[];
}
export interface TraceMeaning extends Trace {
    known: boolean;
}
export interface Loaded {
    ok: boolean;
    text: Text;
    place: Text;
}
export interface Change {
    key: Record<string, Cell> | string;
    column: string | null;
    a: Cell | Record<string, Cell> | null;
    b: Cell | Record<string, Cell> | null;
}
export interface Difference {
    equal: boolean;
    tables: { database: string; table: string; changes: Change[] }[];
    text?: Text;
}
export interface SavedTable {
    default?: Record<string, Cell>;
    records?: Record<string, Cell>[];
}
export interface Snapshot {
    format: number;
    databases: Record<string, Record<string, SavedTable>>;
}

// A call of the platform that is to fail: the first `skip` are let through, `times` answer `code`.
export interface Fault {
    call: number;
    skip: number;
    times: number;
    code: number;
}

// What the page asks an engine; each question has one answer.
export type Question =
    | { ask: 'load'; text: string }
    | { ask: 'save' }
    | { ask: 'schema' }
    | { ask: 'run'; database: string; statement: string; strict: boolean; readonly: boolean; fault?: Fault }
    | { ask: 'check'; database: string; statement: string }
    | { ask: 'explain'; database: string; statement: string }
    | { ask: 'complete'; database: string; text: string; cursor: number }
    | { ask: 'export'; format: string }
    | { ask: 'trace'; lines: string[] }
    | { ask: 'diff'; a: string; b: string }
    | { ask: 'elements'; category: number; record: number; elements: { id: number; size: number }[] };

export interface Asked {
    number: number;
    question: Question;
}
export interface Answered {
    number: number;
    answer?: unknown;
    error?: string;
    ready?: string; // the engine's version, once at its start
}

// Shows a value of the device: bytes that are not UTF-8 as such.
export function shown(value: Cell | null | undefined): string {
    if (value === null || value === undefined) {
        return '';
    }
    return typeof value === 'object' ? 'hex ' + value.hex : String(value);
}

// The platform's calls in the order of their numbers, named as the companion counts them.
export const CALLS: readonly string[] = [
    'alloc', 'create_mutex', 'request_mutex', 'lock_task', 'get_table', 'set_table', 'init_table', 'get_status',
    'create_list', 'list_set_pos', 'list_get_val', 'sort', 'create_handle', 'register_service', 'file_exist',
    'file_mkdir', 'file_remove', 'file_open', 'file_read', 'file_write', 'file_close',
];

// The companion counts bytes, the page characters.
const encoder = new TextEncoder();
export function byteLength(text: string): number {
    return encoder.encode(text).length;
}
export function characterAt(text: string, byte: number): number {
    let bytes = 0;
    let index = 0;
    for (const character of text) {
        if (bytes >= byte) {
            break;
        }
        bytes += byteLength(character);
        index += character.length;
    }
    return index;
}
