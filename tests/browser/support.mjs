// Shared helpers of the browser tests: photos, generation through the program, and a Chromium
// that sees the files on disk and either nothing else or the two CDNs the pages use (served here).
import assert from 'node:assert/strict';
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
export const pageUrl = (file) => pathToFileURL(file).href;

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
// Offline, every one is refused, the CDN's jQuery too, and kept in context.away.
export async function launch(viewport, offline, screen = {}) {
    const profile = fs.mkdtempSync(path.join(os.tmpdir(), 'orvella-chromium-'));
    const context = await chromium.launchPersistentContext(profile, {
        executablePath: '/usr/bin/chromium', headless: true, viewport, ...screen,
        args: ['--no-sandbox', '--disable-gpu', '--no-first-run', '--disable-background-networking'],
    });
    context.away = [];
    await context.route('**/*', (route) => {
        const url = new URL(route.request().url());
        if (url.protocol === 'file:' || url.protocol === 'data:') return route.continue();
        if (offline) {
            context.away.push(url.href);
            return route.abort('internetdisconnected');
        }
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

// The screens the pages are measured on: a laptop at 1x and 2x, a phone at 3x.
export const SCREENS = [
    { name: 'laptop', viewport: { width: 1440, height: 900 }, deviceScaleFactor: 1 },
    { name: 'laptop 2x', viewport: { width: 1440, height: 900 }, deviceScaleFactor: 2 },
    { name: 'phone 3x', viewport: { width: 390, height: 844 }, deviceScaleFactor: 3, isMobile: true, hasTouch: true },
];

// Declares the tests of `body` once in a browser of each screen; `mode.browser` is the browser of the run.
function inBrowsers(screens, body) {
    for (const screen of screens) {
        describe(screen.name, () => {
            const { name, viewport, offline, ...rest } = screen;
            const mode = { screen, offline, phone: viewport.width < 600 };
            before(async () => { mode.browser = await launch(viewport, offline, rest); });
            after(async () => mode.browser && mode.browser.closeAll());
            body(mode);
        });
    }
}

// Twice: with no network at all (the pages' own script stands in for jQuery) and with jQuery
// answered from npm.
export const bothWays = (body, viewport = { width: 1100, height: 800 }) => inBrowsers([
    { name: 'without a network', viewport, offline: true },
    { name: 'with jQuery from the CDN', viewport, offline: false }], body);

export const onScreens = (body) => inBrowsers(SCREENS.map((screen) => ({ ...screen, offline: true })), body);

// The lowest WCAG contrast between the text of an element (a selector's first, or a locator) and
// any pixel behind it: a screenshot of the text's box with the text made transparent.
export async function contrast(page, element) {
    if (typeof element === 'string') element = page.locator(element).first();
    const [colour, clip] = await element.evaluate((el) => {
        const range = document.createRange();
        range.selectNodeContents(el);
        const { x, y, width, height } = range.getBoundingClientRect();
        const all = [el, ...el.querySelectorAll('*')];
        const text = all.find((e) => [...e.childNodes].some((n) => n.nodeType === 3 && n.textContent.trim())) || el;
        const colour = getComputedStyle(text).color;
        for (const e of all) Object.assign(e.style, { color: 'transparent', textShadow: 'none' });
        return [colour, { x, y, width, height }];
    });
    const png = (await page.screenshot({ clip, scale: 'css' })).toString('base64');
    return page.evaluate(async ([colour, png]) => {
        const luminance = (rgb) => rgb.map((v) => v / 255).map((v) => (v <= 0.03928 ? v / 12.92 : ((v + 0.055) / 1.055) ** 2.4))
            .reduce((sum, v, i) => sum + v * [0.2126, 0.7152, 0.0722][i], 0);
        const image = await createImageBitmap(await (await fetch(`data:image/png;base64,${png}`)).blob());
        const context = new OffscreenCanvas(image.width, image.height).getContext('2d');
        context.drawImage(image, 0, 0);
        const pixels = context.getImageData(0, 0, image.width, image.height).data;
        const text = luminance(colour.match(/\d+/g).slice(0, 3).map(Number));
        let lowest = Infinity;
        for (let i = 0; i < pixels.length; i += 4) {
            const l = luminance([pixels[i], pixels[i + 1], pixels[i + 2]]);
            lowest = Math.min(lowest, (Math.max(l, text) + 0.05) / (Math.min(l, text) + 0.05));
        }
        return lowest;
    }, [colour, png]);
}

// Opens a page once its lightbox script is ready, unless it has none. page.done() checks that the
// page met no script error and closes it (or calls `closing`).
export async function open(context, file, { lightbox = true, closing } = {}) {
    const page = await context.newPage();
    page.errors = [];
    page.on('pageerror', (e) => page.errors.push(String(e)));
    page.done = async () => {
        assert.deepEqual(page.errors, []);
        await (closing ? closing() : page.close());
    };
    await page.goto(pageUrl(file));
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

// Waits until the lightbox shows the big image that ends with `end` (or its larger one, in the
// folder beside with "2x" added: KLimages_b2x/), fully loaded.
export const waitForPhoto = (page, end) => page.waitForFunction((e) => {
    const img = document.querySelector('.klOVlightbox img');
    return img && getComputedStyle(img).display !== 'none' && img.complete && img.naturalWidth > 0
        && (img.getAttribute('src') || '').replace(/_b2x\//, '_b/').endsWith(e);
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

// Opens a page on a screen of onScreens once its images have loaded, and checks that none of
// `images` is drawn more than 6 % off its photo's shape (unless cut to fit by object-fit).
export async function openLoaded(mode, file, images) {
    const page = await open(mode.browser, file);
    await page.waitForFunction(() => [...document.images].every((i) => i.complete));
    await settled(page);
    const distorted = await page.$$eval(images, (imgs) => imgs.map((img) => {
        const r = img.getBoundingClientRect();
        const fit = getComputedStyle(img).objectFit;
        const off = Math.abs((r.width / r.height) / (img.naturalWidth / img.naturalHeight) - 1);
        return { src: img.getAttribute('src'), off, fit };
    }).filter((d) => d.off > 0.06 && d.fit !== 'cover' && d.fit !== 'contain'));
    assert.deepEqual(distorted, []);
    return page;
}

// Opens the lightbox from `link` to the big image `big` (of a photo `width` pixels wide) and checks
// it takes the screen with the image pixels the screen has (up to 1.5 and the photo's own), three
// buttons of at least 28 px at full opacity, and a caption of at least 14 px at a contrast of 4.5:1.
export async function expectLightbox(page, mode, { link, big, width, counter }) {
    await page.locator(link).click();
    await waitForPhoto(page, big);
    await page.waitForFunction(([need, own]) => {
        const img = document.querySelector('.klOVlightbox img');
        return img.naturalWidth >= Math.min(need * img.clientWidth, own) - 1;
    }, [Math.min(1.5, mode.screen.deviceScaleFactor), width], { timeout: 10000 });
    const box = await page.evaluate(() => {
        const lightbox = document.querySelector('.klOVlightbox');
        const r = lightbox.querySelector('img').getBoundingClientRect();
        const caption = lightbox.querySelector('.klOVlightbox_caption p');
        return {
            width: r.width, height: r.height, window: { width: innerWidth, height: innerHeight },
            buttons: [...lightbox.querySelectorAll('.klOVlightbox_button')]
                .filter((b) => getComputedStyle(b).display !== 'none')
                .map((b) => ({ size: Math.min(b.offsetWidth, b.offsetHeight), opacity: getComputedStyle(b).opacity })),
            counter: lightbox.querySelector('.klOVlightbox_counter')?.textContent,
            captionFont: caption && getComputedStyle(caption.parentNode).display !== 'none'
                ? parseFloat(getComputedStyle(caption).fontSize) : null,
        };
    });
    assert.equal(box.counter, counter);
    if (mode.phone) assert.ok(box.width >= 0.85 * box.window.width, JSON.stringify(box));
    else assert.ok(box.width >= 0.8 * box.window.width || box.height >= 0.8 * box.window.height, JSON.stringify(box));
    assert.equal(box.buttons.length, 3);
    for (const b of box.buttons) assert.ok(b.size >= 28 && b.opacity === '1', JSON.stringify(b));
    assert.ok(box.captionFont >= 14, `caption ${box.captionFont}px`);
    const ratio = await contrast(page, '.klOVlightbox_caption');
    assert.ok(ratio >= 4.5, `caption contrast ${ratio}`);
}
