import { byId, call, element, listen, replaceContent, showAccounts } from './platform.js';

// ---- Requests --------------------------------------------------------------------------------------------------------

const timeFormat = new Intl.DateTimeFormat(undefined, { hour: '2-digit', minute: '2-digit', second: '2-digit', hour12: false });
const rows = new Map(); // by number: the row, and its details when they are open
const sides = [[['requestHead', 'Request'], ['requestBody', 'Request body']], [['replyHead', 'Reply'], ['replyBody', 'Reply body']]];

const failed = (exchange) => exchange.refusal !== '' || exchange.fault !== '' || exchange.status >= 400;

function cell(label, ...children) {
  return element('td', { role: 'cell', 'data-label': label }, ...children);
}

function checks(exchange) {
  const lines = [exchange.refusal === ''
    ? element('span', { className: 'passed' }, '✓ passed')
    : element('span', { className: 'refused' }, `✕ refused: ${exchange.refusal}`)];
  if (exchange.fault !== '') {
    lines.push(element('span', { className: 'fault' }, `⚡ fault: ${describeFault(JSON.parse(exchange.fault))}`));
  }
  return lines;
}

async function toggleDetails(exchange, row, button) {
  const open = rows.get(exchange.number).details;
  if (open) {
    open.remove();
    rows.get(exchange.number).details = null;
    button.setAttribute('aria-expanded', 'false');
    return;
  }
  const texts = await call('GET', `/sandbox/exchange?number=${exchange.number}`);
  if (!texts || rows.get(exchange.number)?.details) return;
  const shown = sides.map((parts) => element('div', {}, ...parts.filter(([name]) => texts[name] !== '').map(([name, title]) =>
    element('section', {}, element('h3', {}, title), element('pre', { tabIndex: 0, ariaLabel: title }, texts[name].trimEnd())))));
  const details = element('tr', { role: 'row', className: 'details', id: `details-${exchange.number}` },
    element('td', { role: 'cell', colSpan: 5 }, element('div', { className: 'parts' }, ...shown)));
  row.after(details);
  rows.get(exchange.number).details = details;
  button.setAttribute('aria-expanded', 'true');
}

// A long path breaks at its slashes.
function breakable(path) {
  return path.split(/(?<=.\/)/).flatMap((part) => [part, element('wbr')]);
}

function addRow(exchange) {
  const button = element('button', { type: 'button', className: 'operation', 'aria-expanded': 'false',
    'aria-controls': `details-${exchange.number}`, onclick: () => toggleDetails(exchange, row, button) },
    element('span', {}, exchange.operation), element('small', {}, `${exchange.method} `, ...breakable(exchange.path)));
  const row = element('tr', { role: 'row', className: failed(exchange) ? 'failed' : '' },
    cell('Time', element('time', {}, timeFormat.format(exchange.time))),
    cell('Operation', button),
    cell('Trace id', element('code', {}, exchange.traceId)),
    cell('Status', element('span', { className: `status s${Math.floor(exchange.status / 100)}` }, String(exchange.status))),
    cell('Checks', ...checks(exchange)));
  byId('rows').prepend(row);
  rows.set(exchange.number, { row, details: null });
}

function showExchanges({ oldest, added }) {
  for (const [number, { row, details }] of rows) {
    // A platform that was started anew counts from 1 again.
    if (number < oldest || (added.length > 0 && number >= added[0].number)) {
      row.remove();
      details?.remove();
      rows.delete(number);
    }
  }
  added.forEach(addRow);
  byId('empty').hidden = rows.size > 0;
  byId('request-count').textContent = rows.size === 0 ? '' : `the latest ${rows.size}`;
  const last = added.at(-1);
  if (last) {
    byId('news').textContent = `${last.operation}, status ${last.status}, `
      + (last.refusal === '' ? 'checks passed' : `refused: ${last.refusal}`)
      + (added.length > 1 ? `, and ${added.length - 1} before it` : '');
  }
}

byId('only-failed').addEventListener('change', (event) => {
  byId('requests').classList.toggle('only-failed', event.target.checked);
});

// ---- Faults ----------------------------------------------------------------------------------------------------------

// Each kind: what a fault's order holds for it; where it takes a number, its name, the usual one and its limits.
const kinds = {
  status: { title: 'another status', label: 'Status', usual: 503, least: 200, most: 599 },
  delayMs: { title: 'a late reply', label: 'Milliseconds', usual: 3000, least: 1, most: 600000 },
  stallMs: { title: 'a stall in mid-reply', label: 'Milliseconds', usual: 3000, least: 1, most: 600000 },
  cutAfter: { title: 'a reply cut short', label: 'Bytes that arrive', usual: 10, least: 0, most: 67108864 },
  contentLength: { title: 'a wrong length', label: 'Length announced', usual: 1000000, least: 0, most: 2000000000 },
  oversize: { title: 'a reply far too long', label: 'Bytes', usual: 33554432, least: 1, most: 67108864 },
  garbage: { title: 'bytes that are no JSON' },
  wrongTypes: { title: 'members of wrong types' },
  unframed: { title: 'no length at all' },
};

function describeFault(order) {
  const known = Object.keys(kinds).filter((name) => name in order && order[name] !== false);
  const told = known.map((name) => (order[name] === true ? kinds[name].title : `${kinds[name].title} (${order[name]})`));
  return told.join(', ') || 'another body';
}

