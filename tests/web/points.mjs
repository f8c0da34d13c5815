// What the page is for, point by point: from a server and from its file.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { fileURLToPath } from 'node:url';

import { ask, downloaded, openSample, openText, picture, press, rows, runAll, spoken, test, type, view } from './harness.mjs';

const office = readFileSync(fileURLToPath(new URL('../../examples/office.json', import.meta.url)), 'utf8');
const people = (list) => JSON.stringify({ format: 1, databases: { adbk_db: { PSN_TBL: { records: list } } } });

// 1. Opening and comparing.
test('open: a file becomes a device in a tab, checked', async (page) => {
    await openText(page, 'office.json', office);
    await spoken(page, /^(office is open|101 rows)/);
    await page.getByRole('heading', { name: 'DEPT_TBL' }).waitFor();
    await press(page, 'Open…');
    await page.getByRole('button', { name: /^Empty device/ }).click();
    await spoken(page, /^(empty is open|0 rows)/);
    const tabs = page.getByRole('list', { name: 'Open devices' });
    assert.deepEqual(await tabs.getByRole('listitem').allTextContents(), ['office×', 'empty×']);
    await tabs.getByRole('button', { name: 'office', exact: true }).click();
    assert.equal(await tabs.locator('[aria-current]').textContent(), 'office');
});

test('open: a dropped file is opened', async (page) => {
    await page.evaluate((text) => {
        const carried = new DataTransfer();
        carried.items.add(new File([text], 'dropped.json', { type: 'application/json' }));
        for (const name of ['dragover', 'drop']) {
            dispatchEvent(new DragEvent(name, { dataTransfer: carried, cancelable: true }));
        }
    }, people([{ PSN_ID: 7, PSN_NAME: 'Dropped' }]));
    await page.getByRole('gridcell', { name: 'Dropped' }).waitFor();
});

test('open: a refusal shows the place', async (page) => {
    await openText(page, 'wrong.json', people([{ PSN_ID: 1 }, { PSN_ID: 'one' }]));
    const alert = page.getByRole('alert');
    await alert.waitFor();
    assert.match(await alert.textContent(), /wrong.*is not a number.*adbk_db\.PSN_TBL record 1, PSN_ID/s);
    await spoken(page, /wrong was not opened/);
    await page.keyboard.press('Escape');
    await openText(page, 'cut.json', '{"format": 1,\n "databases": }');
    await alert.waitFor();
    assert.match(await alert.textContent(), /line 2, column 15/);
    assert.match(await alert.locator('pre').textContent(), /^ "databases": }\n {14}\^$/);
    assert.equal(await page.getByRole('listitem').count(), 0, 'a refused file is no device');
});

test('compare: two devices cell by cell', async (page) => {
    await openText(page, 'first.json', people([{ PSN_ID: 1, PSN_NAME: 'Sato' }, { PSN_ID: 2, PSN_NAME: 'Abe' }]));
    await page.getByRole('gridcell', { name: 'Sato' }).waitFor();
    await openText(page, 'second.json', people([{ PSN_ID: 1, PSN_NAME: 'Saito' }, { PSN_ID: 3, PSN_NAME: 'Ito' }]));
    await page.getByRole('gridcell', { name: 'Saito' }).waitFor();
    await view(page, 'Compare');
    await spoken(page, /^3 differences in 1 table/);
    const lines = await page.getByRole('region', { name: 'PSN_TBL' }).getByRole('row').allTextContents();
    assert.deepEqual(lines, [
        'RecordColumnsecondfirst',
        'PSN_ID 1PSN_NAMESaitoSato',
        'PSN_ID 3only in secondPSN_ID 3, PSN_NAME Ito',
        'PSN_ID 2only in firstPSN_ID 2, PSN_NAME Abe',
    ]);
    await picture(page, 'compare');
});

