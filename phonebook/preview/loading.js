// The preview's page: loads documents from the server as a phone does, hands them to drawing.js and
// shows their source. The fragment of the page's URL is the path of the document, so that the
// browser's history moves between documents.

import {drawDocument, drawKeys, make, pathOf} from './drawing.js';
import {focusedKey, listenToKeys, notify, perform, placeFocus, selectedIndex} from './keys.js';

const element = (id) => document.getElementById(id);

const timeout = 5000;  // milliseconds

let choices = {makers: [], pages: []};  // what choices.json lists
let latest = 0;                         // the number of the latest request
let depth = -1;                         // number of pages of the preview behind this one

// ---- Addresses

const shownPath = () => location.hash.replace(/^#?\/?/, '/');

// The maker and the page of a path. A search result belongs to the search, for example.
function locate(path) {
  const [first, second = ''] = path.replace(/[?#].*/, '').split('/').slice(1);
  const maker = choices.makers.find((one) => one.path === first);
  const page = maker && choices.pages.find((one) => one.path.split('/')[0] === second);
  return {maker, page};
}

const links = {
  hrefOf(target) {
    const path = pathOf(target);
    return path && `#${path}`;
  },

  nameOf(target) {
    const path = pathOf(target);
    if (!path) return '';
    if (/[?&]after=/.test(path)) return 'Next';
    if (/[?&]before=/.test(path)) return 'Previous';
    return locate(path).page?.title ?? '';
  },

  follow(target) {
    const path = pathOf(target);
    if (path) {
      go(path);
    } else {
      perform(target);
    }
  },
};

// ---- History

// A history entry holds its page's depth and selected item.
function remember(state) {
  history.replaceState({...history.state, ...state}, '');
}

function go(path) {
  remember({selected: selectedIndex()});
  if (path === shownPath()) {
    show();
  } else {
    location.hash = path;
  }
}

// Goes to the home page when the history has no page of the preview.
function goBack() {
  const {maker} = locate(shownPath());
  const home = maker ? `/${maker.path}/` : '/';
  if (depth > 0) {
    history.back();
  } else if (home !== shownPath()) {
    go(home);
  }
}

// ---- Requests

// The origin keeps a path such as //host from naming another host.
async function load(path) {
  const start = performance.now();
  const response = await fetch(location.origin + path, {signal: AbortSignal.timeout(timeout)});
  const bytes = await response.arrayBuffer();
  const time = performance.now() - start;
  const text = new TextDecoder('utf-8', {ignoreBOM: true}).decode(bytes);
  const type = response.headers.get('Content-Type') ?? 'no type';
  const status = `${response.status} ${response.statusText}`.trim();
  const size = `${bytes.byteLength.toLocaleString('en')} bytes`;
  return {ok: response.ok, text, type, facts: [status, type, size, `${time.toFixed(1)} ms`]};
}

async function loadChoices() {
  const {ok, text, facts} = await load('/preview/choices.json');
  if (!ok) throw new Error(facts[0]);
  return JSON.parse(text);
}

// ---- Tabs

// Reuses the links of a row, so that a focused one keeps the focus.
function drawTabs(id, tabs) {
  const nav = element(id);
  while (nav.children.length < tabs.length) nav.append(make('a'));
  tabs.forEach(({name, path, isCurrent}, index) => {
    const ariaCurrent = isCurrent ? 'page' : null;
    Object.assign(nav.children[index], {textContent: name, href: `#${path}`, ariaCurrent});
  });
}

// A maker's tab leads to that maker's version of the same page.
function drawAllTabs(path) {
  const {maker, page} = locate(path);
  const rest = page ? path.replace(/^\/[^/?]*\/?/, '') : '';
  drawTabs('makers', choices.makers.map((one) => (
    {name: one.name, path: `/${one.path}/${rest}`, isCurrent: one === maker})));
  drawTabs('pages', choices.pages.map((one) => (
    {name: one.title, path: `/${(maker ?? choices.makers[0]).path}/${one.path}`,
     isCurrent: one === page})));
  element('phone').dataset.maker = maker?.path ?? '';
  document.title = [page?.title, maker?.name, 'Phone book preview'].filter(Boolean).join(' · ');
}

// ---- Source

const span = (className, ...children) => make('span', {className}, ...children);

// Highlights a line of markup without changing its text. Lines break before and after tags, and
// right-to-left names don't reorder the tags around them.
function highlightLine(line) {
  const parts = line.split(/(<(?:"[^"]*"|[^">])*>|&[#\w]+;)/);
  return span('line', ...parts.flatMap((part, index) => {
    if (index % 2 === 0) return [make('bdi', {}, part)];
    if (part.startsWith('&')) return [span('entity', part)];
    const pieces = part.split(/([\w:.-]+)(\s*=\s*)("[^"]*")(\/?>)?/);
    const tag = span('tag');
    for (let at = 0; at < pieces.length; at += 5) {
      const [markup, name, sign, value, end = ''] = pieces.slice(at);
      tag.append(markup);
      if (name) tag.append(span('attribute', span('name', name), sign, span('value', value), end));
    }
    return [make('wbr'), tag, make('wbr')];
  }));
}

function drawSource({ok, facts, text}) {
  element('answer').className = ok ? '' : 'error';
  element('answer').replaceChildren(...facts.map((fact) => make('span', {}, fact)));
  element('text').replaceChildren(...text.split(/(?<=\n)/).map(highlightLine));
  element('copied').textContent = '';
  element('copy').hidden = text === '';
}

// navigator.clipboard exists over HTTPS and on localhost only.
function copySource() {
  getSelection().selectAllChildren(element('text'));
  const isCopied = document.execCommand('copy');
  element('copied').textContent = isCopied ? 'Copied' : 'Press Ctrl+C to copy';
}

// ---- The phone

function draw({title = '', content = [], keys = drawKeys([])}) {
  element('title').textContent = title;
  element('content').replaceChildren(...content);
  element('keys').replaceChildren(...keys);
}

function drawResponse({text, type}) {
  if (!/xml|html/.test(type)) {
    draw({content: [make('p', {}, text)]});
    return;
  }
  let drawing;
  try {
    drawing = drawDocument(text, links);
  } catch (error) {
    if (!(error instanceof SyntaxError)) throw error;
    draw({});
    notify(`This is not well-formed: ${error.message}`, true);
    return;
  }
  draw(drawing);
  if (drawing.executes !== null) links.follow(drawing.executes);
}

function drawFailure() {
  const retry = {label: 'Try again', name: '', target: location.origin + shownPath()};
  draw({keys: drawKeys([retry], links)});
  notify('The phone book does not answer.', true);
}

async function show() {
  const request = ++latest;
  if (!history.state) remember({depth: depth + 1});
  depth = history.state.depth;
  element('screen').ariaBusy = 'true';
  let response, failure;
  try {
    if (choices.makers.length === 0) choices = await loadChoices();
    if (shownPath() === '/') {
      history.replaceState(history.state, '', `#/${choices.makers[0].path}/`);
    }
    drawAllTabs(shownPath());
    response = await load(shownPath());
  } catch (error) {
    failure = error;
  }
  if (request !== latest) return;  // a newer request draws its own document

  const key = focusedKey();
  notify('');
  element('address').textContent = shownPath();
  drawSource(response ?? {ok: false, facts: ['No answer', failure.message], text: ''});
  if (response) {
    drawResponse(response);
  } else {
    drawFailure();
  }
  // The state is null if the document has executed an address: that is a new history entry.
  placeFocus(history.state?.selected ?? 0, key);
  element('screen').ariaBusy = 'false';
  document.body.dataset.shown = shownPath();
}

element('copy').addEventListener('click', copySource);
element('text').addEventListener('copy', (event) => {
  event.clipboardData.setData('text/plain', getSelection().getRangeAt(0).toString());
  event.preventDefault();
});
addEventListener('click', (event) => {
  const link = event.target.closest('a');
  if (!link || event.ctrlKey || event.shiftKey || event.metaKey) return;
  event.preventDefault();
  if (event.detail > 0) link.blur();  // after a click on a tab, the phone gets the keys
  go(link.hash.slice(1));
});
addEventListener('hashchange', show);
listenToKeys(goBack);
await show();
