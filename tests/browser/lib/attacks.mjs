// The attack corpus: what an attacker can put in front of an administrator's
// browser, as cases that each report whether a script of the attacker's ran
// (the page called the global xss(), which the test installs) or the
// directory changed without the administrator meaning it, or a page of ours
// was shown inside someone else's frame.
//
// Kinds:
//   stored     a hostile value of one value form, put into the store as
//              another directory client would (LDIF), then the user's page
//              opened
//   page       a hostile value typed into the page by an administrator and
//              posted, then the user's page opened again (the write itself is
//              the administrator's own and does not count as a change)
//   reflected  a crafted link the administrator follows (and its Cancel
//              button clicked)
//   cross-site a page on another origin that makes the browser post
//   framing    a page on another origin that frames ours
import fs from 'node:fs';
import http from 'node:http';
import path from 'node:path';
import { SOURCE } from './web.mjs';

const PROGRAM = '/cgi-bin/LXRAdmin';
const BREAK_ATTR = '"><svg/onload=xss()>';
const BREAK_SCRIPT = "');xss();('";
const END_SCRIPT = '</SCRIPT><svg/onload=xss()>';
const IMG = '<img/src/onerror=xss()>';

// uid -> [attribute, hostile value]: one value form each, stored as LDIF.
export const STORED = [
  ['atk01', 'kvlxrDisableUntil', `20260901000000Z ${BREAK_ATTR}`],
  ['atk02', 'kvlxrDisableUntil', `FOREVER ${BREAK_ATTR}`],
  ['atk03', 'kvlxrDisableAfter', `20260501000000Z'${BREAK_ATTR}`],
  ['atk04', 'kvlxrMustLoginBy', BREAK_ATTR],
  ['atk05', 'kvlxrAccountInactivityDays', `30 ${BREAK_ATTR}`],
  ['atk06', 'kvlxrExpirePasswordDays', `90 ${BREAK_ATTR}`],
  ['atk07', 'kvlxrImmediateChange', `YES ${BREAK_ATTR}`],
  ['atk08', 'kvlxrFailureCount', `1 20260530080911Z ${BREAK_ATTR}`],
  ['atk09', 'kvlxrFailureCount', BREAK_ATTR],
  ['atk10', 'kvlxrLoginHistory', `20260531083015Z SUCCESS 10.0.0.21 ${BREAK_SCRIPT}`],
  ['atk11', 'kvlxrLoginHistory', `20260531083015Z SUCCESS 10.0.0.21 ${IMG}`],
  ['atk12', 'kvlxrLoginHistory', `20260531083015Z x"><img/src/onerror=xss()> 10.0.0.21 b`],
  ['atk13', 'kvlxrLoginHistory', `20260531083015Z SUCCESS 10.0.0.21 ${END_SCRIPT}`],
  ['atk14', 'kvfpsLog', `20260401090000Z PASSWORDCHANGE 10.0.0.21 ${BREAK_SCRIPT}`],
  ['atk15', 'kvlxrGenerationalRedirects', `PORTAL=https://x/${BREAK_ATTR} 20260101000000Z 10.1.1.1 m`],
  ['atk16', 'kvlxrGenerationalRedirects', `MAIL=${END_SCRIPT} 20260101000000Z 10.1.1.1 m`],
  ['atk17', 'kvlxrGenerationalRedirects', `PORTAL=https://p 20260101000000Z 10.1.1.1 don't${BREAK_ATTR}`],
  ['atk18', 'kvlxrLastLogin', `20260531083015Z ${BREAK_ATTR}`],
  ['atk19', 'kvlxrLastPasswordChange', `20260401090000Z ${IMG}`],
  ['atk20', 'kvlxrGraceLoginsUsed', `2 ${BREAK_ATTR}`],
  ['atk21', 'kvlxrBaseDate', BREAK_ATTR],
  ['atk22', 'kvlxrNextAction', `20260610000000Z ${IMG}`],
  ['atk23', 'kvlxrTotalLogins', IMG],
];

const ALICE = 'uid=alice,ou=staff,o=example';

