// The ways to open a device: a file, the sample, an empty one, a roomy one.
import type { App } from './app';
import type { Capacities } from './device';
import { h } from './dom';
import { SIZE_MAX, sampleText } from './files';

export function openDoors(app: App, done: () => void): HTMLElement {
    const roomy = h('input', { type: 'checkbox' });
    const file = h('input', { type: 'file', accept: '.json,application/json', multiple: true, class: 'unseen', tabindex: -1, 'aria-label': 'Snapshot files' });
    const capacities = (): Capacities => (roomy.checked ? 'roomy' : 'shipped');
    file.addEventListener('change', () => {
        const files = [...(file.files ?? [])];
        done();
        files.forEach((one) => void app.openFile(one, capacities()));
    });
    const door = (title: string, text: string, open: () => void, kind = 'door') =>
        h('button', { type: 'button', class: kind, click: open }, h('strong', {}, title), h('span', {}, text));
    const open = (name: string, text: string | null, size: Capacities) => () => {
        done();
        void app.openText(name, text, size);
    };
    return h(
        'div',
        { class: 'doors' },
        door(
            'Open a snapshot',
            `Choose a file, or drop it anywhere on the page; up to ${SIZE_MAX / 1024 / 1024} MB of JSON.`,
            () => file.click(),
            'door wide',
        ),
        file,
        door('Sample device', 'An office with people, departments and counters.', open('sample', sampleText(), 'shipped')),
        door('Empty device', 'The shipped capacities, and no records.', open('empty', null, 'shipped')),
        door('Roomy device', 'Empty, with room for 1,000 records in every table.', open('roomy', null, 'roomy')),
        h('label', { class: 'check' }, roomy, 'Give a file’s device room for 1,000 records in every table'),
    );
}
