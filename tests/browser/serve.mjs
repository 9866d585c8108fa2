// Stages a web root from a build, serves it with lighttpd on a free loopback
// port with the simulated shelf as shelfctl, and stops it again.
import { spawn, execFileSync } from 'node:child_process';
import { mkdtempSync, rmSync } from 'node:fs';
import { createServer, connect } from 'node:net';
import { tmpdir } from 'node:os';
import { join, resolve } from 'node:path';

export const repo = resolve(import.meta.dirname, '../..');

function freePort() {
  return new Promise((ok, fail) => {
    const server = createServer();
    server.on('error', fail);
    server.listen(0, '127.0.0.1', () => {
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

export async function startServer({ build = process.env.VERBGW_BUILD ?? join(repo, 'build'), timeout = 30 } = {}) {
  const dir = mkdtempSync(join(tmpdir(), 'verbgw-web-'));
  const root = join(dir, 'root');
  execFileSync('cmake', ['--install', build, '--prefix', root], { stdio: 'ignore' });
  const port = await freePort();
  const env = { ...process.env, PORT: String(port), CGI_TIMEOUT: String(timeout),
    SHELFSIM_STATE: join(dir, 'shelf.state') };
  const server = spawn(join(repo, 'deploy/serve'), [root, join(dir, 'run'), join(build, 'tools/shelfsim')],
    { env, stdio: ['ignore', 'ignore', 'inherit'] });
  for (let i = 0; i < 100 && !(await accepting(port)); i++) await new Promise((r) => setTimeout(r, 50));
  return {
    base: `http://127.0.0.1:${port}`,
    dir,
    async stop() {
      server.kill('SIGTERM');
      await new Promise((r) => server.once('exit', r));
      rmSync(dir, { recursive: true, force: true });
    },
  };
}
