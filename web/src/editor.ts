// The statement editor: the dialect's own highlighting, candidates and findings from the engine while it is typed.
import { acceptCompletion, autocompletion, type CompletionContext, type CompletionResult, completionKeymap } from '@codemirror/autocomplete';
import { defaultKeymap, history, historyKeymap } from '@codemirror/commands';
import { HighlightStyle, StreamLanguage, syntaxHighlighting } from '@codemirror/language';
import { type Diagnostic, setDiagnostics } from '@codemirror/lint';
import { EditorState, Prec } from '@codemirror/state';
import { drawSelection, EditorView, keymap, placeholder, tooltips } from '@codemirror/view';
import { tags } from '@lezer/highlight';

import type { Device } from './device';
import { byteLength, characterAt, type Place, type Report, shown } from './protocol';

declare const __NONCE__: string;

// Only upper case is a keyword.
const KEYWORDS = new Set(
    'SELECT FROM WHERE ORDER BY AND OR LIKE IN INLIKE ASC DESC COUNT INSERT INTO VALUES UPDATE SET DELETE DROP TABLE CREATE INDEX'.split(' '),
);

const dialect = StreamLanguage.define({
    name: 'qrylib',
    token(stream) {
        if (stream.match(/^'[^']*'?/)) {
            return 'string';
        }
        if (stream.match(/^[A-Za-z_][A-Za-z0-9_]*/)) {
            return KEYWORDS.has(stream.current()) ? 'keyword' : 'variableName';
        }
        if (stream.match(/^-?\d+/)) {
            return 'number';
        }
        return stream.match(/^[=<>!]+/) ? 'operator' : (stream.next(), null);
    },
});

const colours = HighlightStyle.define([
    { tag: tags.keyword, color: 'var(--accent)', fontWeight: '600' },
    { tag: tags.string, color: 'var(--good)' },
    { tag: tags.number, color: 'var(--warn)' },
]);

const look = EditorView.theme({
    '&': { fontSize: '13.5px', backgroundColor: 'var(--sheet)', color: 'var(--ink)' },
    '&.cm-focused': { outline: 'none' },
    '.cm-content': { fontFamily: 'var(--mono)', padding: '10px 0', minHeight: '68px', caretColor: 'var(--ink)' },
    '.cm-line': { padding: '0 12px' },
    '.cm-cursor': { borderLeftColor: 'var(--ink)' },
    '.cm-placeholder': { color: 'var(--soft)' },
    '&.cm-focused > .cm-scroller > .cm-selectionLayer .cm-selectionBackground, .cm-selectionBackground': {
        backgroundColor: 'var(--accent-tint)',
    },
    '.cm-tooltip': { backgroundColor: 'var(--sheet)', color: 'var(--ink)', border: '1px solid var(--line)', borderRadius: '6px' },
    '.cm-tooltip-autocomplete > ul > li[aria-selected]': { backgroundColor: 'var(--accent)', color: 'var(--on-accent)' },
    '.cm-completionDetail': { color: 'var(--soft)', fontStyle: 'normal' },
    'li[aria-selected] .cm-completionDetail': { color: 'inherit' },
});

// The browser's own typing dresses what replaces coloured text in styles, which the page's policy refuses.
function typeItself(event: InputEvent, view: EditorView): boolean {
    if (event.inputType !== 'insertText' || event.isComposing || event.data === null) {
        return false;
    }
    event.preventDefault();
    view.dispatch(view.state.update(view.state.replaceSelection(event.data), { userEvent: 'input.type', scrollIntoView: true }));
    return true;
}

export interface EditorWishes {
    label: string;
    device: Device;
    database(): string;
    run(): void;
    typed?(report: Report | null, statement: string): void;
    history?(step: number): void;
}

const CHECK_AFTER = 120; // milliseconds after the last key

export class StatementEditor {
    readonly node: HTMLElement;
    private readonly view: EditorView;
    private timer = 0;

