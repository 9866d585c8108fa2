// The form pages and the gateway together, in headless Chromium, through
// the shipped lighttpd configuration with the simulated shelf as shelfctl,
// used as an operator would: with the mouse, with the keyboard alone, at
// desktop and phone widths, and checked by axe-core.
import { test, before, after } from 'node:test';
import assert from 'node:assert/strict';
import { readFileSync, mkdirSync } from 'node:fs';
import { createRequire } from 'node:module';
import { join } from 'node:path';
import { startServer, buildDir, verbList } from './serve.mjs';
import { launchChromium } from './chromium.mjs';

const verbs = verbList('verbs.txt');
const shots = join(buildDir, 'screenshots');
const axeSource = readFileSync(createRequire(import.meta.url).resolve('axe-core/axe.min.js'), 'utf8');
let server, browser, context, page;

before(async () => {
  server = await startServer();
  browser = await launchChromium();
  context = await browser.newContext({ ignoreHTTPSErrors: true, httpCredentials: server.accounts.operator });
  page = await context.newPage();
});

after(async () => {
  await browser?.close();
  await server?.stop();
});

const frame = () => page.frame({ name: 'answer' });
const answer = async () => (await frame().locator('body').innerText()).trim();

// Waits for the answer frame to load the gateway's page while `act` runs.
async function answered(act) {
  await Promise.all([
    page.waitForEvent('framenavigated', (f) => f.name() === 'answer' && f.url().includes('/cgi-bin/')),
    act(),
  ]);
  await frame().waitForLoadState();
  return answer();
}

// Fills one form of a page (selects by value, the rest by typing) and
// presses one of its buttons.
async function submit(verb, form, fields, button, { confirm = false } = {}) {
  if (!page.url().endsWith(`/verbs/${verb}.html`)) await page.goto(`${server.base}/verbs/${verb}.html`);
  const f = page.locator(`#form-${form}`);
  for (const [name, value] of Object.entries(fields)) {
    // A field by its name (the first control of that name), or by #id.
    const control = f.locator(name.startsWith('#') ? name : `[name="${name}"]:not([type="hidden"])`).first();
    if (await control.evaluate((e) => e.tagName === 'SELECT')) await control.selectOption(value);
    else await control.fill(value);
  }
  if (confirm) await f.locator('[name="confirm"]').check();
  return answered(() => f.getByRole('button', { name: button, exact: true }).click());
}

test('the index links every form page once', async () => {
  await page.goto(`${server.base}/`);
  assert.match(page.url(), /\/verbs\/index\.html$/);
  const links = await page.locator('ul.verbs a[href$=".html"]').evaluateAll((as) => as.map((a) => a.getAttribute('href')));
  assert.deepEqual(links.sort(), verbs.map((v) => `${v}.html`).sort());
});

// By keyboard, the skip link leads to the list of families, each of which
// leads to its own pages: every page is at most 8 Tab presses away.
test('the index reaches every page in at most 8 Tab presses after the skip link', async () => {
  await page.goto(`${server.base}/verbs/index.html`);
  const families = await page.locator('nav.families a').evaluateAll((as) => as.map((a) => a.getAttribute('href').slice(1)));
  const pages = await page.locator('section.group').evaluateAll((sections) => sections.map((s) =>
    [...s.querySelectorAll('ul.verbs a')].map((a) => a.id)));
  assert.equal(pages.flat().length, verbs.length);
  for (const [k, family] of pages.entries()) {
    assert.equal(families[k], family[0], 'each family link leads to its first page');
    for (const [i, verb] of family.entries()) {
      await page.goto(`${server.base}/verbs/index.html`);
      await page.keyboard.press('Tab');
      await page.keyboard.press('Enter');
      const tabs = k + i;
      for (let n = 0; n < k; n++) await page.keyboard.press('Tab');
      await page.keyboard.press('Enter');
      for (let n = 0; n < i; n++) await page.keyboard.press('Tab');
      assert.equal(await page.evaluate(() => document.activeElement.id), verb);
      assert.ok(tabs <= 8, `${verb}: ${tabs} Tab presses`);
      await Promise.all([page.waitForURL(`**/verbs/${verb}.html`), page.keyboard.press('Enter')]);
    }
  }
});

