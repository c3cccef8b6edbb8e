// Draws a document as a phone shows it. Any page can import this module:
//
//   const {title, content, keys} = drawDocument(text);
//   element.replaceChildren(title, ...content, ...keys);
//
// `links` connects a drawing to the page around it:
//
//   hrefOf(target)  the href of a link to a target, or undefined for a button
//   nameOf(target)  the name of the page at a target, or ''
//   follow(target)  is called with the target of a pressed button or soft key, or a submitted form
//
// A target is what the document gives: an address, a number, or the name of an action of the phone.

const softKeySlots = 6;  // at most, on any phone
const noLinks = {hrefOf: () => undefined, nameOf: () => '', follow: () => {}};

/** Creates an element with properties and children. A string becomes a text node. */
export function make(name, properties = {}, ...children) {
  const made = Object.assign(document.createElement(name), properties);
  made.append(...children);
  return made;
}

/** Returns the path and query of an address, whatever its host, or undefined for other targets. */
export function pathOf(target) {
  const address = /^https?:\/\/[^/?#]*(.*)$/.exec(target);
  return address ? address[1] || '/' : undefined;
}

/**
 * Draws a document of any maker.
 * @returns {{title: string, content: (Node|string)[], keys: Element[], executes: ?string}} The
 *     title and content of the screen, the soft keys, and a target that the phone follows at once.
 * @throws {SyntaxError} if the text is not well-formed XML.
 */
export function drawDocument(text, links = noLinks) {
  const parsed = new DOMParser().parseFromString(text, 'text/xml');
  const error = parsed.querySelector('parsererror');
  if (error) throw new SyntaxError((error.querySelector('div') ?? error).textContent);
  const root = parsed.documentElement;
  const execute = childOf(root, 'ExecuteItem');
  return {
    title: textOf(root, 'Title'),
    content: execute ? [] : drawContent(root, links),
    keys: drawKeys(keysOf(root, links), links),
    executes: execute && (execute.getAttribute('URI') ?? ''),
  };
}

/** Draws soft keys, each in its slot or else in the first free one. */
export function drawKeys(keys, links = noLinks) {
  const slots = Array(softKeySlots).fill(null);
  for (const key of keys) {
    const own = key.slot - 1;
    const free = slots[own] === null ? own : slots.indexOf(null);
    slots[free < 0 ? slots.length : free] = key;
  }
  return slots.map((key) => {
    if (!key) return make('span', {className: 'key'});
    const name = key.name.split(/(?<=[_:])/).flatMap((part) => [part, make('wbr')]);
    const button = make('button', {className: 'key', type: 'button'},
                        make('span', {}, key.label), ' ', make('small', {}, ...name));
    button.dataset.page = links.nameOf(key.target);
    button.addEventListener('click', () => links.follow(key.target));
    return button;
  });
}

const childOf = (node, name) => node.querySelector(`:scope > ${name}`);
const textOf = (node, name) => childOf(node, name)?.textContent ?? '';

// Goes by the elements of a document, not by its maker: the makers share many of them.
function drawContent(root, links) {
  const entries = [...root.querySelectorAll(':scope > MenuItem, :scope > DirectoryEntry')];
  const body = childOf(root, 'body');
  if (textOf(root, 'Prompt')) {
    const field = childOf(root, 'InputItem') ?? root;
    return [drawForm({
      prompt: textOf(root, 'Prompt'),
      url: textOf(root, 'URL'),
      parameter: textOf(field, 'Parameter') || textOf(field, 'QueryStringParam'),
      value: textOf(field, 'Default') || textOf(field, 'DefaultValue'),
    }, links)];
  }
  if (entries.length > 0) return [make('ul', {}, ...entries.map((one) => drawEntry(one, links)))];
  if (body) return drawHTML(body, links);
  const message = childOf(root, 'Message');
  const text = (message ?? childOf(root, 'Text'))?.textContent.trim() ?? '';
  return [make('p', {className: message?.getAttribute('type') ?? ''}, text)];
}

function makeItem(text, target, links) {
  const href = links.hrefOf(target);
  const item = href ? make('a', {className: 'item', href}, text)
                    : make('button', {className: 'item', type: 'button'}, text);
  item.dataset.page = links.nameOf(target);
  if (!href) item.addEventListener('click', () => links.follow(target));
  return item;
}

function drawEntry(entry, links) {
  const target = textOf(entry, 'URI') || textOf(entry, 'Telephone');
  const item = makeItem('', target, links);
  item.append(make('span', {}, textOf(entry, 'Prompt') || textOf(entry, 'Name')));
  if (!pathOf(target)) item.append(make('small', {}, target));
  return make('li', {}, item);
}

function drawForm({prompt, url, parameter, value, submit}, links) {
  const field = make('input', {className: 'item', name: parameter, value, autocomplete: 'off'});
  const form = make('form', {}, make('label', {}, make('span', {}, prompt), field));
  if (submit) form.append(make('button', {className: 'item'}, submit));
  form.addEventListener('submit', (event) => {
    event.preventDefault();
    const separator = url.includes('?') ? '&' : '?';
    links.follow(`${url}${separator}${parameter}=${encodeURIComponent(field.value)}`);
  });
  return form;
}

// Draws paragraphs, line breaks, bold and italic text, links and a form with one field, and drops
// all other HTML.
function drawHTML(node, links) {
  return [...node.childNodes].flatMap((child) => {
    if (child.nodeType === Node.TEXT_NODE) return [child.data.replace(/\n/g, '')];
    switch (child.localName) {
      case 'a':
        return [makeItem(child.textContent, child.getAttribute('href') ?? '', links)];
      case 'form':
        return [drawForm({
          prompt: child.textContent.trim(),
          url: child.getAttribute('action') ?? '',
          parameter: child.querySelector('input[name]')?.getAttribute('name') ?? '',
          value: '',
          submit: child.querySelector('[type=submit]')?.getAttribute('value') ?? 'Submit',
        }, links)];
      case 'p':
      case 'br':
      case 'b':
      case 'i':
        return [make(child.localName, {}, ...drawHTML(child, links))];
      default:
        return [];
    }
  });
}

// A key is labeled with the page that it opens. The maker's name of the key stands below.
function keysOf(root, links) {
  const keys = [...root.querySelectorAll(':scope > SoftKey, :scope > SoftKeyItem')].map((key) => {
    const target = textOf(key, 'URI') || textOf(key, 'URL');
    const slot = Number(key.getAttribute('index'));
    const name = textOf(key, 'Name') || (pathOf(target) ? `SoftKey ${slot}` : target);
    return {label: textOf(key, 'Label') || links.nameOf(target) || name, name, target, slot};
  });
  ['previous', 'next'].forEach((name, index) => {
    const target = root.getAttribute(name);
    if (target) keys.push({label: links.nameOf(target) || name, name, target, slot: index + 2});
  });
  return keys;
}
