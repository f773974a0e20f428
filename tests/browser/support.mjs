// Shared helpers of the browser tests: synthetic photos, gallery generation and a Chromium
// that sees no network but the files on disk and the two CDNs the pages use (served locally).
import { execFileSync } from 'node:child_process';
import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';
import { fileURLToPath, pathToFileURL } from 'node:url';
import { chromium } from 'playwright-core';

const here = path.dirname(fileURLToPath(import.meta.url));
const jquery = fs.readFileSync(path.join(here, 'node_modules/jquery/jquery.min.js'));

export const binary = process.env.ORVELLA_BINARY;
export const outputRoot = process.env.ORVELLA_TEST_OUTPUT || path.join(here, 'output');
export const sourceDir = path.resolve(here, '../..');

// A fresh empty folder under the test output.
export function freshDir(name) {
    const dir = path.join(outputRoot, name);
    fs.rmSync(dir, { recursive: true, force: true });
    fs.mkdirSync(dir, { recursive: true });
    return dir;
}

// Photos with distinct colours and sizes (landscape and portrait), made with vips.
const PALETTE = [
    [200, 60, 40], [40, 140, 200], [60, 170, 80], [220, 170, 40], [140, 70, 180],
    [30, 160, 160], [230, 110, 150], [100, 100, 110],
];
export function makePhotos(dir, count) {
    fs.mkdirSync(dir, { recursive: true });
    const waves = {};
    const photos = [];
    for (let i = 0; i < count; i++) {
        const [w, h] = i % 3 === 2 ? [600, 800] : [800, 600];
        const key = `${w}x${h}`;
        if (!waves[key]) {
            waves[key] = path.join(dir, `waves-${key}.v`);
            execFileSync('vips', ['sines', waves[key], String(w), String(h), '--hfreq', '1.5', '--vfreq', '1']);
        }
        // sines gives -1..1: a colour with a soft wave of light over it.
        const [r, g, b] = PALETTE[i % PALETTE.length];
        const name = `photo${String(i + 1).padStart(2, '0')}`;
        const file = path.join(dir, `${name}.jpg`);
        execFileSync('vips', ['linear', waves[key], file, '35 35 35', `${r} ${g} ${b}`, '--uchar']);
        photos.push({ name, file });
    }
    for (const v of Object.values(waves)) fs.rmSync(v);
    return photos;
}

// Runs `orvella generate gallery` and returns the output folder.
export function generate(out, settings, photoFiles) {
    const args = ['generate', 'gallery', '--out', out];
    for (const [name, value] of Object.entries(settings)) args.push('--set', `${name}=${value}`);
    execFileSync(binary, [...args, ...photoFiles], { stdio: ['ignore', 'pipe', 'pipe'] });
    return out;
}

export function pageUrl(file) {
    return pathToFileURL(file).href;
}

const CHROMIUM_ARGS = ['--headless', '--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
    '--disable-background-networking', '--disable-component-update', '--disable-sync'];

// A browser context with a fresh profile; every request off the disk is answered locally or refused.
export async function launch(viewport = { width: 1100, height: 800 }) {
    const profile = fs.mkdtempSync(path.join(os.tmpdir(), 'orvella-chromium-'));
    const context = await chromium.launchPersistentContext(profile, {
        executablePath: '/usr/bin/chromium', headless: true, args: CHROMIUM_ARGS, viewport,
    });
    await context.route('**/*', (route) => {
        const url = new URL(route.request().url());
        if (url.protocol === 'file:' || url.protocol === 'data:') return route.continue();
        if (url.hostname === 'ajax.googleapis.com' && url.pathname.endsWith('/jquery.min.js')) {
            return route.fulfill({ status: 200, contentType: 'application/javascript', body: jquery });
        }
        if (url.hostname === 'fonts.googleapis.com' || url.hostname === 'fonts.gstatic.com') {
            return route.fulfill({ status: 200, contentType: 'text/css', body: '' });
        }
        return route.abort();
    });
    const close = async () => {
        await context.close();
        fs.rmSync(profile, { recursive: true, force: true });
    };
    return { context, close };
}

// Opens a page and collects its script errors.
export async function open(context, file) {
    const page = await context.newPage();
    const errors = [];
    page.on('pageerror', (e) => errors.push(String(e)));
    await page.goto(pageUrl(file));
    await page.waitForFunction(() => window.jQuery && typeof window.jQuery.fn.lightbox === 'function');
    return { page, errors };
}

// State of the lightbox as the user sees it.
export function lightboxState(page) {
    return page.evaluate(() => {
        const box = document.querySelector('.klOVlightbox');
        const visible = (el) => !!el && getComputedStyle(el).display !== 'none';
        const img = box && box.querySelector('img');
        const caption = box && box.querySelector('.klOVlightbox_caption');
        return {
            open: !!box,
            blurred: document.body.classList.contains('blurred'),
            src: img ? img.getAttribute('src') : null,
            imgVisible: visible(img),
            imgBox: img && visible(img) ? img.getBoundingClientRect().toJSON() : null,
            loadingVisible: visible(box && box.querySelector('.klOVlightbox_loading')),
            prev: visible(box && box.querySelector('.klOVlightbox_nav_prev')),
            next: visible(box && box.querySelector('.klOVlightbox_nav_next')),
            close: visible(box && box.querySelector('.klOVlightbox_close')),
            caption: visible(caption) ? caption.querySelector('p').textContent : null,
        };
    });
}

// Waits until the lightbox shows the big image of `name` fully loaded.
export async function waitForPhoto(page, name) {
    await page.waitForFunction((n) => {
        const img = document.querySelector('.klOVlightbox img');
        return img && getComputedStyle(img).display !== 'none' && img.complete && img.naturalWidth > 0
            && (img.getAttribute('src') || '').endsWith(`KLimages_b/${n}.jpeg`);
    }, name, { timeout: 10000 });
}
