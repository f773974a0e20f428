// The lightbox of a generated Photo Gallery, driven in Chromium like a user would: once with no
// network at all (the CDN's jQuery does not load) and once with jQuery answered from npm.
import assert from 'node:assert/strict';
import path from 'node:path';
import { after, before, describe, test } from 'node:test';
import { freshDir, generate, launch, makePhotos, open, outputRoot, pageUrl } from './support.mjs';

const ONE_PAGE = { ifNumberOfColumns: 3, ifNumberOfRows: 2 };  // 5 photos on one page
const PAGED = { ifNumberOfColumns: 2, ifNumberOfRows: 1 };     // 5 photos on pages of 2, 2 and 1
let plainPage;
let captionedPage;
let pagedSite;

before(() => {
    const root = freshDir('lightbox');
    const photos = makePhotos(path.join(root, 'photos'), 5);
    plainPage = path.join(generate(path.join(root, 'plain'), { ...ONE_PAGE, cbCaptionStatus: 0 }, photos),
        'myIndex.html');
    captionedPage = path.join(generate(path.join(root, 'captioned'), {
        ...ONE_PAGE, cbCaptionStatus: 1, cbPgShowMetaData: 1, btShowFileName: 1,
        tfPgMetaDataToShow: 'Show Filename',
    }, photos), 'myIndex.html');
    pagedSite = generate(path.join(root, 'paged'), PAGED, photos);
});

// What the user sees of the lightbox: whether it is open, its buttons and its caption.
const state = (page) => page.evaluate(() => {
    const box = document.querySelector('.klOVlightbox');
    const shown = (sel) => !!box?.querySelector(sel) && getComputedStyle(box.querySelector(sel)).display !== 'none';
    return {
        open: !!box, blurred: document.body.classList.contains('blurred'),
        prev: shown('.klOVlightbox_nav_prev'), next: shown('.klOVlightbox_nav_next'),
        caption: shown('.klOVlightbox_caption') ? box.querySelector('.klOVlightbox_caption p').textContent : null,
    };
});

// Waits until the lightbox shows the big image of `name`, fully loaded.
const waitForPhoto = (page, name) => page.waitForFunction((n) => {
    const img = document.querySelector('.klOVlightbox img');
    return img && getComputedStyle(img).display !== 'none' && img.complete && img.naturalWidth > 0
        && (img.getAttribute('src') || '').endsWith(`KLimages_b/${n}.jpeg`);
}, name, { timeout: 10000 });

