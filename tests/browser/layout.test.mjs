// The layout of generated Photo Gallery pages: page links, grid columns, background pattern.
import assert from 'node:assert/strict';
import fs from 'node:fs';
import path from 'node:path';
import { after, before, describe, test } from 'node:test';
import { freshDir, generate, launch, makePhotos, open, outputRoot, pageUrl, sourceDir } from './support.mjs';

let browser;
let root;
let photos;

before(async () => {
    root = freshDir('layout');
    photos = makePhotos(path.join(root, 'photos'), 6);
    browser = await launch();
});

after(async () => {
    if (browser) await browser.close();
});

const thumbnailsOf = (page) => page.$$eval('.klOVimg a', (as) => as.map((a) => a.getAttribute('href')));

describe('gallery pages', () => {
    test('the navigation bar reaches every page, and every photo is on one of them', async () => {
        const out = generate(path.join(root, 'paged'), {
            pubPhotoGalleryModel: 0, ifNumberOfColumns: 2, ifNumberOfRows: 1,
        },
            photos.slice(0, 5).map((p) => p.file));
        const pages = ['myIndex.html', 'myIndex2.html', 'myIndex3.html'];
        for (const name of pages) assert.ok(fs.existsSync(path.join(out, name)), name);
        assert.equal(fs.existsSync(path.join(out, 'myIndex4.html')), false);

        // index.html sends the browser to the first page.
        const { page, errors } = await open(browser.context, path.join(out, 'index.html'));
        assert.ok(page.url().endsWith('/myIndex.html'), page.url());

        const seen = [];
        for (const [i, name] of pages.entries()) {
            const links = page.locator('#navBar a');
            assert.deepEqual((await links.allTextContents()).map((t) => t.trim()), ['1', '2', '3']);
            await links.nth(i).click();
            await page.waitForURL((u) => u.href.endsWith(`/${name}`));
            await page.waitForFunction(() => window.jQuery && jQuery.fn.lightbox);
            seen.push(...await thumbnailsOf(page));
        }
        assert.deepEqual(seen, photos.slice(0, 5).map((p) => `KLimages_b/${p.name}.jpeg`));
        await page.screenshot({ path: path.join(outputRoot, 'gallery-table.png'), fullPage: true });

        // The lightbox of a page keeps to that page's photos.
        await page.locator('.klOVimg a').first().click();
        await page.waitForSelector('.klOVlightbox img[src$="photo05.jpeg"]');
        const nav = await page.$$eval('.klOVlightbox_nav', (els) => els.map((e) => getComputedStyle(e).display));
        assert.deepEqual(nav, ['none', 'none']);
        assert.deepEqual(errors, []);
        await page.close();
    });

    test('the grid model has 1 to 6 columns as the window widens', async () => {
        const out = generate(path.join(root, 'grid'), {
            pubPhotoGalleryModel: 2, ifNumberOfColumns: 6, ifNumberOfRows: 2,
        }, photos.map((p) => p.file));
        const { page, errors } = await open(browser.context, path.join(out, 'myIndex.html'));
        const expected = { 390: 1, 500: 2, 800: 3, 1100: 4, 1400: 5, 1700: 6 };
        const found = {};
        for (const width of Object.keys(expected).map(Number)) {
            await page.setViewportSize({ width, height: 900 });
            found[width] = await page.$eval('.klOVimages',
                (el) => getComputedStyle(el).gridTemplateColumns.trim().split(/\s+/).length);
        }
        assert.deepEqual(found, expected);
        await page.setViewportSize({ width: 1400, height: 900 });
        await page.screenshot({ path: path.join(outputRoot, 'gallery-grid.png'), fullPage: true });
        assert.deepEqual(errors, []);
        await page.close();
    });

    for (const model of [0, 2]) {
        test(`the background pattern shows when set (model ${model})`, async () => {
            const pattern = path.join(sourceDir, 'resources/patterns/dots.png');
            const out = generate(path.join(root, `pattern${model}`), {
                pubPhotoGalleryModel: model, cbTbShowPatternImage: 1, tfTbPatternPath: pattern,
            }, photos.slice(0, 3).map((p) => p.file));
            const copied = path.join(out, 'KLovPatterns', 'dots.png');
            assert.ok(fs.existsSync(copied));
            assert.deepEqual(fs.readFileSync(copied), fs.readFileSync(pattern));
            const { page } = await open(browser.context, path.join(out, 'myIndex.html'));
            const backgrounds = await page.$eval('.KLovTableBased-container', (el) =>
                ['::before', '::after'].map((p) => getComputedStyle(el, p).backgroundImage));
            const expected = `url("${pageUrl(path.join(out, 'KLovPatterns', 'dots.png'))}")`;
            assert.ok(backgrounds.includes(expected), `${backgrounds} lacks ${expected}`);
            // The pattern file is really shown: it loads from where the stylesheet points.
            const loads = await page.evaluate((u) => new Promise((resolve) => {
                const img = new Image();
                img.onload = () => resolve(img.naturalWidth > 0);
                img.onerror = () => resolve(false);
                img.src = u;
            }), expected.slice(5, -2));
            assert.equal(loads, true);
            await page.close();
        });
    }

    test('without a pattern no pseudo-element has a background image', async () => {
        const out = generate(path.join(root, 'nopattern'), { cbTbShowPatternImage: 0 },
            photos.slice(0, 2).map((p) => p.file));
        const { page } = await open(browser.context, path.join(out, 'myIndex.html'));
        const backgrounds = await page.$eval('.KLovTableBased-container', (el) =>
            ['::before', '::after'].map((p) => getComputedStyle(el, p).backgroundImage));
        assert.deepEqual(backgrounds, ['none', 'none']);
        await page.close();
    });
});
