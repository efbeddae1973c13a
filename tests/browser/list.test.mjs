// The helpdesk's morning over the LDAP demo: three users lock themselves out
// with wrong passwords against a private slapd with its password policy
// (tests/ldap/run.sh --ppolicy starts it and exports LXR_LDAP_*). The list
// page shows them among the locked-out users, all three are unlocked with one
// action, and each binds again with the right password.
import assert from 'node:assert/strict';
import fs from 'node:fs';
import path from 'node:path';
import { after, before, test } from 'node:test';
import { launchBrowser, newPage, screenshot } from './lib/browser.mjs';
import { bind, ldapDemoConfig } from './lib/directory.mjs';
import { SOURCE, startLighttpd } from './lib/web.mjs';

const LOCKED = ['alice', 'judy', 'trent'];
const dnOf = (uid) => `uid=${uid},ou=staff,o=example`;

let server;
let context;

before(async () => {
  const config = ldapDemoConfig();
  const secret = path.join(process.env.LXR_LDAP_WORK, 'list.secret');
  fs.writeFileSync(secret, 'a list page secret of this test run, 48 bytes..');
  server = startLighttpd({
    agent: path.join(SOURCE, 'web/lighttpd/demo-agent.conf'),
    env: { LXRAPI_CONFIG: config, LXR_LIST_SECRET: secret },
  });
  context = await launchBrowser();
  context.setDefaultTimeout(15000);
});

after(async () => {
  await context?.close();
  server?.stop();
});

test('three locked-out users are listed, unlocked in one action, and can bind again', async () => {
  for (const uid of LOCKED) {
    for (let i = 0; i < 5; i++) bind(dnOf(uid), 'wrong-password');
    assert.equal(bind(dnOf(uid), 'Demo-pass1'), 49, `${uid} is locked out`);
  }

  const page = await newPage(context);
  await page.goto(`${server.url}/cgi-bin/LXRList?DIR=staff&LIST=locked`);
  const listed = await page.$$eval('table.LISTTABLE td:nth-child(2) a', (a) => a.map((e) => e.textContent));
  for (const uid of LOCKED) assert.ok(listed.includes(uid), `${uid} is on the locked-out list`);
  await screenshot(page, 'list-locked');

  for (const uid of LOCKED) await page.check(`input[type="checkbox"][value="staff/${dnOf(uid)}"]`);
  const answered = page.waitForResponse((r) => r.request().method() === 'POST');
  await page.click('button[name="ACTION"][value="unlock"]');
  assert.equal((await answered).status(), 200);
  await page.waitForSelector('h2');
  const rows = await page.$$eval('table.LISTTABLE tr', (trs) =>
    trs.slice(1).map((tr) => [...tr.querySelectorAll('td')].map((td) => td.textContent)));
  assert.deepEqual(rows, LOCKED.map((uid) => [`staff/${dnOf(uid)}`, 'Changed']));
  await screenshot(page, 'list-unlocked');

  for (const uid of LOCKED) assert.equal(bind(dnOf(uid), 'Demo-pass1'), 0, `${uid} binds again`);

  await page.goto(`${server.url}/cgi-bin/LXRList?DIR=staff&LIST=locked`);
  const still = await page.$$eval('table.LISTTABLE td:nth-child(2) a', (a) => a.map((e) => e.textContent));
  for (const uid of LOCKED) assert.ok(!still.includes(uid), `${uid} has left the list`);
});
