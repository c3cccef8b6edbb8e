// The preview in a real browser: every maker and page drawn, menus followed, a search sent.
//
// Environment: PHONEBOOK, the address of a running server with the sample contacts; SCREENSHOTS, a
// directory for pictures, if any are wanted.
import assert from 'node:assert/strict';
import {after, before, beforeEach, test} from 'node:test';
import {chromium} from 'playwright-core';

const server = process.env.PHONEBOOK;
const screenshots = process.env.SCREENSHOTS;
const {makers, pages} = await (await fetch(`${server}/preview/choices.json`)).json();

let browser, page, faults;

before(async () => {
  browser = await chromium.launch({
    executablePath: '/usr/bin/chromium',
    args: ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-sync',
           '--disable-background-networking', '--disable-component-update'],
  });
});
after(() => browser?.close());

beforeEach(async () => {
  await page?.close();
  page = await browser.newPage({viewport: {width: 1180, height: 680}});
  faults = [];
  page.on('console', (message) => {
    if (['error', 'warning'].includes(message.type())) faults.push(message.text());
  });
  page.on('pageerror', (error) => faults.push(String(error)));
});

const shown = (path) => page.waitForSelector(`body[data-shown="${path}"]`);
const text = (selector) => page.locator(selector).textContent();

async function open(path) {
  await page.goto(`${server}/preview#${path}`);
  await shown(path);
}

async function picture(name) {
  if (screenshots) await page.screenshot({path: `${screenshots}/preview-${name}.png`});
}

for (const maker of makers) {
  test(`${maker.name}: every page is drawn`, async () => {
    for (const one of pages) {
      const path = `/${maker.path}/${one.path}`;
      await open(path);
      const answer = await fetch(server + path);
      assert.equal(await text('#text'), await answer.text());
      assert.equal(await text('#answer'), `200 OK, ${answer.headers.get('Content-Type')}`);
      assert.equal(await page.locator('#notice.error').count(), 0);
      const drawn = (await text('#title')) + (await text('#content')) + (await text('#notice'));
      const expected = {Home: /Directory.*Search.*Message/s, Directory: /Adebayo, Folasade/,
                        Search: /Name begins with|ab/, Contact: /\+49 ?30/, Dial: /\+493055501001/,
                        Message: /soup & bread/, Alert: /Fire drill/}[one.title];
      assert.match(drawn, expected, path);
      assert.deepEqual(await page.locator('nav [aria-current]').allTextContents(), [maker.name, one.title]);
    }
    assert.deepEqual(faults, []);
  });

  test(`${maker.name}: a menu followed, a search found`, async () => {
    await open(`/${maker.path}/`);
    await page.locator('#content').getByText('Directory', {exact: true}).click();
    await shown(`/${maker.path}/directory`);
    await picture(maker.path);
    const next = page.locator('#phone').getByText(/^(next|RIGHT)$/i);
    await next.click();
    await shown(`/${maker.path}/directory?page=2`);
    assert.match(await text('#title'), /page 2/);
    await page.locator('#phone').getByText(/^(previous|LEFT)$/i).click();
    await shown(`/${maker.path}/directory?page=1`);

    await open(`/${maker.path}/search`);
    const field = page.locator('#content input');
    if (await field.count() > 0) {
      await field.fill('Bauer & ');
      await field.press('Enter');
      await shown(`/${maker.path}/search?name=Bauer%20%26%20`);
    } else {
      await page.locator('#content .item').getByText('b', {exact: true}).click();
      await shown(`/${maker.path}/search?name=b`);
    }
    assert.match(await text('#content'), /Bauer & Sohn GmbH/);
    assert.deepEqual(faults, []);
  });
}

test('Aastra: from the search to the call by soft keys', async () => {
  await open('/aastra/search');
  await page.locator('#content input').fill('adeb');
  await page.locator('#keys').getByText('Search', {exact: true}).click();
  await shown('/aastra/search?name=adeb');
  await picture('search');
  await page.locator('#keys').getByText('Select', {exact: true}).click();
  await shown('/aastra/contact/1');
  await picture('contact');
  await page.locator('#keys').getByText('Dial', {exact: true}).click();
  await shown('/aastra/dial/1');
  assert.equal(await text('#notice'), 'Calling +493055501001');
  await page.goBack();
  await page.goBack();
  await shown('/aastra/search?name=adeb');
  assert.deepEqual(faults, []);
});

test('what is not well-formed, missing or away shows as an error', async () => {
  await page.route('**/snom/message', (route) =>
    route.fulfill({contentType: 'text/xml', body: '<SnomIPPhoneText><Title>A & B</Title></SnomIPPhoneText>'}));
  await open('/snom/message');
  assert.match(await text('#notice.error'), /not well-formed/);
  await open('/snom/contact/999999');
  assert.match(await text('#answer'), /^404/);
  assert.match(await text('#content'), /not in the phone book/);
  await page.route('**/snom/', (route) => route.abort());
  await page.goto(`${server}/preview#/snom/`);
  await page.waitForSelector('#notice.error');
  assert.match(await text('#notice'), /does not answer/);
});
