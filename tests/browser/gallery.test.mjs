// Generated Photo Galleries driven in Chromium like a user would.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import fs from 'node:fs';
import path from 'node:path';
import { before, test } from 'node:test';
import {
    act, address, bothWays, contrast, expectLightbox, freshDir, generate, lightbox, makePhotos, onScreens,
    open, openLoaded, pageUrl, settled, waitForPhoto,
} from './support.mjs';

const ODD = ['a#b', 'what?', '100%', 'two words', 'semi;colon', 'Ünïcødé', 'amp&er', 'plain-name_1'];
const site = {};  // page files

before(() => {
    const root = freshDir('gallery');
    const photos = makePhotos(path.join(root, 'photos'), 5);
    const make = (name, settings, list = photos) => generate(path.join(root, name), settings, list);
    const page = (...args) => path.join(make(...args), 'myIndex.html');
    site.plain = page('plain', { ifNumberOfColumns: 3, ifNumberOfRows: 2, cbCaptionStatus: 0 });  // one page
    site.paged = make('paged', { ifNumberOfColumns: 2, ifNumberOfRows: 1 });  // pages of 2, 2 and 1
    site.odd = page('odd', { ifNumberOfColumns: 4, ifNumberOfRows: 3 }, makePhotos(path.join(root, 'odd'), ODD));
    // Real photographs captioned through their EXIF comments, one caption long enough to wrap.
    const nature = '/usr/share/backgrounds/mate/nature';
    const real = fs.readdirSync(nature).filter((n) => n.endsWith('.jpg')).sort().map((name, i) => {
        const file = path.join(root, name);
        fs.copyFileSync(path.join(nature, name), file);
        execFileSync(process.env.ORVELLA_BINARY, ['meta', 'set-comment', file, i === 1
            ? 'A longer caption that has to wrap over more than one line when the cell is narrow' : `Photo ${i + 1}`]);
        return { file };
    });
    site.looks = page('looks', {}, real);
});

const shows = (prev, next) => ({ open: true, blurred: true, prev, next, caption: null });
const big = (name) => `KLimages_b/${name}.jpeg`;

