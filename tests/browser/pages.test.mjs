// The pages and their scripts in Chromium, against LXRAdmin behind lighttpd
// over a private copy of the demo directory. The server runs at the demo's
// reference time (LXR_NOW, from examples/demo.ldif) and so does the
// browser's clock, so pictures and "reset to now" agree on what now is.
// After every post the directory is read back with lxrdir: the change is
// there, and nothing else changed.
import assert from 'node:assert/strict';
import path from 'node:path';
import { after, before, beforeEach, describe, test } from 'node:test';
import { launchBrowser, newPage, screenshot } from './lib/browser.mjs';
import { DemoDirectory, changes } from './lib/directory.mjs';
import { startLighttpd } from './lib/web.mjs';

const dnOf = (uid, ou = 'staff') => `uid=${uid},ou=${ou},o=example`;
// Groups: the page names them by their configured identifier, the store by DN.
const SUSPENDED = 'suspended';
const VPN = 'vpn-users';
const groupDn = (id) => `cn=${id},ou=groups,o=example`;
const SUCCESS = 'Operation Successful';
const NOT_A_DATE = '[KV-LXR-12059] This is not a valid date.';
const MUST_BE_BLANK = '[KV-LXR-12016] This field must be blank.';
const TITLES = {
  'Disabled.gif': 'User will not be able to login',
  'Redisable.gif': 'Unless reset, this value may cause the user to be disabled at next login',
  'Blank.gif': '',
};

let demo;
let helpdesk;
let context;

before(async () => {
  demo = new DemoDirectory();
  const env = { LXRAPI_CONFIG: demo.env.LXRAPI_CONFIG, LXR_NOW: demo.env.LXR_NOW };
  helpdesk = startLighttpd({ agent: path.join(demo.dir, 'agent.conf'), env });
  context = await launchBrowser();
  context.setDefaultTimeout(15000);
  await context.clock.setFixedTime(new Date(Number(demo.env.LXR_NOW) * 1000));
});

after(async () => {
  await context?.close();
  helpdesk?.stop();
});

beforeEach(() => demo.restore());

// A new tab on one user's display page; page.posts collects every POST body.
async function openUser(uid) {
  const page = await newPage(context);
  page.posts = [];
  page.on('request', (r) => { if (r.method() === 'POST') page.posts.push(r.postData()); });
  await page.goto(`${helpdesk.url}/cgi-bin/LXRAdmin?USERDIR=staff&USER=${encodeURIComponent(uid)}`);
  await page.waitForSelector('form[name="DisplayForm"]');
  return page;
}

// Submits the display page and waits for the result page's alert and its
// return to the selection page. Resolves to the alert text and the posted
// fields, and checks that the directory changed exactly as `expected` says
// ({ dn: { attr: [values after] } }).
async function submitAndCheck(page, expected) {
  const before = demo.entries();
  const { message, fields } = await submitPosted(page);
  assert.equal(message, SUCCESS);
  const got = changes(before, demo.entries());
  const want = {};
  for (const [dn, attrs] of Object.entries(expected)) {
    for (const [attr, after] of Object.entries(attrs)) {
      (want[dn] ??= {})[attr] = { before: before.get(dn)?.[attr] ?? [], after };
    }
  }
  assert.deepEqual(got, want, 'the directory changed exactly as intended');
  await page.close();
  return fields;
}

// Clicks Submit and waits for the post's answer. A result page shows its
// alert and returns to the selection page; anything else fails here with
// the message the server answered.
async function submitPosted(page) {
  const seen = page.dialogs.length;
  const answered = page.waitForResponse((r) => r.request().method() === 'POST');
  const back = page.waitForURL((u) => u.pathname === '/cgi-bin/LXRAdmin' && u.search === '');
  back.catch(() => {});
  await page.click('input[type="SUBMIT"]');
  const response = await answered;
  if (response.status() !== 200) {
    // An error page goes back at once; its text may already be gone.
    const body = await response.text().catch(() => '');
    assert.fail(`the post was answered ${response.status()}: ${/alert\("(.*)"\);/.exec(body)?.[1]}`);
  }
  await back;
  return {
    message: page.dialogs.slice(seen).join('|'),
    fields: new URLSearchParams(response.request().postData()),
  };
}

// Submits and expects the page to refuse: one alert, no post, same page.
async function submitRefused(page) {
  const seen = page.dialogs.length;
  const posts = page.posts.length;
  const url = page.url();
  const dialog = page.waitForEvent('dialog');
  await page.click('input[type="SUBMIT"]');
  await dialog;
  await page.waitForTimeout(300);
  assert.equal(page.posts.length, posts, 'nothing was posted');
  assert.equal(page.url(), url);
  return page.dialogs.slice(seen).join('|');
}

