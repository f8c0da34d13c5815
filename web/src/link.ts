// Links that carry a statement, and nothing of a device.
import type { Question } from './app';

const MARK = '#ask=';
const LENGTH_MAX = 8192;

export function linkOf(question: Question): string {
    return location.href.replace(/#.*$/s, '') + MARK + encodeURIComponent(question.database + ':' + question.statement);
}

export function questionOfLink(hash: string): Question | null {
    if (!hash.startsWith(MARK) || hash.length > LENGTH_MAX) {
        return null;
    }
    try {
        const [, database, statement] = /^(\w+):(.*)$/s.exec(decodeURIComponent(hash.slice(MARK.length))) ?? [];
        return database !== undefined && statement !== undefined ? { database, statement } : null;
    } catch {
        return null;
    }
}
