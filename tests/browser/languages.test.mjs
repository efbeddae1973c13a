// The page language in Chromium, behind lighttpd over a private copy of the
// demo directory: the browser's Accept-Language and the KVLOCALE cookie pick
// the catalogue, and every label a page takes from the catalogue appears in
// that language. The API's own texts (the disabled reasons) and the dates
// the page script writes are not catalogue texts and are not looked at here.
import assert from 'node:assert/strict';
import path from 'node:path';
import { after, before, describe, test } from 'node:test';
import { launchBrowser, newPage, screenshot } from './lib/browser.mjs';
import { DemoDirectory } from './lib/directory.mjs';
import { startLighttpd } from './lib/web.mjs';

// The selection page's heading in each language the catalogue holds.
const HEADINGS = {
  en: 'Enter User Specification',
  de: 'Benutzer angeben',
  fr: 'Indiquer l’utilisateur',
  es: 'Especificar usuario',
  it: 'Indicare l’utente',
  pt: 'Especificar usuário',
  nl: 'Gebruiker opgeven',
  ja: 'ユーザーの指定',
  zh: '指定用户',
};

// Labels that are spelt as in English and are right as they stand.
const SAME_AS_ENGLISH = {
  de: ['IP:', 'Status:', 'Jan', 'Feb', 'Apr', 'Jun', 'Jul', 'Aug', 'Sep', 'Nov'],
  es: ['IP:', 'No'],
  it: ['IP:', 'No', 'Directory', 'Password'],
  pt: ['IP:', 'Status:'],
  nl: ['IP:', 'Status:', 'Directory', 'Help', '1 Week'],
  fr: [],
  ja: [],
  zh: [],
};

let demo;
let server;
let context;

before(async () => {
  demo = new DemoDirectory();
  server = startLighttpd({
    agent: path.join(demo.dir, 'agent.conf'),
    env: { LXRAPI_CONFIG: demo.env.LXRAPI_CONFIG, LXR_NOW: demo.env.LXR_NOW },
  });
  context = await launchBrowser();
  context.setDefaultTimeout(15000);
  await context.clock.setFixedTime(new Date(Number(demo.env.LXR_NOW) * 1000));
});

after(async () => {
  await context?.close();
  server?.stop();
});

// A new tab whose requests all carry `acceptLanguage` (the browser's own
// language setting would otherwise win on the page request).
async function openAs(acceptLanguage, query = '') {
  const page = await newPage(context);
  if (acceptLanguage !== null) {
    await page.route('**/*', (route) => route.continue({
      headers: { ...route.request().headers(), 'accept-language': acceptLanguage },
    }));
  }
  await page.goto(`${server.url}/cgi-bin/LXRAdmin${query}`);
  return page;
}

const heading = (page) => page.textContent('span.TITLE');

// Every text on the page that comes from the catalogue, in page order: the
// title, headings, prompts and labels, button captions, picture titles and
// the worded choices of the lists.
function catalogueTexts(page) {
  return page.evaluate(() => {
    const texts = [document.title];
    const labels = 'span.TITLE, span.SECTION, span.PROMPT, span.INNERPROMPT, span.LOCALLABEL';
    for (const e of document.querySelectorAll(labels)) texts.push(e.textContent);
    for (const e of document.querySelectorAll('input[type="SUBMIT"], input[type="RESET"], input[type="BUTTON"]')) {
      texts.push(e.value);
    }
    for (const e of document.querySelectorAll('img[title]')) texts.push(e.title);
    // The directory list holds configured names, not catalogue texts.
    for (const e of document.querySelectorAll('select:not([name="USERDIR"]) option')) {
      texts.push(e.textContent);
    }
    return texts.map((t) => t.replace(/\u00a0/g, ' ').trim()).filter((t) => /\p{L}/u.test(t));
  });
}

describe('page language', () => {
  test('Accept-Language picks the catalogue', async () => {
    // The choice itself is the language unit tests' matter; here the
    // browser's header reaches the program through the server.
    const cases = [['de-DE,de;q=0.9', 'de'], ['sv,nl;q=0.5', 'nl'], ['zh-TW', 'en'], ['ja-JP', 'ja']];
    for (const [acceptLanguage, language] of cases) {
      const page = await openAs(acceptLanguage);
      assert.equal(await heading(page), HEADINGS[language], acceptLanguage);
      await page.close();
    }
  });

  test('the KVLOCALE cookie wins over Accept-Language and switches the language', async () => {
    const set = (value) => context.addCookies([{ name: 'KVLOCALE', value, url: server.url }]);
    try {
      for (const [cookie, language] of [[null, 'fr'], ['ja', 'ja'], ['pt-BR', 'pt']]) {
        if (cookie === null) await context.clearCookies();
        else await set(cookie);
        const page = await openAs('fr-FR,fr;q=0.9');
        assert.equal(await heading(page), HEADINGS[language], `cookie ${cookie}`);
        await page.close();
      }
    } finally {
      await context.clearCookies();
    }
  });

  test('no catalogue text is left in English on the selection and display pages', async () => {
    const english = {};
    for (const [name, query] of [['selection', ''], ['display', '?USERDIR=staff&USER=rupert']]) {
      const page = await openAs('en', query);
      english[name] = await catalogueTexts(page);
      await page.close();
    }
    assert.ok(english.display.includes('Account Status') && english.display.includes('Contractor'));
    for (const [language, same] of Object.entries(SAME_AS_ENGLISH)) {
      for (const [name, query] of [['selection', ''], ['display', '?USERDIR=staff&USER=rupert']]) {
        const page = await openAs(language, query);
        const texts = await catalogueTexts(page);
        assert.equal(texts.length, english[name].length, `${language} ${name}: same page shape`);
        const untranslated = texts.filter((t, i) => t === english[name][i] && !same.includes(t));
        assert.deepEqual([...new Set(untranslated)], [], `${language} ${name}`);
        if (language === 'ja' || language === 'zh') await screenshot(page, `${name}-${language}`);
        assert.deepEqual(page.dialogs, []);
        await page.close();
      }
    }
  });
});
