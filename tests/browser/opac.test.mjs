// The web catalogue in Debian's chromium, on the demo school: what a learner does there, and what
// the desk sees of it through its own screens (shelvora_opac_desk).
import { after, before, test } from 'node:test';
import assert from 'node:assert/strict';
import { execFileSync, spawn } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync } from 'node:fs';
import { createRequire } from 'node:module';
import { tmpdir } from 'node:os';
import path from 'node:path';
import { chromium } from 'playwright-core';

const build = process.env.SHELVORA_BUILD;
const env = { ...process.env, QT_QPA_PLATFORM: 'offscreen' };
const axeSource = readFileSync(createRequire(import.meta.url).resolve('axe-core/axe.min.js'), 'utf8');
const Pin = '2468';
let folder, settings, server, base, browser, learner, learnerName, outTitle;

function desk(...args) {
  return execFileSync(path.join(build, 'tests/opac/shelvora_opac_desk'), [settings, ...args], { env, encoding: 'utf8', stdio: ['ignore', 'pipe', 'ignore'] }).trim();
}

before(async () => {
  folder = mkdtempSync(path.join(tmpdir(), 'shelvora-opac-'));
  execFileSync(path.join(build, 'src/app/shelvora'), ['--make-demo', folder], { env, stdio: 'ignore' });
  settings = path.join(folder, 'shelvora.ini');
  const [number, said] = desk('set-pin', Pin).split('\t');
  assert.match(said, /can now sign in to the web catalogue with this PIN\.$/);
  learner = number;
  learnerName = said.replace(/ can now sign in.*$/, '').replace(',', ''); // as the desk's lists write it
  const [item, title] = desk('title-out').split('\t');
  outTitle = { item, title };
  server = spawn(path.join(build, 'src/opac/shelvora-opac'), ['--settings', settings, '--listen', '127.0.0.1:0'], { env, stdio: ['ignore', 'pipe', 'ignore'] });
  base = await new Promise((resolve, reject) => {
    let said = '';
    server.stdout.on('data', (chunk) => {
      said += chunk;
      const address = said.match(/on (http:\/\/127\.0\.0\.1:\d+)\//);
      if (address) resolve(address[1]);
    });
    server.on('exit', (code) => reject(new Error(`shelvora-opac ended (${code}): ${said}`)));
  });
  browser = await chromium.launch({ executablePath: process.env.SHELVORA_CHROMIUM, args: ['--no-sandbox'] });
});

after(async () => {
  await browser?.close();
  server?.kill();
  if (folder) rmSync(folder, { recursive: true, force: true });
});

async function signIn(page, number, pin) {
  await page.goto(`${base}/signin`);
  await page.fill('#number', number);
  await page.fill('#pin', pin);
  await page.click('button[type=submit]');
}

test('a search leads to the title and whether its copies are on the shelf', async () => {
  const page = await browser.newPage();
  await page.goto(base);
  await page.fill('#q', outTitle.title);
  await page.press('#q', 'Enter');
  await page.getByRole('link', { name: outTitle.title, exact: true }).first().click();
  assert.equal(await page.textContent('h1'), outTitle.title);
  assert.match(await page.textContent('dl'), /AvailableDue back \d{4}-\d\d-\d\d/);
  const states = await page.locator('table tbody tr td:nth-child(3)').allTextContents();
  assert.ok(states.length > 0 && states.every((s) => s.startsWith('Due back')), `copies: ${states}`);
  await page.close();
});

test('a learner signs in with the PIN set at the desk, reserves a title that is out, the desk sees it, and it is cancelled', async () => {
  const context = await browser.newContext();
  const page = await context.newPage();
  await signIn(page, learner, Pin);
  assert.ok(page.url().endsWith('/account'), page.url());
  assert.match(await page.textContent('main'), /Signed in as /);

  await page.goto(`${base}/title/${outTitle.item}`);
  await page.getByRole('button', { name: 'Reserve' }).click();
  assert.ok(page.url().endsWith('/account'), `after Reserve: ${page.url()}: ${await page.textContent('main')}`);
  const row = page.locator('tr', { hasText: outTitle.title });
  assert.equal(await row.count(), 1, 'the reservation is not under My reservations');
  const atTheDesk = () => desk('reservations').split('\n').filter((r) => r.includes(outTitle.title) && r.includes(learnerName));
  assert.equal(atTheDesk().length, 1, `View Reserved Items does not list it: ${desk('reservations')}`);

  await row.getByRole('button', { name: 'Cancel' }).click();
  assert.match(await page.textContent('main'), /You have reserved nothing\./);
  assert.deepEqual(atTheDesk(), [], 'the desk still lists the cancelled reservation');
  await context.close();
});

test('text typed into the search box is shown as text, never run', async () => {
  const page = await browser.newPage();
  let dialogs = 0;
  page.on('dialog', (d) => { dialogs += 1; d.dismiss(); });
  const typed = '<script>document.title="owned"</script><img src=x onerror=alert(1)>';
  await page.goto(base);
  await page.fill('#q', typed);
  await page.press('#q', 'Enter');
  assert.equal(await page.inputValue('#q'), typed);
  assert.ok((await page.textContent('main')).includes(`Nothing in the library matches "${typed}".`));
  assert.equal(await page.locator('main img, main script').count(), 0, 'the typed markup became elements');
  assert.notEqual(await page.title(), 'owned');
  assert.equal(dialogs, 0);
  await page.close();
});

test('every page passes an accessibility check without serious violations', async () => {
  // axe is added to each page from outside: the pages themselves allow no script.
  const context = await browser.newContext({ bypassCSP: true });
  const page = await context.newPage();
  const check = async (address) => {
    await page.goto(`${base}${address}`);
    await page.addScriptTag({ content: axeSource });
    const results = await page.evaluate(async () => window.axe.run());
    assert.ok(results.passes.length > 10, `axe checked nothing on ${address}`);
    const serious = results.violations.filter((v) => v.impact === 'serious' || v.impact === 'critical');
    assert.deepEqual(serious.map((v) => `${v.id}: ${v.help}`), [], `${address}`);
  };
  for (const address of ['/', `/search?q=${encodeURIComponent(outTitle.title.split(' ').pop())}`, `/title/${outTitle.item}`, '/new', '/popular', '/signin'])
    await check(address);
  await signIn(page, learner, Pin);
  await check('/account');
  await context.close();
});

// Last: the tries it spends count against this computer's address too.
test('a wrong PIN five times and the sixth try is refused, the right PIN too', async () => {
  const page = await browser.newPage();
  await signIn(page, learner, '0000');
  assert.match(await page.textContent('main'), /The number or the PIN is not right\./);
  for (let n = 0; n < 4; n += 1) await signIn(page, learner, '0000');
  await signIn(page, learner, Pin);
  assert.match(await page.textContent('main'), /Too many tries: please wait a minute and try again\./);
  assert.ok(page.url().endsWith('/signin'), 'signed in past the limit');
  await page.close();
});
