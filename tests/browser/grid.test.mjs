// A generated Responsive Grid in Chromium at a 1400-pixel window: cell spans measured from the
// boxes, the column count, the lightbox across both of its groups and its deep links, the hover
// magnification.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import fs from 'node:fs';
import path from 'node:path';
import { before, test } from 'node:test';
import {
    act, address, bothWays, expectLightbox, freshDir, generate, lightbox, makePhotos, onScreens, open,
    openLoaded, outputRoot, waitForPhoto,
} from './support.mjs';

let root;
let photos;  // photo01..photo08; photo03 and photo06 are portrait
const pages = {};

// A grid of the eight photos, photo01 (landscape) and photo03 (portrait) highlighted.
function grid(name, settings) {
    pages[name] ??= path.join(generate(path.join(root, name), {
        cbRgShowMetaData: 1, tfRgMetaDataToShow: 'Show Filename', ...settings,
    }, photos, { kind: 'grid', options: ['--highlight', 'photo01.jpg', '--highlight', 'photo03.jpg'] }), 'index.html');
    return pages[name];
}

let nature;  // the default grid of the twelve real photographs and a portrait, three highlighted

before(() => {
    root = freshDir('grid');
    photos = makePhotos(path.join(root, 'photos'), 8);
    const folder = '/usr/share/backgrounds/mate/nature';
    const real = fs.readdirSync(folder).filter((n) => n.endsWith('.jpg')).sort().map((name) => ({ file: path.join(folder, name) }));
    const tall = path.join(root, 'WoodTall.jpg');
    execFileSync('vips', ['rot', path.join(folder, 'Wood.jpg'), tall, 'd90']);
    nature = path.join(generate(path.join(root, 'nature'), { tfRgMetaDataToShow: 'Show Filename' }, [...real, { file: tall }], {
        kind: 'grid', options: ['--highlight', 'Aqua.jpg', '--highlight', 'LadyBird.jpg', '--highlight', 'WoodTall.jpg'],
    }), 'index.html');
});

// The tracks each cell covers, found by matching its box against the grid lines.
const layout = (page) => page.evaluate(() => {
    const gridEl = document.querySelector('.klovlGrid');
    const style = getComputedStyle(gridEl);
    const box = gridEl.getBoundingClientRect();
    const gap = parseFloat(style.columnGap);
    const lines = (list, start) => {
        let at = start;
        return list.trim().split(/\s+/).map(parseFloat).map((size) => {
            const track = [at, at + size];
            at += size + gap;
            return track;
        });
    };
    const columns = lines(style.gridTemplateColumns, box.left);
    const rows = lines(style.gridTemplateRows, box.top);
    const near = (a, b) => Math.abs(a - b) < 1;
    const span = (tracks, from, to) => {
        const first = tracks.findIndex((t) => near(t[0], from));
        const last = tracks.findIndex((t) => near(t[1], to));
        return first < 0 || last < 0 ? null : last - first + 1;
    };
    const cells = [...document.querySelectorAll('.klovlGrid > div')].map((cell) => {
        const r = cell.getBoundingClientRect();
        const name = cell.querySelector('a').getAttribute('href').replace(/^.*\/|\.jpeg$/g, '');
        return [name, `${span(columns, r.left, r.right)}x${span(rows, r.top, r.bottom)}`];
    });
    return {
        columns: columns.length, trackWidth: columns[0][1] - columns[0][0],
        container: document.querySelector('.klovlResponsiveGrid-container').getBoundingClientRect().width,
        cells: Object.fromEntries(cells),
    };
});

const big = (name) => `KLovImages_b/${name}.jpeg`;

bothWays((mode) => {
    test('at most the maximum number of columns in the 1200-pixel container; highlighted cells span 3 x 3 (landscape) and 2 x 2 (portrait)', async () => {
        const spans = { photo01: '3x3', photo02: '1x1', photo03: '2x2', photo04: '1x1', photo05: '1x1', photo06: '1x1', photo07: '1x1', photo08: '1x1' };
        // Tracks of at least 1200 / max pixels with 6-pixel gaps; at 3 only two fit, and the 3 x 3
        // cell of the highlighted photo adds the third.
        for (const [max, expected] of [[3, 3], [4, 3], [6, 5], [8, 7], [12, 11]]) {
            const page = await open(mode.browser, grid(`columns${max}`, { tfRGMaxColumns: max }));
            const found = await layout(page);
            assert.equal(found.container, 1200);
            assert.equal(found.columns, expected, `tfRGMaxColumns ${max}: ${JSON.stringify(found)}`);
            assert.ok(found.trackWidth >= Math.floor(1200 / max), JSON.stringify(found));
            if (max === 6) assert.deepEqual(found.cells, spans);
            assert.deepEqual(page.errors, []);
            await page.close();
        }
    });

    // Opening, moving, closing and deep links of the lightbox itself: gallery.test.mjs.
    test('the lightbox crosses both groups of cells, showing each caption, the fragment following', async () => {
        const page = await open(mode.browser, grid('columns6', { tfRGMaxColumns: 6 }));
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
        // Opened from the highlighted landscape cell, the lightbox goes on into the other group.
        await page.keyboard.press('Escape');
        await page.locator('.klovlImage4 a').click();
        await waitForPhoto(page, big('photo01'));
        await page.keyboard.press('ArrowRight');
        await waitForPhoto(page, big('photo02'));
        assert.deepEqual(page.errors, []);
        await page.close();
    });

    test('the hover magnification applies only when switched on', async () => {
        for (const on of [0, 1]) {
            const page = await open(mode.browser, grid(`hover${on}`, { tfRGMaxColumns: 6, cbMagnifyHooverEffect: on }));
            for (const selector of ['.klovlImage4 img', '.klovlImage img']) {
                const image = page.locator(selector).first();
                await image.hover();
                if (on) {
                    await page.waitForFunction((sel) => getComputedStyle(document.querySelector(sel)).transform
                        === 'matrix(1.5, 0, 0, 1.5, 0, 0)', selector, { timeout: 5000 });
                } else {
                    // No transition either: the image stays as it is.
                    assert.equal(await image.evaluate((el) => getComputedStyle(el).transitionDuration), '0s');
                    assert.equal(await image.evaluate((el) => getComputedStyle(el).transform), 'none');
                }
                await page.mouse.move(0, 0);
            }
            await page.close();
        }
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
        await page.screenshot({ path: path.join(outputRoot, `grid-${mode.screen.name}.png`), fullPage: true });
        await expectLightbox(page, mode, { link: '.klovlGrid a[href$="Dune.jpeg"]', big: big('Dune'), width: 1680, counter: '3 / 13' });
        assert.deepEqual(page.errors, []);
        await page.close();
    });
});