bothWays((mode) => {
    const load = (file) => open(mode.browser, file);

    // Moves across pages, and none beyond the first and last photo: the navigation bar's test.
    test('a thumbnail opens its big image, fitted; the fragment follows a move without a history entry; the close button, Escape or a click beside close it; a changed fragment is followed', async () => {
        const page = await load(site.plain);
        // The page runs on the real jQuery when it loaded and on its own script when not.
        assert.equal(await page.evaluate(() => window.jQuery.fn.jquery), mode.offline ? undefined : '1.9.1');
        const entries = await page.evaluate(() => history.length);
        await page.locator('.klOVimg a').nth(1).click();
        await waitForPhoto(page, big('photo02'));
        assert.deepEqual(await lightbox(page), shows(true, true));
        const b = await page.locator('.klOVlightbox img').boundingBox();
        assert.ok(b.x >= 40 && b.y >= 40 && b.x + b.width <= 1060 && b.y + b.height <= 760, JSON.stringify(b));
        for (const [action, name] of [['.klOVlightbox_nav_prev', 'photo01'], [-20, 'photo01'], ['ArrowRight', 'photo02']]) {
            await act(page, action);
            await waitForPhoto(page, big(name));
            assert.equal(address(page), `myIndex.html#photo=${name}.jpeg`);
        }
        for (const close of ['Escape', '.klOVlightbox_close', () => page.mouse.click(5, 400)]) {
            await (typeof close === 'function' ? close() : act(page, close));
            assert.deepEqual(await lightbox(page), { open: false, blurred: false, prev: false, next: false, caption: null });
            assert.equal(page.url(), pageUrl(site.plain), 'closing removes the fragment, "#" too');
            await page.locator('.klOVimg a').first().click();
            await waitForPhoto(page, big('photo01'));
        }
        assert.equal(await page.evaluate(() => history.length), entries, 'no history entry per photo');
        // A changed fragment is followed and an empty one closes; an unknown name or another
        // fragment opens nothing, and stays.
        await page.evaluate(() => { location.hash = 'photo=photo04.jpeg'; });
        await waitForPhoto(page, big('photo04'));
        await page.evaluate(() => { location.hash = ''; });
        await page.waitForFunction(() => !document.querySelector('.klOVlightbox'));
        for (const hash of ['photo=photo09.jpeg', 'photo=', 'top', 'photo=%E0%A4%A.jpeg']) {
            await page.goto('about:blank');
            await page.goto(`${pageUrl(site.plain)}#${hash}`);
            await settled(page);
            assert.equal((await lightbox(page)).open, false, hash);
            assert.equal(new URL(page.url()).hash, `#${hash}`);
        }
        await page.done();
    });

    test('the navigation bar reaches every page; the lightbox crosses them (opening the next page at #photo=first, the one before at #photo=last), the last photo stays', async () => {
        const page = await load(path.join(site.paged, 'index.html'));
        assert.equal(address(page), 'myIndex.html', 'sent to the first page');
        const seen = [];
        for (const [i, name] of [[1, 'myIndex2.html'], [2, 'myIndex3.html'], [0, 'myIndex.html']]) {
            const links = page.locator('#navBar a');
            assert.deepEqual((await links.allTextContents()).map((t) => t.trim()), ['1', '2', '3']);
            await links.nth(i).click();
            await page.waitForURL((u) => u.href.endsWith(`/${name}`));
            await page.waitForFunction(() => window.jQuery && jQuery.fn.lightbox);
            seen.push(...await page.$$eval('.klOVimg a', (as) => as.map((a) => a.getAttribute('href'))));
        }
        assert.deepEqual(seen, [3, 4, 5, 1, 2].map((n) => big(`photo0${n}`)));
        await page.locator('.klOVimg a').first().click();
        await waitForPhoto(page, big('photo01'));
        assert.deepEqual(await lightbox(page), shows(false, true));
        for (const [action, where] of [['ArrowRight', 'myIndex.html#photo=photo02'],
            ['ArrowRight', 'myIndex2.html#photo=photo03'],  // the next page's first photo
            ['ArrowLeft', 'myIndex.html#photo=photo02'],    // the page before's last photo
            ['.klOVlightbox_nav_next', 'myIndex2.html#photo=photo03'], [-80, 'myIndex2.html#photo=photo04'],
            ['.klOVlightbox_nav_next', 'myIndex3.html#photo=photo05'], [80, 'myIndex2.html#photo=photo04'],
            ['ArrowRight', 'myIndex3.html#photo=photo05'], ['ArrowRight', 'myIndex3.html#photo=photo05']]) {
            const [file] = where.split('#');
            const leaving = !address(page).startsWith(`${file}#`);
            await act(page, action);
            if (leaving) await page.waitForURL((u) => u.pathname.endsWith(`/${file}`));
            await settled(page);
            await waitForPhoto(page, big(where.replace(/^.*=/, '')));
            assert.equal(address(page), `${where}.jpeg`);
        }
        assert.deepEqual(await lightbox(page), shows(true, false));
        // Back in the history: the page before, at the photo it showed.
        await page.goBack();
        await page.waitForURL((u) => u.pathname.endsWith('/myIndex2.html'));
        await waitForPhoto(page, big('photo04'));
        await page.done();
    });

    test('every thumbnail and big image of an odd file name loads, and its deep link opens it again', async () => {
        const page = await load(site.odd);
        await page.waitForFunction(() => [...document.images].every((img) => img.complete));
        const thumbs = await page.$$eval('.klOVimg img', (imgs) => imgs.map((i) => [i.alt, i.naturalWidth > 0]));
        assert.deepEqual(thumbs.sort(), ODD.map((name) => [name, true]).sort());
        for (const [i, href] of (await page.$$eval('.klOVimg a', (as) => as.map((a) => a.getAttribute('href')))).entries()) {
            await page.locator('.klOVimg a').nth(i).click();
            await waitForPhoto(page, href);
            const url = page.url(), name = decodeURIComponent(new URL(url).hash.replace(/^#photo=/, ''));
            assert.equal(name, decodeURIComponent(href.replace(/^.*\//, '')), 'the fragment names the big image');
            assert.ok(ODD.includes(name.replace(/\.jpeg$/, '')), name);
            await page.goto('about:blank');
            await page.goto(url);
            await waitForPhoto(page, href);
            assert.equal(page.url(), url, 'the fragment stays as it was');
            await page.keyboard.press('Escape');
        }
        await page.done();
    });

});

// The default gallery of twelve real photographs on every screen: thumbnails sharp, rows centred
// under a heading clear of the top, captions readable on their cells.
onScreens((mode) => {
    test('the default gallery and its lightbox', async () => {
        const page = await openLoaded(mode, site.looks, '.klOVimg img');
        const m = await page.evaluate(() => {
            const imgs = [...document.querySelectorAll('.klOVimg img')];
            const boxes = imgs.map((i) => i.getBoundingClientRect());
            const heading = document.createRange();
            heading.selectNodeContents(document.querySelector('.klOVtitle'));
            return {
                left: Math.min(...boxes.map((b) => b.left)),
                right: document.documentElement.clientWidth - Math.max(...boxes.map((b) => b.right)),
                headingTop: heading.getBoundingClientRect().top,
                sharpness: Math.min(...imgs.map((i, k) => i.naturalWidth / boxes[k].width)),
            };
        });
        assert.ok(Math.abs(m.left - m.right) <= 24, `margins ${m.left} and ${m.right}`);
        assert.ok(m.headingTop >= 16, `heading at ${m.headingTop}`);
        assert.ok(m.sharpness >= Math.min(1.5, mode.screen.deviceScaleFactor), `thumbnails: ${m.sharpness} px a CSS px`);
        const ratio = await contrast(page, '.klOVdescription');
        assert.ok(ratio >= 4.5, `caption contrast ${ratio}`);

        const requested = [];
        page.on('request', (r) => requested.push(decodeURIComponent(r.url())));
        await expectLightbox(page, mode, { link: '.klOVimg a >> nth=2', big: big('Dune'), width: 1680, counter: '3 / 12' });
        for (const name of ['Blinds', 'FreshFlower']) {  // the photos before and after
            assert.ok(requested.some((url) => new RegExp(`KLimages_b(2x)?/${name}\\.jpeg$`).test(url)), name);
        }
        await page.done();
    });
});
