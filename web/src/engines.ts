// Where the engines come from: the worker's source and the modules, which the build put into scripts of their own so
// that the page's policy needs to know nothing but their hashes.
import type { Capacities, Engines } from './device';

declare global {
    // eslint-disable-next-line no-var
    var qrylibParts: Record<string, string> | undefined;
}
// Of the script that brings the roomy module, where it is not in the page already.
declare const __ROOMY_SCRIPT__: { source: string; integrity: string };

function bytesOf(base64: string): Uint8Array<ArrayBuffer> {
    const text = atob(base64);
    const bytes = new Uint8Array(text.length);
    for (let i = 0; i < text.length; ++i) {
        bytes[i] = text.charCodeAt(i);
    }
    return bytes;
}

function part(name: string): string | undefined {
    return globalThis.qrylibParts?.[name];
}

function loadRoomy(): Promise<void> {
    return new Promise((resolve, reject) => {
        const script = document.createElement('script');
        script.src = __ROOMY_SCRIPT__.source;
        script.integrity = __ROOMY_SCRIPT__.integrity;
        script.onload = () => resolve();
        script.onerror = () => reject(new Error('The roomy engine could not be loaded.'));
        document.head.append(script);
    });
}

export function engines(): Engines {
    const compiled = new Map<Capacities, Promise<WebAssembly.Module>>();
    const worker = URL.createObjectURL(new Blob([part('worker')!], { type: 'text/javascript' }));
    const compile = async (capacities: Capacities) => {
        if (capacities === 'roomy' && part('roomy') === undefined) {
            await loadRoomy();
        }
        return WebAssembly.compile(bytesOf(part(capacities)!));
    };
    const module = (capacities: Capacities) => {
        const known = compiled.get(capacities) ?? compile(capacities);
        compiled.set(capacities, known);
        return known;
    };
    void module('shipped'); // ready before somebody opens a device
    return { worker: () => new Worker(worker), module };
}
