// Screenshots of the demo sites (`make demo`) for the README: each kind on a laptop (1440 x 900)
// and a phone (390 x 844 at 3x), and the lightbox of the gallery and the grid open on its third
// photo. Offline, as a visitor with no network would see them.
//   node docs/screenshots.mjs DEMO_FOLDER OUTPUT_FOLDER
import fs from 'node:fs';
import path from 'node:path';
import { chromium } from '../tests/browser/node_modules/playwright-core/index.mjs';

const [demo = 'demo', out = 'docs/screenshots'] = process.argv.slice(2);
const screens = [
    { name: 'laptop', viewport: { width: 1440, height: 900 }, deviceScaleFactor: 1 },
    { name: 'phone', viewport: { width: 390, height: 844 }, deviceScaleFactor: 3, isMobile: true, hasTouch: true },
];
// The first page each kind wrote, as the demo's index links it.
const index = fs.readFileSync(path.join(demo, 'index.html'), 'utf8');
const pages = Object.fromEntries(['gallery', 'slideshow', 'grid'].map((kind) => {
    const link = index.match(new RegExp(`href="(${kind}/[^"]+)"`));
    if (!link) throw new Error(`${demo}/index.html links no ${kind} page`);
    return [kind, path.resolve(demo, link[1])];
}));
const lightboxOf = { gallery: '.klOVimg a', grid: '.klovlGrid a' };

fs.mkdirSync(out, { recursive: true });
const browser = await chromium.launch({ executablePath: '/usr/bin/chromium', args: ['--no-sandbox'] });
try {
    for (const { name, ...screen } of screens) {
        const context = await browser.newContext(screen);
        await context.route('**/*', (r) => (r.request().url().startsWith('file:') ? r.continue() : r.abort()));
        for (const [kind, file] of Object.entries(pages)) {
            const page = await context.newPage();
            await page.goto(`file://${file}`);
            await page.waitForFunction(() => [...document.images].every((i) => i.complete));
            await page.waitForTimeout(500);  // the scripts' layout after the images
            const shot = (what) => page.screenshot({ path: path.join(out, `${what}-${name}.jpeg`), type: 'jpeg', quality: 85 });
            await shot(kind);
            if (lightboxOf[kind]) {
                await page.locator(lightboxOf[kind]).nth(2).click();
                await page.waitForFunction(() => {
                    const img = document.querySelector('.klOVlightbox img');
                    return img && img.complete && img.naturalWidth > 0 && getComputedStyle(img).display !== 'none';
                });
                await page.waitForTimeout(1000);  // the larger image, where the screen asks for it
                await shot(`${kind}-lightbox`);
            }
            await page.close();
        }
        await context.close();
    }
} finally {
    await browser.close();
}
console.log(out);
