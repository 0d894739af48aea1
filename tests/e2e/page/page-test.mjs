// Drives the sandbox's page in headless Chromium, with the host as the program that signs in.
// usage: node page-test.mjs FOLDER_OF_PLAYWRIGHT CHROMIUM RUN_WINE FOLDER_OF_PROGRAMS
import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import http from 'node:http';
import { createRequire } from 'node:module';
import net from 'node:net';
import readline from 'node:readline';

const [modules, executablePath, runWine, programs] = process.argv.slice(2);
const { chromium } = createRequire(`${modules}/`)('playwright-core');

function start(program, args, interactive) {
  const child = spawn(runWine, [`${programs}/${program}.exe`, ...args],
    { env: { ...process.env, ZVACCOUNTSDK_INTERACTIVE: interactive }, stdio: ['pipe', 'pipe', 'inherit'] });
  const lines = [];
  const reader = readline.createInterface({ input: child.stdout }).on('line', (line) => lines.push(line));
  const first = new Promise((resolve) => { reader.once('line', resolve); });
  const ended = new Promise((resolve) => { child.once('close', (code) => resolve({ code, text: lines.join('\n') })); });
  return { child, first, ended };
}
const host = (...commands) => start('userauth', [...commands, '--interactive', '--json', '--platform', base], 'wait').ended;

function request(path, { method = 'GET', headers = {}, order, keep } = {}) {
  return new Promise((resolve, reject) => {
    const sent = http.request(base + path, { method, headers, agent: false }, (reply) => {
      let text = '';
      reply.setEncoding('utf8').on('data', (part) => { text += part; }).on('end', () => resolve({ status: reply.statusCode, text }));
      if (keep) resolve({ status: reply.statusCode, close: () => sent.destroy() });
    });
    sent.on('error', (error) => (keep ? undefined : reject(error)));
    sent.end(order && JSON.stringify(order));
  });
}

const server = start('sandbox-server', ['--end-with-input'], '');
const base = JSON.parse(await server.first).http;
const browser = await chromium.launch({ executablePath, args: process.getuid() === 0 ? ['--no-sandbox'] : [] });
const context = await browser.newContext();
const complaints = [];
const page = await context.newPage();
page.on('pageerror', (error) => complaints.push(String(error)));
page.on('console', (message) => message.type() === 'error' && complaints.push(message.text()));
const row = (text) => page.locator('tbody tr').filter({ hasText: text }).first();
const openSignIn = async () => {
  const popup = context.waitForEvent('page');
  await page.getByRole('link', { name: 'Open the sign-in page' }).last().click();
  return popup;
};

