// The demo directory of a test run: created by web/make-demo.sh, restored
// from a pristine copy before each scenario, and read back with `lxrdir` to
// prove what a post changed (and that nothing else did).
import { execFileSync, spawnSync } from 'node:child_process';
import fs from 'node:fs';
import path from 'node:path';
import { LXRDIR, SOURCE, tempDir } from './web.mjs';

// Parses LDIF (folded lines, base64 values) into a Map dn -> { attr: [values] }.
export function parseLdif(text) {
  const entries = new Map();
  const lines = [];
  for (const line of text.split('\n')) {
    if (line.startsWith(' ') && lines.length) lines[lines.length - 1] += line.slice(1);
    else lines.push(line);
  }
  let current = null;
  for (const line of lines) {
    if (line === '' || line.startsWith('#') || line.startsWith('version:')) {
      if (line === '') current = null;
      continue;
    }
    const m = /^([^:]+)(::?)\s?(.*)$/.exec(line);
    if (!m) throw new Error(`not LDIF: ${line}`);
    const value = m[2] === '::' ? Buffer.from(m[3], 'base64').toString('utf8') : m[3];
    if (m[1].toLowerCase() === 'dn') {
      current = {};
      entries.set(value, current);
    } else {
      (current[m[1]] ??= []).push(value);
    }
  }
  return entries;
}

export class DemoDirectory {
  // ldif: the directory's contents, examples/demo.ldif unless given.
  constructor({ ldif } = {}) {
    this.dir = tempDir('demo');
    execFileSync('bash', [path.join(SOURCE, 'web/make-demo.sh'), '--lxrdir', LXRDIR, '--dir',
      this.dir, ...(ldif ? ['--ldif', ldif] : [])], { stdio: 'ignore' });
    const env = fs.readFileSync(path.join(this.dir, 'demo.env'), 'utf8');
    this.env = Object.fromEntries([...env.matchAll(/^(\w+)='([^']*)'$/gm)].map((m) => [m[1], m[2]]));
    this.store = this.env.DEMO_STORE;
    this.pristine = path.join(this.dir, 'pristine.db');
    fs.copyFileSync(this.store, this.pristine);
  }

  // Opens the directory to every user: Apache started by root runs the
  // program as nobody, which must read the configuration and write the store.
  openToAll() {
    fs.chmodSync(this.dir, 0o777);
    for (const f of fs.readdirSync(this.dir)) fs.chmodSync(path.join(this.dir, f), 0o666);
  }

  // Puts the store back as created (between scenarios, with no request running).
  restore() {
    for (const suffix of ['-journal', '-wal', '-shm']) fs.rmSync(this.store + suffix, { force: true });
    fs.copyFileSync(this.pristine, this.store);
  }

  // Every entry of the store: Map dn -> { attr: [values] }.
  entries() {
    return parseLdif(execFileSync(LXRDIR, ['export', this.store], { encoding: 'utf8' }));
  }

  entry(dn) {
    return parseLdif(execFileSync(LXRDIR, ['show', this.store, dn], { encoding: 'utf8' })).get(dn);
  }
}

// The attributes whose values differ between two snapshots of entries(), as
// { dn: { attr: { before, after } } }; entries added or removed count too.
export function changes(before, after) {
  const out = {};
  for (const dn of new Set([...before.keys(), ...after.keys()])) {
    const a = before.get(dn) ?? {};
    const b = after.get(dn) ?? {};
    for (const attr of new Set([...Object.keys(a), ...Object.keys(b)])) {
      const x = JSON.stringify(a[attr] ?? []);
      const y = JSON.stringify(b[attr] ?? []);
      if (x !== y) ((out[dn] ??= {})[attr] = { before: a[attr] ?? [], after: b[attr] ?? [] });
    }
  }
  return out;
}

// The API's configuration for the LDAP demo that tests/ldap/run.sh --ppolicy
// started (LXR_LDAP_*): the server's password policy holds the users' state,
// the audit trail goes to a store in the run's folder. Returns its path.
export function ldapDemoConfig() {
  const work = process.env.LXR_LDAP_WORK;
  execFileSync(LXRDIR, ['create', path.join(work, 'audit.db')]);
  return process.env.LXR_LDAP_API_CONFIG;
}

// ldapwhoami's exit status against the LDAP demo: 0 bound, 49 refused.
export const bind = (dn, password) =>
  spawnSync('ldapwhoami', ['-x', '-H', process.env.LXR_LDAP_URL, '-D', dn, '-w', password],
    { stdio: 'ignore' }).status;
