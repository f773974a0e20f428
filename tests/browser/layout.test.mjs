// The layout of generated Photo Gallery pages: page links, grid columns, background pattern.
import assert from 'node:assert/strict';
import fs from 'node:fs';
import path from 'node:path';
import { after, before, test } from 'node:test';
import { freshDir, generate, launch, makePhotos, open, outputRoot, pageUrl, sourceDir } from './support.mjs';

let browser;
let root;
let photos;

before(async () => {
    root = freshDir('layout');
    photos = makePhotos(path.join(root, 'photos'), 6);
    browser = await launch();
});

after(async () => browser && browser.closeAll());

const patterns = (page) => page.$eval('.KLovTableBased-container',
    (el) => ['::before', '::after'].map((p) => getComputedStyle(el, p).backgroundImage));

test('the navigation bar reaches every page; on the last page the lightbox leads only back', async () => {
    const out = generate(path.join(root, 'paged'), {
        pubPhotoGalleryModel: 0, ifNumberOfColumns: 2, ifNumberOfRows: 1, cbTbShowPatternImage: 0,
    }, photos.slice(0, 5));
    const page = await open(browser, path.join(out, 'index.html'));
    assert.ok(page.url().endsWith('/myIndex.html'), page.url());  // sent to the first page
    assert.deepEqual(await patterns(page), ['none', 'none']);
    const seen = [];
    for (const [i, name] of ['myIndex.html', 'myIndex2.html', 'myIndex3.html'].entries()) {
        const links = page.locator('#navBar a');
        assert.deepEqual((await links.allTextContents()).map((t) => t.trim()), ['1', '2', '3']);
        await links.nth(i).click();
        await page.waitForURL((u) => u.href.endsWith(`/${name}`));
        await page.waitForFunction(() => window.jQuery && jQuery.fn.lightbox);
        seen.push(...await page.$$eval('.klOVimg a', (as) => as.map((a) => a.getAttribute('href'))));
    }
    assert.deepEqual(seen, photos.slice(0, 5).map((p) => `KLimages_b/${p.name}.jpeg`));
    await page.screenshot({ path: path.join(outputRoot, 'gallery-table.png'), fullPage: true });
    await page.locator('.klOVimg a').first().click();
    await page.waitForSelector('.klOVlightbox img[src$="photo05.jpeg"]');
    const nav = await page.$$eval('.klOVlightbox_nav', (els) => els.map((e) => getComputedStyle(e).display));
    assert.deepEqual(nav.map((d) => d !== 'none'), [true, false]);  // back to page 2; no page after
    assert.deepEqual(page.errors, []);
});

test('the grid model has 1 to 6 columns as the window widens', async () => {
    const out = generate(path.join(root, 'grid'), {
        pubPhotoGalleryModel: 2, ifNumberOfColumns: 6, ifNumberOfRows: 2,
    }, photos);
    const page = await open(browser, path.join(out, 'myIndex.html'));
    const expected = { 390: 1, 500: 2, 800: 3, 1100: 4, 1400: 5, 1700: 6 };
    const found = {};
    for (const width of Object.keys(expected).map(Number)) {
        await page.setViewportSize({ width, height: 900 });
        found[width] = await page.$eval('.klOVimages',
            (el) => getComputedStyle(el).gridTemplateColumns.trim().split(/\s+/).length);
    }
    assert.deepEqual(found, expected);
    await page.screenshot({ path: path.join(outputRoot, 'gallery-grid.png'), fullPage: true });
    assert.deepEqual(page.errors, []);
});

for (const model of [0, 2]) {
    test(`the background pattern shows when set (model ${model})`, async () => {
        const pattern = path.join(sourceDir, 'resources/patterns/dots.png');
        const out = generate(path.join(root, `pattern${model}`), {
            pubPhotoGalleryModel: model, cbTbShowPatternImage: 1, tfTbPatternPath: pattern,
        }, photos.slice(0, 3));
        const copied = path.join(out, 'KLovPatterns', 'dots.png');
        assert.deepEqual(fs.readFileSync(copied), fs.readFileSync(pattern));
        const page = await open(browser, path.join(out, 'myIndex.html'));
        const expected = `url("${pageUrl(copied)}")`;
        assert.ok((await patterns(page)).includes(expected), `${await patterns(page)} lacks ${expected}`);
    });
}