// examples/demo.ldif with one user per stored case; every hostile value in
// base64, as LDIF requires of values that start with "<" or hold odd bytes.
export function hostileLdif(file) {
  const lines = [fs.readFileSync(path.join(SOURCE, 'examples/demo.ldif'), 'utf8').trimEnd(), ''];
  for (const [uid, attr, value] of STORED) {
    lines.push(`dn: uid=${uid},ou=staff,o=example`, 'objectClass: inetOrgPerson', `uid: ${uid}`,
      `cn: Attack ${uid}`, `sn: ${uid}`,
      `${attr}:: ${Buffer.from(value).toString('base64')}`, '');
  }
  fs.writeFileSync(file, lines.join('\n'));
  return file;
}

// A second site: serves the attacker's pages at /NAME. Reached as
// http://localhost:PORT it is cross-site to the administrator's
// http://127.0.0.1:PORT, as http://127.0.0.1:PORT same-site but another
// origin. Returns { crossSite, sameSite, put(name, html), close() }.
export async function startAttackerSite() {
  const pages = new Map();
  const server = http.createServer((req, res) => {
    const html = pages.get(req.url.slice(1));
    res.writeHead(html ? 200 : 404, { 'Content-Type': 'text/html; charset=utf-8' });
    res.end(html ?? 'no such page');
  });
  await new Promise((resolve) => server.listen(0, '127.0.0.1', resolve));
  const { port } = server.address();
  return {
    crossSite: `http://localhost:${port}`,
    sameSite: `http://127.0.0.1:${port}`,
    put(name, html) { pages.set(name, html); },
    close() { server.close(); },
  };
}

const display = (uid, extra = '') => `${PROGRAM}?USERDIR=staff&USER=${uid}${extra}`;

// A post form for alice that submits itself.
function forgedForm(action, fields) {
  const inputs = Object.entries(fields)
    .map(([k, v]) => `<input type="hidden" name="${k}" value="${v}">`).join('');
  return `<form id="f" method="POST" action="${action}">${inputs}</form>` +
    '<script>document.getElementById("f").submit()</script>';
}

