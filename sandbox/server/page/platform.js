// What both pages share: elements, control calls, server-sent events. Texts from outside become text nodes only.

const token = document.querySelector('meta[name="sandbox-token"]').content;

export const byId = (id) => document.getElementById(id);

// An element with properties, and children that are elements or texts.
export function element(tag, properties = {}, ...children) {
  const made = document.createElement(tag);
  for (const [name, value] of Object.entries(properties)) {
    if (name in made) made[name] = value;
    else made.setAttribute(name, value);
  }
  made.append(...children);
  return made;
}

export function showProblem(text) {
  byId('problem').textContent = text;
  byId('problem').hidden = text === '';
}

// Asks the platform; shows why when it refuses, and returns null then.
export async function call(method, path, order) {
  try {
    const reply = await fetch(path, {
      method,
      headers: { 'X-Sandbox-Token': token, 'Content-Type': 'application/json' },
      body: order === undefined ? undefined : JSON.stringify(order),
    });
    const answer = await reply.json();
    showProblem(reply.ok ? '' : answer.error);
    return reply.ok ? answer : null;
  } catch {
    showProblem('The platform does not answer.');
    return null;
  }
}

// listeners: what to do with each event. onConnection hears whether the stream is up. It comes back by itself, until a
// listener returns true: then it is closed.
export function listen(path, listeners, onConnection) {
  const stream = new EventSource(`${path}${path.includes('?') ? '&' : '?'}token=${token}`);
  stream.onopen = () => onConnection(true);
  stream.onerror = () => {
    onConnection(false);
    if (stream.readyState === EventSource.CLOSED) setTimeout(() => again(path, listeners, onConnection), 2000);
  };
  for (const [name, listener] of Object.entries(listeners)) {
    stream.addEventListener(name, (event) => { if (listener(JSON.parse(event.data)) === true) stream.close(); });
  }
}

// A platform that was started anew has another token.
async function again(path, listeners, onConnection) {
  const reply = await fetch('/sandbox/session', { headers: { 'X-Sandbox-Token': token } }).catch(() => null);
  if (reply?.status === 403) location.reload();
  else listen(path, listeners, onConnection);
}

// New children in the place of the old ones. The keyboard's focus stays on the element of the same id; where that is gone,
// it goes to the fallback.
export function replaceContent(parent, children, fallback = null) {
  const focused = parent.contains(document.activeElement) ? document.activeElement.id : '';
  parent.replaceChildren(...children);
  if (focused) (byId(focused) ?? fallback)?.focus();
}

// A radio button for each account.
export function showAccounts(accounts, current, onChoice) {
  replaceContent(byId('accounts'), accounts.map((account) => {
    const radio = element('input', { type: 'radio', name: 'account', id: `account-${account.userId}`, value: account.userId,
      checked: account.userId === current, onchange: () => onChoice(account) });
    return element('label', { className: 'choice' }, radio,
      element('span', { className: 'choice-name', dir: 'auto' }, account.displayName),
      element('span', { className: 'muted' }, account.countryCode));
  }));
}
