// The shipped server configurations (lighttpd, Apache, nginx) as an
// attacker meets them: a page on a second loopback origin driving the
// operator's logged-in Chromium, script posted into the pages the gateway
// copies values into, and plain requests without, with wrong and with too
// few credentials. Each server also answers every verb byte for byte as
// the gateway run directly does.
import { describe, test, before, after } from 'node:test';
import assert from 'node:assert/strict';
import http from 'node:http';
import https from 'node:https';
import tls from 'node:tls';
import { chmodSync, existsSync, lstatSync, readdirSync, readFileSync, readlinkSync, renameSync, rmSync, statSync, symlinkSync, writeFileSync } from 'node:fs';
import { execFileSync, spawn } from 'node:child_process';
import { join } from 'node:path';
import { request as playwrightRequest } from 'playwright-core';
import { startServer, freePort, onDevice, verbList } from './serve.mjs';
import { launchChromium } from './chromium.mjs';
import { expectDirectAnswers, form, getVerbs, guardedVerbs, readingVerbs } from './requests.mjs';

const verbs = verbList('verbs.txt');
const policy = "default-src 'none'; style-src 'self'; img-src 'self'; form-action 'self'; frame-src 'self'; "
  + "frame-ancestors 'self'; base-uri 'none'";
// What the gateway answers may hold markup from the tool: it is sandboxed.
const answerPolicy = `${policy}; sandbox`;

// VERBGW_SERVERS=nginx (say) tries one server alone; on the emulated
// device, its own lighttpd. There, what needs the server's processes or
// its tool on this host is left out.
const servers = onDevice ? ['device'] : (process.env.VERBGW_SERVERS ?? 'lighttpd,apache,nginx').split(',');
const hostOnly = (what) => onDevice && `on the device: ${what}`;
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

// The access log's lines for `path` from offset `from` on, once one
// matches `awaited` (the server writes its log in batches).
async function logged(path, awaited = /./, from = 0) {
  let lines = [];
  for (let i = 0; i < 60 && !lines.some((l) => awaited.test(l)); i++) {
    if (i > 0) await new Promise((r) => setTimeout(r, 100));
    lines = readFileSync(server.accessLog, 'utf8').slice(from).split('\n')
      .filter((l) => l.includes(` ${path} `) || l.includes(` ${path}?`));
  }
  return lines;
}

// Where the lines of what follows begin in the access log. The server
// writes its log when it can, and a device's server has logged the suites
// before this one: a marker request, once logged, tells.
async function logMark() {
  const marker = `/verbs/answer.html?mark=${Date.now()}`;
  await requestFrom('127.0.0.1', server.basic('operator'), marker);
  let mark = -1;
  for (let i = 0; i < 100 && mark < 0; i++) {
    mark = readFileSync(server.accessLog, 'utf8').indexOf(marker);
    if (mark < 0) await new Promise((r) => setTimeout(r, 100));
  }
  assert.ok(mark >= 0, 'the marker was logged');
  return mark;
}

