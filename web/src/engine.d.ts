// What emscripten's script gives: a function that makes an engine.
declare module 'qrylib-engine' {
    export default function createEngine(options: {
        instantiateWasm(imports: WebAssembly.Imports, done: (instance: WebAssembly.Instance) => void): object;
    }): Promise<unknown>;
}
