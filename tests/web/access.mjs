// Who uses the page without a mouse, without eyes, on a small screen: every view.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';

import { ask, axeSource, openSample, picture, press, runAll, spoken, test, view } from './harness.mjs';

const VIEWS = ['Records', 'Ask', 'Schema', 'Log', 'Fail', 'Compare'];
const axe = readFileSync(axeSource, 'utf8');

// Each view with something in it.
async function visit(page, name) {
    await view(page, name);
    if (name === 'Ask') {
        await ask(page, 'department_db', 'SELECT ID, NAME FROM DEPT_TBL WHERE ID < 40 AND ID = 65541');
        await spoken(page, /row/);
        await page.getByRole('tab', { name: 'Way' }).click();
        await page.getByRole('figure').waitFor();
    } else if (name === 'Log') {
        await press(page, 'Example');
        await page.getByRole('region', { name: 'Group 1' }).waitFor();
    } else if (name === 'Fail') {
        await press(page, 'Run and fail');
        await page.getByRole('region', { name: 'What came of it' }).locator('table').first().waitFor();
    } else if (name === 'Records') {
        await page.getByRole('gridcell').first().waitFor();
    } else if (name === 'Schema') {
        await page.locator('svg.schema').waitFor();
    }
}

async function findings(page) {
    const { violations } = await page.evaluate((source) => {
        if (globalThis.axe === undefined) {
            // The page's policy lets no script in, so the test's own way in is taken.
            (0, eval)(source);
        }
        return globalThis.axe.run(document, { runOnly: ['wcag2a', 'wcag2aa', 'wcag21a', 'wcag21aa', 'wcag22aa', 'best-practice'] });
    }, axe);
    return violations.flatMap(({ id, nodes }) => nodes.map((node) => `${id}: ${node.html.slice(0, 160)} ${node.any.map((one) => one.message).join('; ').slice(0, 200)}`));
}

for (const colorScheme of ['light', 'dark']) {
    test(`axe: no view has a finding, ${colorScheme}`, async (page) => {
        assert.deepEqual(await findings(page), [], 'opening');
        await picture(page, `open-${colorScheme}`);
        await openSample(page);
        for (const name of VIEWS) {
            await visit(page, name);
            assert.deepEqual(await findings(page), [], name);
            await picture(page, `${name.toLowerCase()}-${colorScheme}`);
        }
        await view(page, 'Records');
        await page.getByRole('gridcell').first().click();
        await page.getByRole('dialog').waitFor();
        assert.deepEqual(await findings(page), [], 'a record');
    }, { colorScheme, bypassCSP: true });
}

test('narrow: 380 pixels hold every view', async (page) => {
    const fits = async (name) => {
        const width = await page.evaluate(() => document.documentElement.scrollWidth);
        assert.ok(width <= 380, `${name} is ${width} pixels wide`);
        await picture(page, `narrow-${name.toLowerCase()}`);
    };
    await fits('open');
    await openSample(page);
    for (const name of VIEWS) {
        await visit(page, name);
        await fits(name);
    }
    await view(page, 'Records');
    await page.getByRole('combobox', { name: 'Table' }).selectOption('adbk_db.PSN_TBL');
    await page.getByRole('gridcell', { name: 'Sato Kenji' }).waitFor();
}, { viewport: { width: 380, height: 740 } });

const focused = (page) =>
    page.evaluate(() => {
        const element = document.activeElement;
        return element.getAttribute('aria-label') ?? element.textContent.slice(0, 40);
    });

