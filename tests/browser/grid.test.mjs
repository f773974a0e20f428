// A generated Responsive Grid in Chromium.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import fs from 'node:fs';
import path from 'node:path';
import { before, test } from 'node:test';
import {
    act, address, bothWays, expectLightbox, freshDir, generate, lightbox, makePhotos, onScreens, open,
    openLoaded, waitForPhoto,
} from './support.mjs';

let small;   // photo01..photo08 captioned by name, photo01 (landscape) and photo03 (portrait) highlighted
let nature;  // the default grid of the twelve real photographs and a portrait, three highlighted

before(() => {
    const root = freshDir('grid');
    const page = (name, settings, photos, highlights) => path.join(generate(path.join(root, name), settings, photos,
        { kind: 'grid', options: highlights.flatMap((h) => ['--highlight', h]) }), 'index.html');
    small = page('small', { cbRgShowMetaData: 1, tfRgMetaDataToShow: 'Show Filename', tfRGMaxColumns: 6 },
        makePhotos(path.join(root, 'photos'), 8), ['photo01.jpg', 'photo03.jpg']);
    const folder = '/usr/share/backgrounds/mate/nature';
    const real = fs.readdirSync(folder).filter((n) => n.endsWith('.jpg')).sort().map((name) => ({ file: path.join(folder, name) }));
    const tall = path.join(root, 'WoodTall.jpg');
    execFileSync('vips', ['rot', path.join(folder, 'Wood.jpg'), tall, 'd90']);
    nature = page('nature', { tfRgMetaDataToShow: 'Show Filename' }, [...real, { file: tall }],
        ['Aqua.jpg', 'LadyBird.jpg', 'WoodTall.jpg']);
});

const big = (name) => `KLovImages_b/${name}.jpeg`;

bothWays((mode) => {
    // Opening, moving, closing and deep links of the lightbox itself: gallery.test.mjs.
    test('the lightbox crosses both groups of cells, showing each caption, the fragment following', async () => {
        const page = await open(mode.browser, small);
        await page.locator('.klovlImage a[href$="photo02.jpeg"]').click();
        await waitForPhoto(page, big('photo02'));
        assert.deepEqual(await lightbox(page), { open: true, blurred: true, prev: true, next: true, caption: 'photo02' });
        // photo01 is in the klovlImage4 group, photo02 and photo03 in the klovlImage one.
        for (const [action, name] of [['ArrowLeft', 'photo01'], ['.klOVlightbox_nav_next', 'photo02'],
            ['ArrowRight', 'photo03'], ['.klOVlightbox_nav_prev', 'photo02'], ['ArrowLeft', 'photo01']]) {
            await act(page, action);
            await waitForPhoto(page, big(name));
            assert.equal((await lightbox(page)).caption, name);
            assert.equal(address(page), `index.html#photo=${name}.jpeg`);
        }
        assert.equal((await lightbox(page)).prev, false, 'photo01 is the first of the page');
        // Opened from the highlighted landscape cell, the lightbox goes on into the other group;
        // markup in a title stays text.
        await page.keyboard.press('Escape');
        await page.locator('.klovlImage4 a').click();
        await waitForPhoto(page, big('photo01'));
        await page.$eval('a[href$="photo02.jpeg"]', (a) => a.setAttribute('title', '<b>bold</b> & co'));
        await page.keyboard.press('ArrowRight');
        await waitForPhoto(page, big('photo02'));
        assert.equal((await lightbox(page)).caption, '<b>bold</b> & co');
        await page.done();
    });
}, { width: 1400, height: 900 });

// The empty places of the grid, each a track wide and high, found by the centres of its slots
// (tracks of no height, which a tall cell alone spans, hold none).
const holes = (page) => page.evaluate(() => {
    const grid = document.querySelector('.klovlGrid');
    const style = getComputedStyle(grid);
    const box = grid.getBoundingClientRect();
    const centres = (list, from, gap) => {
        let at = from;
        return list.trim().split(/\s+/).map(parseFloat)
            .map((size) => { at += size + gap; return size < 1 ? null : at - gap - size / 2; }).filter((c) => c !== null);
    };
    const cells = [...grid.children].map((c) => c.getBoundingClientRect());
    const empty = [];
    for (const y of centres(style.gridTemplateRows, box.top, parseFloat(style.rowGap))) {
        for (const x of centres(style.gridTemplateColumns, box.left, parseFloat(style.columnGap))) {
            if (!cells.some((r) => x > r.left && x < r.right && y > r.top && y < r.bottom)) empty.push([x, y]);
        }
    }
    return { empty, right: box.right, last: Math.max(...cells.map((r) => r.right)),
        overflow: document.documentElement.scrollWidth - innerWidth };
});

// The default grid on a laptop (1x and 2x) and a phone (3x): no stretched photo, no hole larger
// than a cell, no column beyond the window; a lightbox of the big image, at the screen's pixels.
onScreens((mode) => {
    test('the default grid of highlighted photos and its lightbox', async () => {
        const page = await openLoaded(mode, nature, '.klovlGrid img');
        const found = await holes(page);
        assert.ok(found.empty.length <= 1, JSON.stringify(found));
        assert.ok(found.overflow <= 0 && Math.abs(found.right - found.last) < 1, JSON.stringify(found));
        await expectLightbox(page, mode, { link: '.klovlGrid a[href$="Dune.jpeg"]', big: big('Dune'), width: 1680, counter: '3 / 13' });
        await page.done();
    });
});
