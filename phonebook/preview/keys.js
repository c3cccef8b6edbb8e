// Operates the phone: selecting items, the keys of the keyboard and of the phone's pad, and the
// actions that a phone performs without a server. It works on whatever is drawn on the screen.

const element = (id) => document.getElementById(id);
const items = () => [...element('content').querySelectorAll('.item')];
const selected = () => element('content').querySelector('.item[aria-current]');

let goBack;  // opens the previous page

/** Shows a notice over the page; '' removes it. */
export function notify(text, isError = false) {
  element('notice').textContent = text;
  element('notice').classList.toggle('error', isError);
}

/** Returns the index of the selected item, or -1. */
export const selectedIndex = () => items().indexOf(selected());

/** Returns the text of the soft key that has the focus, or undefined. */
export const focusedKey = () => document.activeElement.closest('.key')?.textContent;

/**
 * Selects an item of a new page and moves the focus to it, or to the soft key with this text. A
 * focus outside the phone stays there.
 */
export function placeFocus(index, key) {
  const content = element('content');
  const start = items()[index] ?? items()[0];
  select(start);
  content.tabIndex = start ? -1 : 0;
  if (!start) element('keys').querySelector('button')?.classList.add('first');
  if (!isOnPhone(document.activeElement)) return;
  const same = key && [...element('keys').children].find((one) => one.textContent === key);
  (same ?? start ?? content).focus();
}

/** Performs an action of the phone by its name, or else calls a number. */
export function perform(target) {
  const action = /^SoftKey:(.*)$/.exec(target)?.[1];
  if (action) {
    (actions[action] ?? (() => notify(`The phone does “${action}” by itself.`)))();
  } else {
    notify(`Calling ${decode(target.replace(/^(Dial|tel):/, ''))}`);
  }
}

/** Starts listening to the keyboard and the pad. `onBack` opens the previous page. */
export function listenToKeys(onBack) {
  goBack = onBack;
  element('content').addEventListener('focusin', ({target}) => {
    if (target.matches('.item')) select(target);
  });
  element('pad').addEventListener('mousedown', (event) => event.preventDefault());
  element('pad').addEventListener('click', ({target}) => bindings[target.dataset.press]?.());
  addEventListener('keydown', onKeyDown);
}

function decode(text) {
  try {
    return decodeURIComponent(text);
  } catch {
    return text;
  }
}

// Tab stops at the selected item only, but at every field and button of a form.
function select(item) {
  for (const other of items()) {
    other.ariaCurrent = other === item ? 'true' : null;
    other.tabIndex = other === item || other.form ? 0 : -1;
  }
}

function move(offset) {
  notify('');
  const all = items();
  if (all.length === 0) element('content').scrollBy(0, Math.sign(offset) * 40);
  all[Math.max(0, Math.min(all.indexOf(selected()) + offset, all.length - 1))]?.focus();
}

function turnPage(name) {
  element('phone').querySelector(`[data-page="${name}"]`)?.click();
}

function activate() {
  const item = selected() ?? element('keys').querySelector('button');
  if (item?.form) {
    item.form.requestSubmit();
  } else {
    item?.click();
  }
}

function back() {
  const isCoveredByNotice = element('notice').textContent && element('content').hasChildNodes();
  if (isCoveredByNotice) {
    notify('');
  } else {
    goBack();
  }
}

// Actions by the names that documents give them.
const actions = {
  __proto__: null,
  Select: activate,
  Dial: activate,
  Submit: () => element('content').querySelector('form')?.requestSubmit(),
  Exit: back,
};

const bindings = {
  __proto__: null,
  ArrowUp: () => move(-1),
  ArrowDown: () => move(1),
  Home: () => move(-Infinity),
  End: () => move(Infinity),
  ArrowLeft: () => turnPage('Previous'),
  ArrowRight: () => turnPage('Next'),
  Enter: activate,
  Escape: back,
};

// Decomposed text has accents after their letters, so "a" is a prefix of "Å".
const decompose = (text) => text.normalize('NFD').toLowerCase();

// A form gets the character wherever on the phone the focus is. In a list, the next item that
// begins with the character gets the focus.
function type(character) {
  const field = element('content').querySelector('input');
  if (field) {
    field.focus();  // before the browser inserts the character
    return;
  }
  const all = items();
  const after = all.indexOf(selected()) + 1;
  const inTurn = [...all.slice(after), ...all.slice(0, after)];
  inTurn.find((item) => decompose(item.textContent).startsWith(decompose(character)))?.focus();
}

function onKeyDown(event) {
  const {key, target} = event;
  if (event.ctrlKey || event.altKey || event.metaKey || event.isComposing) return;
  if (element('source').contains(target) && key !== 'Escape') return;
  const isField = target.localName === 'input';
  if (isField && /^(ArrowLeft|ArrowRight|Home|End)$/.test(key)) return;
  if (key === 'Enter' && target.closest('a, button, input')) return;
  if (bindings[key]) {
    bindings[key]();
    event.preventDefault();
  } else if (/^[^ ]$/u.test(key) && !isField && isOnPhone(target)) {
    type(key);
  }
}

// The body has the focus when no element does; the phone then gets the keys.
const isOnPhone = (node) => node === document.body || element('phone').contains(node);
