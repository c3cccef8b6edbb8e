// Loads documents of the phone book as a phone does, draws them as it would, and is used by keys as
// it is. The part of the address behind the # is the path of the document that is shown.

const element = (id) => document.getElementById(id);
const textOf = (node, name) => node.querySelector(`:scope > ${name}`)?.textContent ?? '';

const patience = 5000;  // milliseconds
const slots = 6;        // soft keys that a phone has at most

let choices = {makers: [], pages: []};  // what there is to show
let shows = 0;                          // how many documents have been asked for
let depth = -1;                         // how far back the history goes within the preview

// Makes an element with these properties and children, of which strings are text.
function make(name, properties = {}, ...children) {
  const made = Object.assign(document.createElement(name), properties);
  made.append(...children);
  return made;
}

// ---- Where things lead

const shownPath = () => location.hash.replace(/^#?\/?/, '/');

// The path of an address, whatever the server calls itself in it; undefined for all else.
function pathOf(target) {
  const address = /^https?:\/\/[^/?#]*(.*)$/.exec(target);
  return address ? address[1] || '/' : undefined;
}

// The maker and the page that a path belongs to, as a result of a search belongs to the search.
function placeOf(path) {
  const [first, second = ''] = path.replace(/[?#].*/, '').split('/').slice(1);
  const maker = choices.makers.find((one) => one.path === first);
  const page = maker && choices.pages.find((one) => one.path.split('/')[0] === second);
  return {maker, page};
}

// What is reached by an address, in a word.
function wordFor(target) {
  const path = pathOf(target);
  if (!path) return '';
  if (/[?&]after=/.test(path)) return 'Next';
  if (/[?&]before=/.test(path)) return 'Previous';
  return placeOf(path).page?.title ?? '';
}

function decoded(text) {
  try {
    return decodeURIComponent(text);
  } catch {
    return text;
  }
}

// The history keeps with each page how far it is from the first, and what was chosen.
function remember(what) {
  history.replaceState({...history.state, ...what}, '');
}

function go(path) {
  remember({chosen: items().indexOf(chosen())});
  if (path === shownPath()) {
    show();
  } else {
    location.hash = path;
  }
}

// Does what a phone does with an address, a number, or the name of one of its own actions.
function follow(target) {
  const path = pathOf(target);
  const own = /^SoftKey:(.*)$/.exec(target)?.[1];
  if (path) {
    go(path);
  } else if (own) {
    (ownActions[own] ?? (() => notify(`The phone does “${own}” by itself.`)))();
  } else {
    notify(`Calling ${decoded(target.replace(/^(Dial|tel):/, ''))}`);
  }
}

// ---- What the keys do, those of the phone and those of the keyboard

const items = () => [...element('content').querySelectorAll('.item')];
const chosen = () => element('content').querySelector('.item[aria-current]');

// Tab stops at the chosen item only, and in forms as everywhere.
function choose(item) {
  for (const other of items()) {
    other.ariaCurrent = other === item ? 'true' : null;
    other.tabIndex = other === item || other.form ? 0 : -1;
  }
}

function move(by) {
  notify('');
  const all = items();
  if (all.length === 0) element('content').scrollBy(0, Math.sign(by) * 40);
  all[Math.max(0, Math.min(all.indexOf(chosen()) + by, all.length - 1))]?.focus();
}

function turnTo(word) {
  element('phone').querySelector(`[data-leads="${word}"]`)?.click();
}

function accept() {
  const item = chosen() ?? element('keys').querySelector('button');
  if (item?.form) {
    item.form.requestSubmit();
  } else {
    item?.click();
  }
}

function back() {
  const {maker} = placeOf(shownPath());
  const home = maker ? `/${maker.path}/` : '/';
  const isCoveredByNotice = element('notice').textContent && element('content').hasChildNodes();
  if (isCoveredByNotice) {
    notify('');
  } else if (depth > 0) {
    history.back();
  } else if (home !== shownPath()) {
    go(home);
  }
}

const ownActions = {
  __proto__: null,
  Select: accept,
  Dial: accept,
  Submit: () => element('content').querySelector('form')?.requestSubmit(),
  Exit: back,
};

const presses = {
  __proto__: null,
  ArrowUp: () => move(-1),
  ArrowDown: () => move(1),
  Home: () => move(-Infinity),
  End: () => move(Infinity),
  ArrowLeft: () => turnTo('Previous'),
  ArrowRight: () => turnTo('Next'),
  Enter: accept,
  Escape: back,
};

// The accents come after their letters, so that "a" begins "Å", too.
const spread = (text) => text.normalize('NFD').toLowerCase();

// A character goes into the form, wherever on the phone the focus is; in a list it finds the next
// item that begins with it.
function type(character) {
  const field = element('content').querySelector('input');
  if (field) {
    field.focus();  // before the browser decides where the character goes
    return;
  }
  const all = items();
  const after = all.indexOf(chosen()) + 1;
  const inTurn = [...all.slice(after), ...all.slice(0, after)];
  inTurn.find((item) => spread(item.textContent).startsWith(spread(character)))?.focus();
}

function onKeyDown(event) {
  const {key, target} = event;
  if (event.ctrlKey || event.altKey || event.metaKey || event.isComposing) return;
  if (element('source').contains(target) && key !== 'Escape') return;
  const isField = target.localName === 'input';
  if (isField && /^(ArrowLeft|ArrowRight|Home|End)$/.test(key)) return;
  if (key === 'Enter' && target.closest('a, button, input')) return;
  if (presses[key]) {
    presses[key]();
    event.preventDefault();
  } else if (/^[^ ]$/u.test(key) && !isField && isOnPhone(target)) {
    type(key);
  }
}

// Where nothing has the focus, the phone has it.
const isOnPhone = (node) => node === document.body || element('phone').contains(node);

// ---- The phone

function notify(text, isError = false) {
  element('notice').textContent = text;
  element('notice').classList.toggle('error', isError);
}

// Something to choose: a link if it leads to a page.
function makeItem(text, target) {
  const path = pathOf(target);
  const item = path ? make('a', {className: 'item', href: `#${path}`}, text)
                    : make('button', {className: 'item', type: 'button'}, text);
  item.dataset.leads = wordFor(target);
  if (!path) item.addEventListener('click', () => follow(target));
  return item;
}

function drawItems(all) {
  element('content').append(make('ul', {}, ...all.map(({text, target}) => {
    const item = makeItem('', target);
    item.append(make('span', {}, text));
    if (!pathOf(target)) item.append(make('small', {}, target));
    return make('li', {}, item);
  })));
}

function drawForm({prompt, url, parameter, value, submit}, into) {
  const field = make('input', {className: 'item', name: parameter, value, autocomplete: 'off'});
  const form = make('form', {}, make('label', {}, make('span', {}, prompt), field));
  if (submit) form.append(make('button', {className: 'item'}, submit));
  form.addEventListener('submit', (event) => {
    event.preventDefault();
    const separator = url.includes('?') ? '&' : '?';
    follow(`${url}${separator}${parameter}=${encodeURIComponent(field.value)}`);
  });
  into.append(form);
}

// A page of HTML: only what the phone book writes is drawn.
function drawHTML(node, into) {
  for (const child of node.childNodes) {
    if (child.nodeType === Node.TEXT_NODE) {
      into.append(child.data.replace(/\n/g, ''));
    } else if (child.localName === 'a') {
      into.append(makeItem(child.textContent, child.getAttribute('href') ?? ''));
    } else if (child.localName === 'form') {
      drawForm({
        prompt: child.textContent.trim(),
        url: child.getAttribute('action') ?? '',
        parameter: child.querySelector('input[name]')?.getAttribute('name') ?? '',
        value: '',
        submit: child.querySelector('[type=submit]')?.getAttribute('value') ?? 'Submit',
      }, into);
    } else if (/^(p|br)$/.test(child.localName)) {
      const made = make(child.localName);
      into.append(made);
      drawHTML(child, made);
    }
  }
}

// Draws a document by what is in it, not by whose it is: the makers share many of their elements.
function drawDocument(root) {
  const content = element('content');
  element('title').textContent = textOf(root, 'Title');
  const choosable = [...root.querySelectorAll(':scope > MenuItem, :scope > DirectoryEntry')];
  const body = root.querySelector(':scope > body');
  const execute = root.querySelector(':scope > ExecuteItem');
  const message = root.querySelector(':scope > Message');
  if (textOf(root, 'Prompt')) {
    const field = root.querySelector(':scope > InputItem') ?? root;
    drawForm({
      prompt: textOf(root, 'Prompt'),
      url: textOf(root, 'URL'),
      parameter: textOf(field, 'Parameter') || textOf(field, 'QueryStringParam'),
      value: textOf(field, 'Default') || textOf(field, 'DefaultValue'),
    }, content);
  } else if (choosable.length > 0) {
    drawItems(choosable.map((item) => ({
      text: textOf(item, 'Prompt') || textOf(item, 'Name'),
      target: textOf(item, 'URI') || textOf(item, 'Telephone'),
    })));
  } else if (body) {
    drawHTML(body, content);
  } else if (execute) {
    follow(execute.getAttribute('URI') ?? '');
  } else {
    const text = (message ?? root.querySelector(':scope > Text'))?.textContent.trim() ?? '';
    content.append(make('p', {className: message?.getAttribute('type') ?? ''}, text));
  }
  drawKeys(keysOf(root));
}

// A key says where it leads; what the maker calls it stands below.
function keysOf(root) {
  const keys = [...root.querySelectorAll(':scope > SoftKey, :scope > SoftKeyItem')].map((key) => {
    const target = textOf(key, 'URI') || textOf(key, 'URL');
    const slot = Number(key.getAttribute('index'));
    const name = textOf(key, 'Name') || (pathOf(target) ? `SoftKey ${slot}` : target);
    return {label: textOf(key, 'Label') || wordFor(target) || name, name, target, slot};
  });
  ['previous', 'next'].forEach((name, index) => {
    const target = root.getAttribute(name);
    if (target) keys.push({label: wordFor(target) || name, name, target, slot: index + 2});
  });
  return keys;
}

function drawKeys(keys) {
  const places = Array(slots).fill(null);
  for (const key of keys) {
    const own = key.slot - 1;
    const free = places[own] === null ? own : places.indexOf(null);
    places[free < 0 ? places.length : free] = key;
  }
  element('keys').replaceChildren(...places.map((key) => {
    if (!key) return make('span', {className: 'key'});
    const name = key.name.split(/(?<=[_:])/).flatMap((part) => [part, make('wbr')]);
    const made = make('button', {className: 'key', type: 'button'},
                      make('span', {}, key.label), ' ', make('small', {}, ...name));
    made.dataset.leads = wordFor(key.target);
    made.addEventListener('click', () => follow(key.target));
    return made;
  }));
}

// ---- The source

const mark = (className, ...children) => make('span', {className}, ...children);

// Colours a line of markup, and lets it break before and after tags; as text it stays what it is.
// Names that run from right to left leave the tags around them in their order.
function colouredLine(line) {
  const parts = line.split(/(<(?:"[^"]*"|[^">])*>|&[#\w]+;)/);
  return mark('line', ...parts.flatMap((part, index) => {
    if (index % 2 === 0) return [make('bdi', {}, part)];
    if (part.startsWith('&')) return [mark('entity', part)];
    const pieces = part.split(/([\w:.-]+)(\s*=\s*)("[^"]*")(\/?>)?/);
    const tag = mark('tag');
    for (let at = 0; at < pieces.length; at += 5) {
      const [markup, name, sign, value, end = ''] = pieces.slice(at);
      tag.append(markup);
      if (name) tag.append(mark('attribute', mark('name', name), sign, mark('value', value), end));
    }
    return [make('wbr'), tag, make('wbr')];
  }));
}

function drawSource({ok, facts, text}) {
  element('answer').className = ok ? '' : 'error';
  element('answer').replaceChildren(...facts.map((fact) => make('span', {}, fact)));
  element('text').replaceChildren(...text.split(/(?<=\n)/).map(colouredLine));
  element('copied').textContent = '';
  element('copy').hidden = text === '';
}

// The clipboard's newer interface is only there by HTTPS and on one's own machine.
function copySource() {
  getSelection().selectAllChildren(element('text'));
  const isCopied = document.execCommand('copy');
  element('copied').textContent = isCopied ? 'Copied' : 'Press Ctrl+C to copy';
}

// ---- From the server

// Asks the server, not another host: a path may begin like the name of one.
async function load(path) {
  const begun = performance.now();
  const response = await fetch(location.origin + path, {signal: AbortSignal.timeout(patience)});
  const bytes = await response.arrayBuffer();
  const time = performance.now() - begun;
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

// Fills a row of links in place, so that the one with the focus keeps it.
function drawTabs(id, tabs) {
  const nav = element(id);
  while (nav.children.length < tabs.length) nav.append(make('a'));
  tabs.forEach(({name, path, isCurrent}, index) => {
    const ariaCurrent = isCurrent ? 'page' : null;
    Object.assign(nav.children[index], {textContent: name, href: `#${path}`, ariaCurrent});
  });
}

// The other makers' tabs lead to the same page of theirs.
function drawPlace(path) {
  const {maker, page} = placeOf(path);
  const rest = page ? path.replace(/^\/[^/?]*\/?/, '') : '';
  drawTabs('makers', choices.makers.map((one) => (
    {name: one.name, path: `/${one.path}/${rest}`, isCurrent: one === maker})));
  drawTabs('pages', choices.pages.map((one) => (
    {name: one.title, path: `/${(maker ?? choices.makers[0]).path}/${one.path}`,
     isCurrent: one === page})));
  element('phone').dataset.maker = maker?.path ?? '';
  document.title = [page?.title, maker?.name, 'Phone book preview'].filter(Boolean).join(' · ');
}

function drawAnswer({text, type}) {
  if (!/xml|html/.test(type)) {
    element('content').append(make('p', {}, text));
    return;
  }
  const parsed = new DOMParser().parseFromString(text, 'text/xml');
  const fault = parsed.querySelector('parsererror');
  if (fault) {
    notify(`This is not well-formed: ${(fault.querySelector('div') ?? fault).textContent}`, true);
  } else {
    drawDocument(parsed.documentElement);
  }
}

function drawFailure() {
  notify('The phone book does not answer.', true);
  drawKeys([{label: 'Try again', name: '', target: location.origin + shownPath()}]);
}

// The focus goes to the screen, unless it is elsewhere: on a tab, in the source, on a soft key that
// is there again. A document that leads on at once has a new page before it is drawn.
function placeFocus(key) {
  const content = element('content');
  const start = items()[history.state?.chosen ?? 0] ?? items()[0];
  choose(start);
  content.tabIndex = start ? -1 : 0;
  if (!start) element('keys').querySelector('button')?.classList.add('first');
  if (!isOnPhone(document.activeElement)) return;
  const same = key && [...element('keys').children].find((one) => one.textContent === key);
  (same ?? start ?? content).focus();
}

async function show() {
  const turn = ++shows;
  if (!history.state) remember({depth: depth + 1});
  depth = history.state.depth;
  element('screen').ariaBusy = 'true';
  let answer, failure;
  try {
    if (choices.makers.length === 0) choices = await loadChoices();
    if (shownPath() === '/') {
      history.replaceState(history.state, '', `#/${choices.makers[0].path}/`);
    }
    drawPlace(shownPath());
    answer = await load(shownPath());
  } catch (error) {
    failure = error;
  }
  if (turn !== shows) return;  // another one was asked for meanwhile

  const key = document.activeElement.closest('.key')?.textContent;
  for (const id of ['title', 'content']) element(id).replaceChildren();
  drawKeys([]);
  notify('');
  element('address').textContent = shownPath();
  drawSource(answer ?? {ok: false, facts: ['No answer', failure.message], text: ''});
  if (answer) {
    drawAnswer(answer);
  } else {
    drawFailure();
  }
  placeFocus(key);
  element('screen').ariaBusy = 'false';
  document.body.dataset.shown = shownPath();
}

element('content').addEventListener('focusin', ({target}) => {
  if (target.matches('.item')) choose(target);
});
element('pad').addEventListener('mousedown', (event) => event.preventDefault());
element('pad').addEventListener('click', ({target}) => presses[target.dataset.press]?.());
element('copy').addEventListener('click', copySource);
element('text').addEventListener('copy', (event) => {
  event.clipboardData.setData('text/plain', getSelection().getRangeAt(0).toString());
  event.preventDefault();
});
addEventListener('click', (event) => {
  const link = event.target.closest('a');
  if (!link || event.ctrlKey || event.shiftKey || event.metaKey) return;
  event.preventDefault();
  if (event.detail > 0) link.blur();  // whoever points at a tab goes on with the phone
  go(link.hash.slice(1));
});
addEventListener('keydown', onKeyDown);
addEventListener('hashchange', show);
await show();