    constructor(private readonly wishes: EditorWishes) {
        const steps = (step: number) => () => (wishes.history?.(step), wishes.history !== undefined);
        this.view = new EditorView({
            state: EditorState.create({
                extensions: [
                    EditorView.cspNonce.of(__NONCE__),
                    history(),
                    drawSelection(),
                    EditorView.lineWrapping,
                    dialect,
                    syntaxHighlighting(colours),
                    look,
                    tooltips({ parent: document.body }),
                    placeholder('SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_NAME LIKE \'Sa%\''),
                    autocompletion({ override: [(context) => this.candidates(context)], icons: false }),
                    EditorView.editorAttributes.of({ class: 'editor' }),
                    EditorView.domEventHandlers({ beforeinput: typeItself }),
                    EditorView.contentAttributes.of({ 'aria-label': wishes.label, 'aria-multiline': 'true', spellcheck: 'false' }),
                    Prec.highest(
                        keymap.of([
                            { key: 'Mod-Enter', run: () => (wishes.run(), true) },
                            { key: 'Alt-ArrowUp', run: steps(1) },
                            { key: 'Alt-ArrowDown', run: steps(-1) },
                            { key: 'Enter', run: acceptCompletion },
                        ]),
                    ),
                    keymap.of([...completionKeymap, ...defaultKeymap, ...historyKeymap]),
                    EditorView.updateListener.of((update) => update.docChanged && this.schedule()),
                ],
            }),
        });
        this.node = this.view.dom;
    }

    get text(): string {
        return this.view.state.doc.toString();
    }
    set text(text: string) {
        this.view.dispatch({
            changes: { from: 0, to: this.view.state.doc.length, insert: text },
            selection: { anchor: text.length },
        });
    }
    focus(): void {
        this.view.focus();
    }

    // The text as the engine takes it: line ends are blanks there.
    get statement(): string {
        return this.text.replace(/[\r\n\t]/g, ' ').replace(/;\s*$/, '');
    }

    schedule(): void {
        clearTimeout(this.timer);
        this.timer = window.setTimeout(() => void this.check(), CHECK_AFTER);
    }

    async check(): Promise<void> {
        const { statement } = this;
        if (statement.trim() === '') {
            this.mark([], statement);
            this.wishes.typed?.(null, statement);
            return;
        }
        try {
            const report = await this.wishes.device.check(this.wishes.database(), statement);
            if (statement === this.statement) {
                this.mark([...report.notes.map((note) => finding('warning', note)), ...(report.refusal ? [finding('error', report.refusal)] : [])], statement);
                this.wishes.typed?.(report, statement);
            }
        } catch {
            // The engine was stopped: the next key asks again.
        }
    }

    private mark(findings: Finding[], statement: string): void {
        const length = this.view.state.doc.length;
        const diagnostics = findings.map(({ severity, place }): Diagnostic => {
            const from = Math.min(length, characterAt(statement, place.from));
            const to = Math.min(length, Math.max(from + 1, characterAt(statement, place.to)));
            return { from: Math.min(from, to), to, severity, message: shown(place.text) };
        });
        this.view.dispatch(setDiagnostics(this.view.state, diagnostics));
    }

    private async candidates(context: CompletionContext): Promise<CompletionResult | null> {
        const typed = context.matchBefore(/[A-Za-z_.]+$/);
        if (typed === null && !context.explicit) {
            return null;
        }
        const text = this.text.replace(/[\r\n\t]/g, ' ');
        try {
            const found = await this.wishes.device.complete(this.wishes.database(), text, byteLength(text.slice(0, context.pos)));
            return {
                from: characterAt(text, found.from),
                options: found.candidates.map(({ text: label, kind }) => ({ label, detail: kind })),
                filter: false,
            };
        } catch {
            return null;
        }
    }
}

interface Finding {
    severity: 'error' | 'warning';
    place: Place;
}
function finding(severity: 'error' | 'warning', place: Place): Finding {
    return { severity, place };
}
