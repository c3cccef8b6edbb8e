// Loads documents of the phone book as a phone does and draws them as it would. The part of the
// address behind the # is the path of the document that is shown.

const element = (id) => document.getElementById(id);
const textOf = (node, name) => node.querySelector(`:scope > ${name}`)?.textContent ?? '';

let choices;
let actions = {};  // what the phone does by itself with what is shown

// Makes an element with a class, a text and what a click does.
function make(name, className, text, onclick) {
  const made = document.createElement(name);
  made.className = className;
  made.textContent = text;
  if (onclick) made.addEventListener('click', onclick);
  return made;
}

function notify(text, isError = false) {
  element('notice').textContent = text;
  element('notice').classList.toggle('error', isError);
}

// Does what a phone does with an address, a number, or the name of one of its own actions.
function follow(target) {
  const address = /^https?:\/\/[^/]*(\/.*)?$/.exec(target);
  const own = /^SoftKey:(.*)$/.exec(target);
  const call = /^(?:Dial|tel):(.*)$/.exec(target);
  if (address) {
    location.hash = address[1] ?? '/';
  } else if (own) {
    (actions[own[1]] ?? (() => notify(`The phone does "${own[1]}" by itself.`)))();
  } else if (target) {
    notify(`Calling ${call ? decodeURIComponent(call[1]) : target}`);
  }
}

function drawItems(items) {
  let chosen = items[0]?.target;
  const list = items.map(({text, target}, index) => {
    const item = make('button', index === 0 ? 'item chosen' : 'item', text, () => {
      chosen = target;
      for (const other of list) other.classList.toggle('chosen', other === item);
      follow(target);
    });
    if (!/^https?:/.test(target)) item.prepend(make('small', '', target));
    return item;
  });
  element('content').append(...list);
  actions.Select = actions.Dial = () => chosen && follow(chosen);
}

function drawForm({prompt, url, parameter, value}) {
  const form = document.createElement('form');
  const label = make('label', '', `${prompt} `);
  const field = document.createElement('input');
  field.name = parameter;
  field.value = value;
  label.append(field);
  form.append(label);
  form.addEventListener('submit', (event) => {
    event.preventDefault();
    follow(`${url}${url.includes('?') ? '&' : '?'}${parameter}=${encodeURIComponent(field.value)}`);
  });
  element('content').append(form);
  actions.Submit = () => form.requestSubmit();
  actions.BackSpace = () => { field.value = field.value.slice(0, -1); };
  field.focus();
}

// A page of HTML: only what the phone book writes is drawn.
function drawHTML(node, into) {
  for (const child of node.childNodes) {
    if (child.nodeType === Node.TEXT_NODE) {
      into.append(child.data.replace(/\n/g, ''));
    } else if (child.localName === 'a') {
      const link = make('a', '', child.textContent, (event) => {
        event.preventDefault();
        follow(child.getAttribute('href'));
      });
      link.href = '#';
      into.append(link);
    } else if (child.localName === 'form') {
      drawForm({
        prompt: child.textContent.trim(),
        url: child.getAttribute('action'),
        parameter: child.querySelector('input[name]').getAttribute('name'),
        value: '',
      });
      into.lastChild.append(make('button', '', child.querySelector('[type=submit]').getAttribute('value')));
    } else if (child.localName === 'br') {
      into.append(document.createElement('br'));
    } else {
      drawHTML(child, into);
    }
  }
}

function drawKeys(root) {
  const keys = [...root.querySelectorAll(':scope > SoftKey, :scope > SoftKeyItem')].map((key) => ({
    label: textOf(key, 'Label') || textOf(key, 'Name'),
    target: textOf(key, 'URI') || textOf(key, 'URL'),
    position: Number(key.getAttribute('index')),
  }));
  keys.sort((one, other) => one.position - other.position);
  for (const name of ['previous', 'next']) {
    if (root.hasAttribute(name)) keys.push({label: name, target: root.getAttribute(name)});
  }
  element('keys').append(...keys.map(({label, target}) => make('button', '', label, () => follow(target))));
}

// Draws a document by what is in it, not by whose it is: the makers share many of their elements.
function draw(root) {
  element('title').textContent = textOf(root, 'Title');
  const items = [...root.querySelectorAll(':scope > MenuItem, :scope > DirectoryEntry')];
  const body = root.querySelector(':scope > body');
  const execute = root.querySelector(':scope > ExecuteItem');
  const message = root.querySelector(':scope > Message');
  if (textOf(root, 'Prompt')) {
    drawForm({
      prompt: textOf(root, 'Prompt'),
      url: textOf(root, 'URL'),
      parameter: textOf(root, 'Parameter') || root.querySelector('QueryStringParam').textContent,
      value: textOf(root, 'Default') || (root.querySelector('DefaultValue')?.textContent ?? ''),
    });
  } else if (items.length > 0) {
    drawItems(items.map((item) => ({
      text: textOf(item, 'Prompt') || textOf(item, 'Name'),
      target: textOf(item, 'URI') || textOf(item, 'Telephone'),
    })));
  } else if (body) {
    drawHTML(body, element('content'));
  } else if (execute) {
    follow(execute.getAttribute('URI'));
  } else if (message) {
    element('content').append(make('div', message.getAttribute('type') ?? '', message.textContent.trim()));
  } else {
    element('content').append(textOf(root, 'Text'));
  }
  actions.Exit = () => history.back();
  drawKeys(root);
}

// Makes a row of links of which one is current.
function drawChoices(id, links, current) {
  element(id).replaceChildren(...links.map(({name, path}) => {
    const link = make('a', '', name);
    link.href = `#${path}`;
    if (path === current) link.setAttribute('aria-current', 'true');
    return link;
  }));
}

async function show() {
  const path = location.hash.slice(1) || `/${choices.makers[0].path}/`;
  const [, maker, page] = /^\/([^/?]*)\/?(.*)$/.exec(path) ?? ['', '', ''];
  drawChoices('makers', choices.makers.map(({name, path: one}) => ({name, path: `/${one}/`})), `/${maker}/`);
  drawChoices('pages', choices.pages.map(({title, path: one}) => ({name: title, path: `/${maker}/${one}`})), `/${maker}/${page}`);
  element('phone').dataset.maker = maker;
  element('address').textContent = path;

  let response, text;
  try {
    response = await fetch(path);
    text = await response.text();
  } catch (error) {
    notify(`The phone book does not answer: ${error.message}`, true);
    return;
  }
  if (path !== (location.hash.slice(1) || path)) return;  // another one was chosen meanwhile
  for (const id of ['title', 'content', 'keys']) element(id).replaceChildren();
  notify('');
  actions = {};
  const type = response.headers.get('Content-Type');
  element('answer').textContent = `${response.status} ${response.statusText}, ${type}`;
  element('text').textContent = text;

  const parsed = new DOMParser().parseFromString(text, 'text/xml');
  const fault = parsed.querySelector('parsererror');
  if (fault) {
    notify(`This is not well-formed: ${fault.textContent}`, true);
  } else {
    draw(parsed.documentElement);
  }
  document.body.dataset.shown = path;
}

choices = await (await fetch('/preview/choices.json')).json();
addEventListener('hashchange', show);
await show();
