// Shared helpers of the browser tests: synthetic photos, generation through the program, and a
// Chromium that sees the files on disk and either nothing else or the two CDNs the pages use
// (served locally), with what a user sees of the lightbox.
import { execFileSync } from 'node:child_process';
import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';
import { after, before, describe } from 'node:test';
import { fileURLToPath, pathToFileURL } from 'node:url';
import { chromium } from 'playwright-core';

const here = path.dirname(fileURLToPath(import.meta.url));
const jquery = fs.readFileSync(path.join(here, 'node_modules/jquery/jquery.min.js'));
export const outputRoot = process.env.ORVELLA_TEST_OUTPUT || path.join(here, 'output');
export const sourceDir = path.resolve(here, '../..');
export const pageUrl = (file) => pathToFileURL(file).href;

// A fresh empty folder under the test output.
export function freshDir(name) {
    const dir = path.join(outputRoot, name);
    fs.rmSync(dir, { recursive: true, force: true });
    fs.mkdirSync(dir, { recursive: true });
    return dir;
}

// Photos NAME.jpg (photo01, photo02... when given a count) in distinct colours, every third one
// portrait, made with vips.
export function makePhotos(dir, names) {
    fs.mkdirSync(dir, { recursive: true });
    if (typeof names === 'number') names = Array.from({ length: names }, (_, i) => `photo${String(i + 1).padStart(2, '0')}`);
    return names.map((name, i) => {
        const file = path.join(dir, `${name}.jpg`);
        const [w, h] = i % 3 === 2 ? [600, 800] : [800, 600];
        const colour = [(60 * i) % 256, (100 + 40 * i) % 256, (200 - 30 * i) % 256].join(' ');
        execFileSync('vips', ['black', file + '.v', String(w), String(h), '--bands', '3']);
        execFileSync('vips', ['linear', file + '.v', file, '1 1 1', colour, '--uchar']);
        fs.rmSync(file + '.v');
        return { name, file };
    });
}

// Runs `orvella generate KIND` with these settings, options and photos; returns the output folder.
export function generate(out, settings, photos, { kind = 'gallery', options = [] } = {}) {
    const sets = Object.entries(settings).flatMap(([name, value]) => ['--set', `${name}=${value}`]);
    execFileSync(process.env.ORVELLA_BINARY, ['generate', kind, '--out', out, ...sets, ...options,
        ...photos.map((p) => p.file)], { stdio: ['ignore', 'pipe', 'pipe'] });
    return out;
}

// A browser with a fresh profile; every request off the disk is answered locally or refused.
// Offline, every one is refused, the CDN's jQuery too.
async function launch(viewport, offline) {
    const profile = fs.mkdtempSync(path.join(os.tmpdir(), 'orvella-chromium-'));
    const context = await chromium.launchPersistentContext(profile, {
        executablePath: '/usr/bin/chromium', headless: true, viewport,
        args: ['--no-sandbox', '--disable-gpu', '--no-first-run', '--disable-background-networking'],
    });
    await context.route('**/*', (route) => {
        const url = new URL(route.request().url());
        if (url.protocol === 'file:' || url.protocol === 'data:') return route.continue();
        if (offline) return route.abort('internetdisconnected');
        if (url.hostname === 'ajax.googleapis.com' && url.pathname.endsWith('/jquery.min.js')) {
            return route.fulfill({ status: 200, contentType: 'application/javascript', body: jquery });
        }
        if (url.hostname.startsWith('fonts.')) return route.fulfill({ status: 200, body: '' });
        return route.abort();
    });
    context.closeAll = async () => {
        await context.close();
        fs.rmSync(profile, { recursive: true, force: true });
    };
    return context;
}

// Declares the tests of `body` twice: with no network at all (the pages' own script stands in for
// jQuery) and with jQuery answered from npm. `mode.browser` is the browser of the run.
export function bothWays(body, viewport = { width: 1100, height: 800 }) {
    for (const offline of [true, false]) {
        describe(offline ? 'without a network' : 'with jQuery from the CDN', () => {
            const mode = { offline };
            before(async () => { mode.browser = await launch(viewport, offline); });
            after(async () => mode.browser && mode.browser.closeAll());
            body(mode);
        });
    }
}

// Opens a page (with `hash` in its address) once its lightbox script is ready, unless it has
// none; script errors are collected in page.errors.
export async function open(context, file, { hash = '', lightbox = true } = {}) {
    const page = await context.newPage();
    page.errors = [];
    page.on('pageerror', (e) => page.errors.push(String(e)));
    await page.goto(pageUrl(file) + hash);
    if (lightbox) await page.waitForFunction(() => window.jQuery && typeof window.jQuery.fn.lightbox === 'function');
    return page;
}

// What the user sees of the lightbox: whether it is open, its buttons and its caption.
export const lightbox = (page) => page.evaluate(() => {
    const box = document.querySelector('.klOVlightbox');
    const shown = (sel) => !!box?.querySelector(sel) && getComputedStyle(box.querySelector(sel)).display !== 'none';
    return {
        open: !!box, blurred: document.body.classList.contains('blurred'),
        prev: shown('.klOVlightbox_nav_prev'), next: shown('.klOVlightbox_nav_next'),
        caption: shown('.klOVlightbox_caption') ? box.querySelector('.klOVlightbox_caption p').textContent : null,
    };
});

// Waits until the lightbox shows the big image that ends with `end`, fully loaded.
export const waitForPhoto = (page, end) => page.waitForFunction((e) => {
    const img = document.querySelector('.klOVlightbox img');
    return img && getComputedStyle(img).display !== 'none' && img.complete && img.naturalWidth > 0
        && (img.getAttribute('src') || '').endsWith(e);
}, end, { timeout: 10000 });

// The page file and fragment of the address bar: "myIndex2.html#photo=photo03.jpeg".
export const address = (page) => new URL(page.url()).pathname.replace(/^.*\//, '') + new URL(page.url()).hash;

// Once the page has loaded, waits for what its scripts put off until then (timers run in order).
export const settled = (page) => page.evaluate(() => new Promise((resolve) => setTimeout(resolve, 0)));

// A click on the element of a selector (".name"), a key press, or a horizontal swipe across the
// lightbox of so many pixels (negative: to the left).
export const act = (page, action) => {
    if (typeof action !== 'number') return action.startsWith('.') ? page.locator(action).click() : page.keyboard.press(action);
    return page.evaluate((d) => {
        const target = document.querySelector('.klOVlightbox');
        const touch = (x) => new Touch({ identifier: 1, target, clientX: x, clientY: 300 });
        const fire = (type, touches, changed) => target.dispatchEvent(new TouchEvent(type,
            { touches, changedTouches: changed, bubbles: true, cancelable: true }));
        fire('touchstart', [touch(500)], [touch(500)]);
        fire('touchend', [], [touch(500 + d)]);
    }, action);
};
