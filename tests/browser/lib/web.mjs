// Shared helpers of the web tests: private servers on loopback ports, raw
// HTTP requests with header names that ordinary clients refuse to send, and
// the paths CTest hands over (run.sh).
import { execFileSync } from 'node:child_process';
import fs from 'node:fs';
import net from 'node:net';
import os from 'node:os';
import path from 'node:path';

export const SOURCE = process.env.LXR_SOURCE_DIR;
export const EXE = process.env.LXR_EXE;
export const PROBE = process.env.LXR_PROBE;
export const LXRDIR = process.env.LXR_LXRDIR || '';
export const ARTIFACTS = process.env.LXR_ARTIFACTS || path.join(os.tmpdir(), 'lxr-artifacts');

// Everything a test starts is stopped when the process ends, whatever happens.
const cleanups = [];
process.on('exit', () => {
  for (const f of cleanups.splice(0).reverse()) {
    try { f(); } catch { /* best effort on the way out */ }
  }
});

export function tempDir(prefix) {
  const dir = fs.mkdtempSync(path.join(os.tmpdir(), `lxr-${prefix}-`));
  cleanups.push(() => fs.rmSync(dir, { recursive: true, force: true }));
  return dir;
}

// Reads the var.agent_* values of an agent file (the lighttpd syntax of
// web/lighttpd/demo-agent.conf) into { userdn, identity, ... }.
export function readAgentFile(file) {
  const agent = {};
  for (const m of fs.readFileSync(file, 'utf8').matchAll(/^var\.agent_(\w+)\s*=\s*"([^"]*)"/gm)) {
    agent[m[1]] = m[2];
  }
  return agent;
}

export const AGENT_KEYS = ['userdn', 'namespace', 'server', 'userpath', 'identity', 'context',
  'returnto', 'helpurl'];

function writeAgentFile(file, agent) {
  const lines = AGENT_KEYS.map((k) => `var.agent_${k} = "${agent[k] ?? ''}"`);
  fs.writeFileSync(file, lines.join('\n') + '\n');
}

function killPidFile(pidFile) {
  if (!fs.existsSync(pidFile)) return;
  const pid = Number(fs.readFileSync(pidFile, 'utf8'));
  if (pid > 0) {
    try { process.kill(pid, 'SIGTERM'); } catch { /* already gone */ }
  }
}

// Starts web/lighttpd.sh on a free loopback port. agent: values for
// var.agent_* (a file path or an object); env: CGI environment; aliases:
// extra URL => path mappings; flags: more arguments of web/lighttpd.sh
// (--no-guard, ...). Returns { url, run, stop() }.
export function startLighttpd({ agent, env = {}, aliases = {}, cgi = EXE, flags = [] }) {
  const run = tempDir('lighttpd');
  let agentFile = agent;
  if (typeof agent !== 'string') {
    agentFile = path.join(run, 'agent.conf');
    writeAgentFile(agentFile, agent);
  }
  const args = [path.join(SOURCE, 'web/lighttpd.sh'), 'start', '--run', run, '--cgi', cgi,
    '--agent', agentFile];
  for (const [k, v] of Object.entries(env)) args.push('--env', `${k}=${v}`);
  for (const [k, v] of Object.entries(aliases)) args.push('--alias', `${k}=${v}`);
  args.push(...flags);
  const pidFile = path.join(run, 'lighttpd.pid');
  cleanups.push(() => killPidFile(pidFile));
  const url = execFileSync('bash', args, { encoding: 'utf8' }).trim().split('\n').pop();
  return {
    url,
    run,
    stop() {
      execFileSync('bash', [path.join(SOURCE, 'web/lighttpd.sh'), 'stop', '--run', run]);
    },
  };
}