// The picture an <img name=...> shows now, once it has loaded.
function picture(page, name) {
  return page.$eval(`img[name="${name}"]`, async (img) => {
    if (!img.complete) await new Promise((r) => img.addEventListener('load', r, { once: true }));
    return { file: img.src.split('/').pop(), width: img.naturalWidth, title: img.title };
  });
}

async function chooseDate(page, name, { day, month, year, hour = '00', minute = '00', second = '00' }) {
  await page.check(`input[name="${name}"] >> nth=0`);
  for (const [part, value] of [['YEAR', year], ['MONTH', month], ['DAY', day], ['HOUR', hour],
    ['MINUTE', minute], ['SECOND', second]]) {
    await page.selectOption(`select[name="${name}_${part}"]`, String(value));
  }
}

describe('selection page', () => {
  test('pick a directory and a user', async () => {
    const page = await newPage(context);
    await page.goto(`${helpdesk.url}/`);
    assert.equal(new URL(page.url()).pathname, '/cgi-bin/LXRAdmin');
    assert.equal(await page.textContent('span.TITLE'), 'Enter User Specification');
    const options = await page.$$eval('select[name="USERDIR"] option',
      (os) => os.map((o) => [o.value, o.textContent.trim()]));
    assert.deepEqual(options, [['partners', 'Example Corp Partners'], ['staff', 'Example Corp Staff']]);
    await page.selectOption('select[name="USERDIR"]', 'staff');
    await page.fill('input[name="USER"]', 'alice');
    await screenshot(page, 'selection');
    await Promise.all([page.waitForURL(/USER=alice/), page.click('input[type="SUBMIT"]')]);
    assert.deepEqual(Object.fromEntries(new URL(page.url()).searchParams), { USERDIR: 'staff', USER: 'alice' });
    assert.equal(await page.textContent('span.TITLE'), 'User Information');
    assert.equal(await page.inputValue('form[name="PostForm"] input[name="LXR-USERDN"]'), dnOf('alice'));
    await screenshot(page, 'display-alice');
    assert.deepEqual(page.dialogs, []);
    await page.close();
  });
});

describe('display page', () => {
  // The page's bytes are the golden pages' matter; here the pictures they
  // name load from where the server serves them.
  test('disabled reasons and status pictures', async () => {
    const page = await openUser('rupert');
    const shown = await page.$$eval('span.DISABLEDISPLAY', (s) => s.map((e) => e.textContent.replace(/\u00a0/g, ' ')));
    assert.deepEqual(shown, ['Disabled forever, Failure count 7 reached the maximum of 5, Suspended by security']);
    for (const [name, file] of [['kvlxrDisableUntil_IMAGE', 'Disabled.gif'], ['kvlxrDisableAfter_IMAGE', 'Blank.gif'],
      ['kvlxrFailureCount_IMAGE', 'Redisable.gif'], [`GROUP-${SUSPENDED}_IMAGE`, 'Disabled.gif']]) {
      assert.deepEqual(await picture(page, name), { file, width: 20, title: TITLES[file] }, name);
    }
    await screenshot(page, 'display-rupert');
    await page.close();
  });

  // The date handlers' scripts reach the row's picture as
  // document.DisplayForm.elements['NAME_IMAGE']; the script library's
  // DateEntry names the picture there, so the picture must follow each choice
  // without a script error.
  test('the date pictures follow the choice before submitting', async () => {
    const page = await openUser('alice');
    const errors = [];
    page.on('pageerror', (e) => errors.push(e.message));
    const image = 'kvlxrDisableUntil_IMAGE';
    assert.equal((await picture(page, image)).file, 'Blank.gif');
    await chooseDate(page, 'kvlxrDisableUntil', { day: '15', month: '2', year: '2045' });
    assert.deepEqual(errors, []);
    assert.deepEqual(await picture(page, image),
      { file: 'Disabled.gif', width: 20, title: 'User will not be able to login' });
    await page.selectOption('select[name="kvlxrDisableUntil_YEAR"]', '2026');
    assert.equal((await picture(page, image)).file, 'Blank.gif', 'a date already past');
    await page.check('input[name="kvlxrDisableUntil"] >> nth=1');
    assert.equal((await picture(page, image)).file, 'Disabled.gif', 'forever');
    await page.check('input[name="kvlxrDisableUntil"] >> nth=2');
    assert.equal((await picture(page, image)).file, 'Blank.gif', 'not set');
    await chooseDate(page, 'kvlxrDisableAfter', { day: '15', month: '0', year: '2026' });
    assert.equal((await picture(page, 'kvlxrDisableAfter_IMAGE')).file, 'Disabled.gif', 'after: past');
    await chooseDate(page, 'kvlxrMustLoginBy', { day: '15', month: '0', year: '2026' });
    assert.equal((await picture(page, 'kvlxrMustLoginBy_IMAGE')).file, 'Disabled.gif', 'login by: past');
    await page.close();
  });

  test('set disable-until with the date controls', async () => {
    const page = await openUser('alice');
    await chooseDate(page, 'kvlxrDisableUntil', { day: '15', month: '2', year: '2045', hour: '10', minute: '20', second: '30' });
    await page.fill('input[name="kvlxrDisableUntil_COMMENT"]', 'vacation');
    const posted = await submitAndCheck(page, {
      [dnOf('alice')]: { kvlxrDisableUntil: ['20450315102030Z vacation'] },
    });
    assert.equal(posted.get('kvlxrDisableUntil'), '20450315102030Z vacation');

    const again = await openUser('alice');
    assert.equal((await picture(again, 'kvlxrDisableUntil_IMAGE')).file, 'Disabled.gif');
    assert.match(await again.textContent('span.DISABLEDISPLAY'), /Disabled\u00a0until\u00a02045-03-15/);
    await again.close();
  });

  test('add and remove a group, the picture following the box', async () => {
    const page = await openUser('alice');
    const image = `GROUP-${SUSPENDED}_IMAGE`;
    assert.equal((await picture(page, image)).file, 'Blank.gif');
    await page.check(`input[name="GROUP-${SUSPENDED}"]`);
    assert.equal((await picture(page, image)).file, 'Disabled.gif');
    await page.uncheck(`input[name="GROUP-${VPN}"]`);
    const members = (id) => demo.entry(groupDn(id)).member ?? [];
    const suspendedBefore = members(SUSPENDED);
    const vpnBefore = members(VPN);
    const posted = await submitAndCheck(page, {
      [groupDn(SUSPENDED)]: { member: [...suspendedBefore, dnOf('alice')] },
      [groupDn(VPN)]: { member: vpnBefore.filter((m) => m !== dnOf('alice')) },
    });
    assert.equal(posted.get(`GROUP-${SUSPENDED}`), '1');
    assert.equal(posted.get(`GROUP-${VPN}`), '0');
  });

  // What a password reset writes is the round trip's matter; here the
  // page's own check of the confirmation.
  test('a password reset with a mismatched confirmation is refused', async () => {
    const page = await openUser('alice');
    await page.fill('input[name="userPassword"]', 'Fresh-pass9');
    await page.fill('input[name="userPassword_CONFIRM"]', 'Fresh-pass8');
    assert.equal(await submitRefused(page), '[KV-LXR-15010] New and Confirm passwords do not match!');
    assert.equal(await page.evaluate(() => document.activeElement.name), 'userPassword_CONFIRM');
    await page.close();
  });
});

