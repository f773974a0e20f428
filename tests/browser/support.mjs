// Shared helpers of the browser tests: synthetic photos, gallery generation and a Chromium
// that sees no network but the files on disk and the two CDNs the pages use (served locally),
// or nothing but the files on disk.
import { execFileSync } from 'node:child_process';
import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';
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

// Photos photo01.jpg... in distinct colours, every third one portrait, made with vips.
export function makePhotos(dir, count) {
    fs.mkdirSync(dir, { recursive: true });
    return Array.from({ length: count }, (_, i) => {
        const name = `photo${String(i + 1).padStart(2, '0')}`;
        const file = path.join(dir, `${name}.jpg`);
        const [w, h] = i % 3 === 2 ? [600, 800] : [800, 600];
        const colour = [(60 * i) % 256, (100 + 40 * i) % 256, (200 - 30 * i) % 256].join(' ');
        execFileSync('vips', ['black', file + '.v', String(w), String(h), '--bands', '3']);
        execFileSync('vips', ['linear', file + '.v', file, '1 1 1', colour, '--uchar']);
        fs.rmSync(file + '.v');
        return { name, file };
    });
}

// Runs `orvella generate KIND` (gallery unless told; the fourth argument is the kind or
// { kind, options }) with more options if given, and returns the output folder.
export function generate(out, settings, photos, how = {}) {
    const { kind = 'gallery', options = [] } = typeof how === 'string' ? { kind: how } : how;
    const sets = Object.entries(settings).flatMap(([name, value]) => ['--set', `${name}=${value}`]);
    execFileSync(process.env.ORVELLA_BINARY, ['generate', kind, '--out', out, ...sets, ...options,
        ...photos.map((p) => p.file)], { stdio: ['ignore', 'pipe', 'pipe'] });
    return out;
}

// A browser with a fresh profile; every request off the disk is answered locally or refused.
// Offline, every one is refused, the CDN's jQuery too.
export async function launch(viewport = { width: 1100, height: 800 }, { offline = false } = {}) {
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

// Opens a page once its lightbox script is ready; script errors are collected in page.errors.
export async function open(context, file) {
    const page = await context.newPage();
    page.errors = [];
    page.on('pageerror', (e) => page.errors.push(String(e)));
    await page.goto(pageUrl(file));
    await page.waitForFunction(() => window.jQuery && typeof window.jQuery.fn.lightbox === 'function');
    return page;
}
