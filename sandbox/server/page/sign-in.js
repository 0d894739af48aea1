import { byId, call, listen, showAccounts, showProblem } from './platform.js';

const request = new URLSearchParams(location.search).get('request') ?? '';
let accounts = [];
let chosen = null;
let over = false;

function end(title, message) {
  over = true;
  byId('form').hidden = true;
  byId('title').textContent = title;
  byId('message').textContent = message;
  document.title = `${title} – sandbox platform`;
  showProblem('');
  byId('title').focus();
}

async function answer(order, title, message) {
  over = true; // the platform's word that nobody waits any more is our own doing
  if (await call('POST', '/sandbox/sign-in-answer', { request, ...order })) end(title, message);
  else over = false;
}

byId('form').addEventListener('submit', (event) => {
  event.preventDefault();
  const account = accounts.find((known) => known.userId === chosen);
  answer({ userId: chosen }, 'Signed in', `The program goes on as ${account.displayName}. You can close this page.`);
});
byId('cancel').addEventListener('click', () => answer({}, 'Cancelled', 'Nobody was signed in. You can close this page.'));

// The open stream also tells the platform that this page is there.
listen(`/sandbox/sign-in-events?request=${encodeURIComponent(request)}`, {
  'sign-in': (state) => {
    if (!over && !state.waiting) {
      end('Too late', 'No program waits for this sign-in any more. You can close this page.');
    }
    if (over) return !state.waiting;
    accounts = state.accounts;
    chosen ??= state.current;
    showAccounts(accounts, chosen, (account) => { chosen = account.userId; });
    if (byId('form').hidden) {
      byId('form').hidden = false;
      document.querySelector('input:checked')?.focus();
    }
    return false;
  },
}, (connected) => { if (!over) showProblem(connected ? '' : 'The platform does not answer. Trying again.'); });

// A page that comes back from the browser's memory has no stream any more.
addEventListener('pageshow', (event) => { if (event.persisted) location.reload(); });