test('another site cannot make the operator\'s browser change the shelf', async () => {
  const mark = await logMark();
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
    const lines = await logged(`/cgi-bin/${verb}`, /./, mark);
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
    const [answer] = await Promise.all([page.waitForResponse(`**/cgi-bin/${verb}`), page.evaluate(([action, values]) => {
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
    // (The sandboxed answer runs no script, not even the test's own: its
    // text is read from the response.)
    assert.ok((await answer.text()).includes(landed), `${verb}: the value reached the page unescaped`);
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
  // The question for a password, which a browser shows as its page when
  // the user cancels it: it says what is needed, on every path.
  for (const [who, path] of [[anonymous, '/verbs/index.html'], [anonymous, '/cgi-bin/version'], [wrong, '/verbs/style.css']]) {
    const challenge = await who.get(`${server.base}${path}`);
    assert.match(challenge.headers()['www-authenticate'] ?? '', /^Basic realm="Shelf manager"/, path);
    assert.match(await challenge.text(), /<h1>Not logged in: /, path);
  }

  const viewer = await api('viewer');
  const operator = await api('operator');
  const set = { data: 'addr1_0=0x72&id2_0=0&value=9', headers: form };
  const refused = await viewer.post(`${server.base}/cgi-bin/setfanlevel`, set);
  assert.equal(refused.status(), 403);
  assert.match(await refused.text(), /this account may only read/, 'the refusal says why');
  assert.doesNotMatch(readFileSync(server.state, 'utf8'), /^fan\.72\.0 9$/m);
  const done = await operator.post(`${server.base}/cgi-bin/setfanlevel`, set);
  assert.equal(done.status(), 200);
  assert.match(await done.text(), /Set Fan Level to: 9/);
  const audit = new RegExp(`^\\S+ ${server.clientAddress.replaceAll('.', '\\.')} operator "POST /cgi-bin/setfanlevel HTTP/[\\d.]+" 200 \\d+$`);
  assert.ok((await logged('/cgi-bin/setfanlevel', audit)).some((l) => audit.test(l)));

  // A GET runs only the verbs whose bare command reads, whoever sends it,
  // and a viewer may send any of those; otherwise a viewer reaches only
  // the verbs that read whatever is posted.
  for (const verb of verbs) {
    const expected = getVerbs.includes(verb) ? 200 : [...readingVerbs, ...guardedVerbs].includes(verb) ? 405 : 403;
    assert.equal((await viewer.get(`${server.base}/cgi-bin/${verb}`)).status(), expected, `viewer on ${verb}`);
    const byGet = getVerbs.includes(verb) ? 200 : 405;
    assert.equal((await operator.get(`${server.base}/cgi-bin/${verb}`)).status(), byGet, `operator's GET of ${verb}`);
    assert.equal((await operator.head(`${server.base}/cgi-bin/${verb}`)).status(), byGet, `operator's HEAD of ${verb}`);
  }
  for (const name of ['verbgw', 'sensor/../setfanlevel', 'sensor/x']) {
    assert.equal((await viewer.get(`${server.base}/cgi-bin/${name}`)).status(), 403, `viewer on ${name}`);
  }
  for (const c of [anonymous, wrong, viewer, operator]) await c.dispose();
});

test('a role changed while the server runs holds from the next request',
  { skip: hostOnly('the test changes the accounts') }, async () => {
  const operator = await api('operator');
  const set = () => operator.post(`${server.base}/cgi-bin/setfanlevel`, { data: 'req_type=2&value=11', headers: form })
    .then((r) => r.status());
  assert.equal(await set(), 200);
  try {
    server.setRole('operator', 'viewer');
    assert.equal(await set(), 403);
  } finally {
    server.setRole('operator', 'operator');
  }
  assert.equal(await set(), 200);
  await operator.dispose();
});

test('after "Log out" the browser sends no password until one is typed again', async () => {
  const context = await browser.newContext({ ignoreHTTPSErrors: true });  // no password until one is given
  const page = await context.newPage();
  const typed = new URL(`${server.base}/verbs/index.html`);
  typed.username = 'operator';
  typed.password = server.accounts.operator.password;
  assert.equal((await page.goto(typed.href)).status(), 200);
  assert.equal((await page.goto(`${server.base}/verbs/reset.html`)).status(), 200, 'the password is kept');
  const challenged = [];  // what asked for a password on the way out
  page.on('response', async (r) => (await r.headerValue('WWW-Authenticate')) && challenged.push(r.url()));
  const [out] = await Promise.all([page.waitForResponse(/\/verbs\/logout$/), page.click('header a.logout')]);
  assert.equal(out.status(), 401);
  assert.equal(await page.locator('h1').textContent(), 'Logged out');
  await page.waitForLoadState('networkidle');
  assert.deepEqual(challenged, [], 'nothing asks for a password on the way out');
  // The next page asks; a person who cancels the question sees why.
  const cdp = await context.newCDPSession(page);
  const asked = [];
  cdp.on('Fetch.requestPaused', (e) => cdp.send('Fetch.continueRequest', { requestId: e.requestId }));
  cdp.on('Fetch.authRequired', (e) => asked.push(e.request.url) && cdp.send('Fetch.continueWithAuth',
    { requestId: e.requestId, authChallengeResponse: { response: 'CancelAuth' } }));
  await cdp.send('Fetch.enable', { handleAuthRequests: true });
  assert.equal((await page.goto(`${server.base}/verbs/reset.html`)).status(), 401);
  assert.deepEqual(asked, [`${server.base}/verbs/reset.html`]);
  assert.match(await page.locator('h1').textContent(), /^Not logged in: /);
  await context.close();
  // Another site's page may not log the operator out; a log-out is not a
  // failed guess, however many there are.
  const operator = await api('operator');
  const logout = (headers) => operator.get(`${server.base}/verbs/logout`, { headers }).then((r) => r.status());
  assert.equal(await logout({ 'Sec-Fetch-Site': 'cross-site' }), 403);
  assert.equal(await logout({ Origin: 'https://evil.example' }), 403);
  for (let i = 0; i < 65; i++) assert.equal(await logout({ 'Sec-Fetch-Site': 'same-origin' }), 401);
  assert.equal((await operator.get(`${server.base}/verbs/index.html`)).status(), 200);
  await operator.dispose();
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
    loggedOut: await operator.get(`${server.base}/verbs/logout`),
    // The server's own refusal, made before its rules for paths apply.
    tooLarge: await operator.post(`${server.base}/cgi-bin/version`, { data: 'x'.repeat(100 * 1024), headers: form }),
  };
  assert.equal(responses.tooLarge.status(), 413);
  for (const [what, r] of Object.entries(responses)) {
    const h = r.headers();
    const allowed = { gateway: [answerPolicy], tooLarge: [policy, answerPolicy] }[what] ?? [policy];
    assert.ok(allowed.includes(h['content-security-policy']), `${what}: ${h['content-security-policy']}`);
    assert.equal(h['x-content-type-options'], 'nosniff', what);
    assert.equal(h['x-frame-options'], 'SAMEORIGIN', what);
    assert.equal(h['referrer-policy'], 'same-origin', what);
    assert.match(h['strict-transport-security'] ?? '', /max-age=\d{7,}/, what);
    assert.doesNotMatch(h.server ?? '', /\d/, what);  // no version
  }
  assert.equal(responses.gateway.headers()['cache-control'], 'no-store');
  assert.equal(responses.page.headers()['cache-control'], 'no-store');  // its tokens are for one load
  assert.equal(responses.loggedOut.headers()['cache-control'], 'no-store');
  // A form page has no path below it (served so, it would keep its tokens'
  // place unfilled and its cache rules unapplied).
  assert.ok([403, 404].includes((await operator.get(`${server.base}/verbs/setfanlevel.html/x`)).status()));
  const plain = await anonymous.get(`${server.httpBase}/verbs/sensor.html?x=1`);
  assert.equal(plain.status(), 301);
  assert.equal(plain.headers().location, `${server.base}/verbs/sensor.html?x=1`);
  await operator.dispose();
  await anonymous.dispose();
});

test('the gateway and the tool run unprivileged', { skip: !onDevice && process.getuid() !== 0 && 'only a root start drops privileges' },
  async () => {
    const operator = await api('operator');
    const page = await operator.post(`${server.base}/cgi-bin/activate`,
      { data: 'command=whoami&addr1_0=0x82&id2_0=0', headers: form });
    assert.match(await page.text(), /shelfctl runs as user [1-9]\d*\n/);
    await operator.dispose();
  });

test('every verb answers as the gateway run directly does', async () => {
  const operator = await api('operator');
  await expectDirectAnswers(server, operator);
  await operator.dispose();
});

// At most 32 gateways run at once, the last 8 kept for operators; any more
// get 503 before anything starts.
const viewerGateways = 24;

// A POST over its own connection whose body follows its headers a second
// later; its status.
function latePost(path, authorization, body) {
  return new Promise((ok) => {
    const socket = tls.connect({ host: '127.0.0.1', port: server.port, rejectUnauthorized: false, ALPNProtocols: ['http/1.1'] });
    let answer = '';
    socket.on('secureConnect', () => {
      socket.write(`POST ${path} HTTP/1.1\r\nHost: 127.0.0.1\r\nAuthorization: ${authorization}\r\nConnection: close\r\n`
        + `Content-Type: application/x-www-form-urlencoded\r\nContent-Length: ${body.length}\r\n\r\n`);
      setTimeout(() => socket.write(body), 1000);
    });
    socket.on('data', (d) => { answer += d; });
    socket.on('error', () => {});
    socket.on('close', () => ok(Number(answer.split(' ')[1])));
  });
}

test(`a tool that hangs holds at most ${viewerGateways} gateways for viewers, and an operator still gets one`,
  { skip: hostOnly('the test replaces the tool and counts its processes') }, async (t) => {
  const script = readFileSync(server.tool);
  writeFileSync(server.tool, '#!/bin/sh\nsleep 6\n');
  // The shell running the tool forks before it runs sleep: the child holds
  // the same command line until its exec, and is not a tool of its own.
  const tools = () => {
    const running = readdirSync('/proc').filter((p) => /^\d+$/.test(p)).filter((p) => {
      try { return readFileSync(`/proc/${p}/cmdline`, 'utf8').includes(server.tool); } catch { return false; }
    });
    const parent = (p) => { try { return readFileSync(`/proc/${p}/stat`, 'utf8').split(') ')[1].split(' ')[1]; } catch { return ''; } };
    return running.filter((p) => !running.includes(parent(p)));
  };
  try {
    const viewer = await api('viewer');
    const operator = await api('operator');
    // Half the viewers' requests send their body late: counted when their
    // gateway would start, not when their headers came.
    const answers = Array.from({ length: 100 }, (_, i) => (i % 2
      ? latePost('/cgi-bin/version', server.basic('viewer'), 'posted=1')
      : viewer.post(`${server.base}/cgi-bin/version`, { data: 'posted=1', headers: form, timeout: 120000 })
        .then((r) => r.status())));
    // Counted while no tool has ended yet (each sleeps 6 s), so that no
    // tool that ends is counted beside the one that follows it.
    let most = 0;
    const counting = setInterval(() => { most = Math.max(most, tools().length); }, 100);
    setTimeout(() => clearInterval(counting), 5500);
    await new Promise((r) => setTimeout(r, 2000));
    const byOperator = await operator.post(`${server.base}/cgi-bin/version`, { data: 'posted=1', headers: form });
    const statuses = await Promise.all(answers);
    clearInterval(counting);
    t.diagnostic(`${serverName}: at most ${most} tools at once; ${statuses.filter((s) => s === 200).length} answered`);
    assert.equal(byOperator.status(), 200, 'the operator is served while viewers hold theirs');
    assert.ok(most > 0 && most <= viewerGateways + 1, `${most} tools at once; ${statuses.join(' ')}`);
    assert.deepEqual(new Set(statuses), new Set([200, 503]));
    assert.match(await (await viewer.post(`${server.base}/cgi-bin/version`, { data: 'posted=1', headers: form })).text(),
      /Version Information/, 'all can run again');
    for (const c of [viewer, operator]) await c.dispose();
  } finally {
    writeFileSync(server.tool, script);
  }
});

test('a client that sends its headers slowly is dropped within 20 s',
  { skip: ['lighttpd', 'device'].includes(serverName) && 'lighttpd 1.4.69 restarts its read timer at every byte it reads' }, async () => {
  const start = Date.now();
  await new Promise((ok) => {
    const socket = tls.connect({ host: '127.0.0.1', port: server.port, rejectUnauthorized: false, ALPNProtocols: ['http/1.1'] });
    let trickle;
    socket.on('secureConnect', () => {
      socket.write('GET /verbs/index.html HTTP/1.1\r\nHost: 127.0.0.1\r\n');
      trickle = setInterval(() => socket.write(`X-Line: ${Date.now()}\r\n`), 3000);
    });
    socket.on('error', () => {});
    socket.on('close', () => { clearInterval(trickle); ok(); });
    setTimeout(() => socket.destroy(), 30000);
  });
  assert.ok(Date.now() - start < 21000, `held ${Date.now() - start} ms`);
});

// Under emulation each TLS handshake costs the device tens of milliseconds:
// fewer held connections, so that their handshakes end well before the
// body timeout would free them.
const held = onDevice ? 60 : 250;
test(`${held} connections that never send their body do not keep out another client`, async () => {
  const hung = [];
  try {
    for (let i = 0; i < held; i++) {
      const socket = tls.connect({ host: '127.0.0.1', port: server.port, rejectUnauthorized: false, ALPNProtocols: ['http/1.1'] });
      socket.on('error', () => {});
      socket.on('secureConnect', () => socket.write(
        `POST /cgi-bin/version HTTP/1.1\r\nHost: 127.0.0.1\r\nAuthorization: ${server.basic('viewer')}\r\n`
        + 'Content-Type: application/x-www-form-urlencoded\r\nContent-Length: 1000\r\n\r\nx='));
      hung.push(socket);
    }
    await new Promise((r) => setTimeout(r, 500));
    const viewer = await api('viewer');
    // Served before the servers' 10 s body timeout would free anything
    // held (the handshakes alone take a loaded machine some seconds).
    const page = await viewer.get(`${server.base}/verbs/index.html`, { timeout: 8000 });
    assert.equal(page.status(), 200);
    await viewer.dispose();
  } finally {
    for (const socket of hung) socket.destroy();
  }
});
// Every field some verb reads, as the build listed them from the gateway.
const fieldNames = [...new Set(verbList('verb_fields.txt').flatMap((line) => line.split(' ').slice(1)))];

test('a viewer changes nothing, whatever it posts', async () => {
  const viewer = await api('viewer');
  await viewer.get(`${server.base}/cgi-bin/version`);  // the shelf's state is written at its first command
  const before = readFileSync(server.state, 'utf8');
  // Every field at once, with values that would change the shelf if a
  // verb put them anywhere but in a reading command's argument places.
  const body = fieldNames.map((n) => `${n}=${encodeURIComponent('0x72 0 15 clear all -w')}`).join('&');
  for (const verb of [...readingVerbs, ...guardedVerbs]) {
    const page = await viewer.post(`${server.base}/cgi-bin/${verb}`, { data: body, headers: form });
    assert.equal(page.status(), 200, verb);
  }
  // The verbs that can change the shelf are refused, however the field
  // that changes is spelt.
  const writes = [['frudata', 'addr1_0=0x82&id2_0=0&offset=0&to_write=0xde'], ['frudata', 'addr1_0=0x82&to%5Fwrite=1'],
    ['frudata', '%74o_write=1&addr1_0=0x82'], ['setfanlevel', 'addr1_0=0x72&id2_0=0&value=15']];
  for (const [verb, data] of writes) {
    assert.equal((await viewer.post(`${server.base}/cgi-bin/${verb}`, { data, headers: form })).status(), 403, data);
  }
  // The event log and the alarms: the viewer reads them, and a command
  // that would clear or change them never reaches the shelf, however its
  // fields are spelt, repeated or padded.
  const reads = [['sel', 'req_type_sel=0&addr1_0=0x20', /Hot Swap: FRU # 0/], ['sel', 'req_type_sel=2', /Entries:/],
    ['alarm', 'command=', /Critical/i]];
  for (const [verb, data, shown] of reads) {
    const page = await (await viewer.post(`${server.base}/cgi-bin/${verb}`, { data, headers: form })).text();
    assert.match(page, shown, data);
    assert.doesNotMatch(page, /may only read/, data);
  }
  const changes = [['sel', 'req_type_sel=1&addr1_0=0x20'], ['sel', 'req_type_sel=%31'], ['sel', 'req_type_sel=1&req_type_sel=1'],
    ['sel', 'req_type_sel=1&req_type=1&pti_sym1_1=IPMC&id2_1=1'], ['sel', 'req_type_sel=0&verbose=clear'],
    ['sel', 'req_type_sel=0&req_type=1&pti_sym1_1=%20CLEAR%09'], ['alarm', 'command=clear+all'],
    ['alarm', 'command=%20minor'], ['alarm', 'command=major&command=critical'], ['alarm', 'c%6fmmand=clear']];
  for (const [verb, data] of changes) {
    const page = await viewer.post(`${server.base}/cgi-bin/${verb}`, { data, headers: form });
    assert.equal(page.status(), 200, data);
    assert.match(await page.text(), /Not allowed: this account may only read\. Nothing was sent to the shelf\./, data);
  }
  assert.equal(readFileSync(server.state, 'utf8'), before);
  // Tokens are taken only for verbs that can change the shelf: a viewer
  // writes nothing into the server's spool.
  for (const verb of ['version', 'alarm']) {
    const token = `${'0123456789abcdef'.repeat(3)}-${verb}`;
    assert.equal((await viewer.post(`${server.base}/cgi-bin/${verb}?once=${token}`, { data: 'x=1', headers: form })).status(), 200);
    assert.equal(existsSync(join(server.run, 'spool/once', token)), false, verb);
  }
  await viewer.dispose();
});

// The operator's browser, logged in, on a form page.
async function operatorAt(path) {
  const context = await browser.newContext({ ignoreHTTPSErrors: true,
    httpCredentials: { username: 'operator', password: server.accounts.operator.password, send: 'always' } });
  const page = await context.newPage();
  page.on('dialog', (d) => d.accept());  // a resubmission question is answered yes: the worst case
  await page.goto(`${server.base}${path}`);
  return page;
}
const answerFrame = (page) => page.frame('answer');
async function pressAndWait(page, button) {
  await Promise.all([
    page.waitForEvent('framenavigated', (f) => f.name() === 'answer' && f.url().includes('/cgi-bin/')), button.click()]);
  await answerFrame(page).waitForLoadState();
}
// History steps wait for what they load, which may be only the frame.
const settle = (page) => page.waitForTimeout(400);

test('markup in a tool\'s answer sends nothing that changes the shelf',
  { skip: hostOnly('the test replaces the tool') }, async () => {
  // A shelf prints text that comes from boards (FRU names, event text):
  // here the FRU information is hostile markup.
  const dir = join(server.tool, '..');
  renameSync(server.tool, `${server.tool}.sim`);
  writeFileSync(join(dir, 'markup'), ['<img src="/cgi-bin/switchover">', '<link rel="stylesheet" href="/cgi-bin/switchover">',
    '<meta http-equiv="refresh" content="1; url=/cgi-bin/reset">',
    '<form method="POST" action="/cgi-bin/setfanlevel"><input name="addr1_0" value="0x72"><input name="id2_0" value="0">'
      + '<input name="value" value="15"><button id="expired">Session expired: continue</button></form>',
    '<a id="top" href="/cgi-bin/switchover" target="_top">more</a>', ''].join('\n'));
  writeFileSync(server.tool, `#!/bin/sh
IFS= read -r command
here=$(dirname "$0")
case "$command" in
fruinfo*) printf 'Shelf\\nCLI> %s\\n' "$command"; cat "$here/markup"; printf 'CLI> quit\\n' ;;
*) { printf '%s\\n' "$command"; cat; } | exec "$here/shelfctl.sim" ;;
esac
`);
  chmodSync(server.tool, 0o755);
  try {
    const before = readFileSync(server.state, 'utf8');
    const earlier = await logMark();
    const page = await operatorAt('/verbs/fruinfo.html');
    const f = page.locator('#form-address');
    await f.locator('[name="addr1_0"]').fill('0x82');
    await f.locator('[name="id2_0"]').fill('0');
    await pressAndWait(page, f.getByRole('button', { name: 'Show' }));
    await settle(page);
    const frame = answerFrame(page);
    assert.equal(await frame.locator('#expired').count(), 1, 'the markup landed');
    await frame.locator('#expired').click({ timeout: 2000 }).catch(() => {});
    await frame.locator('#top').click({ timeout: 2000 }).catch(() => {});
    await page.waitForTimeout(2000);  // the refresh, too
    assert.match(page.url(), /\/verbs\/fruinfo\.html$/, 'the page itself was not navigated');
    // Whatever reached the server was refused before the gateway started
    // (what comes from the sandboxed answer even goes without credentials).
    const since = readFileSync(server.accessLog, 'utf8').slice(earlier).split('\n')
      .filter((l) => /\/cgi-bin\/(switchover|setfanlevel|reset)\b/.test(l));
    assert.ok(since.every((l) => / (401|403|405) (\d+|-)$/.test(l)), since.join("\n"));
    assert.equal(readFileSync(server.state, 'utf8'), before);
    await page.context().close();
  } finally {
    renameSync(`${server.tool}.sim`, server.tool);
  }
});

// One press, then what an operator does with history: the answer's own
// back link, Back, Forward, reloading, another page and Back again.
// Exactly one change request is accepted; the replays are refused.
const presses = [
  ['reset', 'slot', { slot: '3' }, 'Reset the board'],
  ['setfanlevel', 'address', { addr1_0: '0x72', id2_0: '0', value: '6' }, 'Set the level'],
  ['sel', 'address', { addr1_0: '0x20' }, 'Clear the log'],
];
for (const [verb, formKey, fields, label] of presses) {
  test(`one press of "${label}" sends one ${verb}, whatever history does`, async () => {
    const accepted = async (atLeast = 0) => {
      let count = 0;
      for (let i = 0; i < 100; i++) {  // the server writes its log when it can
        count = (await logged(`/cgi-bin/${verb}`)).filter((l) => /"POST \S+ HTTP\/[\d.]+" 200 /.test(l)).length;
        if (count >= atLeast) break;
        await new Promise((r) => setTimeout(r, 100));
      }
      return count;
    };
    const earlier = await accepted();
    const page = await operatorAt(`/verbs/${verb}.html`);
    const f = page.locator(`#form-${formKey}`);
    for (const [name, value] of Object.entries(fields)) await f.locator(`[name="${name}"]`).fill(value);
    await f.locator('[name="confirm"]').check();
    await pressAndWait(page, f.getByRole('button', { name: label, exact: true }));
    assert.equal(await accepted(earlier + 1), earlier + 1, (await logged(`/cgi-bin/${verb}`)).join('\n'));
    await answerFrame(page).getByRole('link').click();
    await settle(page);
    // The answer's own back link never loads a whole form page in the frame.
    assert.match(answerFrame(page).url(), /\/verbs\/answer\.html$/);
    const moves = { timeout: 1000 };  // a step that only moves the frame never loads the page
    for (const step of [() => page.goBack(moves), () => page.goForward(moves), () => page.goBack(moves), () => page.reload(moves),
      () => page.goto(`${server.base}/verbs/index.html`), () => page.goBack(moves), () => page.goBack(moves),
      () => page.goForward(moves)]) {
      await step().catch(() => {});
      await settle(page);
    }
    await page.goto(`${server.base}/verbs/${verb}.html`);
    await page.goBack(moves).catch(() => {});
    await page.waitForTimeout(1500);
    assert.equal(await accepted(), earlier + 1, (await logged(`/cgi-bin/${verb}`)).join('\n'));
    if (page.url().endsWith(`/verbs/${verb}.html`)) {
      assert.equal(await page.locator(`#form-${formKey} [name="confirm"]`).isChecked(), false, 'restored ticked');
    }
    await page.context().close();
  });
}

// The used tokens go with the spool when the server starts again: the
// tokens of pages it served before must not be taken again.
test('a form page served before the server restarted changes nothing after it',
  { skip: hostOnly('the tests do not restart a device') }, async () => {
  const ready = async () => {
    const page = await operatorAt('/verbs/reset.html');
    const f = page.locator('#form-slot');
    await f.locator('[name="slot"]').fill('3');
    await f.locator('[name="confirm"]').check();
    return [page, f.getByRole('button', { name: 'Reset the board', exact: true })];
  };
  const [pressed, button] = await ready();
  await pressAndWait(pressed, button);
  await answerFrame(pressed).getByRole('link').click();
  await settle(pressed);
  const [unpressed, unpressedButton] = await ready();
  await server.restart();
  const before = readFileSync(server.state, 'utf8');
  await pressed.goBack({ timeout: 1000 }).catch(() => {});  // re-sends the press
  await settle(pressed);
  await pressAndWait(unpressed, unpressedButton);
  assert.match(await answerFrame(unpressed).content(), /Not sent: nothing was sent to the shelf this time/);
  // Both reached the server (it writes its log when it can), and both got 409.
  let posts = [];
  for (let i = 0; i < 50 && posts.length < 2; i++) {
    if (i > 0) await new Promise((r) => setTimeout(r, 100));
    posts = (await logged('/cgi-bin/reset')).filter((l) => /"POST /.test(l));
  }
  assert.ok(posts.length === 2 && posts.every((l) => /" 409 /.test(l)), posts.join('\n'));
  assert.equal(readFileSync(server.state, 'utf8'), before);
  await pressed.context().close();
  await unpressed.context().close();
});

test('nothing the server account writes is trusted by root',
  { skip: hostOnly('the test plants files as the server account and restarts the server')
    || (process.getuid() !== 0 && 'needs root') }, async () => {
  // What root owns in the run directory, and a victim outside it.
  const victim = join(server.dir, 'victim');
  writeFileSync(victim, 'root\'s own\n');
  chmodSync(server.dir, 0o755);
  for (const f of ['policy.lua', `${serverName === 'apache' ? 'httpd' : serverName}.conf`]) {
    const info = statSync(join(server.run, f));
    assert.ok(info.uid === 0 && (info.mode & 0o022) === 0, `${f} is root's alone`);
  }
  assert.ok(statSync(server.run).uid === 0 && (statSync(server.run).mode & 0o022) === 0, 'the run directory is root\'s');
  // As the server account: every path it can write is filled with links
  // to the victim and with files root might take for its own.
  const asServer = (script) => execFileSync('setpriv', ['--reuid=www-data', '--regid=www-data', '--clear-groups',
    'sh', '-c', script], { stdio: 'pipe' });
  asServer(`cd '${server.run}' || exit 1
    for d in log spool spool/once spool/uploads; do
      [ -w "$d" ] || continue
      for f in access.log error.log policy.lua lighttpd.conf httpd.conf nginx.conf fcgiwrap.sock x; do
        rm -rf "$d/$f"; ln -s '${victim}' "$d/$f"
      done
    done
    for f in policy.lua lighttpd-policy.lua apache-policy.lua; do ln -sf '${victim}' "$f" 2>/dev/null; done
    ln -s '${victim}' log/../victim 2>/dev/null; true`);
  // And while the server starts again: each path the account may come to
  // own is planted the moment it can be, and the gateways' slots are
  // swapped for a link to root's directory while root hands them over.
  const victimDir = join(server.dir, 'victim-dir');
  execFileSync('mkdir', ['-m', '755', victimDir]);
  for (let i = 1; i <= 32; i++) writeFileSync(join(victimDir, `free-${i}`), '');
  const planter = spawn('setpriv', ['--reuid=www-data', '--regid=www-data', '--clear-groups', '/usr/bin/python3', '-c', `
import os, time
run, file, dir = ${JSON.stringify([server.run, victim, victimDir])}
links = {'log/error.log': file, 'log/access.log': file, 'temp/body': dir, 'temp/fastcgi': dir,
         'spool/body': dir, 'spool/fastcgi': dir}
end = time.time() + 15
while time.time() < end:
    for name, target in links.items():
        try: os.symlink(target, os.path.join(run, name))
        except OSError: pass
    try:
        os.rename(os.path.join(run, 'spool/gateways'), os.path.join(run, 'spool/gx'))
        os.symlink(dir, os.path.join(run, 'spool/gateways'))
    except OSError: pass
`], { stdio: 'ignore' });
  await server.restart();
  planter.kill();
  // Apache's slots are the account's own to break: put them back.
  const slots = join(server.run, 'spool/gateways');
  if (existsSync(join(server.run, 'spool/gx'))) rmSync(slots), renameSync(join(server.run, 'spool/gx'), slots);
  const operator = await api('operator');
  assert.equal((await operator.get(`${server.base}/cgi-bin/switchover`)).status(), 405, 'the policy holds');
  const page = await operator.post(`${server.base}/cgi-bin/version`, { data: 'x=1', headers: form });
  assert.equal(page.status(), 200);
  await operator.dispose();
  assert.equal(readFileSync(victim, 'utf8'), 'root\'s own\n');
  assert.equal(lstatSync(victim).uid, 0);
  for (const d of ['log', 'spool']) assert.equal(lstatSync(join(server.run, d)).isSymbolicLink(), false, d);
  for (const f of ['', ...readdirSync(victimDir)]) assert.equal(lstatSync(join(victimDir, f)).uid, 0, `victim-dir/${f}`);
  // The server holds no terminal of whoever started it: it leads a session
  // of its own, reads /dev/null and writes to its error log, so nothing
  // running as the account can read, type into or write to that terminal.
  const pid = readFileSync(join(server.run, `${serverName === 'apache' ? 'httpd' : serverName}.pid`), 'utf8').trim();
  const stat = readFileSync(`/proc/${pid}/stat`, 'utf8');
  assert.equal(stat.slice(stat.lastIndexOf(')') + 2).split(' ')[3], pid, 'the server leads its own session');
  const streams = [0, 1, 2].map((fd) => readlinkSync(`/proc/${pid}/fd/${fd}`));
  assert.ok(streams.every((f) => ['/dev/null', join(server.run, 'log/error.log')].includes(f)), streams.join(' '));
});
// A plain request from another loopback address, with the given
// Authorization header; its status and how long it took.
function requestFrom(localAddress, authorization, path = '/verbs/index.html') {
  const start = process.hrtime.bigint();
  return new Promise((ok, fail) => {
    const req = https.request({ host: '127.0.0.1', port: server.port, path, localAddress, agent: false,
      rejectUnauthorized: false, headers: authorization ? { Authorization: authorization } : {} }, (res) => {
      res.resume();
      res.on('end', () => ok({ status: res.statusCode, ms: Number(process.hrtime.bigint() - start) / 1e6 }));
    });
    req.on('error', fail);
    req.end();
  });
}
const basicOf = (name, password) => `Basic ${Buffer.from(`${name}:${password}`).toString('base64')}`;

test('guessing passwords is slow and tells nothing',
  { skip: hostOnly('every host address reaches it as qemu\'s one gateway address') }, async (t) => {
  // Unknown names and wrong passwords look alike.
  const unknown = [], wrong = [];
  for (let i = 0; i < 10; i++) {
    unknown.push(await requestFrom('127.0.0.4', basicOf(`nobody${i}`, 'x'), '/cgi-bin/setfanlevel'));
    wrong.push(await requestFrom('127.0.0.4', basicOf('viewer', `x${i}`), '/cgi-bin/setfanlevel'));
  }
  assert.deepEqual(new Set([...unknown, ...wrong].map((r) => r.status)), new Set([401]));
  const median = (rs) => rs.map((r) => r.ms).sort((a, b) => a - b)[rs.length >> 1];
  t.diagnostic(`${serverName}: median ms, unknown name ${median(unknown).toFixed(1)}, wrong password ${median(wrong).toFixed(1)}`);
  // One address guessing, four at a time: 60 failed checks a minute are
  // answered (and those already under way when the 60th failed), then
  // every request is held, even with the right password; another address
  // is served.
  const statuses = [];
  for (let i = 0; i < 20; i++) {
    const round = await Promise.all([0, 1, 2, 3].map((j) => requestFrom('127.0.0.3', basicOf('operator', `guess${i}.${j}`),
      j % 2 ? '/verbs/logout' : undefined)));  // the log-out counts a wrong password too
    statuses.push(...round.map((r) => r.status));
  }
  const answered = statuses.filter((s) => s === 401).length;
  assert.ok(answered >= 60 && answered <= 63, statuses.join(' '));
  assert.deepEqual(new Set(statuses.slice(64)), new Set([429]));
  assert.equal((await requestFrom('127.0.0.3', server.basic('operator'))).status, 429);
  assert.equal((await requestFrom('127.0.0.1', server.basic('operator'))).status, 200);
  // Whose password was never checked is not logged as a user.
  const guessed = readFileSync(server.accessLog, 'utf8').split('\n').filter((l) => / 127\.0\.0\.[34] /.test(l));
  assert.ok(guessed.every((l) => / 127\.0\.0\.[34] - "/.test(l)), guessed.find((l) => !/ - "/.test(l)));
});
});