// 2. Looking.
test('look: tables with records in use, sorted and filtered by the dialect', async (page) => {
    await openSample(page);
    const tables = page.getByRole('navigation', { name: 'Tables' });
    assert.equal(await tables.getByRole('button', { name: /^PSN_TBL/ }).textContent(), 'PSN_TBL10 / 10');
    assert.equal(await tables.getByRole('button', { name: /^P_JOB_LOG_TBL/ }).textContent(), 'P_JOB_LOG_TBL1 / 1');
    await tables.getByRole('button', { name: /^PSN_TBL/ }).click();
    await spoken(page, /^10 rows/);
    await page.getByRole('columnheader', { name: 'PSN_NAME' }).click();
    await spoken(page, /Sorted by PSN_NAME, ascending/);
    const statement = page.getByLabel('The statement of this grid');
    assert.match(await statement.textContent(), /FROM PSN_TBL ORDER BY PSN_NAME$/);
    assert.equal((await rows(page))[0][4], 'Anna Becker');
    await page.getByRole('columnheader', { name: 'PSN_NAME' }).click();
    await spoken(page, /Sorted by PSN_NAME, descending/);
    assert.equal((await rows(page)).at(-1)[4], 'Anna Becker');
    await page.getByLabel('Condition, as in WHERE').fill("PSN_NAME LIKE 'Sa%'");
    await press(page, 'Filter');
    await spoken(page, /^2 rows/);
    assert.deepEqual((await rows(page)).map((row) => row[4]).sort(), ['Saito Haruka', 'Sato Kenji']);
    await page.getByLabel('Condition, as in WHERE').fill('PSN_NAMES = 1');
    await press(page, 'Filter');
    await spoken(page, /Refused: .*PSN_NAMES/);
    await picture(page, 'records-refused');
});

test('look: a grid of many records holds those in sight', async (page) => {
    const many = Array.from({ length: 1000 }, (_, i) => ({ PSN_ID: i + 1, PSN_NAME: 'Person ' + (i + 1) }));
    await openText(page, 'many.json', people(many), true);
    await spoken(page, /^(many is open|1,000 rows)/);
    const grid = page.getByRole('grid');
    await page.getByRole('gridcell', { name: 'Person 1', exact: true }).waitFor();
    assert.equal(await grid.getAttribute('aria-rowcount'), '1001');
    assert.ok((await grid.getByRole('row').count()) < 80);
    await grid.focus();
    await page.keyboard.press('Control+End');
    await page.getByRole('gridcell', { name: 'Person 1000' }).waitFor();
    assert.ok((await grid.getByRole('row').count()) < 80);
});

test('look: a record with its bytes, members over a composite', async (page) => {
    const log = { JOB_ID: 5, SEND_INFO_ID: 9, ADDRESS: 'ab@c.d', FAX_TIME: 258 };
    await openText(page, 'log.json', JSON.stringify({ format: 1, databases: { log_db: { S_JOB_LOG_SND_TBL: { records: [log] } } } }), true);
    await page.getByRole('gridcell').first().click();
    const dialog = page.getByRole('dialog');
    await dialog.waitFor();
    assert.match(await dialog.locator('h2').textContent(), /^Record 0 of S_JOB_LOG_SND_TBL$/);
    const composite = dialog.locator('section.element', { hasText: 'composite of' });
    assert.equal(await composite.getByRole('img', { name: 'ADDRESS: bytes 0 to 128' }).count(), 1);
    assert.equal(await composite.getByRole('img', { name: 'FAX_TIME: bytes 68 to 71' }).count(), 1);
    const bytes = await composite.getByRole('group', { name: 'Bytes' }).textContent();
    assert.match(bytes, /^00061 62 40 63 2E 64 /, 'the address');
    assert.match(bytes, /04000 00 00 00 00 00 01 02/, 'a number begins with its highest byte, as on the device');
    await picture(page, 'record');
    await page.keyboard.press('Escape');
    await dialog.waitFor({ state: 'detached' });
    assert.equal(await page.evaluate(() => document.activeElement.getAttribute('role')), 'grid');
});