// The index opens with what the shelf says now, for either role, with no
// click: each tile a reading verb's answer, by GET.
test('the index shows the shelf at a glance, to an operator and to a viewer', async () => {
  const tiles = { showunhealthy: /unhealthy components/i, alarm: /Telco alarms/, ipmc: /0x20: Shelf Manager/,
    fans: /Fan Tray 1/ };
  const viewer = await browser.newContext({ ignoreHTTPSErrors: true, httpCredentials: server.accounts.viewer });
  for (const p of [page, await viewer.newPage()]) {
    await p.goto(`${server.base}/verbs/index.html`);
    await p.waitForLoadState('load');
    const frames = p.frames().filter((f) => f.url().includes('/cgi-bin/'));
    assert.deepEqual(frames.map((f) => f.url().replace(/.*\/cgi-bin\//, '')).sort(), Object.keys(tiles).sort());
    for (const f of frames) assert.match(await f.locator('pre').innerText(), tiles[f.url().replace(/.*\/cgi-bin\//, '')]);
  }
  await viewer.close();
});

// Every page: no console error (a refused frame or style shows there), no
// accessibility violation, no sideways scrolling on a phone, field borders
// of at least 3:1 against the form, and a screenshot at both widths.
test('every page is clean, accessible and fits a phone', async () => {
  mkdirSync(shots, { recursive: true });
  const audit = await browser.newContext({ ignoreHTTPSErrors: true, httpCredentials: server.accounts.operator,
    bypassCSP: true });  // axe is a script; the shipped policy rightly refuses it
  const auditPage = await audit.newPage();
  const problems = [];
  page.on('console', (m) => m.type() === 'error' && problems.push(`${page.url()}: ${m.text()}`));
  for (const name of ['index', ...verbs]) {
    const url = `${server.base}/verbs/${name}.html`;
    for (const width of [1280, 390]) {
      await page.setViewportSize({ width, height: 900 });
      assert.equal((await page.goto(url)).status(), 200, name);
      await page.screenshot({ path: join(shots, `${name}-${width}.png`), fullPage: true });
      const overflow = await page.evaluate(() => document.documentElement.scrollWidth - window.innerWidth);
      assert.ok(overflow <= 0, `${name} at ${width} px scrolls sideways by ${overflow} px`);
    }
    await auditPage.goto(url);
    await auditPage.addScriptTag({ content: axeSource });
    const result = await auditPage.evaluate(() => window.axe.run(document, { iframes: false }));
    assert.deepEqual(result.violations.map((v) => `${v.id}: ${v.nodes.map((n) => n.target).join(' ')}`), [], name);
    const weak = await auditPage.evaluate(() => {
      const luminance = (css) => {
        const [r, g, b] = css.match(/\d+/g).slice(0, 3).map((c) => {
          const s = c / 255;
          return s <= 0.03928 ? s / 12.92 : ((s + 0.055) / 1.055) ** 2.4;
        });
        return 0.2126 * r + 0.7152 * g + 0.0722 * b;
      };
      const ratio = (a, b) => (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05);
      return [...document.querySelectorAll('input:not([type=hidden]):not([type=checkbox]), select')]
        .map((e) => [e.id, ratio(luminance(getComputedStyle(e).borderTopColor),
          luminance(getComputedStyle(e.closest('form')).backgroundColor))])
        .filter(([, r]) => r < 3);
    });
    assert.deepEqual(weak, [], `${name}: field borders under 3:1`);
  }
  page.removeAllListeners('console');
  await page.setViewportSize({ width: 1280, height: 900 });
  await audit.close();
  assert.deepEqual(problems, []);
});

test('each family answers in the frame beside its form', async () => {
  assert.match(await submit('board', 'slot', { slot: '1' }, 'Show the board'), /Physical Slot # 1: IPMB address 0x82/);
  assert.match(await submit('sensor', 'name', { pti_sym1_1: 'board1', id2_1: '0', id3_0: '1' }, 'Show sensors'),
    /0x82.*CPU Temp/s);
  assert.match(await submit('getlanconfig', 'read', { parameter: '3' }, 'Show'), /parameter 3 \(IP Address\): 192\.0\.2\.10/);
  // Any parameter the tool knows, by number in place of the list's choice;
  // one this shelf lacks is answered as the tool answers it.
  assert.match(await submit('getlanconfig', 'read', { parameter: '3', '#parameter-number-read': '19' }, 'Show'),
    /LAN parameter 19 is not supported/);
  assert.match(await submit('version', 'run', {}, 'Show the version'), /simulated shelf/);
  // The form keeps what was typed.
  await submit('getfanlevel', 'address', { addr1_0: '0x72', id2_0: '0' }, 'Show the level');
  assert.equal(await page.locator('#addr1_0-address').inputValue(), '0x72');
  // A hint's list opens in the frame too.
  assert.match(await answered(() => page.locator('#form-address').getByRole('link', { name: 'list the controllers' })
    .click()), /0x72: Fan Tray 1\s+fantray1/);
});

test('a change runs only when confirmed, and reads back from the same page', async () => {
  await page.goto(`${server.base}/verbs/setfanlevel.html`);
  const form = page.locator('#form-address');
  await form.locator('[name="addr1_0"]').fill('0x72');
  await form.locator('[name="id2_0"]').fill('0');
  await form.locator('[name="value"]').fill('11');
  await form.getByRole('button', { name: 'Set the level' }).click();
  assert.equal(await form.locator('[name="confirm"]').evaluate((e) => e.validity.valueMissing), true);
  assert.match(frame().url(), /answer\.html$/, 'nothing was sent');
  assert.match(await submit('setfanlevel', 'address', {}, 'Read back'), /Current Level: (?!11\b)\d+/);
  assert.match(await submit('setfanlevel', 'address', {}, 'Set the level', { confirm: true }), /Set Fan Level to: 11\b/);
  assert.match(await submit('setfanlevel', 'address', {}, 'Read back'), /Current Level: 11\b/);
  // The same tray by its unit name, read back by its address.
  assert.match(await submit('setfanlevel', 'name', { pti_sym1_1: 'fantray1', id2_1: '0', value: '4' }, 'Set the level',
    { confirm: true }), /Set Fan Level to: 4\b/);
  assert.match(await submit('setfanlevel', 'address', {}, 'Read back'), /Current Level: 4\b/);
  // A Read back with the new value left empty marks no field; a wrong
  // value is marked.
  await page.goto(`${server.base}/verbs/setfanlevel.html`);
  await submit('setfanlevel', 'address', { addr1_0: '0x72', id2_0: '0' }, 'Read back');
  const border = (id) => page.locator(id).evaluate((e) => getComputedStyle(e).borderTopColor);
  assert.notEqual(await border('#value-address'), 'rgb(179, 38, 30)', 'the empty new value is not marked');
  await page.locator('#addr1_0-address').fill('0x7');
  await page.locator('#addr1_0-address').blur();
  assert.equal(await border('#addr1_0-address'), 'rgb(179, 38, 30)', 'a wrong address is marked');
});

test('the event log shows without confirmation and clears only with it', async () => {
  assert.match(await submit('sel', 'address', { addr1_0: '0x20' }, 'Show the summary'), /Entries: [1-9]/);
  assert.match(await submit('sel', 'address', {}, 'Show entries'), /Shelf Manager started/);
  await page.locator('#form-address').getByRole('button', { name: 'Clear the log' }).click();
  assert.match(await submit('sel', 'address', {}, 'Show the summary'), /Entries: [1-9]/);
  await submit('sel', 'address', {}, 'Clear the log', { confirm: true });
  assert.match(await submit('sel', 'address', {}, 'Show the summary'), /Entries: 0\b/);
});

test('the shelf page shows the chosen sub-command\'s forms only', async () => {
  await page.goto(`${server.base}/verbs/shelf.html`);
  const visible = () => page.locator('form[id^="form-"]').evaluateAll((fs) => fs.filter((f) => f.checkVisibility()).map((f) => f.id));
  assert.deepEqual(await visible(), ['form-choose']);
  await page.selectOption('#command-choose', '10activation');
  assert.deepEqual(await visible(), ['form-choose', 'form-f10-address', 'form-f10-name', 'form-f10-slot']);
  assert.equal(await page.locator('#form-choose button').isVisible(), false);
  await page.selectOption('#command-choose', '08max_current');
  assert.match(await submit('shelf', 'f08-feed', { feed0: '1', current: '80' }, 'Set', { confirm: true }),
    /Feed 1: maximum current set to 80\.0 A/);
  assert.match(await submit('shelf', 'f08-feed', {}, 'Read back'), /Feed 1: .*maximum current 80\.0 A/);
  await page.selectOption('#command-choose', '04address_table');
  assert.match(await answered(() => page.locator('#form-choose button').click()), /Site Type 0x00 \(Front Board\)/);
});

// From the top of the page to the answer with the keyboard alone: the
// skip link (Tab, Enter), Tab to the first field, type, Tab on, press
// Enter or Space, Tab into the frame.
const skip = ['Tab', 'Enter', 'Tab'];
const keyboardRuns = [
  { verb: 'board', keys: [...skip, '1', 'Enter'], answer: /Physical Slot # 1/ },
  { verb: 'getthreshold', keys: [...skip, '0x82', 'Tab', 'Tab', '1', 'Enter'], answer: /CPU Temp/ },
  { verb: 'setfanlevel', keys: [...skip, '0x74', 'Tab', 'Tab', '0', 'Tab', 'Tab', '7', 'Tab', 'Tab', 'Space',
    'Tab', 'Enter'], answer: /Set Fan Level to: 7\b/ },
];
for (const { verb, keys, answer: expected } of keyboardRuns) {
  test(`${verb}: keyboard only, from the first field to the answer`, async () => {
    await page.goto(`${server.base}/verbs/${verb}.html`);
    const text = await answered(async () => {
      for (const key of keys) {
        if (/^[A-Z][a-z]+$/.test(key)) await page.keyboard.press(key);
        else await page.keyboard.type(key);
      }
    });
    assert.match(text, expected);
    for (let i = 0; i < 80 && await page.evaluate(() => document.activeElement.tagName) !== 'IFRAME'; i++) {
      await page.keyboard.press('Tab');
    }
    assert.equal(await page.evaluate(() => document.activeElement.name), 'answer');
  });
}

// Every form of every page, its required fields filled as an operator
// would, its main button pressed with the change confirmed: the shelf
// takes each command (no refusal from the gateway, no complaint from the
// simulated shelf). Last, since it changes the shelf.
const typical = {
  offset: '0x10', to_write: '01 02', feed0: '1', current: '80', voltage: '-40', value_allowance: '30',
  slot_bdselgrounded: '5', addr2_pwrreorder: 'board2', value1_pwrcapability: '80', value2_pwrcapability: '80',
  value1_pwrdelay: '5', value2_pwrdelay: '5',
};
const byKind = (name) => [['addr', '0x82'], ['pti_sym', 'board1'], ['id', '0'], ['slot', '2']]
  .find(([start]) => name.startsWith(start))?.[1];
const typicalOn = {
  sensor: { id3_0: '1' }, setthreshold: { id3_0: '1', value: '70' }, sethysteresis: { id3_0: '1', value: '3' },
  getsensoreventenable: { id3_0: '1' }, setsensoreventenable: { id3_0: '1' }, setpef: { parameter: '1', value: '5' },
  setlanconfig: { parameter: '3', value: '192.0.2.20' }, fans: { addr1_0: '0x72', pti_sym1_1: 'fantray1' },
  getfanlevel: { addr1_0: '0x72', pti_sym1_1: 'fantray1' }, setfanlevel: { addr1_0: '0x72', pti_sym1_1: 'fantray1', value: '5' },
};
// Every button of every form, pressed with only the form's required fields
// filled (as its hints say) and its boxes unticked but the required
// confirmation: each gets a complete page from the gateway, never a server
// error, and the form's own button sends a command the shelf takes. Each
// press on a page loaded anew, as a change is sent once per load. Last,
// since it changes the shelf.
test('every button, with only the required fields filled, gets a complete page', async () => {
  const refused = /It is necessary|too long|Invalid argument|Unknown command|Forbidden|Unauthorized/;
  for (const verb of verbs) {
    await page.goto(`${server.base}/verbs/${verb}.html`);
    const forms = await page.locator('form[id^="form-"]').evaluateAll((fs) => fs.map((f) =>
      [f.id, f.querySelectorAll('.actions button[type="submit"]').length]));
    for (const [id, buttons] of forms) {
      for (let b = 0; b < buttons; b++) {
        await page.goto(`${server.base}/verbs/${verb}.html`);
        const form = page.locator(`#${id}`);
        const command = form.locator('input[type="hidden"][name="command"]');
        if (await command.count()) await page.selectOption('#command-choose', await command.getAttribute('value'));
        for (const field of await form.locator('input[required]:not([type="checkbox"]), select[required]').all()) {
          const name = await field.getAttribute('name');
          if (await field.inputValue()) continue;  // a real default
          const value = typicalOn[verb]?.[name] ?? typical[name] ?? byKind(name);
          assert.ok(value, `${verb} ${id}: a typical ${name}`);
          if (await field.evaluate((e) => e.tagName === 'SELECT')) await field.selectOption(value);
          else await field.fill(value);
        }
        if (await form.locator('[name="confirm"]').count()) await form.locator('[name="confirm"]').check();
        const invalid = await form.evaluate((f) => [...f.elements].filter((e) => !e.checkValidity()).map((e) => e.name));
        assert.deepEqual(invalid, [], `${verb} ${id}: fields the browser refuses`);
        const [response] = await Promise.all([
          page.waitForResponse((r) => r.url().includes('/cgi-bin/') && r.frame().name() === 'answer'),
          answered(() => form.locator('.actions button[type="submit"]').nth(b).click())]);
        assert.equal(response.status(), 200, `${verb} ${id} button ${b}`);
        assert.match(await response.text(), /^<HTML>.*<\/BODY><\/HTML>$/s, `${verb} ${id} button ${b}: a complete page`);
        if (b === 0) assert.doesNotMatch(await answer(), refused, `${verb} ${id}`);
      }
    }
  }
});
