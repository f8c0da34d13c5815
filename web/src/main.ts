// The page's frame: devices and views at the top, the view below; files dropped anywhere; links; leaving.
import { App, type View, type ViewName } from './app';
import { makeAsk } from './ask';
import { makeCompare } from './compare';
import type { Device } from './device';
import { button, h, openDialog, say } from './dom';
import { engines } from './engines';
import { makeFail } from './fail';
import { questionOfLink } from './link';
import { makeLog } from './log';
import { openDoors } from './open';
import { makeRecords } from './records';
import { makeSchema } from './schema';

const VIEWS: readonly { name: ViewName; title: string; make: (app: App, device: Device) => View }[] = [
    { name: 'records', title: 'Records', make: makeRecords },
    { name: 'ask', title: 'Ask', make: makeAsk },
    { name: 'schema', title: 'Schema', make: makeSchema },
    { name: 'log', title: 'Log', make: makeLog },
    { name: 'fail', title: 'Fail', make: makeFail },
    { name: 'compare', title: 'Compare', make: makeCompare },
];
const BUSY_AFTER = 200; // milliseconds until a statement that runs can be stopped

const app = new App(engines());
const kept = new WeakMap<Device, Map<ViewName, View>>();

function byId(id: string): HTMLElement {
    return document.getElementById(id)!;
}

function viewOf(device: Device, name: ViewName): View {
    const views = kept.get(device) ?? new Map<ViewName, View>();
    kept.set(device, views);
    let view = views.get(name);
    if (view === undefined) {
        view = VIEWS.find((one) => one.name === name)!.make(app, device);
        views.set(name, view);
    }
    return view;
}

function deviceTab(device: Device): HTMLElement {
    const isShown = device === app.current;
    return h(
        'li',
        { class: isShown ? 'device now' : 'device' },
        h(
            'button',
            { type: 'button', class: 'show', 'aria-current': isShown ? 'true' : null, click: () => app.select(device) },
            device.changed && h('span', { class: 'dot', role: 'img', 'aria-label': 'changed and not saved:' }),
            device.name,
        ),
        button('×', () => app.close(device), { class: 'close', 'aria-label': 'Close ' + device.name }),
    );
}

function openMore(): void {
    openDialog('Open another device', (close) => openDoors(app, close));
}

let nextTheme = 'dark';
function setTheme(theme: string): void {
    document.documentElement.dataset['theme'] = theme;
    nextTheme = theme === 'dark' ? 'light' : 'dark';
}

// Replaces what a place shows, and keeps the focus on the same button where it was.
function fill(place: HTMLElement, ...children: (Node | false)[]): void {
    const focused = place.contains(document.activeElement) ? document.activeElement!.textContent : null;
    place.replaceChildren(...children.filter((child): child is Node => child !== false));
    if (focused !== null) {
        [...place.querySelectorAll('button')].find((one) => one.textContent === focused)?.focus();
    }
}

const stopButton = button('Stop', () => void stop(), { class: 'stop', title: 'Ctrl+.' });
stopButton.hidden = true;

async function stop(): Promise<void> {
    stopButton.hidden = true;
    await app.stop();
    say('Stopped. The device is as it was before the statement.');
}

let busyTimer = 0;
function watchBusy(): void {
    clearTimeout(busyTimer);
    if (app.current?.isBusy !== true) {
        stopButton.hidden = true;
        return;
    }
    busyTimer = window.setTimeout(() => {
        stopButton.hidden = app.current?.isBusy !== true;
    }, BUSY_AFTER);
}

function drawFrame(): void {
    const device = app.current;
    fill(
        byId('devices'),
        h('ul', { 'aria-label': 'Open devices' }, ...app.devices.map(deviceTab)),
        device !== null && button('Open…', openMore, { class: 'plain' }),
    );
    fill(
        byId('actions'),
        stopButton,
        device !== null && button('Save', () => void app.save(device)),
        button(nextTheme === 'dark' ? 'Dark' : 'Light', () => {
            setTheme(nextTheme);
            drawFrame();
        }),
    );
    fill(
        byId('views'),
        ...(device === null
            ? []
            : VIEWS.map(({ name, title }) =>
                  button(title, () => app.show(name), { 'aria-current': app.view === name ? 'page' : null }),
              )),
    );
    byId('views').hidden = device === null;
    watchBusy();
}

let shownView: View | null = null;
function drawView(): void {
    const device = app.current;
    const main = byId('main');
    if (device === null) {
        shownView = null;
        main.replaceChildren(welcome());
        return;
    }
    const view = viewOf(device, app.view);
    if (view !== shownView) {
        shownView = view;
        main.replaceChildren(view.node);
        if (document.activeElement === document.body) {
            main.focus(); // what was focused is gone, and the views are one step back from here
        }
        void view.show();
    } else if (app.proposed !== null) {
        void view.show();
    }
}

function welcome(): HTMLElement {
    return h(
        'div',
        { class: 'welcome' },
        h(
            'div',
            { class: 'stack' },
            h('h2', {}, 'Look at a device’s records'),
            h(
                'p',
                { class: 'soft' },
                'The library itself runs in this page. Nothing is sent anywhere and nothing is kept: what you open is gone ' +
                    'when you leave, unless you save it.',
            ),
            app.proposed !== null &&
                h('p', { class: 'said' }, 'A link brought a statement. Open a device, and it waits in the editor.'),
        ),
        openDoors(app, () => undefined),
    );
}

function takeLink(): void {
    const question = questionOfLink(location.hash);
    if (question !== null) {
        app.proposed = question;
        app.view = 'ask';
        app.changed();
    }
}

function acceptDrops(): void {
    const isFile = (event: DragEvent) => event.dataTransfer?.types.includes('Files') === true;
    addEventListener('dragover', (event) => {
        if (isFile(event)) {
            event.preventDefault();
            document.body.classList.add('dropping');
        }
    });
    addEventListener('dragleave', (event) => {
        if (event.relatedTarget === null) {
            document.body.classList.remove('dropping');
        }
    });
    addEventListener('drop', (event) => {
        document.body.classList.remove('dropping');
        if (isFile(event)) {
            event.preventDefault();
            for (const file of event.dataTransfer!.files) {
                void app.openFile(file, 'shipped');
            }
        }
    });
}

setTheme(matchMedia('(prefers-color-scheme: dark)').matches ? 'dark' : 'light');
app.onChange(() => {
    drawFrame();
    drawView();
});
acceptDrops();
addEventListener('hashchange', takeLink);
addEventListener('keydown', (event) => {
    if (event.key === '.' && event.ctrlKey && !stopButton.hidden) {
        event.preventDefault();
        void stop();
    }
});
addEventListener('beforeunload', (event) => {
    if (app.devices.some((device) => device.changed)) {
        event.preventDefault();
        event.returnValue = '';
    }
});
takeLink();
app.changed();
