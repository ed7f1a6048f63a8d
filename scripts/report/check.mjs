// node check.mjs AXE.js PICTURES REPORT.html RUN.json
//
// Opens a report in headless Chromium: light, dark, narrow and on paper. Fails on errors in the
// console, requests to anywhere, figures that are not those of the run's JSON, and whatever axe-core
// finds. Leaves pictures, and tells how long the report takes to open.
import {readFileSync, statSync, writeFileSync} from 'node:fs';
import {join} from 'node:path';
import {fileURLToPath, pathToFileURL} from 'node:url';
import {Chromium} from './chromium.mjs';

const [axeFile, pictures, report, json] = process.argv.slice(2);
const address = pathToFileURL(report).href;
const axe = readFileSync(axeFile, 'utf8');
const checks = readFileSync(fileURLToPath(new URL('page-checks.js', import.meta.url)), 'utf8')
  .replace(/^\/\/.*\n/gm, '').trim();
const run = readFileSync(json, 'utf8');

const LOOKS = [
  {name: 'light', scheme: 'light', width: 1200},
  {name: 'dark', scheme: 'dark', width: 1200},
  {name: 'narrow', scheme: 'light', width: 390},
];
const LIMITS = {bytes: 3e6, milliseconds: 2000};
const failures = [];

/** Opens the report; gives the time from asking for it to its charts being painted. */
async function load(tab) {
  const loaded = tab.once('Page.loadEventFired');
  const begin = performance.now();
  await tab.send('Page.navigate', {url: address});
  await loaded;
  await tab.evaluate('new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done)))');
  return performance.now() - begin;
}

async function watch(tab, name) {
  tab.on('Runtime.exceptionThrown', ({exceptionDetails}) => {
    failures.push(`${name}: ${exceptionDetails.exception?.description || exceptionDetails.text}`);
  });
  tab.on('Runtime.consoleAPICalled', ({type, args}) => {
    failures.push(`${name}: console.${type}: ${args.map((arg) => arg.value).join(' ')}`);
  });
  tab.on('Log.entryAdded', ({entry}) => failures.push(`${name}: ${entry.text}`));
  tab.on('Network.requestWillBeSent', ({request}) => {
    // Pictures of the browser's own, in its boxes for dates, come as data.
    if (request.url !== address && !/^(about|data):/.test(request.url)) {
      failures.push(`${name}: asks for ${request.url}`);
    }
  });
  for (const domain of ['Page', 'Runtime', 'Log', 'Network']) {
    await tab.send(`${domain}.enable`);
  }
}

async function checkKeyboard(tab, name) {
  const press = async (key, code) => {
    for (const type of ['keyDown', 'keyUp']) {
      await tab.send('Input.dispatchKeyEvent',
        {type, key, code: key, windowsVirtualKeyCode: code, text: key === 'Enter' ? '\r' : undefined});
    }
  };
  await press('Tab', 9);
  if (await tab.evaluate('document.activeElement.className') !== 'skip') {
    failures.push(`${name}: the first stop of the keyboard is not the link to the results`);
  }
  await press('Enter', 13);
  if (await tab.evaluate('document.activeElement.id') !== 'main') {
    failures.push(`${name}: the link to the results does not lead there`);
  }
}

async function checkAccess(tab, name) {
  const found = await tab.evaluate(`${axe};
    axe.run(document, {resultTypes: ['violations']}).then(({violations, passes}) => ({
      passes: passes.length,
      violations: violations.map(({id, help, nodes}) => ({id, help, where: nodes.slice(0, 3).map((node) =>
        node.html.slice(0, 160) + ' ' + node.any.concat(node.all, node.none).map((check) => check.message).join('; '))})),
    }))`);
  for (const {id, help, where} of found.violations) {
    failures.push(`${name}: axe: ${id}: ${help}\n    ${where.join('\n    ')}`);
  }
  return found.passes;
}

async function picture(tab, name) {
  const {cssContentSize: {width, height}} = await tab.send('Page.getLayoutMetrics');
  const {data} = await tab.send('Page.captureScreenshot',
    {captureBeyondViewport: true, clip: {x: 0, y: 0, width, height: Math.min(height, 12000), scale: 1}});
  writeFileSync(join(pictures, `${name}.png`), Buffer.from(data, 'base64'));
  if (name === 'light') {  // what the README shows
    const top = await tab.send('Page.captureScreenshot',
      {captureBeyondViewport: true, clip: {x: 0, y: 0, width, height: 1560, scale: 0.75}});
    writeFileSync(join(pictures, 'top.png'), Buffer.from(top.data, 'base64'));
  }
}

async function checkLook(chromium, {name, scheme, width}) {
  const tab = await chromium.open();
  await watch(tab, name);
  await tab.send('Emulation.setDeviceMetricsOverride',
    {width, height: 900, deviceScaleFactor: 1, mobile: width < 600});
  await tab.send('Emulation.setEmulatedMedia',
    {features: [{name: 'prefers-color-scheme', value: scheme}]});
  const milliseconds = await load(tab);
  await picture(tab, name);
  await checkKeyboard(tab, name);
  await tab.evaluate("document.querySelectorAll('details').forEach((each) => { each.open = true; })");
  const {wrong, figures} = await tab.evaluate(`(${checks})(${run})`);
  failures.push(...wrong.map((line) => `${name}: ${line}`));
  if (figures < 100) {
    failures.push(`${name}: only ${figures} figures were found to compare`);
  }
  const rules = await checkAccess(tab, name);
  console.log(`${name}: opened in ${milliseconds.toFixed(0)} ms, ${figures} figures compared, ` +
    `${rules} rules of axe-core kept`);
  if (milliseconds > LIMITS.milliseconds) {
    failures.push(`${name}: expected to open within ${LIMITS.milliseconds} ms`);
  }
  await tab.close();
}

async function print(chromium) {
  const tab = await chromium.open();
  await watch(tab, 'paper');
  // As somebody prints who works in dark colours.
  await tab.send('Emulation.setEmulatedMedia',
    {features: [{name: 'prefers-color-scheme', value: 'dark'}]});
  await load(tab);
  const {data} = await tab.send('Page.printToPDF', {preferCSSPageSize: true, paperWidth: 8.27,
    paperHeight: 11.69, printBackground: true});
  writeFileSync(join(pictures, 'paper.pdf'), Buffer.from(data, 'base64'));
  await tab.close();
}

const chromium = new Chromium();
try {
  const warm = await chromium.open();  // the time of the browser's own start is not the report's
  await warm.close();
  for (const look of LOOKS) {
    await checkLook(chromium, look);
  }
  await print(chromium);
} finally {
  await chromium.close();
}
const {size} = statSync(report);
console.log(`size: ${size} bytes`);
if (size > LIMITS.bytes) {
  failures.push(`expected at most ${LIMITS.bytes} bytes, found ${size}`);
}
for (const failure of failures) {
  console.error(failure);
}
process.exitCode = failures.length > 0 ? 1 : 0;
