// The page in Chromium, from a server or from its file: what every test may use, and what none may do: leave the page,
// break its policy, throw, or keep anything.
import assert from 'node:assert/strict';
import { createReadStream, existsSync, mkdirSync, rmSync } from 'node:fs';
import { createServer } from 'node:http';
import { createRequire } from 'node:module';
import { extname, join, resolve } from 'node:path';

export const build = resolve(process.argv[2]);
export const origin = process.argv[3]; // "server" or "file"
const modules = createRequire(join(build, 'web/npm/package.json'));
const { chromium } = modules('playwright-core');
export const axeSource = modules.resolve('axe-core/axe.min.js');
export const pictures = join(build, 'pictures');
mkdirSync(pictures, { recursive: true });

const TYPES = { '.html': 'text/html; charset=utf-8', '.js': 'text/javascript' };
const PATIENCE = 20_000; // for a machine that has much else to do

function serve() {
    const server = createServer((request, response) => {
        const path = request.url === '/' ? '/index.html' : request.url.split('?')[0];
        const file = join(build, 'site', path);
        if (!/^\/[a-z]+\.(html|js)$/.test(path) || !existsSync(file)) {
            response.writeHead(404).end();
            return;
        }
        response.writeHead(200, { 'content-type': TYPES[extname(file)] });
        createReadStream(file).pipe(response);
    });
    return new Promise((done) => server.listen(0, '127.0.0.1', () => done(server)));
}

const server = origin === 'server' ? await serve() : null;
export const address = server ? `http://127.0.0.1:${server.address().port}/` : `file://${join(build, 'qrylib.html')}`;
const own = server ? /^(http:\/\/127\.0\.0\.1:\d+\/[a-z.]*$|blob:|data:,)/ : /^(file:\/\/\S*\/qrylib\.html|blob:|data:,)/;
const browser = await chromium.launch({ executablePath: '/usr/bin/chromium', args: ['--no-sandbox'] });

const tests = [];
export function test(name, run, options = {}) {
    tests.push({ name, run, options });
}

// A fresh page; `problems` takes what no page may do.
async function openPage({ hash = '', ...options }) {
    const context = await browser.newContext({ viewport: { width: 1200, height: 820 }, ...options });
    const problems = [];
    context.on('request', (request) => {
        if (!own.test(request.url().replace(/[?#].*$/, ''))) {
            problems.push('a request for ' + request.url());
        }
    });
    const page = await context.newPage();
    page.setDefaultTimeout(PATIENCE);
    page.on('pageerror', (error) => problems.push('thrown: ' + error.message));
    page.on('console', (message) => message.type() === 'error' && problems.push('console: ' + message.text()));
    await page.addInitScript(() => {
        globalThis.violations = [];
        document.addEventListener('securitypolicyviolation', (event) => globalThis.violations.push(event.violatedDirective + ' ' + event.blockedURI));
    });
    await page.goto(address + hash);
    return { context, page, problems };
}

async function close({ context, page, problems }) {
    const left = await page.evaluate(async () => ({
        violations: globalThis.violations,
        stored: localStorage.length + sessionStorage.length + (await indexedDB.databases()).length,
        cookies: document.cookie,
    }));
    await context.close();
    assert.deepEqual(left, { violations: [], stored: 0, cookies: '' });
    assert.deepEqual(problems, []);
}

// Runs all tests, or those whose name holds what stands behind the origin.
export async function runAll() {
    const wanted = process.argv[4] ?? '';
    let failed = 0;
    for (const { name, run, options } of tests.filter((one) => one.name.includes(wanted))) {
        const start = Date.now();
        const failure = join(pictures, `failed-${origin}-${name.replace(/\W+/g, '-')}.png`);
        rmSync(failure, { force: true });
        const opened = await openPage(options);
        try {
            await run(opened.page, opened);
            await close(opened);
            console.log(`ok      ${name} (${Date.now() - start} ms)`);
        } catch (error) {
            ++failed;
            console.log(`FAILED  ${name}\n${error.stack}\n${opened.problems.join('\n')}`);
            await opened.page.screenshot({ path: failure }).catch(() => undefined);
            await opened.context.close();
        }
    }
    await browser.close();
    server?.close();
    process.exitCode = failed === 0 ? 0 : 1;
}

export const press = (page, name) => page.getByRole('button', { name, exact: true }).click();
export const view = press;

export async function openSample(page) {
    await page.getByRole('button', { name: /^Sample device/ }).click();
    await page.getByRole('gridcell').first().waitFor();
}

export async function openText(page, name, text, roomy = false) {
    if (await page.getByRole('button', { name: 'Open…' }).isVisible()) {
        await press(page, 'Open…');
    }
    if (roomy) {
        await page.getByRole('checkbox', { name: /room for 1,000/ }).check();
    }
    await page.getByLabel('Snapshot files').setInputFiles({ name, mimeType: 'application/json', buffer: Buffer.from(text) });
}

// Types a statement as a user does, over what is there.
export async function type(page, text, label = 'Statement') {
    await page.getByRole('textbox', { name: label, exact: true }).click();
    await page.keyboard.press('Control+A');
    await page.keyboard.type(text);
    await page.keyboard.press('Escape');
}

export async function ask(page, database, statement) {
    await view(page, 'Ask');
    await page.getByRole('combobox', { name: 'Database', exact: true }).selectOption(database);
    await type(page, statement);
    await page.keyboard.press('Control+Enter');
}

export async function spoken(page, pattern) {
    const region = page.locator('#spoken');
    await region.filter({ hasText: pattern }).waitFor({ state: 'attached' }).catch(async () => {
        assert.match(await region.textContent(), pattern);
    });
}

export async function rows(page) {
    await page.getByRole('gridcell').first().waitFor();
    return page.getByRole('row').evaluateAll((lines) =>
        lines
            .filter((line) => line.offsetParent !== null && line.querySelector('[role=gridcell]'))
            .map((line) => [...line.children].map((cell) => cell.textContent)),
    );
}

export async function downloaded(page, act) {
    const [download] = await Promise.all([page.waitForEvent('download'), act()]);
    const chunks = [];
    for await (const chunk of await download.createReadStream()) {
        chunks.push(chunk);
    }
    return { name: download.suggestedFilename(), text: Buffer.concat(chunks).toString() };
}

export async function picture(page, name) {
    await page.screenshot({ path: join(pictures, `${origin}-${name}.png`) });
}
