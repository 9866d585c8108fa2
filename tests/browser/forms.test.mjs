// The form pages and the gateway together, in headless Chromium, through
// the shipped lighttpd configuration with the simulated shelf as shelfctl,
// logged in as the operator.
import { test, before, after } from 'node:test';
import assert from 'node:assert/strict';
import { readFileSync, mkdirSync } from 'node:fs';
import { join } from 'node:path';
import { startServer, repo } from './serve.mjs';
import { launchChromium } from './chromium.mjs';

const verbs = readFileSync(join(repo, 'deploy/verbs.txt'), 'utf8').split('\n').filter(Boolean);
const shots = join(process.env.VERBGW_BUILD ?? join(repo, 'build'), 'screenshots');
let server, browser, page;

before(async () => {
  server = await startServer();
  browser = await launchChromium();
  const context = await browser.newContext({ ignoreHTTPSErrors: true, httpCredentials: server.accounts.operator });
  page = await context.newPage();
});

after(async () => {
  await browser?.close();
  await server?.stop();
});

const preText = async () => (await page.locator('pre').innerText()).trimEnd();

// Opens a form page, fills the fields, submits and waits for the answer.
async function submit(verb, fields, checks = []) {
  await page.goto(`${server.base}/verbs/${verb}.html`);
  for (const [name, value] of Object.entries(fields)) await page.fill(`[name="${name}"]`, value);
  for (const id of checks) await page.check(`#${id}`);
  await Promise.all([page.waitForURL(`**/cgi-bin/${verb}`), page.click('button[type="submit"]')]);
}

test('the index links every form page once', async () => {
  await page.goto(`${server.base}/`);
  assert.match(page.url(), /\/verbs\/index\.html$/);
  const links = await page.locator('a[href$=".html"]').evaluateAll((as) => as.map((a) => a.getAttribute('href')));
  const forms = links.filter((href) => href !== 'index.html').sort();
  assert.deepEqual(forms, verbs.map((v) => `${v}.html`).sort());
});

test('every form page loads cleanly and posts to an existing verb', async () => {
  const problems = [];
  page.on('console', (m) => m.type() === 'error' && problems.push(`${page.url()}: ${m.text()}`));
  page.on('pageerror', (e) => problems.push(`${page.url()}: ${e.message}`));
  for (const verb of verbs) {
    const response = await page.goto(`${server.base}/verbs/${verb}.html`);
    assert.equal(response.status(), 200, verb);
    const form = page.locator('form');
    assert.equal(await form.getAttribute('method'), 'POST', verb);
    assert.equal(await form.getAttribute('action'), `/cgi-bin/${verb}`, verb);
    const answer = await page.request.get(`${server.base}/cgi-bin/${verb}`);
    assert.equal(answer.status(), 200, verb);
    assert.doesNotMatch(await answer.text(), /Can't find the requested command/, verb);
  }
  page.removeAllListeners('console');
  page.removeAllListeners('pageerror');
  assert.deepEqual(problems, []);
});

// One verb of each family: the simulator's answer shows in the PRE block
// and the back link returns to the form.
const families = [
  { verb: 'board', fields: { slot: '1' }, answer: /0x82/ },
  { verb: 'sensor', fields: { addr1_0: '0x82', id3_0: '1' }, answer: /0x82/ },
  { verb: 'getfanlevel', fields: { addr1_0: '0x72', id2_0: '0' }, answer: /Current Level/ },
  { verb: 'version', fields: {}, answer: /simulated shelf/ },
  { verb: 'showunhealthy', fields: {}, answer: /\S/ },
];
for (const { verb, fields, answer } of families) {
  test(`${verb}: submit, read the answer, go back`, async () => {
    await submit(verb, fields);
    assert.match(await preText(), answer);
    await page.click('text=Back to the previous page');
    assert.match(page.url(), new RegExp(`/verbs/${verb}\\.html$`));
  });
}

test('a fan level set is the level read next', async () => {
  for (const level of ['11', '4']) {
    await submit('setfanlevel', { addr1_0: '0x72', id2_0: '0', value: level });
    assert.match(await preText(), new RegExp(`Set Fan Level to: ${level}\\b`));
    await submit('getfanlevel', { addr1_0: '0x72', id2_0: '0' });
    assert.match(await preText(), new RegExp(`Current Level: ${level}\\b`));
  }
  mkdirSync(shots, { recursive: true });
  await page.screenshot({ path: join(shots, 'getfanlevel.png'), fullPage: true });
});

test('an incomplete set form gets the validation message', async () => {
  await submit('setfanlevel', { addr1_0: '0x72' });
  assert.equal(await preText(), 'It is necessary to specify all parameters');
});