describe('the submit script refuses bad input', () => {
  const cases = [
    ['31 April', NOT_A_DATE, async (page) =>
      chooseDate(page, 'kvlxrDisableUntil', { day: '31', month: '3', year: '2045' }), 'kvlxrDisableUntil_DAY'],
    ['29 February of a common year', NOT_A_DATE, async (page) =>
      chooseDate(page, 'kvlxrDisableAfter', { day: '29', month: '1', year: '2027' }), 'kvlxrDisableAfter_DAY'],
    ['31 June', NOT_A_DATE, async (page) =>
      chooseDate(page, 'kvlxrMustLoginBy', { day: '31', month: '5', year: '2030' }), 'kvlxrMustLoginBy_DAY'],
    ['a comment without days', MUST_BE_BLANK, async (page) =>
      page.fill('input[name="kvlxrExpirePasswordDays_COMMENT"]', 'why'), 'kvlxrExpirePasswordDays_COMMENT'],
    ['a comment without the flag', MUST_BE_BLANK, async (page) =>
      page.fill('input[name="kvlxrImmediateChange_COMMENT"]', 'why'), 'kvlxrImmediateChange_COMMENT'],
    ['a password without confirmation',
      'When resetting the password, this field cannot be blank.', async (page) =>
        page.fill('input[name="userPassword"]', 'Fresh-pass9'), 'userPassword_CONFIRM'],
    ['a confirmation without password',
      'When not resetting the password, this field must be blank.', async (page) =>
        page.fill('input[name="userPassword_CONFIRM"]', 'Fresh-pass9'), 'userPassword_CONFIRM'],
  ];
  for (const [what, alert, enter, focused] of cases) {
    test(what, async () => {
      const before = demo.entries();
      const page = await openUser('alice');
      await enter(page);
      assert.equal(await submitRefused(page), alert);
      assert.equal(await page.evaluate(() => document.activeElement.name), focused);
      assert.deepEqual(changes(before, demo.entries()), {});
      await page.close();
    });
  }

  test('29 February of a leap year passes the check', async () => {
    const page = await openUser('alice');
    await chooseDate(page, 'kvlxrDisableAfter', { day: '29', month: '1', year: '2028' });
    const posted = await submitAndCheck(page, {
      [dnOf('alice')]: { kvlxrDisableAfter: ['20280229000000Z'] },
    });
    assert.equal(posted.get('kvlxrDisableAfter'), '20280229000000Z');
  });
});