function showFaultKind() {
  const kind = kinds[byId('fault-kind').value];
  byId('fault-value-label').hidden = !kind.label;
  byId('fault-value').disabled = !kind.label;
  byId('fault-value-name').textContent = kind.label ?? '';
  Object.assign(byId('fault-value'), { min: kind.least ?? '', max: kind.most ?? '', value: kind.usual ?? '' });
}

function showFaults(faults) {
  replaceContent(byId('faults'), faults.map((fault) => {
    const times = fault.times === undefined ? 'every request' : fault.times === 1 ? 'next request' : `next ${fault.times} requests`;
    return element('li', {}, element('span', {}, element('strong', {}, fault.operation), `: ${describeFault(fault)}, ${times}`),
      element('button', { type: 'button', className: 'small', id: `fault-off-${fault.endpoint}`, ariaLabel: `Switch off the fault of ${fault.operation}`,
        onclick: () => call('DELETE', `/sandbox/faults?endpoint=${encodeURIComponent(fault.endpoint)}`) }, 'Switch off'));
  }), byId('fault-operation'));
}

byId('fault-kind').append(...Object.entries(kinds).map(([value, { title }]) => element('option', { value }, title)));
byId('fault-kind').addEventListener('change', showFaultKind);
showFaultKind();
byId('fault').addEventListener('submit', (event) => {
  event.preventDefault();
  const kind = byId('fault-kind').value;
  const times = byId('fault-times').value;
  call('POST', '/sandbox/faults', { endpoint: byId('fault-operation').value,
    [kind]: kinds[kind].label ? Number(byId('fault-value').value) : true, ...(times && { times: Number(times) }) });
});

// ---- Everything else -------------------------------------------------------------------------------------------------

function ahead(seconds) {
  const days = Math.floor(seconds / 86400);
  const hours = Math.floor((seconds % 86400) / 3600);
  const named = (count, unit) => (count === 0 ? [] : [`${count} ${unit}${count === 1 ? '' : 's'}`]);
  return [...named(days, 'day'), ...named(hours, 'hour')].join(' ') || (seconds === 0 ? 'no' : `${seconds} s`);
}

// The platform writes switches as text.
const isOn = (value) => value === true || value === 'true' || value === 1;

function settingSwitch(id, title, on, change) {
  return element('label', { className: 'switch' }, element('span', {}, title),
    element('input', { type: 'checkbox', role: 'switch', id: `switch-${id}`, checked: on,
      onchange: (event) => call('POST', '/sandbox/settings', change(event.target.checked)) }));
}

function showModules(state) {
  const modules = Object.entries(state.modules).map(([name, value]) =>
    settingSwitch(name, name.replace(/^funcfg_/, '').replaceAll('_', ' '), isOn(value),
      (on) => ({ modules: { [name]: String(on) } })));
  replaceContent(byId('modules'), [
    settingSwitch('available', 'client may be used', isOn(state.available), (on) => ({ available: String(on) })),
    settingSwitch('status', 'account is active', isOn(state.userStatus), (on) => ({ userStatus: on ? 1 : 0 })), ...modules]);
}

let waiting = '';

function showWaiting(requests) {
  // A screen reader tells what is new here, so only news may touch it.
  if (waiting === requests.join()) return;
  waiting = requests.join();
  replaceContent(byId('waiting'), requests.map((request) => element('p', { className: 'banner' },
    'A program waits for a person to sign in.',
    element('a', { className: 'button primary', id: `open-${request}`, href: `/sign-in?request=${request}`, target: '_blank' }, 'Open the sign-in page'))));
}

function showState(state) {
  const current = state.accounts.find((account) => account.userId === state.current);
  showAccounts(state.accounts, state.current, ({ userId }) => call('POST', '/sandbox/account', { userId }));
  byId('signed-in').textContent = state.signedIn ? `${current.displayName} is signed in` : 'nobody is signed in';
  byId('sign-out').disabled = !state.signedIn;
  byId('access-tokens').textContent = `${state.accessTokens} valid`;
  byId('refresh-tokens').textContent = `${state.refreshTokens} valid`;
  byId('clock').textContent = ahead(state.clockAhead);
  byId('modules-of').textContent = `of ${current.displayName}`;
  if (byId('fault-operation').options.length === 0) {
    byId('fault-operation').append(...state.operations.map(({ path, name }) => element('option', { value: path }, name)));
  }
  showFaults(state.faults);
  showModules(state);
  showWaiting(state.signIns);
}

const onClick = (id, action) => byId(id).addEventListener('click', action);
onClick('sign-out', () => call('POST', '/sandbox/sign-out', {}));
onClick('revoke-access', () => call('POST', '/sandbox/revoke', { kind: 'access' }));
onClick('revoke-refresh', () => call('POST', '/sandbox/revoke', { kind: 'refresh' }));
onClick('expire-access', () => call('POST', '/sandbox/clock', { advanceSeconds: 3600 }));
onClick('expire-all', () => call('POST', '/sandbox/clock', { advanceSeconds: 181 * 24 * 3600 }));
onClick('reset', () => byId('confirm').showModal());
onClick('keep', () => byId('confirm').close());
onClick('reset-now', async () => {
  await call('POST', '/sandbox/reset', {});
  byId('confirm').close();
});

byId('address').textContent = location.origin;
byId('address-again').textContent = location.origin;
listen('/sandbox/events', { state: showState, exchanges: showExchanges }, (connected) => {
  byId('connection').textContent = connected ? 'Live' : 'Disconnected';
  byId('connection').classList.toggle('down', !connected);
});
