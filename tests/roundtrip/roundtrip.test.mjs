// The display page's round trip without a browser: LXRAdmin writes a user's
// page (GET), the page's own SubmitForm() runs over a few choices made as an
// administrator would make them (page_form.mjs), its PostForm goes back as a
// browser posts it (POST, application/x-www-form-urlencoded, same address and
// identity), and the directory is read back with lxrdir: the change is there,
// nothing else changed, and the audit trail records it.
//
// Run by CTest (label golden) with LXR_EXE, LXR_LXRDIR and LXR_SOURCE_DIR set.
// The "browser" side runs in a zone with daylight saving time, as an
// administrator's browser would, so dates must survive the trip through the
// page's local-time date controls.
process.env.TZ = 'Europe/Berlin';

import assert from 'node:assert/strict';
import { execFileSync, spawnSync } from 'node:child_process';
import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';
import { after, before, test } from 'node:test';
import { changes as beforeAndAfter, parseLdif } from '../browser/lib/directory.mjs';
import { Page } from './page_form.mjs';

const EXE = process.env.LXR_EXE;
const LXRDIR = process.env.LXR_LXRDIR;
const SOURCE = process.env.LXR_SOURCE_DIR;
const NOW = '1780315200'; // the demo directory's reference time
const NOW_STAMP = '20260601120000Z';
const SUCCESS = 'Operation Successful';
const dnOf = (uid) => `uid=${uid},ou=staff,o=example`;
const VPN_ENTRY = 'cn=vpn-users,ou=groups,o=example';

let work;
let store;
let config;

// A private demo directory, made as the golden cases make theirs.
before(() => {
  for (const [name, v] of Object.entries({ LXR_EXE: EXE, LXR_LXRDIR: LXRDIR, LXR_SOURCE_DIR: SOURCE })) {
    assert.ok(v, `${name} is not set`);
  }
  work = fs.mkdtempSync(path.join(os.tmpdir(), 'lxr-roundtrip.'));
  store = path.join(work, 'demo.db');
  config = path.join(work, 'lxrapi.toml');
  const toml = fs.readFileSync(path.join(SOURCE, 'examples/lxrapi.toml'), 'utf8');
  fs.writeFileSync(config, toml.replace(/^(\s*store\s*=\s*)".*"/gm, '$1"demo.db"'));
  execFileSync(LXRDIR, ['create', store, path.join(SOURCE, 'examples/demo.ldif')], { stdio: 'ignore' });
});

after(() => fs.rmSync(work, { recursive: true, force: true }));

const directory = () => parseLdif(execFileSync(LXRDIR, ['export', store], { encoding: 'utf8' }));
const audit = (dn) => execFileSync(LXRDIR, ['audit', store, dn], { encoding: 'utf8' });

// What differs between two directory snapshots: { dn: { attr: values after } }.
function changes(before, after) {
  const out = {};
  for (const [dn, attrs] of Object.entries(beforeAndAfter(before, after))) {
    for (const [attr, values] of Object.entries(attrs)) (out[dn] ??= {})[attr] = values.after;
  }
  return out;
}

// One CGI request as the web agent hands it over; returns status and body.
function request(method, query, { admin = 'uid=hd.lead,ou=admins,o=example', body = '', api = config } = {}) {
  const env = {
    LXR_NOW: NOW,
    LXRAPI_CONFIG: api,
    LXRADMIN_CATALOGUE: path.join(work, 'no-catalogue'),
    REQUEST_METHOD: method,
    QUERY_STRING: query,
    SCRIPT_NAME: '/cgi-bin/LXRAdmin',
    HTTP_KV_USERDN: admin,
    HTTP_KV_AUTHDIRNAMESPACE: 'LDAP:',
    HTTP_KV_AUTHDIRSERVER: 'ldap.example.com',
    HTTP_LXRADMIN: 'helpdesk',
    HTTP_USER_AGENT: 'Mozilla/5.0 (X11; Linux x86_64; rv:128.0) Gecko/20100101 Firefox/128.0',
  };
  if (method === 'POST') {
    env.CONTENT_TYPE = 'application/x-www-form-urlencoded';
    env.CONTENT_LENGTH = String(Buffer.byteLength(body));
  }
  const r = spawnSync(EXE, [], { cwd: work, env, input: body, encoding: 'utf8' });
  assert.equal(r.status, 0, `LXRAdmin exit status: ${r.stderr}`);
  const split = r.stdout.indexOf('\n\n');
  const status = /^Status: (.*)$/m.exec(r.stdout.slice(0, split))?.[1];
  return { status, body: r.stdout.slice(split + 2) };
}