try {
  await page.goto(base);
  await page.getByText('Live', { exact: true }).waitFor();

  // A person signs in by keyboard while the host waits. The fault leaves time to revoke the token that the host then uses.
  await page.getByLabel('Operation').selectOption('Code exchange');
  await page.getByLabel('What goes wrong').selectOption('a late reply');
  await page.getByRole('button', { name: 'Switch on' }).click();
  await page.getByText('a late reply (3000), next request').waitFor();
  const signingIn = host('sign-in', 'whoami');
  const signIn = await openSignIn();
  await signIn.locator('input:checked').waitFor();
  await signIn.keyboard.press('ArrowDown');
  await signIn.keyboard.press('Enter');
  await signIn.getByRole('heading', { name: 'Signed in' }).waitFor();
  await row('Code exchange').getByText('fault: a late reply (3000)').waitFor();
  await page.getByRole('button', { name: 'Revoke access' }).click();
  const { code, text } = await signingIn;
  assert.equal(code, 1, text);
  assert.match(text, /401/, 'the host met the refusal');
  await row('refused: the access token is not known or was revoked').getByText('401').waitFor();
  assert.equal(await page.getByText('is signed in').innerText(), 'Zoë 王芳 is signed in');

  // A click shows the call, without its secrets.
  await row('Code exchange').getByRole('button').click();
  const details = page.locator('tr.details');
  await details.getByText('"traceId"').waitFor();
  const recorded = JSON.parse((await request('/sandbox/last-request?endpoint=/pcclient/getAccessTokenByCode')).text);
  const secret = JSON.parse(recorded.body).authorizationCode;
  assert.ok(secret.length > 20 && !(await page.content()).includes(secret), 'the code is masked');
  assert.match(await details.innerText(), /"authorizationCode":"\[hidden: 32 characters\]"[^]*"accessToken":"\[hidden/);

  // What no client of ours sends is masked too, and shown as text.
  const canary = 'CANARY-CANARY-CANARY';
  for (const sent of [
    `GET /gateway?access_token=${canary} HTTP/1.1\r\nAuthorization: Bearer\r\n ${canary}`,
    `GET /gateway HTTP/1.1\r\nAuthorization: Bearer\rx: ${canary}`, `GET /gateway HTTP/1.1\r\nAuthorization ${canary}`,
    `POST /pcclient/refreshtoken HTTP/1.1|refreshToken=${canary}`,
    `POST /pcclient/refreshtoken HTTP/1.1|{"refreshT\\u006fken":"${canary}"}`,
    'GET /<img/src=x> HTTP/1.1\r\nx-zv-trace-id: <img src=x>',
  ]) {
    const [head, body = ''] = sent.split('|');
    await new Promise((resolve) => {
      net.connect(new URL(base).port, '127.0.0.1').on('close', resolve).resume()
        .end(`${head}\r\nContent-Length: ${body.length}\r\nConnection: close\r\n\r\n${body}`);
    });
  }
  await page.getByText('<img src=x>', { exact: true }).waitFor();
  const buttons = page.locator('.operation[aria-expanded=false]');
  while (await buttons.count() > 0) {
    const shown = await details.count();
    await buttons.first().click();
    await details.nth(shown).waitFor();
  }
  assert.ok(!(await page.content()).includes(canary) && await page.locator('img[src=x]').count() === 0);

  // The keyboard's focus stays in place when what has it is gone.
  await page.getByLabel('How often').selectOption('every request');
  await page.getByRole('button', { name: 'Switch on' }).click();
  await page.getByRole('button', { name: 'Switch off the fault' }).press('Enter');
  await page.getByText(', every request').waitFor({ state: 'detached' });
  assert.equal(await page.evaluate(() => document.activeElement.id), 'fault-operation');

  // Two more programs: the person cancels one and closes the page of the other.
  for (const [what, reason] of [['cancel', 'cancelled the sign-in'], ['close', 'page was closed']]) {
    const waiting = host('sign-in');
    const popup = await openSignIn();
    await popup.getByRole('button', { name: 'Cancel' })[what === 'cancel' ? 'click' : 'waitFor']();
    if (what === 'close') await popup.close();
    const end = await waiting;
    assert.ok(end.code === 1 && end.text.includes(reason), `${what}: ${end.text}`);
  }

  const switched = page.getByRole('switch', { name: 'gallery' });
  await switched.click();
  assert.equal(JSON.parse((await request('/sandbox/settings')).text).modules.funcfg_gallery, 'false');
  await page.getByRole('button', { name: 'Reset the platform' }).click();
  await page.getByRole('button', { name: 'Reset', exact: true }).click();
  await page.getByText('nobody is signed in').waitFor();
  await page.getByText('No request yet').waitFor();
  assert.ok(await switched.isChecked());
  assert.deepEqual(complaints, []);

  // Who may send what.
  const token = await page.locator('meta[name=sandbox-token]').getAttribute('content');
  const port = new URL(base).port;
  for (const [status, path, headers] of [
    [200, '/sandbox/session', {}], [200, '/sandbox/session', { Host: `localhost:${port}` }], [200, '/', { Host: '[::1]:80' }],
    [403, '/sandbox/session', { Host: 'evil.example' }], [403, '/', { Host: `127.0.0.1.evil.example:${port}` }],
    [403, '/', { Host: `evil.example:${port}` }], [403, '/', { Host: '[::1].evil' }], [403, '/routing/v1/remote', { Origin: 'http://evil.example' }],
    [200, '/routing/v1/remote', { Host: 'evil.example' }], [403, '/sandbox/session', { Origin: base }],
    [200, '/sandbox/session', { Origin: base, 'X-Sandbox-Token': token }], [403, '/sandbox/session', { Origin: 'null', 'X-Sandbox-Token': token }],
    [403, '/sandbox/session', { 'Sec-Fetch-Site': 'cross-site' }], [403, '/sandbox/events', { 'Sec-Fetch-Site': 'same-origin' }],
  ]) {
    assert.equal((await request(path, { headers })).status, status, `${path} ${JSON.stringify(headers)}`);
  }

  // More streams than there may be: the rest of the platform goes on, and its end waits for none of them.
  const streams = [];
  for (let count = 0; count < 20; ++count) streams.push(await request('/sandbox/events', { keep: true }));
  assert.equal(streams.filter(({ status }) => status === 503).length, 5, 'the page has one of 16');
  assert.equal((await request('/sandbox/session')).status, 200);
  const before = Date.now();
  server.child.stdin.end();
  assert.equal((await server.ended).code, 0);
  assert.ok(Date.now() - before < 5000, 'the end took too long');
} finally {
  server.child.stdin.end();
  await browser.close();
}