// One HTTP/1.1 request over a plain socket, so that any header name can be
// sent. headers: array of [name, value] (or raw header lines). Resolves to
// { status, headers (lower-case names), body }.
export function rawRequest(url, { method = 'GET', path: p = '/', headers = [], body = '' } = {}) {
  const { hostname, port } = new URL(url);
  const lines = [`${method} ${p} HTTP/1.1`, `Host: ${hostname}:${port}`, 'Connection: close'];
  for (const h of headers) lines.push(Array.isArray(h) ? `${h[0]}: ${h[1]}` : h);
  if (body) lines.push(`Content-Length: ${Buffer.byteLength(body)}`);
  const request = Buffer.concat([Buffer.from(lines.join('\r\n') + '\r\n\r\n', 'latin1'),
    Buffer.from(body)]);
  return new Promise((resolve, reject) => {
    const chunks = [];
    const socket = net.connect(Number(port), hostname, () => socket.end(request));
    socket.setTimeout(30000, () => socket.destroy(new Error('timeout')));
    socket.on('data', (d) => chunks.push(d));
    socket.on('error', reject);
    socket.on('close', () => {
      const text = Buffer.concat(chunks).toString('utf8');
      const split = text.indexOf('\r\n\r\n');
      const head = text.slice(0, split).split('\r\n');
      const status = Number(head[0].split(' ')[1]);
      const hdrs = {};
      for (const line of head.slice(1)) {
        const i = line.indexOf(':');
        hdrs[line.slice(0, i).toLowerCase()] = line.slice(i + 1).trim();
      }
      resolve({ status, headers: hdrs, body: text.slice(split + 4) });
    });
  });
}

// The probe's answer as a list of [name, value], in the order received.
export function parseEnvironment(body) {
  return body.split('\n').filter((l) => l.includes('=')).map((l) => {
    const i = l.indexOf('=');
    return [l.slice(0, i), l.slice(i + 1)];
  });
}

// The fifteen characters besides letters and digits that HTTP allows in a
// header name; lighttpd maps each of them to "_" in CGI variable names.
export const TOKEN_PUNCTUATION = "!#$%&'*+-.^_`|~";

// Starts web/apache.sh on a free loopback port with basic logins.
// logins: { name: { password, dn, identity } }. Started by root, Apache runs
// the program as nobody, so the run directory and the program's copy are
// opened to others. Returns { url, run, stop() }.
export function startApache({ cgi, logins, apiConfig = '', namespace = 'LDAP:',
  dirserver = 'localhost', check = false }) {
  const run = tempDir('apache');
  fs.chmodSync(run, 0o755);
  const users = path.join(run, 'users');
  const agents = path.join(run, 'agents.map');
  fs.writeFileSync(users, '');
  const mapLines = [];
  for (const [name, login] of Object.entries(logins)) {
    execFileSync('htpasswd', ['-bB', users, name, login.password], { stdio: 'ignore' });
    if (login.dn) mapLines.push(`${name} ${login.dn}|${login.identity}`);
  }
  fs.writeFileSync(agents, mapLines.join('\n') + '\n');
  fs.chmodSync(users, 0o644);
  fs.chmodSync(agents, 0o644);
  const args = [path.join(SOURCE, 'web/apache.sh'), check ? 'check' : 'start', '--run',
    path.join(run, 'server'), '--cgi', cgi, '--users', users, '--agents', agents,
    '--namespace', namespace, '--dirserver', dirserver, '--api-config', apiConfig];
  const pidFile = path.join(run, 'server', 'httpd.pid');
  cleanups.push(() => killPidFile(pidFile));
  const out = execFileSync('bash', args, { encoding: 'utf8' }).trim().split('\n').pop();
  return {
    url: out,
    run,
    stop() {
      execFileSync('bash', [path.join(SOURCE, 'web/apache.sh'), 'stop', '--run',
        path.join(run, 'server')]);
    },
  };
}

export function basicAuth(name, password) {
  return ['Authorization', `Basic ${Buffer.from(`${name}:${password}`).toString('base64')}`];
}
