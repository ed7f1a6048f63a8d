// Drives Chromium over a pipe, by the protocol of its developer tools.
import {spawn} from 'node:child_process';
import {mkdtempSync, rmSync} from 'node:fs';
import {tmpdir} from 'node:os';
import {join} from 'node:path';

export class Chromium {
  #process;
  #profile = mkdtempSync(join(tmpdir(), 'report-chromium-'));
  #waiting = new Map();
  #listeners = [];
  #next = 1;
  #rest = '';

  constructor() {
    this.#process = spawn('chromium', [
      '--headless=new', '--no-sandbox', '--disable-gpu', '--remote-debugging-pipe', '--no-first-run',
      '--disable-background-networking', '--hide-scrollbars', '--force-color-profile=srgb',
      `--user-data-dir=${this.#profile}`, 'about:blank',
    ], {stdio: ['ignore', 'ignore', 'ignore', 'pipe', 'pipe']});
    this.#process.stdio[4].setEncoding('utf8');
    this.#process.stdio[4].on('data', (text) => this.#read(text));
    this.#process.on('error', (error) => this.#fail(error));
    this.#process.on('exit', () => this.#fail(new Error('Chromium has ended')));
  }

  #fail(error) {
    for (const {reject} of this.#waiting.values()) {
      reject(error);
    }
    this.#waiting.clear();
  }

  #read(text) {
    const messages = (this.#rest + text).split('\0');
    this.#rest = messages.pop();
    for (const message of messages.map((each) => JSON.parse(each))) {
      const waiting = this.#waiting.get(message.id);
      if (waiting) {
        this.#waiting.delete(message.id);
        if (message.error) {
          waiting.reject(new Error(`${waiting.method}: ${message.error.message}`));
        } else {
          waiting.resolve(message.result);
        }
      } else {
        this.#listeners.forEach((listener) => listener(message));
      }
    }
  }

  send(method, params = {}, sessionId = undefined) {
    const id = this.#next++;
    return new Promise((resolve, reject) => {
      this.#waiting.set(id, {resolve, reject, method});
      this.#process.stdio[3].write(JSON.stringify({id, method, params, sessionId}) + '\0');
    });
  }

  /** A new tab; events of the tab go to its `on`. */
  async open() {
    const {targetId} = await this.send('Target.createTarget', {url: 'about:blank'});
    const {sessionId} = await this.send('Target.attachToTarget', {targetId, flatten: true});
    const handlers = new Map();
    this.#listeners.push((message) => {
      if (message.sessionId === sessionId) {
        (handlers.get(message.method) || []).forEach((handler) => handler(message.params));
      }
    });
    return {
      send: (method, params) => this.send(method, params, sessionId),
      on: (method, handler) => handlers.set(method, [...(handlers.get(method) || []), handler]),
      once: (method) => new Promise((resolve) => {
        handlers.set(method, [...(handlers.get(method) || []), resolve]);
      }),
      /** The value of an expression in the page, which may be a promise. */
      evaluate: async (expression) => {
        const {result, exceptionDetails} = await this.send('Runtime.evaluate',
          {expression, awaitPromise: true, returnByValue: true}, sessionId);
        if (exceptionDetails) {
          throw new Error(exceptionDetails.exception?.description || exceptionDetails.text);
        }
        return result.value;
      },
      close: () => this.send('Target.closeTarget', {targetId}),
    };
  }

  async close() {
    const gone = new Promise((resolve) => { this.#process.once('exit', resolve); });
    await this.send('Browser.close').catch(() => {});
    await gone;
    rmSync(this.#profile, {recursive: true, force: true, maxRetries: 5});
  }
}
