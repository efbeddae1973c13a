// One helpdesk task over the LDAP demo: the directory lives in a private
// slapd whose password policy holds the state (tests/ldap/run.sh --ppolicy
// starts it and exports LXR_LDAP_*). rupert is locked out by real wrong
// passwords; the page shows it, "Reset to Now" is saved, and his next bind
// with the right password succeeds.
import assert from 'node:assert/strict';
import { execFileSync, spawnSync } from 'node:child_process';
import path from 'node:path';
import { after, before, test } from 'node:test';
import { launchBrowser, newPage } from './lib/browser.mjs';
import { startLighttpd } from './lib/web.mjs';

const URL_ = process.env.LXR_LDAP_URL;
const RUPERT = 'uid=rupert,ou=staff,o=example';

// ldapwhoami's exit status: 0 bound, 49 refused.
const bind = (dn, password) =>
  spawnSync('ldapwhoami', ['-x', '-H', URL_, '-D', dn, '-w', password], { stdio: 'ignore' }).status;

let server;
let context;

before(async () => {
  const work = process.env.LXR_LDAP_WORK;
  const source = process.env.LXR_SOURCE_DIR;
  execFileSync(process.env.LXR_LXRDIR, ['create', path.join(work, 'audit.db')]);
  server = startLighttpd({
    agent: path.join(source, 'web/lighttpd/demo-agent.conf'),
    env: { LXRAPI_CONFIG: process.env.LXR_LDAP_API_CONFIG },
  });
  context = await launchBrowser();
  context.setDefaultTimeout(15000);
});

after(async () => {
  await context?.close();
  server?.stop();
});

test('a user locked out by wrong passwords is unlocked on the page and can bind again', async () => {
  for (let i = 0; i < 5; i++) bind(RUPERT, 'wrong-password');
  assert.equal(bind(RUPERT, 'Demo-pass1'), 49, 'locked out');

  const page = await newPage(context);
  await page.goto(`${server.url}/cgi-bin/LXRAdmin?USERDIR=staff&USER=rupert`);
  await page.waitForSelector('form[name="DisplayForm"]');
  const shown = await page.$$eval('span.DISABLEDISPLAY', (s) => s.map((e) => e.textContent));
  assert.deepEqual(shown.map((t) => t.replace(/\u00a0/g, ' ')),
    ['Locked after 5 failed logins, Suspended by security']);

  await page.check('input[name="kvlxrFailureCount"] >> nth=1');  // Reset to Now
  const answered = page.waitForResponse((r) => r.request().method() === 'POST');
  await page.click('input[type="SUBMIT"]');
  assert.equal((await answered).status(), 200);
  await page.waitForURL((u) => u.pathname === '/cgi-bin/LXRAdmin' && u.search === '');
  assert.deepEqual(page.dialogs, ['Operation Successful']);

  assert.equal(bind(RUPERT, 'Demo-pass1'), 0, 'the right password binds again');
});
