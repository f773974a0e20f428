// File names that need percent-encoding in links: every thumbnail shows and every big image
// behind a link loads, in Chromium; the lightbox's deep link to each photo opens that photo.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import fs from 'node:fs';
import path from 'node:path';
import { after, before, test } from 'node:test';
import { freshDir, generate, launch, open, pageUrl } from './support.mjs';

const NAMES = ['a#b', 'what?', '100%', 'two words', 'semi;colon', 'Ünïcødé', 'amp&er', 'plain-name_1'];
let browser;
let pageFile;

before(async () => {
    const root = freshDir('names');
    const dir = path.join(root, 'photos');
    fs.mkdirSync(dir, { recursive: true });
    const photos = NAMES.map((name, i) => {
        const file = path.join(dir, `${name}.jpg`);
        execFileSync('vips', ['black', path.join(dir, 'p.v'), '300', '200', '--bands', '3']);
        execFileSync('vips', ['linear', path.join(dir, 'p.v'), file, '1 1 1', `${30 * i} 120 200`, '--uchar']);
        return { name, file };
    });
    pageFile = path.join(generate(path.join(root, 'site'), { ifNumberOfColumns: 4, ifNumberOfRows: 3 }, photos),
        'myIndex.html');
    browser = await launch();
});

after(async () => browser && browser.closeAll());

test('every thumbnail and big image of an odd file name loads', async () => {
    const page = await open(browser, pageFile);
    await page.waitForFunction(() => [...document.images].every((img) => img.complete));
    const result = await page.evaluate(async () => {
        const thumbs = [...document.querySelectorAll('.klOVimg img')].map((img) => ({
            alt: img.alt, ok: img.naturalWidth > 0,
        }));
        const bigs = await Promise.all([...document.querySelectorAll('.klOVimg a')].map((a) =>
            new Promise((resolve) => {
                const img = new Image();
                img.onload = () => resolve({ title: a.title, ok: img.naturalWidth > 0 });
                img.onerror = () => resolve({ title: a.title, ok: false });
                img.src = a.href;
            })));
        return { thumbs, bigs };
    });
    assert.deepEqual(result.thumbs.map((t) => t.alt).sort(), [...NAMES].sort());
    for (const t of result.thumbs) assert.ok(t.ok, `thumbnail of ${t.alt}`);
    assert.equal(result.bigs.length, NAMES.length);
    for (const b of result.bigs) assert.ok(b.ok, `big image of ${b.title}`);
    assert.deepEqual(page.errors, []);
    await page.close();
});

test('the deep link of every odd file name names it and opens it again', async () => {
    const page = await open(browser, pageFile);
    const anchors = await page.$$eval('.klOVimg a', (as) => as.map((a) => a.getAttribute('href')));
    const shown = () => page.evaluate(() => document.querySelector('.klOVlightbox img')?.getAttribute('src'));
    const links = [];
    for (const [i, href] of anchors.entries()) {
        await page.locator('.klOVimg a').nth(i).click();
        await page.waitForFunction((h) => document.querySelector('.klOVlightbox img')?.getAttribute('src') === h, href);
        const hash = new URL(page.url()).hash;
        assert.ok(hash.startsWith('#photo='), hash);
        const name = decodeURIComponent(hash.slice('#photo='.length));
        assert.equal(name, decodeURIComponent(href.replace(/^.*\//, '')), 'the fragment names the big image');
        assert.ok(NAMES.includes(name.replace(/\.jpeg$/, '')), name);
        links.push([page.url(), href]);
        await page.keyboard.press('Escape');
    }
    for (const [url, href] of links) {
        await page.goto('about:blank');
        await page.goto(url);
        await page.waitForFunction((h) => document.querySelector('.klOVlightbox img')?.getAttribute('src') === h, href);
        assert.equal(page.url(), url, 'the fragment stays as it was');
        assert.equal(await shown(), href);
    }
    assert.deepEqual(page.errors, []);
    await page.close();
});