test('look: a picture of the schema, and a join from it', async (page) => {
    await openSample(page);
    await view(page, 'Schema');
    const drawn = page.locator('svg.schema');
    await drawn.waitFor();
    assert.match(await drawn.getAttribute('aria-label'), /^12 tables\. PSN_ID joins EMAIL_TBL, FAX_TBL, .*PSN_TBL/);
    await picture(page, 'schema');
    await page.getByRole('combobox', { name: 'Database', exact: true }).selectOption('department_db');
    await page.getByRole('button', { name: 'Ask for a join by ID', exact: true }).click();
    const editor = page.getByRole('textbox', { name: 'Statement' });
    await editor.filter({ hasText: 'EDIT_CNT_TBL' }).waitFor();
    assert.match(await editor.textContent(), /WHERE DEPT_TBL\.ID = EDIT_CNT_TBL\.ID$/);
    await editor.click();
    await page.keyboard.press('Control+Enter');
    await spoken(page, /^2 rows/);
});

// 3. Asking.
test('ask: completion, notes while typing, rows, history', async (page) => {
    await openSample(page);
    await view(page, 'Ask');
    await page.getByRole('combobox', { name: 'Database', exact: true }).selectOption('adbk_db');
    await page.getByRole('textbox', { name: 'Statement' }).click();
    await page.keyboard.type('SELECT PSN_NAME FROM PSN_T');
    await page.getByRole('option', { name: 'PSN_TBL' }).waitFor();
    await page.waitForTimeout(250); // a list that has just opened takes no Enter, which may have been meant for the text
    await page.keyboard.press('Enter');
    await page.keyboard.type(' WHERE PSN_ID = 65541');
    const notes = page.getByRole('group', { name: 'Notes' });
    await notes.getByText(/65541 is compared as 5/).waitFor();
    assert.match(await notes.locator('pre').textContent(), /^SELECT PSN_NAME FROM PSN_TBL WHERE PSN_ID = 65541\n {44}\^{5}$/);
    await picture(page, 'ask-typing');
    await page.keyboard.press('Control+Enter');
    await spoken(page, /^1 row$/);
    assert.deepEqual(await rows(page), [['Tanaka Yuki']]);
    await type(page, "SELECT PSN_NAME FROM PSN_TBL WHERE PSN_NAME = '鈴木 花子' OR PSN_ID = x AND PSN_ID = 1");
    await notes.getByText(/Refused: AND and OR do not mix/).waitFor();
    const [line, carets] = (await notes.locator('pre').first().textContent()).split('\n');
    const wide = [...line.slice(0, line.indexOf('AND'))].filter((one) => one >= '\u1100').length;
    assert.equal(carets.indexOf('^'), line.indexOf('AND') + wide, 'wide characters take two columns');
    await page.keyboard.press('Alt+ArrowUp');
    assert.match(await page.getByRole('textbox', { name: 'Statement' }).textContent(), /65541$/);
});

test('ask: strict statements, and an UPDATE that counts', async (page) => {
    await openSample(page);
    await ask(page, 'department_db', "UPDATE DEPT_TBL SET NAME = 'New' WHERE ID IN (1,2,3)");
    await spoken(page, /^3 records changed$/);
    assert.equal(await page.getByRole('img', { name: /changed and not saved/ }).count(), 1);
    await page.getByRole('checkbox', { name: 'Strict' }).check();
    await type(page, 'SELECT ID FROM DEPT_TBL WHERE ID = 65541');
    await page.keyboard.press('Control+Enter');
    await spoken(page, /^Refused: 65541 is compared as 5/);
});

