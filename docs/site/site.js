// Draws the documents of the pages as phones show them, and opens the theme's controls to the
// keyboard. scripts/docs puts the preview's drawing.js before this file, as one plain script: a
// browser loads no modules from a folder.

const besideThisScript = (name) => new URL(name, document.currentScript.src).href;
const styles = ['preview.css', 'phone.css'].map(besideThisScript);

// A phone has a tree of its own, in which the preview's styles and names apply.
function makePhone(maker) {
  const place = make('div', {className: 'phone', role: 'group', ariaLabel: `${maker} phone`});
  const part = (id, ...properties) => make('div', Object.assign({id}, ...properties));
  const title = part('title');
  const content = part('content', {role: 'group', ariaLabel: 'Screen'});
  const notice = part('notice', {role: 'status'});
  const screen = part('screen');
  screen.append(title, content, notice);
  const keys = part('keys', {role: 'group', ariaLabel: 'Soft keys'});
  const phone = part('phone');
  phone.dataset.maker = maker.toLowerCase();
  phone.append(screen, keys);
  const sheets = styles.map((href) => make('link', {rel: 'stylesheet', href}));
  place.attachShadow({mode: 'open'}).append(...sheets, phone);

  const follow = (target) => { notice.textContent = `The phone follows ${target}`; };
  const links = {hrefOf: () => undefined, nameOf: () => '', follow};
  const draw = (text) => {
    const drawn = drawDocument(text, links);
    notice.textContent = '';
    title.textContent = drawn.title;
    content.replaceChildren(...drawn.content);
    content.tabIndex = content.querySelector('.item') ? -1 : 0;
    keys.replaceChildren(...drawn.keys);
    if (drawn.executes !== null) follow(drawn.executes);
  };
  const redraw = (text) => {
    let error;
    try {
      draw(text);
    } catch ({message}) {
      error = message;
    }
    notice.classList.toggle('error', Boolean(error));
    if (error) notice.textContent = error;
  };
  return {place, draw, redraw};
}

// Puts a phone beside a block that is one document of a maker.
function addPhone(block) {
  const text = block.querySelector('pre');
  const root = /^<(\w+)/.exec(text.textContent)?.[1];
  const maker = root === 'html' ? 'Polycom' : /^(\w+?)IPPhone/.exec(root)?.[1];
  if (!maker) return;
  const {place, draw, redraw} = makePhone(maker);
  try {
    draw(text.textContent);
  } catch {
    return;  // several documents
  }
  Object.assign(text, {role: 'textbox', ariaMultiLine: 'true', ariaLabel: `Editable ${root}`});
  text.spellcheck = false;
  text.setAttribute('contenteditable', 'plaintext-only');
  text.addEventListener('input', () => redraw(text.textContent));
  const parts = make('div', {className: 'example-parts'});
  const example = make('div', {className: 'example'}, parts);
  block.replaceWith(example);
  parts.append(block, place);
}
document.querySelectorAll('.highlight-xml, .highlight-html').forEach(addPhone);

// What scrolls sideways can be scrolled by keys.
const scrolling = new ResizeObserver((entries) => {
  for (const {target} of entries) {
    target.tabIndex = target.scrollWidth > target.clientWidth ? 0 : -1;
  }
});
for (const part of document.querySelectorAll('pre:not([role]), .table-wrapper')) {
  scrolling.observe(part);
}

// The theme opens its sidebars by labels of hidden boxes, which keys don't reach.
for (const label of document.querySelectorAll('.nav-overlay-icon, .toc-overlay-icon')) {
  const box = document.getElementById(label.htmlFor);
  const {className} = label;
  const button = make('button', {className, type: 'button', ariaExpanded: 'false'});
  button.append(...label.childNodes);
  button.addEventListener('click', () => box.click());
  box.addEventListener('change', () => { button.ariaExpanded = String(box.checked); });
  label.replaceWith(button);
}
addEventListener('keydown', ({key}) => {
  if (key !== 'Escape') return;
  for (const box of document.querySelectorAll('.sidebar-toggle:checked')) box.click();
});

// What the theme leaves out for readers of screens.
for (const [selector, properties] of [['.overlay', {ariaHidden: 'true'}],
                                      ['.caption[role=heading]', {ariaLevel: '2'}],
                                      ['.sidebar-drawer', {ariaLabel: 'Pages'}],
                                      ['.toc-drawer', {ariaLabel: 'This page'}]]) {
  for (const part of document.querySelectorAll(selector)) Object.assign(part, properties);
}
