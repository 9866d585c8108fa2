// BusyBox httpd with deploy/busybox: every verb answers as the gateway run
// directly does, and the roles hold as far as BusyBox can express them
// (a refused viewer gets 401; BusyBox has no 403, no TLS and no headers).
import { test, before, after } from 'node:test';
import assert from 'node:assert/strict';
import { readFileSync, statSync } from 'node:fs';
import { spawnSync } from 'node:child_process';
import { join } from 'node:path';
import http from 'node:http';
import { startServer, verbList } from './serve.mjs';
import { expectDirectAnswers, readingVerbs } from './requests.mjs';

const verbs = verbList('verbs.txt');
let server;

before(async () => { server = await startServer({ server: 'busybox' }); });
after(async () => { await server?.stop(); });

// A client for one account (none: anonymous). BusyBox passes the gateway's
// header lines through with their bare line feeds, which browsers and curl
// take but node's strict parser does not: parse leniently.
function as(role, password) {
  const auth = role && `Basic ${Buffer.from(`${role}:${password ?? server.accounts[role].password}`).toString('base64')}`;
  const send = (method, url, { data = '', headers = {} } = {}) => new Promise((ok, fail) => {
    const req = http.request(url, { method, insecureHTTPParser: true,
      headers: { ...headers, ...(auth && { Authorization: auth }), 'Content-Length': Buffer.byteLength(data) } }, (res) => {
      const chunks = [];
      res.on('data', (c) => chunks.push(c));
      res.on('end', () => ok({ status: () => res.statusCode, text: async () => Buffer.concat(chunks).toString('latin1') }));
    });
    req.on('error', fail);
    req.end(data);
  });
  return { get: (url) => send('GET', url), post: (url, options) => send('POST', url, options), dispose: async () => {} };
}

test('every verb answers as the gateway run directly does', async () => {
  const operator = await as('operator');
  await expectDirectAnswers(server, operator);
  await operator.dispose();
});

test('every path needs a user, and only an operator reaches the changing verbs', async () => {
  const anonymous = await as();
  const wrong = await as('operator', 'not-the-password');
  const viewer = await as('viewer');
  assert.equal((await anonymous.get(`${server.base}/verbs/index.html`)).status(), 401);
  assert.equal((await anonymous.get(`${server.base}/cgi-bin/version`)).status(), 401);
  assert.equal((await wrong.get(`${server.base}/cgi-bin/version`)).status(), 401);
  assert.equal((await viewer.get(`${server.base}/verbs/index.html`)).status(), 200);
  for (const verb of [...verbs, 'verbgw']) {
    assert.equal((await viewer.get(`${server.base}/cgi-bin/${verb}`)).status(), readingVerbs.includes(verb) ? 200 : 401, verb);
  }
  for (const c of [anonymous, wrong, viewer]) await c.dispose();
});

// It speaks no TLS and refuses nothing across sites, so it serves only this
// machine (behind a protected server as a proxy), and its configuration,
// holding the password hashes, is root's.
test('BusyBox serves only the loopback address, from a configuration root owns', () => {
  const serve = spawnSync(join(server.dir, 'install/deploy/busybox/serve'), [server.root, join(server.dir, 'other')],
    { env: { ...process.env, BIND: '0.0.0.0' } });
  assert.equal(serve.status, 2);
  assert.match(serve.stderr.toString(), /loopback/);
  if (process.getuid() === 0) {
    const conf = statSync(join(server.run, 'httpd.conf'));
    assert.ok(conf.uid === 0 && (conf.mode & 0o022) === 0, 'root\'s alone to write');
  }
});
