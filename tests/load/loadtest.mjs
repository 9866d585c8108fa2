// Bounded load through the shipped lighttpd configuration (HTTPS, logged in
// as the operator) with the simulated shelf: REQUESTS requests
// (default 20000) over CONNECTIONS concurrent keep-alive connections (32)
// across all verbs, loopback only. Every response is checked; then no
// gateway or tool process may be left (not seen on the emulated device)
// and the log must start with a valid invocation path. Prints the figures;
// exits non-zero on any failure.
import https from 'node:https';
import { unlinkSync } from 'node:fs';
import { readdirSync, readlinkSync, readFileSync, realpathSync } from 'node:fs';
import { join } from 'node:path';
import { startServer, onDevice, buildDir as build, verbList } from '../browser/serve.mjs';
import { verbRequests as mix } from '../browser/requests.mjs';

const total = Number(process.env.REQUESTS ?? 20000);
const connections = Number(process.env.CONNECTIONS ?? 32);
const deadline = Date.now() + Number(process.env.LOAD_SECONDS ?? 600) * 1000;

function outputBlock(page) {
  const pre = page.match(/<\/P><HR><PRE>([\s\S]*)<\/PRE><HR>/);
  if (pre) return pre[1];
  const bare = page.match(/<\/P><HR>([\s\S]*)<HR><A HREF/);  // the SEL Clear page has no PRE block
  return bare ? bare[1] : null;
}

function problemWith(status, page, message) {
  if (status !== 200) return `status ${status}`;
  if (!page.endsWith('</BODY></HTML>')) return 'incomplete page';
  const block = outputBlock(page);
  if (block === null) return 'no output block';
  if (message !== undefined) return block === message ? null : `expected ${message}, got ${block.slice(0, 80)}`;
  if (block.trim() === '') return 'no answer from the tool';
  if (/^(It is necessary|A value may not|The command is too long|Error, )/.test(block)) return `refused: ${block}`;
  return null;
}

function request(agent, server, [verb, body, message]) {
  return new Promise((resolve) => {
    const req = https.request(`${server.base}/cgi-bin/${verb}`, {
      method: 'POST', agent,
      headers: { 'Content-Type': 'application/x-www-form-urlencoded', 'Content-Length': Buffer.byteLength(body),
        Authorization: server.basic('operator') },
    }, (res) => {
      const chunks = [];
      res.on('data', (c) => chunks.push(c));
      res.on('end', () => resolve(problemWith(res.statusCode, Buffer.concat(chunks).toString('latin1'), message)));
    });
    req.setTimeout(60000, () => req.destroy(new Error('timeout')));
    req.on('error', (e) => resolve(e.message));
    req.end(body);
  });
}

// Processes still running one of the given executables.
function leftovers(executables) {
  const found = [];
  for (const pid of readdirSync('/proc').filter((d) => /^\d+$/.test(d))) {
    try {
      if (executables.includes(readlinkSync(`/proc/${pid}/exe`))) found.push(pid);
    } catch { /* gone, or not ours to read */ }
  }
  return found;
}

// The gateway runs as the server's unprivileged account: it must be able
// to create the log afresh.
if (!onDevice) try { unlinkSync('/var/tmp/verbgw.log'); } catch { /* none yet */ }
const server = await startServer({ build });
const agent = new https.Agent({ keepAlive: true, maxSockets: connections, rejectUnauthorized: false });
const failures = new Map();
let sent = 0, done = 0, failed = 0;
const started = process.hrtime.bigint();
async function worker() {
  while (sent < total && Date.now() < deadline) {
    const item = mix[sent++ % mix.length];
    const problem = await request(agent, server, item);
    done++;
    if (problem) {
      failed++;
      const key = `${item[0]}: ${problem}`;
      failures.set(key, (failures.get(key) ?? 0) + 1);
    }
  }
}
await Promise.all(Array.from({ length: connections }, worker));
const seconds = Number(process.hrtime.bigint() - started) / 1e9;
agent.destroy();

const executables = [realpathSync(join(server.root, 'cgi-bin/verbgw')), realpathSync(server.tool)];
let left = onDevice ? [] : leftovers(executables);
for (let i = 0; i < 40 && left.length > 0; i++) {
  await new Promise((r) => setTimeout(r, 50));
  left = leftovers(executables);
}
const log = readFileSync(server.gatewayLog, 'latin1');
const prefix = onDevice ? '/usr/lib/verbgw/www/cgi-bin/' : join(server.root, 'cgi-bin/');
const verbs = verbList('verbs.txt');
const logValid = log.startsWith(prefix) && verbs.some((v) => log.slice(prefix.length).startsWith(v));
await server.stop();

console.log(`requests: ${done}  failures: ${failed}  connections: ${connections}  seconds: ${seconds.toFixed(1)}  requests/s: ${(done / seconds).toFixed(0)}`);
for (const [key, count] of failures) console.log(`  ${count} x ${key}`);
console.log(`processes left behind: ${onDevice ? 'not seen from outside the device' : left.length}`);
console.log(`log starts with a valid invocation path: ${logValid ? 'yes' : `no (${JSON.stringify(log.slice(0, 120))})`}`);
const ok = done === total && failed === 0 && left.length === 0 && logValid;
console.log(ok ? 'loadtest: PASS' : 'loadtest: FAIL');
process.exit(ok ? 0 : 1);
