// Apache httpd in the web agent's place (web/apache): its configuration
// passes `apache2 -t`, it logs the administrator in, and the program behind
// it sees only the identity that the login maps to, never a client's.
import assert from 'node:assert/strict';
import fs from 'node:fs';
import path from 'node:path';
import { after, before, describe, test } from 'node:test';
import { DemoDirectory } from './lib/directory.mjs';
import {
  EXE, PROBE, TOKEN_PUNCTUATION, basicAuth, parseEnvironment, rawRequest, startApache, tempDir,
} from './lib/web.mjs';

const LOGINS = {
  desk: { password: 'desk-secret', dn: 'uid=desk,ou=admins,o=demo', identity: 'role=helpdesk' },
  audit: { password: 'audit-secret', dn: 'uid=audit,ou=admins,o=demo', identity: 'role=auditor' },
  nobody: { password: 'nobody-secret' },  // can log in, but the map has no entry
};

// The probe, copied under the name the configuration protects.
function probeAsProgram() {
  const dir = tempDir('apache-cgi');
  fs.chmodSync(dir, 0o755);
  const exe = path.join(dir, 'LXRAdmin');
  fs.copyFileSync(PROBE, exe);
  fs.chmodSync(exe, 0o755);
  return exe;
}

function identityOf(body) {
  const seen = {};
  for (const [name, value] of parseEnvironment(body)) {
    if (/^HTTP_(KV|USERPATH|LXRADMIN|RETURNTO|HELPURL)/.test(name)) (seen[name] ??= []).push(value);
  }
  return seen;
}

function expectedFor(login) {
  return {
    HTTP_KV_USERDN: [LOGINS[login].dn],
    HTTP_KV_AUTHDIRNAMESPACE: ['LDAP:'],
    HTTP_KV_AUTHDIRSERVER: ['localhost'],
    HTTP_LXRADMIN: [LOGINS[login].identity],
  };
}

const FORGED = [
  ...[...TOKEN_PUNCTUATION].map((c) => [`KV${c}USERDN`, 'uid=intruder,o=evil']),
  ['KVUSERDN', 'uid=intruder,o=evil'],
  ['KV-AUTHDIRSERVER', 'evil'],
  ['KV_AUTHDIRNAMESPACE', 'EVIL:'],
  ['LXRADMIN', 'role=intruder'],
  ['LXRADMINCONTEXT', 'intruder=1'],
  ['USERPATH', 'LDAP://evil/uid=intruder'],
  ['RETURNTO', 'http://evil.invalid/'],
  ['HELPURL', 'http://evil.invalid/help'],
];

describe('Apache configuration', () => {
  test('passes apache2 -t with a private ServerRoot', () => {
    assert.doesNotThrow(() => startApache({ cgi: probeAsProgram(), logins: LOGINS, check: true }));
  });
});

describe('Apache supplies the identity headers from its own login', () => {
  let server;
  before(() => { server = startApache({ cgi: probeAsProgram(), logins: LOGINS }); });
  after(() => server?.stop());

  const get = (headers) => rawRequest(server.url, { path: '/cgi-bin/LXRAdmin', headers });

  test('no login, a wrong password, or a login without an identity is refused', async () => {
    assert.equal((await get([])).status, 401);
    assert.equal((await get([basicAuth('desk', 'wrong')])).status, 401);
    assert.equal((await get([basicAuth('nobody', 'nobody-secret')])).status, 403);
    assert.equal((await get([basicAuth('nobody', 'nobody-secret'), ...FORGED])).status, 403);
  });

  test('each login reaches the program as its mapped administrator', async () => {
    for (const login of ['desk', 'audit']) {
      const r = await get([basicAuth(login, LOGINS[login].password)]);
      assert.equal(r.status, 200);
      assert.deepEqual(identityOf(r.body), expectedFor(login), login);
      assert.doesNotMatch(r.body, /^HTTP_AUTHORIZATION=/m, 'the password stays with Apache');
    }
  });

  test('forged identity headers never reach the program', async () => {
    const r = await get([...FORGED, basicAuth('audit', 'audit-secret'), ...FORGED]);
    assert.equal(r.status, 200);
    assert.doesNotMatch(r.body, /intruder|evil/i);
    assert.deepEqual(identityOf(r.body), expectedFor('audit'));
  });

  test('the status pictures need no login', async () => {
    const r = await rawRequest(server.url, { path: '/korvelagent/dmspages/Unknown.gif' });
    assert.equal(r.status, 200);
    assert.equal(r.headers['content-type'], 'image/gif');
  });
});

// LXRAdmin itself behind Apache, over the demo directory: each login acts in
// its own role, and a header claiming another role is ignored.
describe('LXRAdmin behind Apache', () => {
  const logins = {
    desk: { password: 'desk-secret', dn: 'uid=hd.lead,ou=admins,o=example', identity: 'helpdesk' },
    audit: { password: 'audit-secret', dn: 'uid=auditor,ou=admins,o=example', identity: 'auditor' },
  };
  let server;
  before(() => {
    const demo = new DemoDirectory();
    demo.openToAll();
    server = startApache({ cgi: EXE, logins, apiConfig: demo.env.LXRAPI_CONFIG,
      dirserver: 'ldap.example.com' });
  });
  after(() => server?.stop());

  const rupert = (headers) => rawRequest(server.url, {
    path: '/cgi-bin/LXRAdmin?USERDIR=staff&USER=rupert', headers,
  });

  test('the selection page needs a login', async () => {
    assert.equal((await rawRequest(server.url, { path: '/cgi-bin/LXRAdmin' })).status, 401);
    const r = await rawRequest(server.url, {
      path: '/cgi-bin/LXRAdmin', headers: [basicAuth('desk', 'desk-secret')],
    });
    assert.equal(r.status, 200);
    assert.match(r.body, /Enter User Specification/);
    assert.match(r.body, /<option value="staff">Example Corp Staff/);
  });

  test('the helpdesk may change, the auditor may not, whatever headers claim', async () => {
    const desk = await rupert([basicAuth('desk', 'desk-secret'), ['LXRADMIN', 'auditor']]);
    assert.equal(desk.status, 200);
    assert.match(desk.body, /<INPUT TYPE="SUBMIT" VALUE="Submit">/);
    const audit = await rupert([['LXRADMIN', 'helpdesk'], ['KV-USERDN', logins.desk.dn],
      basicAuth('audit', 'audit-secret')]);
    assert.equal(audit.status, 200);
    assert.match(audit.body, /security-hold/);
    assert.doesNotMatch(audit.body, /TYPE="SUBMIT"/);
  });
});