// The page file and fragment of the address bar: "myIndex2.html#photo=photo03.jpeg".
const address = (page) => new URL(page.url()).pathname.replace(/^.*\//, '') + new URL(page.url()).hash;

// Once the page has loaded, waits for what its scripts put off until then (timers run in order).
const settled = (page) => page.evaluate(() => new Promise((resolve) => setTimeout(resolve, 0)));

const act = (page, action) => (action.startsWith('.') ? page.locator(action).click() : page.keyboard.press(action));

// A horizontal swipe across the lightbox, dx pixels long (negative: to the left).
const swipe = (page, dx) => page.evaluate((d) => {
    const target = document.querySelector('.klOVlightbox');
    const touch = (x) => new Touch({ identifier: 1, target, clientX: x, clientY: 300 });
    const fire = (type, touches, changed) => target.dispatchEvent(new TouchEvent(type,
        { touches, changedTouches: changed, bubbles: true, cancelable: true }));
    fire('touchstart', [touch(500)], [touch(500)]);
    fire('touchend', [], [touch(500 + d)]);
}, dx);

for (const offline of [true, false]) {
    describe(offline ? 'without a network' : 'with jQuery from the CDN', () => {
        let browser;
        before(async () => { browser = await launch(undefined, { offline }); });
        after(async () => browser && browser.closeAll());

        test('the page runs on the real jQuery when it loaded and on the script alone when not', async () => {
            const page = await open(browser, plainPage);
            assert.equal(await page.evaluate(() => window.jQuery.fn.jquery), offline ? undefined : '1.9.1');
            assert.deepEqual(page.errors, []);
            await page.close();
        });

        test('a click on a thumbnail opens its big image, fitted in the window; Escape closes it', async () => {
            const page = await open(browser, plainPage);
            await page.locator('.klOVimg a').nth(1).click();
            await waitForPhoto(page, 'photo02');
            assert.deepEqual(await state(page), { open: true, blurred: true, prev: true, next: true, caption: null });
            const b = await page.locator('.klOVlightbox img').boundingBox();
            assert.ok(b.x >= 40 && b.y >= 40 && b.x + b.width <= 1060 && b.y + b.height <= 760, JSON.stringify(b));
            await page.screenshot({ path: path.join(outputRoot, `lightbox-open-${offline ? 'offline' : 'online'}.png`) });
            await page.keyboard.press('Escape');
            assert.deepEqual(await state(page), { open: false, blurred: false, prev: false, next: false, caption: null });
            // A click beside the photo closes too.
            await page.locator('.klOVimg a').first().click();
            await waitForPhoto(page, 'photo01');
            await page.mouse.click(5, 400);
            assert.equal((await state(page)).open, false);
            assert.deepEqual(page.errors, []);
            await page.close();
        });

        test('buttons, arrow keys and swipes move through the photos, the fragment following', async () => {
            const page = await open(browser, plainPage);
            const entries = await page.evaluate(() => history.length);
            await page.locator('.klOVimg a').first().click();
            await waitForPhoto(page, 'photo01');
            assert.equal(address(page), 'myIndex.html#photo=photo01.jpeg');
            assert.equal((await state(page)).prev, false, 'no previous button on the first photo');
            for (const [action, name] of [['.klOVlightbox_nav_next', 'photo02'], ['ArrowRight', 'photo03'],
                ['ArrowLeft', 'photo02'], ['.klOVlightbox_nav_prev', 'photo01'], [-80, 'photo02'],
                [80, 'photo01'], [-20, 'photo01'], ['ArrowRight', 'photo02'], ['ArrowRight', 'photo03'],
                ['ArrowRight', 'photo04'], ['ArrowRight', 'photo05']]) {
                await (typeof action === 'number' ? swipe(page, action) : act(page, action));
                await waitForPhoto(page, name);
                assert.equal(address(page), `myIndex.html#photo=${name}.jpeg`);
            }
            assert.equal((await state(page)).next, false, 'no next button on the last photo');
            await page.keyboard.press('ArrowRight');
            await waitForPhoto(page, 'photo05');  // nothing beyond the last photo of a single page
            assert.equal(address(page), 'myIndex.html#photo=photo05.jpeg');
            await page.locator('.klOVlightbox_close').click();
            assert.equal((await state(page)).open, false);
            assert.equal(page.url(), pageUrl(plainPage), 'closing removes the fragment, "#" too');
            assert.equal(await page.evaluate(() => history.length), entries, 'no history entry per photo');
            assert.deepEqual(page.errors, []);
            await page.close();
        });

        test('a page opened with #photo= shows that photo; a changed fragment is followed', async () => {
            const page = await browser.newPage();
            page.errors = [];
            page.on('pageerror', (e) => page.errors.push(String(e)));
            await page.goto(`${pageUrl(plainPage)}#photo=photo04.jpeg`);
            await waitForPhoto(page, 'photo04');
            assert.deepEqual(await state(page), { open: true, blurred: true, prev: true, next: true, caption: null });
            await page.evaluate(() => { location.hash = 'photo=photo02.jpeg'; });
            await waitForPhoto(page, 'photo02');
            await page.evaluate(() => { location.hash = ''; });
            await page.waitForFunction(() => !document.querySelector('.klOVlightbox'));
            // An unknown name or another fragment opens nothing.
            for (const hash of ['photo=photo09.jpeg', 'photo=', 'top', 'photo=%E0%A4%A.jpeg']) {
                await page.goto('about:blank');
                await page.goto(`${pageUrl(plainPage)}#${hash}`);
                await settled(page);
                assert.equal((await state(page)).open, false, hash);
                assert.equal(new URL(page.url()).hash, `#${hash}`, 'a fragment not naming a shown photo stays');
            }
            assert.deepEqual(page.errors, []);
            await page.close();
        });

        test('the captioned variant shows the title as text', async () => {
            const page = await open(browser, captionedPage);
            const title = await page.locator('.klOVimg a').nth(1).getAttribute('title');
            assert.ok(title.includes('photo02'), title);
            await page.locator('.klOVimg a').nth(1).click();
            await waitForPhoto(page, 'photo02');
            assert.equal((await state(page)).caption, title);
            await page.keyboard.press('ArrowRight');
            await waitForPhoto(page, 'photo03');
            assert.ok((await state(page)).caption.includes('photo03'));
            // Markup in a title stays text.
            await page.keyboard.press('Escape');
            await page.evaluate(() => document.querySelector('.klOVimg a').setAttribute('title', '<b>bold</b> & co'));
            await page.locator('.klOVimg a').first().click();
            await waitForPhoto(page, 'photo01');
            assert.equal((await state(page)).caption, '<b>bold</b> & co');
            await page.screenshot({ path: path.join(outputRoot, 'lightbox-caption.png') });
            await page.close();
        });

        test('next and previous cross the pages of a paged gallery; the last photo stays', async () => {
            const page = await open(browser, path.join(pagedSite, 'myIndex.html'));
            await page.locator('.klOVimg a').first().click();
            await waitForPhoto(page, 'photo01');
            assert.deepEqual(await state(page), { open: true, blurred: true, prev: false, next: true, caption: null });
            // [action, page file and shown photo after it]
            for (const [action, where] of [
                ['ArrowRight', 'myIndex.html#photo=photo02'],
                ['ArrowRight', 'myIndex2.html#photo=photo03'],   // the next page's first photo
                ['ArrowLeft', 'myIndex.html#photo=photo02'],     // the page before's last photo
                ['.klOVlightbox_nav_next', 'myIndex2.html#photo=photo03'],
                [-80, 'myIndex2.html#photo=photo04'],
                ['.klOVlightbox_nav_next', 'myIndex3.html#photo=photo05'],
                [80, 'myIndex2.html#photo=photo04'],
                ['ArrowRight', 'myIndex3.html#photo=photo05'],
            ]) {
                const [file] = where.split('#');
                const leaving = !address(page).startsWith(`${file}#`);
                await (typeof action === 'number' ? swipe(page, action) : act(page, action));
                if (leaving) {
                    await page.waitForURL((u) => u.pathname.endsWith(`/${file}`));
                }
                await waitForPhoto(page, where.replace(/^.*=/, ''));
                assert.equal(address(page), `${where}.jpeg`);
                assert.deepEqual(page.errors, [], where);
            }
            assert.deepEqual(await state(page), { open: true, blurred: true, prev: true, next: false, caption: null });
            await page.keyboard.press('ArrowRight');
            await settled(page);
            await waitForPhoto(page, 'photo05');
            assert.equal(address(page), 'myIndex3.html#photo=photo05.jpeg', 'the last photo of the last page stays');
            // Back in the history: the page before, at the photo it showed.
            await page.goBack();
            await page.waitForURL((u) => u.pathname.endsWith('/myIndex2.html'));
            await waitForPhoto(page, 'photo04');
            await page.close();
        });

        test('#photo=first and #photo=last open the ends of a page', async () => {
            const page = await browser.newPage();
            for (const [file, hash, name] of [['myIndex2.html', 'first', 'photo03'], ['myIndex2.html', 'last', 'photo04'],
                ['myIndex3.html', 'last', 'photo05'], ['myIndex.html', 'first', 'photo01']]) {
                await page.goto(`${pageUrl(path.join(pagedSite, file))}#photo=${hash}`);
                await waitForPhoto(page, name);
                assert.equal(address(page), `${file}#photo=${name}.jpeg`, 'the fragment names the photo shown');
            }
            await page.close();
        });
    });
}
