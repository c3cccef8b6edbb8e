// The preview in a real browser: wide and narrow, light and dark, used by keys alone. Environment:
// PHONEBOOK, the address of a server with the sample contacts; SCREENSHOTS, where pictures go.
import assert from 'node:assert/strict';
import {after, afterEach, beforeEach, test} from 'node:test';
import axe from 'axe-core';
import {chromium} from 'playwright-core';

const {PHONEBOOK: server, SCREENSHOTS: screenshots} = process.env;
const {makers, pages: offered} = await (await fetch(`${server}/preview/choices.json`)).json();
const pages = [['Home', '', /Directory.*Search/], ['Search', 'search', /Name or dep|AB/],
               ['Directory', 'directory', /Ångström/], ['Search', 'search?name=an', /D'Angelo/],
               ['Contact', 'contact/8', /\+49 30/], ['Contact', 'contact/999', /not in the/],
               ['Message', 'message', /soup & bread/], ['Alert', 'status', /Fire drill/],
               ['Dial', 'dial/8', /D'Angelo|1008/]];
assert.deepEqual(new Set(pages.map(([tab]) => tab)), new Set(offered.map(({title}) => title)));
const views = [[1180, 'light'], [1180, 'dark'], [390, 'dark'], [320, 'light']];
const pictures = {'/aastra/search?name=an 390 dark': 'search',
                  '/aastra/contact/8 390 dark': 'contact'};
for (const {path} of makers) pictures[`/${path}/directory 1180 light`] = path;
const browser = await chromium.launch({executablePath: '/usr/bin/chromium'});
after(() => browser.close());

let page;
beforeEach(async () => {
  page = await browser.newPage({permissions: ['clipboard-read']});
  page.on('pageerror', (error) => { throw error; });
});
afterEach(() => page.close());

const text = (selector) => page.locator(selector).textContent();
const focused = () => page.evaluate(() => document.activeElement.textContent);
const shown = (path) => page.waitForSelector(`body[data-shown="${path}"] [aria-busy="false"]`);
const open = (path) => page.goto(`${server}/preview#${path}`).then(() => shown(path));
async function press(keys, path) {
  for (const key of keys.split(' ')) await page.keyboard.press(key);
  if (path) await shown(path);
}
async function checkFitAndAccess(path) {
  await page.evaluate(axe.source);
  for (const [width, colorScheme] of views) {
    await page.setViewportSize({width, height: 780});
    await page.emulateMedia({colorScheme});
    const look = `${path} ${width} ${colorScheme}`;
    const areCut = (parts) => parts.some((part) => part.scrollWidth > part.clientWidth);
    assert.ok(!await page.$$eval('html, #text, #content', areCut), look);
    const {violations} = await page.evaluate(() => window.axe.run());
    const found = violations.flatMap(({id, nodes}) => nodes.map(({html}) => `${id}: ${html}`));
    assert.deepEqual(found, [], look);
    const picture = screenshots && pictures[look];
    if (picture) await page.screenshot({path: `${screenshots}/preview-${picture}.png`});
  }
}

for (const {name, path: maker} of makers) {
  test(`${name}: every page is drawn as it was sent, fits, and is accessible`, async () => {
    for (const [tab, rest, drawn] of pages) {
      const path = `/${maker}/${rest}`;
      await open(path);
      const answer = await fetch(server + path);
      assert.equal(await text('#text'), await answer.text());
      assert.ok((await text('#answer')).startsWith(`${answer.status} ${answer.statusText}`));
      assert.match(await text('#screen'), drawn);
      assert.deepEqual(await page.locator('nav [aria-current]').allTextContents(), [name, tab]);
      await checkFitAndAccess(path);
    }
  });

  test(`${name}: a colleague found and called, the message read, all by keys`, async () => {
    const found = /cisco|yealink/.test(maker)
      ? [['a Enter', 'search?letter=A'], ['a Enter', 'contact/2'], ['Enter', 'contact/2']]
      : [['a n g Enter', 'search?name=ang'], ['Enter', 'contact/2'], ['Enter', 'dial/2']];
    const steps = [['ArrowDown Enter', 'search'], ...found];
    if (/polycom|snom/.test(maker)) steps.push(['Enter', 'dial/2']);
    await open(`/${maker}/`);
    for (const [keys, path] of steps) await press(keys, `/${maker}/${path}`);
    assert.equal(await text('#notice'), 'Calling +493055501002');
    for (const [, path] of steps.slice(0, -1).reverse()) await press('Escape', `/${maker}/${path}`);
    await press('Escape', `/${maker}/`);
    assert.equal(await focused(), 'Search');
    await press('ArrowDown Enter', `/${maker}/message`);
    for (await press('End'); !/^Home/.test(await focused());) await press('Tab');
    await press('Enter', `/${maker}/`);
    assert.equal(await focused(), 'Directory');
  });
}

test('tabs and the source keep the focus; pages turn, the source scrolls, is copied', async () => {
  await open('/cisco/directory');
  await press('ArrowRight', '/cisco/directory?after=30-Petrov%2C%20Dimitar');
  await page.focus('#makers a >> nth=3');
  await press('ArrowLeft', '/cisco/directory?before=31-Quinn%2C%20Rory');
  await press('Enter', '/snom/directory?before=31-Quinn%2C%20Rory');
  assert.equal(await focused(), 'Snom');
  await page.focus('#text');
  await press('End');
  await page.waitForFunction(() => document.getElementById('text').scrollTop > 0);
  await page.click('#copy');
  assert.equal(await page.evaluate(() => navigator.clipboard.readText()), await text('#text'));
});

test('what is odd, broken or away shows as such, and nothing old beside it', async () => {
  const odd = '<MenuItem><Name>&lt;b&gt;</Name><URI>tel:%ZZ</URI></MenuItem>';
  for (const [body, screen] of [[`<a>${odd}</a>`, '<b>tel:%ZZCalling %ZZ'], ['<a', 'This is not w'],
                                ['', 'The phone book does not answer']]) {
    await open('/snom/');
    await page.route('**/snom/directory', (route) =>
      body ? route.fulfill({body, contentType: 'text/xml'}) : route.abort());
    await press('Enter', '/snom/directory');
    if (/%/.test(body)) await press('Enter');
    assert.ok((await text('#screen')).replace(/\n/g, '').startsWith(screen), screen);
    assert.equal(await text('#text'), body);
    await checkFitAndAccess(screen);
  }
  await page.route('**/choices.json', (route) => route.abort());
  await page.reload();
  await shown('/snom/directory');
  await page.unrouteAll();
  await press('Enter');  // tries again
  await page.waitForSelector('body:has(#makers a) #content :text("Ångström")');
});
