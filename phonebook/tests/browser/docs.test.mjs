// The documentation in a real browser, opened as files. Environment: DOCS, the folder of its pages.
import assert from 'node:assert/strict';
import {readdirSync} from 'node:fs';
import {after, test} from 'node:test';
import {pathToFileURL} from 'node:url';
import axe from 'axe-core';
import {chromium} from 'playwright-core';

const {DOCS: folder} = process.env;
const root = pathToFileURL(`${folder}/`).href;
const pages = readdirSync(folder, {recursive: true}).filter((name) => name.endsWith('.html'));
const browser = await chromium.launch({executablePath: '/usr/bin/chromium'});
after(() => browser.close());

// Opens a page, whose faults and requests to elsewhere are failures.
async function open(name, options) {
  const page = await browser.newPage({permissions: ['clipboard-read'], ...options});
  const failures = [];
  page.on('pageerror', ({message}) => failures.push(message));
  page.on('requestfailed', (request) => failures.push(request.url()));
  page.on('request', (request) => request.url().startsWith(root) || failures.push(request.url()));
  await page.goto(root + name);
  return {page, failures};
}

test('every page fits and is accessible at every width, light and dark', async () => {
  assert.ok(pages.length > 20);
  for (const name of pages) {
    const {page, failures} = await open(name);
    await page.evaluate(axe.source);
    for (const width of [320, 390, 700, 1180, 1600]) {
      await page.setViewportSize({width, height: 900});
      for (const colorScheme of ['light', 'dark']) {
        await page.emulateMedia({colorScheme});
        const runOnly = colorScheme === 'dark' ? ['color-contrast'] : undefined;
        failures.push(...await page.evaluate(async (options) => {
          await new Promise((done) => requestAnimationFrame(() => setTimeout(done)));
          const wide = [...document.querySelectorAll('html, .content')].filter(
              (part) => part.scrollWidth > part.clientWidth);
          const {violations} = await window.axe.run(options);
          return [...wide.map(({className}) => `too wide: ${className}`),
                  ...violations.flatMap(({id, nodes}) => nodes.map(({html}) => `${id}: ${html}`))];
        }, {preload: false, runOnly}));
        assert.deepEqual(failures, [], `${name} ${width} ${colorScheme}`);
      }
    }
    await page.close();
  }
});

test('the search finds words anywhere, in the guide and in the reference', async () => {
  const {page, failures} = await open('index.html');
  for (const [words, expected] of [['escape', /screens\.html.*reference\/screens\.html/],
                                   ['limit', /makers\.html/], ['charset', /index\.html/],
                                   ['soft key', /soft_keys\.html/]]) {
    await page.fill('.sidebar-search', words);
    await page.press('.sidebar-search', 'Enter');
    await page.waitForSelector('#search-results :text("finished")');
    const found = await page.$$eval('.search a', (links) => links.map(({href}) => href).sort());
    assert.match(found.join(' '), expected, words);
    await page.goto(`${root}index.html`);
  }
  assert.deepEqual(failures, []);
});

test('documents are drawn beside their text, also once it is edited, and copied', async () => {
  for (const maker of ['aastra', 'cisco', 'polycom', 'snom', 'yealink']) {
    const {page, failures} = await open(`${maker}.html`);
    const documents = page.locator('.highlight-xml, .highlight-html');
    assert.equal(await page.locator('.example #phone').count(), await documents.count());
    const text = page.locator('.example pre >> nth=0');
    const phone = page.locator('.example .phone >> nth=0');
    const document = await text.textContent();
    const [, title] = /<Title>(.*)<\/Title>/.exec(document);
    assert.equal(await phone.locator('#title').textContent(), title);
    await text.fill(document.replace(title, 'Supper &amp; tea'));
    assert.equal(await phone.locator('#title').textContent(), 'Supper & tea');
    await text.press('Control+End');
    await text.pressSequentially('<');
    assert.match(await phone.locator('#notice.error').textContent(), /error/);
    await page.click('.example .copybtn >> nth=0');
    assert.match(await page.evaluate(() => navigator.clipboard.readText()), /Supper.*<$/s);
    assert.deepEqual(failures, []);
    await page.close();
  }
});

test('a narrow page is used by keyboard, and read without scripts', async () => {
  const {page} = await open('aastra.html', {viewport: {width: 390, height: 800}});
  const link = page.locator('.sidebar-drawer a[href="soft_keys.html"]');
  assert.equal(await link.isVisible(), false);
  const menu = page.locator('.nav-overlay-icon:focus');
  for (let tabs = 0; tabs < 5 && !await menu.count(); ++tabs) await page.keyboard.press('Tab');
  for (const key of ['Enter', 'Escape', 'Enter']) await page.keyboard.press(key);
  await link.press('Enter');
  await page.waitForURL('**/soft_keys.html');
  for (const [width, colorScheme] of [[320, 'light'], [1180, 'dark']]) {
    const viewport = {width, height: 800};
    const {page: plain} = await open('snom.html', {javaScriptEnabled: false, viewport, colorScheme});
    assert.match(await plain.innerText('article'), /<SnomIPPhoneText>\s*<Title>Lunch/);
    const [ink, paper] = await plain.$eval('article', (article) =>
      [getComputedStyle(article).color, getComputedStyle(document.body).backgroundColor]
          .map((color) => Number(/\d+/.exec(color)[0])));
    assert.ok(colorScheme === 'dark' ? ink > paper + 128 : paper > ink + 128);
  }
});