test('ask: a link carries the statement, fills the editor and runs nothing', async (page) => {
    await openSample(page);
    await view(page, 'Ask');
    await page.getByRole('combobox', { name: 'Database', exact: true }).selectOption('department_db');
    await type(page, "DELETE FROM DEPT_TBL WHERE NAME = '経理部'");
    await press(page, 'Link');
    const link = await page.getByLabel('Link to this statement').inputValue();
    assert.match(link, /#ask=department_db%3ADELETE/);
    await page.goto('about:blank');
    await page.goto(link);
    await page.getByRole('button', { name: /^Sample device/ }).click();
    const editor = page.getByRole('textbox', { name: 'Statement' });
    await editor.filter({ hasText: 'DELETE' }).waitFor();
    assert.equal(await editor.textContent(), "DELETE FROM DEPT_TBL WHERE NAME = '経理部'");
    assert.equal(await page.getByRole('combobox', { name: 'Database', exact: true }).inputValue(), 'department_db');
    await page.waitForTimeout(300);
    assert.equal(await page.getByRole('region', { name: 'Answer' }).count(), 0, 'nothing ran');
    await view(page, 'Records');
    await page.getByText('101 records in use of 101').waitFor();
});

// 4. Understanding.
test('understand: the way of a SELECT, whose visits are the platform calls', async (page) => {
    await openSample(page);
    await ask(page, 'department_db', "SELECT ID, NAME FROM DEPT_TBL WHERE ID < 40 AND NAME LIKE 'C%' ORDER BY NAME DESC");
    await spoken(page, /rows$/);
    await page.getByRole('tab', { name: 'Way' }).click();
    const way = page.getByRole('figure', { name: 'The way of the statement' });
    const stations = await way.locator('.station').allTextContents();
    assert.match(stations[0], /^ReadSELECT on DEPT_TBL$/);
    assert.match(stations[1], /^DEPT_TBL101 records$/);
    assert.match(stations[2], /^In use101 visited, 101 leftAND ID != 0$/);
    assert.match(stations[3], /^Key 1101 visited, 39 leftAND ID < 40$/);
    assert.match(stations[4], /^Key 239 visited, \d+ leftAND NAME LIKE 'C'$/);
    assert.match(stations[5], /^SortedNAME DESC$/);
    assert.match(stations[6], /^Answered\d+ rows$/);
    const visits = stations.map((text) => Number(/(\d+) visited/.exec(text.replace(/^Key \d/, ''))?.[1] ?? 0)).reduce((a, b) => a + b);
    assert.ok((await way.locator('figcaption').textContent()).includes(`list_set_pos ${visits}`), `${visits} visits`);
    await picture(page, 'way');
});

test('understand: the way of a join and of a refusal', async (page) => {
    await openSample(page);
    await ask(page, 'department_db', 'SELECT DEPT_TBL.NAME, EDIT_CNT_TBL.CNT FROM DEPT_TBL, EDIT_CNT_TBL WHERE DEPT_TBL.ID = EDIT_CNT_TBL.ID AND DEPT_TBL.ID < 5');
    await spoken(page, /^2 rows/);
    await page.getByRole('tab', { name: 'Way' }).click();
    const way = page.getByRole('figure', { name: 'The way of the statement' });
    await way.waitFor();
    assert.match(await way.getByRole('list', { name: 'Search of DEPT_TBL' }).textContent(), /Key 1101 visited, 4 left/);
    assert.equal(await way.getByRole('list', { name: 'Search of EDIT_CNT_TBL' }).count(), 1);
    assert.match(await way.textContent(), /JoinedDEPT_TBL\.ID = EDIT_CNT_TBL\.ID|Joined2 rowsDEPT_TBL\.ID = EDIT_CNT_TBL\.ID/);
    await picture(page, 'way-join');
    await type(page, 'SELECT NAME FROM DEPT_TBL WHERE ID = 1 AND ID = 2 OR ID = 3');
    await page.keyboard.press('Control+Enter');
    await spoken(page, /^Refused/);
    await way.locator('.stopped').waitFor();
    assert.match(await way.locator('.stopped').textContent(), /Stopped in set_filter_str\(\), line 1527.*AND and OR mixed/s);
    assert.deepEqual(await way.locator('.unreached .what').allTextContents(), ['Tables and columns', 'Search']);
    await picture(page, 'way-refused');
    await page.getByRole('tab', { name: 'Trace and cost' }).click();
    assert.equal(await page.getByRole('cell', { name: 'set_filter_str' }).count(), 1);
});

test('understand: the way of a change is the one before it changed anything', async (page) => {
    await openSample(page);
    await ask(page, 'department_db', 'DELETE FROM DEPT_TBL WHERE ID < 40');
    await spoken(page, /^39 records deleted/);
    const way = page.getByRole('figure', { name: 'The way of the statement' });
    await way.waitFor();
    assert.match(await way.textContent(), /Key 1101 visited, 39 leftAND ID < 40Deleted39 records deleted/);
});

// 5. Logs.
test('log: known lines get their cause, unknown ones stay; grouped and filtered', async (page) => {
    await openSample(page);
    await view(page, 'Log');
    await page.getByLabel('Trace lines, or a whole log').fill(
        [
            "qrysh> SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = 'a AND b'",
            'trim_single_q_str():[Return]:(2512) (0x0000DB00)',
            '12:00 the door was opened',
            'qry_lib_db_wrapper_exec_query():[Return]:(127) (0x0000DB00)',
            'DELETE FROM DEPT_TBL WHERE',
            'create_primary_filter_key():[Return]:(849) (0x0000DB05)',
            'qry_lib_db_wrapper_exec():[Return]:(88) (0x0000DB05)',
        ].join('\n'),
    );
    await press(page, 'Explain');
    const groups = page.getByRole('region', { name: /^Group/ });
    await groups.nth(1).waitFor();
    assert.equal(await groups.count(), 2);
    assert.match(await groups.first().textContent(), /PSN_TBL.*opening quote without a closing one.*12:00 the door was opened/s);
    await picture(page, 'log');
    await page.getByLabel('Table').selectOption('DEPT_TBL');
    await spoken(page, /^1 group shown/);
    assert.match(await groups.first().textContent(), /the table is unknown or has no key columns/);
    await page.getByLabel('Table').selectOption('all');
    await page.getByLabel('Code').selectOption('0xDB00');
    await spoken(page, /^1 group shown/);
    await page.getByLabel('Code').selectOption('all');
    await page.getByLabel('Function').selectOption('create_primary_filter_key');
    await spoken(page, /^1 group shown/);
});

// 6. Failing.
test('fail: a call of the platform fails, and what was written is told and put back', async (page) => {
    await openSample(page);
    await view(page, 'Fail');
    await page.getByLabel('Platform call').selectOption('set_table');
    await page.getByLabel('Calls let through first').fill('2');
    await press(page, 'Run and fail');
    await spoken(page, /^Failed with QRY_LIB_TABLE_ACCESS/);
    const answer = page.getByRole('region', { name: 'What came of it' });
    await answer.getByRole('rowheader').first().waitFor();
    assert.deepEqual(await answer.getByRole('rowheader').allTextContents(), ['ID 1', 'ID 2']);
    assert.equal(await answer.getByRole('cell', { name: 'an element could not be written' }).count(), 1);
    await picture(page, 'fail');
    await press(page, 'Put the records back');
    await spoken(page, /as they were before/);
    await press(page, 'Run and fail');
    await answer.getByRole('rowheader').first().waitFor();
    assert.deepEqual(await answer.getByRole('rowheader').allTextContents(), ['ID 1', 'ID 2'], 'the same once more');
});

// 7. Stopping, limits, leaving.
test('stop: a running join ends within a second, and the device is as before', async (page) => {
    // Ten thousand rows of the first two tables, each beside a thousand records of the third: seconds of work.
    const recordsOf = (make) => ({ records: Array.from({ length: 1000 }, (_, i) => ({ PSN_ID: i + 1, ...make(i) })) });
    const tables = {
        PSN_TBL: recordsOf((i) => ({ INTEG_ID: (i % 100) + 1 })),
        FTP_TBL: recordsOf((i) => ({ FTP_PORT: (i % 100) + 1 })),
        SMB_TBL: recordsOf(() => ({})),
    };
    await openText(page, 'roomy.json', JSON.stringify({ format: 1, databases: { adbk_db: tables } }), true);
    await page.getByRole('gridcell').first().waitFor();
    await ask(page, 'adbk_db', "UPDATE PSN_TBL SET PSN_NAME = 'Kept' WHERE PSN_ID = 1");
    await spoken(page, /^1 record changed/);
    await type(
        page,
        'SELECT PSN_TBL.PSN_ID, SMB_TBL.PSN_ID FROM PSN_TBL, FTP_TBL, SMB_TBL ' +
            'WHERE PSN_TBL.INTEG_ID = FTP_TBL.FTP_PORT AND PSN_TBL.PSN_ID = SMB_TBL.PSN_ID',
    );
    await page.keyboard.press('Control+Enter');
    await page.getByRole('button', { name: 'Stop' }).waitFor();
    await picture(page, 'stop');
    const took = await page.evaluate(async () => {
        const start = performance.now();
        document.querySelector('.stop').click();
        while (!/was stopped/.test(document.querySelector('[aria-label=Notes]').textContent)) {
            await new Promise((done) => setTimeout(done, 5));
        }
        return performance.now() - start;
    });
    assert.ok(took < 1000, `${took} ms`);
    await spoken(page, /as it (is|was) before/);
    await type(page, "SELECT COUNT(*) FROM PSN_TBL WHERE PSN_NAME = 'Kept' AND INTEG_ID = 1");
    await page.keyboard.press('Control+Enter');
    await spoken(page, /^1 row$/);
    assert.deepEqual(await rows(page), [['1']]);
});

test('stop: files too large or too deep are not read', async (page) => {
    await page.evaluate(() => {
        const read = Blob.prototype.text;
        globalThis.readFiles = 0;
        Blob.prototype.text = function () {
            ++globalThis.readFiles;
            return read.call(this);
        };
    });
    await openText(page, 'large.json', ' '.repeat(8 * 1024 * 1024 + 1));
    await page.getByRole('alert').getByText(/9 MB; snapshots up to 8 MB/).waitFor();
    assert.equal(await page.evaluate(() => globalThis.readFiles), 0);
    await page.keyboard.press('Escape');
    await openText(page, 'deep.json', '['.repeat(17) + ']'.repeat(17));
    await page.getByRole('alert').getByText(/nested deeper than 16 levels at character 17/).waitFor();
});

test('stop: leaving and closing with unsaved changes asks', async (page) => {
    await openSample(page);
    const asks = () =>
        page.evaluate(() => {
            const event = new Event('beforeunload', { cancelable: true });
            dispatchEvent(event);
            return event.defaultPrevented;
        });
    assert.equal(await asks(), false, 'nothing to lose');
    await ask(page, 'department_db', 'DELETE FROM DEPT_TBL WHERE ID = 1');
    await spoken(page, /^1 record deleted/);
    assert.equal(await asks(), true);
    await press(page, 'Close sample');
    await page.getByRole('dialog', { name: 'Close without saving?' }).waitFor();
    await page.keyboard.press('Escape');
    assert.equal(await page.getByRole('listitem').first().textContent(), 'sample×');
    await downloaded(page, () => press(page, 'Save'));
    assert.equal(await asks(), false, 'saved');
    await press(page, 'Close sample');
    await page.getByRole('heading', { name: /Look at a device/ }).waitFor();
});

// 8. Saving and exporting.
test('save: a snapshot that opens again, CSV and JSON', async (page) => {
    await openText(page, 'office.json', office);
    await page.getByRole('gridcell').first().waitFor();
    await ask(page, 'adbk_db', "UPDATE PSN_TBL SET PSN_NAME = 'A \"quoted\", 名前' WHERE PSN_ID = 1");
    await spoken(page, /^1 record changed/);
    const saved = await downloaded(page, () => press(page, 'Save'));
    assert.equal(saved.name, 'office.json');
    assert.equal(JSON.parse(saved.text).databases.adbk_db.PSN_TBL.records[0].PSN_NAME, 'A "quoted", 名前');
    assert.equal(JSON.parse(saved.text).databases.department_db.DEPT_TBL.records.length, 101);
    await type(page, 'SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID < 3');
    await page.keyboard.press('Control+Enter');
    await spoken(page, /^2 rows/);
    const csv = await downloaded(page, () => press(page, 'CSV'));
    assert.deepEqual(csv.text.trim().split(/\r?\n/), ['PSN_ID,PSN_NAME', '1,"A ""quoted"", 名前"', '2,鈴木 花子']);
    const json = await downloaded(page, () => press(page, 'JSON'));
    assert.deepEqual(JSON.parse(json.text), [{ PSN_ID: 1, PSN_NAME: 'A "quoted", 名前' }, { PSN_ID: 2, PSN_NAME: '鈴木 花子' }]);
    await openText(page, 'again.json', saved.text);
    await spoken(page, /^(again is open|\d+ rows)/);
    await view(page, 'Compare');
    await spoken(page, /^The records are the same/);
});

await runAll();