// GET of a user's page; `choices` acts on it; the PostForm is posted to the
// same address. Returns the posted fields, the change to the directory and
// the page as it was offered.
function roundTrip(uid, choices, options = {}) {
  const query = `USERDIR=staff&USER=${uid}`;
  const got = request('GET', query, options);
  assert.equal(got.status, '200 OK');
  const page = new Page(got.body);
  const offered = page.hiddenFields();
  choices(page);
  const fields = page.submit();
  assert.deepEqual(page.alerts, []);
  // The page's copy statements write into the fields; they never add or drop one.
  assert.deepEqual(fields.map(([n]) => n), offered.map(([n]) => n));
  const before = directory();
  const posted = request('POST', query, { ...options, body: new URLSearchParams(fields).toString() });
  assert.equal(posted.status, '200 OK', posted.body.slice(posted.body.lastIndexOf('</head>')));
  assert.match(posted.body, new RegExp(`alert\\("${SUCCESS}"\\)`));
  return { fields, offered, changed: changes(before, directory()), before };
}

const valuesOf = (fields, name) => fields.filter(([n]) => n === name).map(([, v]) => v);

test('reset a failure counter to now, clear a login history, reset a password', () => {
  const password = 'Fresh-start42';
  let now;
  const { fields, changed, before } = roundTrip('ivan', (page) => {
    // The reset-to-now radio carries the value the server is to store.
    now = page.choose('kvlxrFailureCount', (v) => v.startsWith('0 '));
    page.tick('kvlxrLoginHistory');
    page.set('userPassword', password);
    page.set('userPassword_CONFIRM', password);
  });
  assert.equal(now, `0 ${NOW_STAMP}`, 'the page offers the request time as now');
  assert.deepEqual(valuesOf(fields, 'kvlxrFailureCount'), [now]);
  assert.deepEqual(valuesOf(fields, 'kvlxrLoginHistory'), ['1']);
  assert.deepEqual(valuesOf(fields, 'kvfpsLog'), ['0'], 'the untouched history is kept');
  assert.deepEqual(valuesOf(fields, 'userPassword'), [password]);

  const ivan = changed[dnOf('ivan')];
  assert.deepEqual(Object.keys(changed), [dnOf('ivan')], 'no other entry changed');
  assert.deepEqual(Object.keys(ivan).sort(),
    ['kvlxrFailureCount', 'kvlxrLastPasswordChange', 'kvlxrLoginHistory', 'userPassword']);
  assert.deepEqual(ivan.kvlxrFailureCount, [now]);
  assert.deepEqual(ivan.kvlxrLoginHistory, []);
  assert.deepEqual(ivan.kvlxrLastPasswordChange, [`${NOW_STAMP} LXRAdmin`]);
  // Stored hashed: a new hash, in a hash scheme's form, never the text itself.
  assert.equal(ivan.userPassword.length, 1);
  assert.notDeepEqual(ivan.userPassword, before.get(dnOf('ivan')).userPassword);
  assert.match(ivan.userPassword[0], /^\{[A-Z0-9-]+\}\$/);
  assert.ok(!ivan.userPassword[0].includes(password));
  assert.ok(!execFileSync(LXRDIR, ['export', store], { encoding: 'utf8' }).includes(password));

  const trail = audit(dnOf('ivan'));
  assert.match(trail, /uid=ivan,ou=staff,o=example by uid=hd\.lead,ou=admins,o=example as helpdesk/);
  assert.match(trail, new RegExp(`kvlxrFailureCount: "5 20260601103000Z 198\\.51\\.100\\.23" -> "${now}"`));
  assert.match(trail, /kvlxrLoginHistory: .* -> ""/);
  assert.match(trail, /userPassword: "\(redacted\)" -> "\(redacted\)"/);
  assert.ok(!trail.includes(password), 'the audit trail never holds the password');
});

