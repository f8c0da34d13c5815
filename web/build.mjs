// Builds the page: site/ for a web server and qrylib.html, the same in one file.
//
// usage: node build.mjs ENGINE.js NODE_MODULES OUTPUT (the modules and the roomy engine lie beside the engine)
//
// Everything that runs is a script with a hash that the page's policy names: the engine's two modules and the worker
// are texts in scripts of their own, so that nothing needs to be fetched.
import { createHash } from 'node:crypto';
import { mkdirSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { dirname, join, resolve } from 'node:path';
import { fileURLToPath, pathToFileURL } from 'node:url';

const [engine, modules, output] = process.argv.slice(2).map((path) => resolve(path));
const small = engine.replace(/\.js$/, '.wasm');
const roomyEngine = engine.replace(/\.js$/, '_roomy.js');
const roomy = roomyEngine.replace(/\.js$/, '.wasm');
const here = dirname(fileURLToPath(import.meta.url));
const esbuild = (await import(pathToFileURL(join(modules, 'esbuild/lib/main.js')))).default;

// The editor's styles come at run time; it says this word to be let in.
const nonce = createHash('sha256').update(readFileSync(small)).update(readFileSync(join(here, 'package-lock.json'))).digest('base64url').slice(0, 22);

const hashOf = (text) => 'sha256-' + createHash('sha256').update(text).digest('base64');

async function bundle(entry, define = {}) {
    const built = await esbuild.build({
        entryPoints: [join(here, 'src', entry)],
        bundle: true,
        write: false,
        minify: true,
        charset: 'utf8',
        format: 'iife',
        target: ['es2022'],
        legalComments: 'none',
        nodePaths: [modules],
        alias: { 'qrylib-engine': engine },
        define,
        logLevel: 'warning',
    });
    return built.outputFiles[0].text;
}

// Both modules run behind one script, so theirs may differ in nothing but the module's name.
const scriptOf = (path) => readFileSync(path, 'utf8').replaceAll('engine_roomy.wasm', 'engine.wasm');
if (scriptOf(engine) !== scriptOf(roomyEngine)) {
    throw new Error('the scripts of the two engines differ');
}

function part(name, text) {
    return `(globalThis.qrylibParts??={}).${name}=${JSON.stringify(text).replaceAll('</', '<\\/')};\n`;
}

const parts = {
    'engine.js': part('shipped', readFileSync(small).toString('base64')),
    'worker.js': part('worker', await bundle('worker.ts')),
};
const roomyPart = part('roomy', readFileSync(roomy).toString('base64'));
const roomyScript = JSON.stringify({ source: 'roomy.js', integrity: hashOf(roomyPart) });
const page = (await bundle('main.ts', { __NONCE__: JSON.stringify(nonce), __ROOMY_SCRIPT__: roomyScript })).replaceAll('</script', '<\\/script');
const style = (await esbuild.transform(readFileSync(join(here, 'src/style.css'), 'utf8'), { loader: 'css', minify: true, charset: 'utf8' })).code;

function policy() {
    const scripts = [...Object.values(parts), roomyPart, page].map((text) => `'${hashOf(text)}'`).join(' ');
    return [
        "default-src 'none'",
        `script-src ${scripts} 'wasm-unsafe-eval'`,
        `style-src '${hashOf(style)}' 'nonce-${nonce}'`,
        'worker-src blob:',
        'img-src data:',
        "base-uri 'none'",
        "form-action 'none'",
    ].join('; ');
}

const template = readFileSync(join(here, 'index.html'), 'utf8');
const fill = (scriptTags) =>
    template
        .replace('<!--POLICY-->', () => `<meta http-equiv="Content-Security-Policy" content="${policy()}">`)
        .replace('<!--STYLE-->', () => `<style>${style}</style>`)
        .replace('<!--SCRIPTS-->', () => scriptTags);

const site = join(output, 'site');
rmSync(site, { recursive: true, force: true });
mkdirSync(site, { recursive: true });
const files = { ...parts, 'page.js': page };
const linked = Object.entries(files).map(([name, text]) => `<script src="${name}" integrity="${hashOf(text)}"></script>`);
const inlined = [...Object.values(parts), roomyPart, page].map((text) => `<script>${text}</script>`);
writeFileSync(join(site, 'index.html'), fill(linked.join('\n')));
writeFileSync(join(site, 'roomy.js'), roomyPart);
Object.entries(files).forEach(([name, text]) => writeFileSync(join(site, name), text));
writeFileSync(join(output, 'qrylib.html'), fill(inlined.join('\n')));
