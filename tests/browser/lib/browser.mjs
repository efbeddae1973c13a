// Debian's Chromium driven by playwright-core: one fresh profile per run,
// every script dialog recorded (and accepted) so a test can check the alert
// texts the pages show.
import fs from 'node:fs';
import path from 'node:path';
import { chromium } from 'playwright-core';
import { ARTIFACTS, tempDir } from './web.mjs';

export const CHROMIUM = process.env.LXR_CHROMIUM || '/usr/bin/chromium';

export const CHROMIUM_ARGS = [
  '--headless', '--no-sandbox', '--disable-gpu', '--disable-background-networking',
  '--disable-component-update', '--disable-sync', '--no-first-run',
];

// Resolves to a browser context on a new profile directory. The browser runs
// in UTC so that the dates typed into the pages are the stamps posted.
// httpCredentials: the basic login to answer a server's challenge with.
export async function launchBrowser({ timezoneId = 'UTC', httpCredentials } = {}) {
  return chromium.launchPersistentContext(tempDir('chromium'), {
    executablePath: CHROMIUM,
    headless: true,
    args: CHROMIUM_ARGS,
    timezoneId,
    locale: 'en-US',
    viewport: { width: 1000, height: 1100 },
    ...(httpCredentials ? { httpCredentials } : {}),
  });
}

// A page whose dialogs land in page.dialogs (the messages, in order).
export async function newPage(context) {
  const page = await context.newPage();
  page.dialogs = [];
  page.on('dialog', async (dialog) => {
    page.dialogs.push(dialog.message());
    await dialog.accept();
  });
  return page;
}

export async function screenshot(page, name) {
  fs.mkdirSync(ARTIFACTS, { recursive: true });
  const file = path.join(ARTIFACTS, `${name}.png`);
  await page.screenshot({ path: file, fullPage: true });
  return file;
}