test('keyboard: from opening to an answer without a mouse', async (page) => {
    await page.keyboard.press('Tab');
    assert.equal(await focused(page), 'Skip to the records');
    for (let i = 0; !(await focused(page)).startsWith('Sample device'); ++i) {
        assert.ok(i < 12, 'the sample is reached');
        await page.keyboard.press('Tab');
    }
    await page.keyboard.press('Enter');
    await page.getByRole('gridcell').first().waitFor();
    for (let i = 0; (await focused(page)) !== 'Ask'; ++i) {
        assert.ok(i < 8, 'the views are reached');
        await page.keyboard.press('Shift+Tab');
    }
    await page.keyboard.press('Enter');
    await page.getByRole('textbox', { name: 'Statement' }).waitFor();
    for (let i = 0; (await focused(page)) !== 'Statement'; ++i) {
        assert.ok(i < 24, 'the editor is entered');
        await page.keyboard.press('Tab');
    }
    await page.keyboard.type('SELECT COUNT(*) FROM PSN_TBL');
    await page.keyboard.press('Escape');
    await page.keyboard.press('Control+Enter');
    await spoken(page, /^1 row$/);
    await page.keyboard.press('Tab');
    assert.notEqual(await focused(page), 'Statement', 'the editor is left with Tab');
    await page.keyboard.press('Shift+Tab');
    assert.equal(await focused(page), 'Statement');
    await page.keyboard.press('Shift+Tab');
    assert.equal(await focused(page), 'Run', 'and with Shift+Tab');
});

test('keyboard: the grid is entered, walked, sorted, opened and left', async (page) => {
    await openSample(page);
    const grid = page.getByRole('grid');
    await page.getByRole('button', { name: 'Open in Ask' }).focus();
    await page.keyboard.press('Tab');
    assert.match(await focused(page), /^Records of DEPT_TBL, 101 rows/);
    const active = () => page.evaluate(() => document.querySelector('.grid .active')?.textContent);
    await page.keyboard.press('End');
    await page.keyboard.press('Home');
    await page.keyboard.press('ArrowRight');
    await page.keyboard.press('ArrowRight');
    assert.equal(await active(), 'D1010');
    await page.keyboard.press('ArrowDown');
    assert.equal(await active(), 'D1020');
    assert.equal(await page.evaluate(() => document.getElementById(document.querySelector('.grid').getAttribute('aria-activedescendant')).textContent), 'D1020');
    await page.keyboard.press('Control+End');
    assert.equal(await grid.evaluate((node) => node.scrollTop > 0), true);
    await page.keyboard.press('Control+Home');
    await page.keyboard.press('Enter');
    await spoken(page, /^Sorted by COLOR_PL, ascending/);
    await page.keyboard.press('ArrowDown');
    await page.keyboard.press('Enter');
    await page.getByRole('dialog', { name: /^Record \d+ of DEPT_TBL/ }).waitFor();
    await page.keyboard.press('Escape');
    await page.getByRole('dialog').waitFor({ state: 'detached' });
    assert.match(await focused(page), /^Records of DEPT_TBL/);
    await page.keyboard.press('Tab');
    assert.equal(await focused(page), 'The statement of this grid');
});

test('keyboard: the tabs of an answer are moved along with the arrows', async (page) => {
    await openSample(page);
    await ask(page, 'adbk_db', 'SELECT PSN_ID FROM PSN_TBL');
    await spoken(page, /^10 rows/);
    await page.getByRole('tab', { name: 'Rows' }).focus();
    await page.keyboard.press('ArrowRight');
    assert.equal(await focused(page), 'Way');
    await page.keyboard.press('ArrowLeft');
    await page.keyboard.press('ArrowLeft');
    assert.equal(await focused(page), 'Trace and cost');
    assert.ok(await page.getByRole('cell', { name: 'list_set_pos' }).isVisible());
});

test('spoken: answers and refusals reach the live region', async (page) => {
    const region = page.locator('#spoken');
    assert.equal(await region.getAttribute('aria-live'), 'polite');
    await openSample(page);
    await ask(page, 'adbk_db', 'SELECT PSN_ID FROM PSN_TBL WHERE PSN_ID < 4');
    await spoken(page, /^3 rows$/);
    await ask(page, 'adbk_db', 'SELECT PSN FROM PSN_TBL');
    await spoken(page, /^Refused: PSN_TBL has no column "PSN"/);
    await ask(page, 'adbk_db', 'DELETE FROM PSN_TBL WHERE PSN_ID < 3');
    await spoken(page, /^2 records deleted$/);
});

await runAll();