// Every case: { id, kind, what, run(t) }, where t offers
//   t.base                      the program's site, e.g. http://127.0.0.1:PORT
//   t.attacker                  startAttackerSite()
//   t.open(url)                 a new page at url, loaded (ours or the attacker's)
//   t.clickCancel(page)         clicks the page's Cancel button if it has one
//   t.submit(page)              clicks Submit and waits for the answer
//   t.framed(page)              true when a frame of the page shows our form
// run resolves to { framed } when it checks framing; script runs and
// directory changes are observed by the caller.
export function attackCases() {
  const cases = [];
  for (const [uid, attr, value] of STORED) {
    cases.push({
      id: uid, kind: 'stored', what: `${attr}: ${value}`,
      async run(t) { await t.open(t.base + display(uid)); },
    });
  }

  const typed = [
    ['page1', 'flag comment', async (p) => {
      await p.check('input[name="kvlxrImmediateChange"]');
      await p.fill('input[name="kvlxrImmediateChange_COMMENT"]', BREAK_ATTR);
    }],
    ['page2', 'inactivity days comment (20 characters)', async (p) => {
      await p.selectOption('select[name="kvlxrAccountInactivityDays_DAYS"]', '30');
      await p.fill('input[name="kvlxrAccountInactivityDays_COMMENT"]', BREAK_ATTR);
    }],
  ];
  for (const [id, what, type] of typed) {
    cases.push({
      id, kind: 'page', what: `${what}: ${BREAK_ATTR}`,
      async run(t) {
        const page = await t.open(t.base + display('carol'));
        await type(page);
        await t.submit(page);
        await t.open(t.base + display('carol'));
      },
    });
  }

  // LXRAdminARGS is expanded only when an "&" follows it, hence "&z=1".
  const reflected = [
    ['refl01', 'selection: argument value', `${PROGRAM}?x=${encodeURIComponent(BREAK_ATTR)}`],
    ['refl02', 'selection: argument name', `${PROGRAM}?${encodeURIComponent(BREAK_ATTR)}=1`],
    ['refl03', 'selection: CancelTo javascript:', `${PROGRAM}?CancelTo=javascript:xss()`],
    ['refl04', 'selection: CancelTo quote', `${PROGRAM}?CancelTo=${encodeURIComponent("';xss();'")}`],
    ['refl05', 'selection: CancelTo markup', `${PROGRAM}?CancelTo=${encodeURIComponent(BREAK_ATTR)}`],
    ['refl06', 'display: CancelTo javascript:', display('alice', '&CancelTo=javascript:xss()')],
    ['refl07', 'display: argument in the way back', display('alice', `&Mode=${encodeURIComponent("';xss();'")}`)],
    ['refl08', 'display: CancelTo inside LXRAdminARGS', display('alice', '&LXRAdminARGS=CancelTo%3Djavascript:xss()%26&z=1')],
    ['refl09', 'display: CancelTo markup', display('alice', `&CancelTo=${encodeURIComponent(BREAK_ATTR)}`)],
    ['refl10', 'error page: user name', `${PROGRAM}?USERDIR=staff&USER=${encodeURIComponent(IMG)}`],
    ['refl11', 'selection: LXRAdminARGS encoded twice',
      `${PROGRAM}?LXRAdminARGS=${encodeURIComponent(`x=${encodeURIComponent(BREAK_ATTR)}&`)}&z=1`],
    ['refl12', 'selection: HTML-encoded quote', `${PROGRAM}?x=%26quot;%3E${encodeURIComponent(IMG)}`],
  ];
  for (const [id, what, url] of reflected) {
    cases.push({
      id, kind: 'reflected', what,
      async run(t) { await t.clickCancel(await t.open(t.base + url)); },
    });
  }
  for (const [id, cancelTo] of [['refl13', 'javascript:xss()'], ['refl14', "';xss();'"]]) {
    cases.push({
      id, kind: 'reflected', what: `result page: CancelTo ${cancelTo}`,
      async run(t) {
        const page = await t.open(t.base + display('carol', `&CancelTo=${encodeURIComponent(cancelTo)}`));
        await t.submit(page);
      },
    });
  }

  const forged = [
    ['csrf1', 'password reset', 'crossSite', { userPassword: 'Forged-pass7', 'LXR-USERDN': ALICE }],
    ['csrf2', 'disable forever', 'crossSite', { kvlxrDisableUntil: 'FOREVER forged', 'LXR-USERDN': ALICE }],
    ['csrf3', 'group membership', 'crossSite', { 'GROUP-suspended': '1', 'LXR-USERDN': ALICE }],
    ['csrf4', 'same site, other origin', 'sameSite', { kvlxrDisableUntil: 'FOREVER forged', 'LXR-USERDN': ALICE }],
  ];
  for (const [id, what, from, fields] of forged) {
    cases.push({
      id, kind: 'cross-site', what: `auto-submitted form from ${from}: ${what}`,
      async run(t) {
        t.attacker.put(id, forgedForm(t.base + PROGRAM, fields));
        const page = await t.open(`${t.attacker[from]}/${id}`);
        await page.waitForLoadState('load');
      },
    });
  }
  cases.push({
    id: 'csrf5', kind: 'cross-site', what: 'sandboxed frame (Origin: null) posting a form',
    async run(t) {
      const form = forgedForm(t.base + PROGRAM, { kvlxrDisableUntil: 'FOREVER forged', 'LXR-USERDN': ALICE })
        .replaceAll('"', '&quot;');
      t.attacker.put('csrf5', `<iframe sandbox="allow-forms allow-scripts" srcdoc="${form}"></iframe>`);
      await t.open(`${t.attacker.crossSite}/csrf5`);
    },
  });
  cases.push({
    id: 'csrf6', kind: 'cross-site', what: 'fetch() without CORS, a plain-text body',
    async run(t) {
      t.attacker.put('csrf6', `<script>fetch(${JSON.stringify(t.base + PROGRAM)}, {method: "POST",
        mode: "no-cors", credentials: "include",
        body: "kvlxrDisableUntil=FOREVER&LXR-USERDN=${ALICE}"})</script>`);
      await t.open(`${t.attacker.crossSite}/csrf6`);
    },
  });

  const frames = [
    ['frame1', 'display page', 'crossSite', display('alice')],
    ['frame2', 'selection page', 'crossSite', PROGRAM],
    ['frame3', 'display page from the same site', 'sameSite', display('alice')],
  ];
  for (const [id, what, from, url] of frames) {
    cases.push({
      id, kind: 'framing', what: `${what} in a frame of ${from}`,
      async run(t) {
        t.attacker.put(id, `<iframe src="${t.base + url}" width="800" height="600"></iframe>`);
        const page = await t.open(`${t.attacker[from]}/${id}`);
        return { framed: await t.framed(page) };
      },
    });
  }
  return cases;
}