test('disable forever with a comment, remove a redirect, add a group, override days', () => {
  let group;
  let legacy;
  const { fields, changed } = roundTrip('sybil', (page) => {
    page.choose('kvlxrDisableUntil', (v) => v === 'FOREVER');
    page.set('kvlxrDisableUntil_COMMENT', 'on-hold');
    // The n-th box belongs to the n-th hidden field of the same name.
    legacy = valuesOf(page.hiddenFields(), 'kvlxrGenerationalRedirects')
      .findIndex((v) => v.startsWith('LEGACY='));
    page.tick('kvlxrGenerationalRedirects', legacy);
    group = page.displayForm.controls.find((c) => c.type === 'checkbox' && /^GROUP-.*vpn-users/.test(c.name)).name;
    page.tick(group);
    page.set('kvlxrAccountInactivityDays_DAYS', '30');
    page.set('kvlxrAccountInactivityDays_COMMENT', 'temporary');
  }, { admin: 'uid=hd.agent,ou=admins,o=example' });
  assert.deepEqual(valuesOf(fields, 'kvlxrDisableUntil'), ['FOREVER on-hold']);
  assert.equal(legacy, 2, 'LEGACY is the last of three entries');
  assert.deepEqual(valuesOf(fields, 'kvlxrGenerationalRedirects'), [
    'PORTAL=https://portal.example.com/v2 20260301000000Z 10.1.1.2 pilot',
    'HR=https://hr.example.com/ 20260310000000Z 10.1.1.2 self-service',
    'LEGACY=0',
  ]);
  assert.deepEqual(valuesOf(fields, group), ['1']);
  assert.deepEqual(valuesOf(fields, 'kvlxrAccountInactivityDays'), ['30 temporary']);

  assert.deepEqual(changed, {
    [dnOf('sybil')]: {
      kvlxrDisableUntil: ['FOREVER on-hold'],
      kvlxrAccountInactivityDays: ['30 temporary'],
      kvlxrGenerationalRedirects: [
        'PORTAL=https://portal.example.com/v2 20260301000000Z 10.1.1.2 pilot',
        'HR=https://hr.example.com/ 20260310000000Z 10.1.1.2 self-service',
      ],
    },
    [VPN_ENTRY]: {
      member: ['uid=alice,ou=staff,o=example', 'uid=walter,ou=partners,o=example',
        'uid=ivan,ou=staff,o=example', dnOf('sybil')],
    },
  });
  const trail = audit(dnOf('sybil'));
  assert.match(trail, /by uid=hd\.agent,ou=admins,o=example as helpdesk/);
  assert.match(trail, /kvlxrDisableUntil: "" -> "FOREVER on-hold"/);
  assert.match(trail, /kvlxrAccountInactivityDays: "" -> "30 temporary"/);
  assert.match(trail, /group cn=vpn-users,ou=groups,o=example: "not a member" -> "member"/);

  // The page read again shows the new state.
  const again = request('GET', 'USERDIR=staff&USER=sybil').body;
  assert.match(again, /<span class="DISABLEDISPLAY">Disabled&nbsp;forever/);
});

test('the page posted as it stands changes nothing (but the count comment it cannot show)', () => {
  // heidi: a must-login-by date entered through the local-time date controls,
  // an immediate-change flag, a grace count with a comment.
  const { fields, changed } = roundTrip('heidi', () => {});
  assert.deepEqual(valuesOf(fields, 'kvlxrMustLoginBy'), ['20260615000000Z new-hire']);
  assert.deepEqual(valuesOf(fields, 'kvlxrImmediateChange'), ['YES via LXRAdmin']);
  // The count list has no room for a comment: it is dropped on submission.
  assert.deepEqual(valuesOf(fields, 'kvlxrGraceLoginsUsed'), ['2']);
  assert.deepEqual(changed, { [dnOf('heidi')]: { kvlxrGraceLoginsUsed: ['2'] } });
});

test('a redirect box other than the last is lost to the last same-named field', () => {
  // The posted fields become a map in which the last of several same-named
  // fields wins, so only the last entry's box can take effect.
  const { fields, changed } = roundTrip('alice', (page) => page.tick('kvlxrGenerationalRedirects', 0));
  assert.deepEqual(valuesOf(fields, 'kvlxrGenerationalRedirects'), [
    'PORTAL=0',
    'MAIL=https://mail.example.com/ 20260215103000Z 10.1.1.1 new-webmail',
  ]);
  assert.deepEqual(changed, {});
});

