// Installs a build into a scratch directory, serves it with the shipped
// lighttpd configuration (HTTPS on a free loopback port, the redirect on
// another, two accounts, the simulated shelf as shelfctl), and stops it.
import { spawn, execFileSync } from 'node:child_process';
import { chmodSync, copyFileSync, mkdirSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { createServer, connect } from 'node:net';
import { tmpdir } from 'node:os';
import { randomBytes } from 'node:crypto';
import { dirname, join, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';

export const repo = resolve(dirname(fileURLToPath(import.meta.url)), '../..');

export function freePort(host = '127.0.0.1') {
  return new Promise((ok, fail) => {
    const server = createServer();
    server.on('error', fail);
    server.listen(0, host, () => {
      const { port } = server.address();
      server.close(() => ok(port));
    });
  });
}

function accepting(port) {
  return new Promise((ok) => {
    const socket = connect(port, '127.0.0.1');
    socket.on('connect', () => { socket.end(); ok(true); });
    socket.on('error', () => ok(false));
  });
}

// With VERBGW_DEVICE=1 the suites talk to the emulated device that
// scripts/device started (on PORT and HTTP_PORT), whose run directory,
// /var/tmp and shelf state are in VERBGW_DEVICE_SHARE on this host, and
// whose accounts are in VERBGW_DEVICE_PASSWORDS (name:password lines).
// What the tests run directly is this build's gateway and simulator.
export const onDevice = process.env.VERBGW_DEVICE === '1';

// A scratch directory with the build installed and the simulator as the
// tool; every directory on the way reachable by the account the server
// drops to when the tests run as root.
function scratch(build) {
  const dir = mkdtempSync(join(tmpdir(), 'verbgw-web-'));
  chmodSync(dir, 0o755);
  const install = join(dir, 'install');
  execFileSync('cmake', ['--install', build, '--prefix', install], { stdio: 'ignore' });
  const toolDir = join(dir, 'tool');
  mkdirSync(toolDir);
  copyFileSync(join(build, 'tools/shelfsim/shelfctl'), join(toolDir, 'shelfctl'));
  chmodSync(join(toolDir, 'shelfctl'), 0o755);
  return { dir, install, toolDir };
}

function withAccounts(server, accounts) {
  // The Authorization header of an account.
  return { ...server, accounts, basic: (role) => `Basic ${Buffer.from(`${role}:${accounts[role].password}`).toString('base64')}` };
}

function attachDevice(build) {
  const { dir, install, toolDir } = scratch(build);
  const share = process.env.VERBGW_DEVICE_SHARE;
  // Each suite starts from the shelf as it was delivered, as it would with
  // a server of its own: the simulator takes an empty state for that.
  writeFileSync(join(share, 'shelf.state'), '');
  const accounts = {};
  for (const line of readFileSync(process.env.VERBGW_DEVICE_PASSWORDS, 'utf8').split('\n').filter(Boolean)) {
    const [username, password] = [line.slice(0, line.indexOf(':')), line.slice(line.indexOf(':') + 1)];
    accounts[username] = { username, password };
  }
  const port = Number(process.env.PORT);
  return withAccounts({
    base: `https://127.0.0.1:${port}`,
    httpBase: `http://127.0.0.1:${process.env.HTTP_PORT}`,
    port,
    dir,
    root: join(install, 'www'),
    tool: join(toolDir, 'shelfctl'),
    state: join(share, 'shelf.state'),
    run: join(share, 'run'),
    accessLog: join(share, 'run/log/access.log'),
    gatewayLog: join(share, 'vartmp/verbgw.log'),
    clientAddress: '10.0.2.2',  // qemu's user networking, as the device sees this host
    device: true,
    async restart() { throw new Error('the tests do not restart a device'); },
    setRole() { throw new Error('the tests do not change a device\'s accounts'); },
    async stop() { rmSync(dir, { recursive: true, force: true }); },
  }, accounts);
}

// The build the suites test, and the lists of verbs it wrote from the
// gateway's verb table.
export const buildDir = process.env.VERBGW_BUILD ?? join(repo, 'build');
export const verbList = (name) => readFileSync(join(buildDir, 'lists', name), 'utf8').split('\n').filter(Boolean);

export async function startServer({ build = buildDir, timeout = 45,
  server: name = 'lighttpd' } = {}) {
  if (onDevice) return attachDevice(build);
  const { dir, install, toolDir } = scratch(build);
  const etc = join(dir, 'etc');
  const accounts = {};
  for (const role of ['viewer', 'operator']) {
    const password = randomBytes(12).toString('base64url');
    execFileSync(join(install, 'deploy/passwd'), [role, role], { input: `${password}\n`, env: { ...process.env, VERBGW_ETC: etc } });
    accounts[role] = { username: role, password };
  }
  const port = await freePort();
  const httpPort = await freePort();
  const state = join(dir, 'shelf.state');
  const env = { ...process.env, PORT: String(port), HTTP_PORT: String(httpPort), CGI_TIMEOUT: String(timeout),
    SHELFSIM_STATE: state, VERBGW_ETC: etc, SERVER: name };
  const run = join(dir, 'run');
  // BusyBox httpd speaks plain HTTP only, on PORT.
  const busybox = name === 'busybox';
  const script = join(install, busybox ? 'deploy/busybox/serve' : 'deploy/serve');
  const launch = async () => {
    const started = spawn(script, [join(install, 'www'), run, toolDir], { env, stdio: ['ignore', 'ignore', 'inherit'] });
    for (let i = 0; i < 100 && !(await accepting(port)); i++) await new Promise((r) => setTimeout(r, 50));
    return started;
  };
  const halt = async (running) => {
    running.kill('SIGTERM');
    await new Promise((r) => (running.exitCode !== null || running.signalCode !== null ? r() : running.once('exit', r)));
    for (let i = 0; i < 100 && (await accepting(port)); i++) await new Promise((r) => setTimeout(r, 50));
  };
  let server = await launch();
  return withAccounts({
    base: `${busybox ? 'http' : 'https'}://127.0.0.1:${port}`,
    httpBase: `http://127.0.0.1:${httpPort}`,
    port,
    dir,
    root: join(install, 'www'),
    tool: join(toolDir, 'shelfctl'),
    state,
    run,
    accessLog: join(run, 'log/access.log'),
    gatewayLog: '/var/tmp/verbgw.log',
    clientAddress: '127.0.0.1',
    // An account's role changed with deploy/passwd, its password kept.
    setRole(name, role) {
      execFileSync(join(install, 'deploy/passwd'), [name, role], { input: `${accounts[name].password}\n`, env });
    },
    // Stopped and started again, as a device's service would be.
    async restart() {
      await halt(server);
      server = await launch();
    },
    async stop() {
      await halt(server);
      rmSync(dir, { recursive: true, force: true });
    },
  }, accounts);
}
