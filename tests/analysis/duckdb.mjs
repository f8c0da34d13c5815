// Runs the queries of a page, its blocks of the language sql, in the current folder, and compares each answer with the block
// behind it, which is CSV.
//
// usage: node duckdb.mjs MODULES PAGE
import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';

const { DuckDBInstance } = createRequire(process.argv[2])('@duckdb/node-api');
const page = readFileSync(process.argv[3], 'utf8');
const pairs = [...page.matchAll(/^```sql\n([\s\S]*?)^```\n+```\n([\s\S]*?)^```$/gm)].map(([, query, shown]) => [query, shown]);
const queries = page.match(/^```sql$/gm)?.length ?? 0;
if (pairs.length === 0 || pairs.length !== queries) {
    throw new Error(`${queries} queries, ${pairs.length} of them with an answer behind`);
}

const engine = await (await DuckDBInstance.create(':memory:')).connect();
for (const [query, shown] of pairs) {
    const answer = await engine.runAndReadAll(query);
    const lines = [answer.columnNames(), ...answer.getRows()].map((row) => row.map(String).join(','));
    const printed = lines.join('\n') + '\n';
    if (printed !== shown) {
        throw new Error(`${query}\nanswers\n${printed}\nthe page shows\n${shown}`);
    }
}
console.log(`${pairs.length} queries`);
