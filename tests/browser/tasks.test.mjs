// Eight tasks as an operator does them without the manual, starting at the
// index, in Chromium at a desk's size, a phone's and the desk's at 200%
// zoom, and the same tasks as
// a viewer, who reads everything and is told why a change is refused.
// Each task counts the documents loaded (pages and frames) and the presses
// it took; it fails on a server error, a missing overview, an answer
// clipped at the desk's size or out of sight after its button.
import { describe, test, before, after } from 'node:test';
import assert from 'node:assert/strict';
import { onDevice, startServer } from './serve.mjs';
import { launchChromium } from './chromium.mjs';

const refused = /may only read/;
// Each step: open a link by its text, fill fields by id, tick a box, or
// press a button of a form and read the answer (what each role gets).
const tasks = [
  ['find the unhealthy units and the alarms', [{ tile: 'Health', shows: /no unhealthy components/ },
    { tile: 'Alarms', shows: /minor OFF, major OFF, critical OFF/ }, { tile: 'Controllers and boards', shows: /fantray2/ }]],
  ['read and raise a threshold', [
    { open: 'Get Sensor Threshold Information' }, { fill: { '#addr1_0-address': '0x82', '#id3_0-address': '2' } },
    { press: 'Show thresholds', form: 'address', operator: /Upper Non-Critical Threshold/, viewer: /Upper Non-Critical Threshold/ },
    { open: 'Set Sensor Threshold' },
    { fill: { '#addr1_0-address': '0x82', '#id3_0-address': '2', '#tr-address': 'unc', '#value-address': '65' } },
    { tick: '#confirm-address' },
    { press: 'Set the threshold', form: 'address', operator: /threshold set to 65 degrees C/, viewer: refused }]],
  ['set the fans', [
    { open: 'Set Fan Level' }, { fill: { '#addr1_0-address': '0x72', '#id2_0-address': '0', '#value-address': '8' } },
    { tick: '#confirm-address' }, { press: 'Set the level', form: 'address', operator: /Set Fan Level to: 8/, viewer: refused }]],
  // The tool splits at blanks: "fantray2 0 1" would set FRU 0 to level 1.
  ['mistype a unit name with blanks', [
    { open: 'Set Fan Level' }, { fill: { '#pti_sym1_1-name': 'fantray2 0 1', '#id2_1-name': '0', '#value-name': '7' } },
    { tick: '#confirm-name' }, { press: 'Set the level', form: 'name', held: '#pti_sym1_1-name' }]],
  ['reset a board', [
    { open: 'Reset Board' }, { fill: { '#slot-slot': '3' } }, { tick: '#confirm-slot' },
    { press: 'Reset the board', form: 'slot', operator: /slot # 3 .* reset/, viewer: refused }]],
  ['read and clear the event log', [
    { open: 'System Event Log' }, { fill: { '#addr1_0-address': '0x20' } },
    { press: 'Show entries', form: 'address', operator: /SEL entries/, viewer: /SEL entries/ },
    { tick: '#confirm-address' },
    { press: 'Clear the log', form: 'address', operator: /SEL clearing completed/, viewer: refused }]],
  ['change the LAN address', [
    { open: 'Set LAN Configuration Information' }, { fill: { '#value-set': '192.0.2.20' } }, { tick: '#confirm-set' },
    { press: 'Set', form: 'set', held: '#parameter-set' },  // which parameter is never assumed
    { fill: { '#parameter-set': '3' } },
    { press: 'Set', form: 'set', operator: /IP Address\) set to 192\.0\.2\.20/, viewer: refused }]],
  ['switch over', [
    { open: 'Switchover' }, { frame: 'IPM controllers of the shelf', shows: /0x20: Shelf Manager/ }, { tick: '#confirm-run' },
    { press: 'Switch over', form: 'run', operator: /no backup shelf manager/, viewer: refused }]],
];
// A desk, a phone, and the desk at 200% zoom (half the CSS pixels, each
// drawn twice as large).
// On the emulated device the tasks run at the first size only: the pages'
// layout is the browser's and the same bytes, tried at every size on the host.
const sizes = [[1280, 800, 1], [390, 844, 3], [640, 400, 2]].slice(0, onDevice ? 1 : undefined);

let server, browser;
before(async () => {
  server = await startServer();
  browser = await launchChromium();
});
after(async () => {
  await browser?.close();
  await server?.stop();
});

for (const role of ['operator', 'viewer']) for (const [width, height, scale] of sizes) describe(`${role} at ${width}×${height}, ${scale}×`, () => {
  let page, loads = 0, presses = 0;
  const errors = [];
  before(async () => {
    const context = await browser.newContext({ ignoreHTTPSErrors: true, viewport: { width, height }, deviceScaleFactor: scale,
      httpCredentials: server.accounts[role], isMobile: width < 600, hasTouch: width < 600 });
    page = await context.newPage();
    page.on('response', (r) => {
      if (r.request().resourceType() !== 'document') return;
      loads++;
      if (r.status() >= 500) errors.push(`${r.status()} ${r.url()}`);
    });
  });
  after(() => page?.context().close());

  // Scrolled to first, as a person scrolls and then taps.
  const press = async (locator) => {
    presses++;
    await locator.scrollIntoViewIfNeeded();
    await locator.click();
  };
  const answerFrame = () => page.frame({ name: 'answer' });

  async function step(s) {
    if (s.open) return press(page.getByRole('link', { name: s.open, exact: true }).first());
    if (s.fill) {
      for (const [id, value] of Object.entries(s.fill)) {
        const field = page.locator(id);
        if (await field.evaluate((e) => e.tagName === 'SELECT')) await field.selectOption(value);
        else await field.fill(value);
      }
      return undefined;
    }
    if (s.tick) return press(page.locator(s.tick));
    if (s.tile || s.frame) {
      const frame = s.tile ? page.locator('figure', { has: page.getByRole('link', { name: s.tile, exact: true }) })
        .locator('iframe') : page.getByTitle(s.frame);
      await frame.scrollIntoViewIfNeeded();
      assert.match(await frame.contentFrame().locator('body').innerText(), s.shows);
      // Whole at every size: neither the tile's lines nor the page cut.
      const cut = (doc) => doc.evaluate(() => document.documentElement.scrollWidth - document.documentElement.clientWidth);
      const inner = await (await frame.elementHandle()).contentFrame();
      assert.ok(await cut(inner) <= 0 && await cut(page) <= 0, `${s.tile ?? s.frame} is cut`);
      return undefined;
    }
    const button = page.locator(`#form-${s.form}`).getByRole('button', { name: s.press, exact: true });
    if (s.held) {  // the browser keeps the form and says which field is wrong
      await press(button);
      assert.ok(await page.locator(s.held).evaluate((e) => !e.validity.valid), `${s.held} is accepted`);
      return assert.match(answerFrame().url(), /\/answer\.html$/, 'nothing was sent');
    }
    await Promise.all([page.waitForEvent('framenavigated', (f) => f.name() === 'answer' && !f.url().endsWith('answer.html')),
      press(button)]);
    await answerFrame().waitForLoadState();
    const text = await answerFrame().locator('body').innerText();
    assert.match(text, s[role], `${s.press}: ${text}`);
    // Where the operator looks: beside the form, or within the screen
    // after the press on a phone; never cut at the desk's width.
    const box = await page.locator('iframe[name="answer"]').boundingBox();
    assert.ok(box.y < height && box.y + box.height > 0, `${s.press}: the answer is out of sight (${box.y})`);
    const [overflow, fontSize] = await answerFrame().evaluate(() => [
      document.documentElement.scrollWidth - document.documentElement.clientWidth,
      parseFloat(getComputedStyle(document.querySelector('pre') ?? document.body).fontSize)]);
    if (width >= 1280) assert.ok(overflow <= 0, `${s.press}: the answer is clipped by ${overflow} px`);
    assert.ok(fontSize >= 10, `${s.press}: text of ${fontSize} px`);
    return undefined;
  }

  for (const [name, steps] of tasks) {
    test(name, async (t) => {
      loads = 0;
      presses = 0;
      await page.goto(`${server.base}/verbs/index.html`);
      for (const s of steps) await step(s);
      assert.deepEqual(errors, []);
      t.diagnostic(`${role} ${width}: ${name}: ${loads} loads, ${presses} presses`);
    });
  }
});
