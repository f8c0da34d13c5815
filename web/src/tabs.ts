// Tabs over panels; the arrows move between them.
import { h } from './dom';

export interface Tab {
    title: string;
    node: HTMLElement;
}
let tabNumber = 0;

export class Tabs {
    readonly node: HTMLElement;
    chosen = 0;
    private readonly heads: HTMLElement[];
    private readonly panels: HTMLElement[];

    constructor(label: string, tabs: Tab[]) {
        const name = 'tabs' + ++tabNumber;
        this.heads = tabs.map((tab, index) =>
            h(
                'button',
                {
                    type: 'button',
                    role: 'tab',
                    id: `${name}-${index}`,
                    'aria-controls': `${name}-panel-${index}`,
                    click: () => this.choose(index),
                    keydown: (event: KeyboardEvent) => this.press(event),
                },
                tab.title,
            ),
        );
        this.panels = tabs.map((tab, index) =>
            h('div', { role: 'tabpanel', id: `${name}-panel-${index}`, 'aria-labelledby': `${name}-${index}` }, tab.node),
        );
        this.node = h('div', { class: 'stack' }, h('div', { class: 'tabs', role: 'tablist', 'aria-label': label }, ...this.heads), ...this.panels);
        this.choose(0);
    }

    choose(index: number): void {
        this.chosen = index;
        this.heads.forEach((head, i) => {
            head.setAttribute('aria-selected', String(i === index));
            head.tabIndex = i === index ? 0 : -1;
            this.panels[i]!.hidden = i !== index;
        });
    }

    private press(event: KeyboardEvent): void {
        const steps: Record<string, number> = { ArrowRight: 1, ArrowLeft: -1 };
        const step = steps[event.key];
        if (step !== undefined) {
            event.preventDefault();
            this.choose((this.chosen + step + this.heads.length) % this.heads.length);
            this.heads[this.chosen]!.focus();
        }
    }
}
