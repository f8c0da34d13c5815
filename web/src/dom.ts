// Elements made of texts alone: nothing that a device holds is ever read as HTML.

type Child = Node | string | null | undefined | false;
type Attributes = Record<string, string | number | boolean | null | undefined | ((event: never) => void)>;

function dress(element: Element, attributes: Attributes): void {
    for (const [name, value] of Object.entries(attributes)) {
        if (value === null || value === undefined || value === false) {
            continue;
        }
        if (typeof value === 'function') {
            element.addEventListener(name, value as EventListener);
        } else {
            element.setAttribute(name, value === true ? '' : String(value));
        }
    }
}

// An element; an attribute that is a function is a listener of that event.
export function h<K extends keyof HTMLElementTagNameMap>(
    tag: K,
    attributes: Attributes = {},
    ...children: Child[]
): HTMLElementTagNameMap[K] {
    const element = document.createElement(tag);
    dress(element, attributes);
    element.append(...children.filter((child): child is Node | string => Boolean(child)));
    return element;
}

export function svg(tag: string, attributes: Attributes = {}, ...children: Child[]): SVGElement {
    const element = document.createElementNS('http://www.w3.org/2000/svg', tag);
    dress(element, attributes);
    element.append(...children.filter((child): child is Node | string => Boolean(child)));
    return element;
}

export function button(text: string, press: () => void, attributes: Attributes = {}): HTMLButtonElement {
    return h('button', { type: 'button', click: press, ...attributes }, text);
}

export function field(label: string, control: HTMLElement, wide = false): HTMLLabelElement {
    return h('label', { class: wide ? 'field wide' : 'field' }, label, control);
}

export function select(options: readonly string[], chosen: string, change: (value: string) => void): HTMLSelectElement {
    const list = h('select', {}, ...options.map((one) => h('option', { value: one }, one)));
    list.value = chosen;
    list.addEventListener('change', () => change(list.value));
    return list;
}

// Says a sentence to those who cannot see what changed.
export function say(sentence: string): void {
    const region = document.getElementById('spoken');
    if (region !== null) {
        region.textContent = '';
        region.textContent = sentence;
    }
}

export function plural(number: number, one: string, many = one + 's'): string {
    return number.toLocaleString('en') + ' ' + (number === 1 ? one : many);
}

export function code16(code: number): string {
    return '0x' + code.toString(16).toUpperCase().padStart(4, '0');
}

// A bar that is filled in a proportion.
export function fillBar(part: number, whole: number): HTMLElement {
    const inner = h('span');
    inner.style.width = (whole === 0 ? 0 : Math.max(part === 0 ? 0 : 1.5, (100 * part) / whole)) + '%';
    return h('div', { class: part >= whole && whole > 0 ? 'fill full' : 'fill', 'aria-hidden': 'true' }, inner);
}

// A dialog with a title; closed by its button, by Escape, and by what `close` it is handed to.
export function openDialog(title: string, make: (close: () => void) => Node): HTMLDialogElement {
    const before = document.activeElement as HTMLElement | null;
    const dialog = h('dialog', { 'aria-label': title });
    const close = () => dialog.close();
    dialog.append(
        h('div', { class: 'dialog-head' }, h('h2', {}, title), button('Close', close, { class: 'plain' })),
        h('div', { class: 'dialog-body' }, make(close)),
    );
    dialog.addEventListener('close', () => {
        dialog.remove();
        before?.focus();
    });
    dialog.addEventListener('click', (event) => {
        if (event.target === dialog) {
            close();
        }
    });
    document.body.append(dialog);
    dialog.showModal();
    return dialog;
}

// Hands a text out as a file.
export function download(name: string, type: string, text: string): void {
    const address = URL.createObjectURL(new Blob([text], { type }));
    h('a', { href: address, download: name }).click();
    setTimeout(() => URL.revokeObjectURL(address), 10_000);
}