// A user under a password-guessing attack: 10,000 login-history entries, one
// a minute back from the reference time, stored newest first. Each entry's
// last word is its age rank, 0 for the newest.
const ATTACKS = 10000;
function stampOf(minutesBack) {
  return new Date(Date.UTC(2026, 5, 1, 11, 59) - minutesBack * 60000)
    .toISOString().replace(/[-:T]/g, '').replace(/\.\d+Z$/, 'Z');
}

// The rank words of the history entries a page shows, in page order.
function shownLogins(html) {
  const body = html.slice(html.indexOf('function ShowDetail_kvlxrLoginHistory'));
  const script = body.slice(0, body.indexOf('</SCRIPT>'));
  return [...script.matchAll(/LogEntry\(W, '[^']*', '[^']*', '[^']*', 'try-(\d+)'\);/g)].map((m) => Number(m[1]));
}
const newest = (n) => Array.from({ length: n }, (_, i) => i);

test('a user with 10,000 login-history entries is shown, read and cleared', () => {
  const lines = ['dn: uid=hammer,ou=staff,o=example', 'objectClass: inetOrgPerson', 'uid: hammer',
    'cn: Hank Hammer', 'sn: Hammer', `kvlxrFailureCount: 9 ${stampOf(0)} 203.0.113.66`];
  for (let i = 0; i < ATTACKS; i++) lines.push(`kvlxrLoginHistory: ${stampOf(i)} FAILED 203.0.113.66 try-${i}`);
  const ldif = path.join(work, 'hammer.ldif');
  fs.writeFileSync(ldif, lines.join('\n') + '\n');
  execFileSync(LXRDIR, ['import', store, ldif], { stdio: 'ignore' });
  // The same directory with no history limit worth the name: only the room
  // that the caller offers cuts the history.
  const unlimited = path.join(work, 'unlimited.toml');
  fs.writeFileSync(unlimited, fs.readFileSync(config, 'utf8').replace(/^history_limit = \d+/m, 'history_limit = 100000'));

  // The demo configuration shows the 100 newest, newest first.
  const page = request('GET', 'USERDIR=staff&USER=hammer');
  assert.equal(page.status, '200 OK');
  assert.match(page.body, /DISABLEDISPLAY">Failure&nbsp;count&nbsp;9&nbsp;reached/);
  assert.deepEqual(shownLogins(page.body), newest(100));

  // Without the limit the page shows as many of the newest as fit.
  const full = request('GET', 'USERDIR=staff&USER=hammer', { api: unlimited });
  assert.equal(full.status, '200 OK');
  const shown = shownLogins(full.body);
  assert.ok(shown.length > 500 && shown.length < ATTACKS, `${shown.length} entries shown`);
  assert.deepEqual(shown, newest(shown.length));
  assert.match(full.body, /<INPUT TYPE="CHECKBOX" NAME="kvlxrLoginHistory" VALUE="YES">/);

  // The command line offers less room and reads the same user.
  const cli = spawnSync(EXE, ['-ALDAP://demo/uid=hd.lead,ou=admins,o=example', '-Chelpdesk', '-Rstaff/hammer'], {
    cwd: work, env: { LXR_NOW: NOW, LXRAPI_CONFIG: unlimited, LXRADMIN_CATALOGUE: path.join(work, 'no-catalogue') },
    encoding: 'utf8',
  });
  assert.equal(cli.status, 0, cli.stderr);
  assert.ok(cli.stdout.startsWith('<User name="uid=hammer,ou=staff,o=example" disabled="Failure count 9'));
  const ranks = [...cli.stdout.matchAll(/FAILED 203\.0\.113\.66 try-(\d+)<\/Value>/g)].map((m) => Number(m[1]));
  assert.ok(ranks.length > 200 && ranks.length < shown.length, `${ranks.length} entries read`);
  assert.deepEqual(ranks, newest(ranks.length));

  // Clearing from the page clears all 10,000, shown or not.
  const { fields, changed } = roundTrip('hammer', (p) => p.tick('kvlxrLoginHistory'), { api: unlimited });
  assert.deepEqual(valuesOf(fields, 'kvlxrLoginHistory'), ['1']);
  assert.deepEqual(changed, { [dnOf('hammer')]: { kvlxrLoginHistory: [] } });
  assert.deepEqual(shownLogins(request('GET', 'USERDIR=staff&USER=hammer').body), []);
});
