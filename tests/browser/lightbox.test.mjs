// The lightbox of a generated Photo Gallery, driven in Chromium like a user would.
import assert from 'node:assert/strict';
import path from 'node:path';
import { after, before, describe, test } from 'node:test';
import {
    freshDir, generate, launch, lightboxState, makePhotos, open, outputRoot, waitForPhoto,
} from './support.mjs';

const VIEWPORT = { width: 1100, height: 800 };
const ONE_PAGE = { ifNumberOfColumns: 3, ifNumberOfRows: 2 };  // 5 photos on one page

let browser;
let photos;
let plainPage;
let captionedPage;

before(async () => {
    const root = freshDir('lightbox');
    photos = makePhotos(path.join(root, 'photos'), 5);
    const files = photos.map((p) => p.file);
    generate(path.join(root, 'plain'), { ...ONE_PAGE, cbCaptionStatus: 0 }, files);
    generate(path.join(root, 'captioned'), {
        ...ONE_PAGE, cbCaptionStatus: 1, cbPgShowMetaData: 1, btShowFileName: 1,
        tfPgMetaDataToShow: 'Show Filename',
    }, files);
    plainPage = path.join(root, 'plain', 'myIndex.html');
    captionedPage = path.join(root, 'captioned', 'myIndex.html');
    browser = await launch(VIEWPORT);
});

after(async () => {
    if (browser) await browser.close();
});

async function openPhoto(file, index) {
    const opened = await open(browser.context, file);
    await opened.page.locator('.klOVimg a').nth(index).click();
    await waitForPhoto(opened.page, photos[index].name);
    return opened;
}

describe('lightbox', () => {
    test('a click on a thumbnail shows its big image, fitted and centred, over a blurred page', async () => {
        const { page, errors } = await openPhoto(plainPage, 1);
        const s = await lightboxState(page);
        assert.equal(s.open, true);
        assert.equal(s.blurred, true);
        assert.match(s.src, /(^|\/)KLimages_b\/photo02\.jpeg$/);
        assert.equal(s.loadingVisible, false);
        assert.equal(s.close, true);
        // Inside the window with a margin, centred, and with the photo's 4:3 ratio.
        const b = s.imgBox;
        assert.ok(b.left >= 40 && b.top >= 40, JSON.stringify(b));
        assert.ok(b.right <= VIEWPORT.width - 40 && b.bottom <= VIEWPORT.height - 40, JSON.stringify(b));
        assert.ok(Math.abs((b.left + b.right) / 2 - VIEWPORT.width / 2) <= 2);
        assert.ok(Math.abs((b.top + b.bottom) / 2 - VIEWPORT.height / 2) <= 2);
        const content = await page.evaluate(() => {
            const img = document.querySelector('.klOVlightbox img');
            return { w: img.clientWidth, h: img.clientHeight };
        });
        assert.ok(Math.abs(content.w / content.h - 4 / 3) < 0.02, JSON.stringify(content));
        // The indicator points at the spinner beside the script (the stylesheet's url misses it).
        const spinner = await page.evaluate(() => new Promise((resolve) => {
            const bg = getComputedStyle(document.querySelector('.klOVlightbox_loading')).backgroundImage;
            const url = bg.replace(/^url\("?|"?\)$/g, '');
            const probe = new Image();
            probe.onload = () => resolve({ url, ok: probe.naturalWidth === 32 });
            probe.onerror = () => resolve({ url, ok: false });
            probe.src = url;
        }));
        assert.match(spinner.url, /KLovlightbox\/loading\.gif$/);
        assert.equal(spinner.ok, true);
        await page.screenshot({ path: path.join(outputRoot, 'lightbox-open.png') });
        assert.deepEqual(errors, []);
        await page.close();
    });

    test('buttons and arrow keys move through the photos of the page, hiding at the ends', async () => {
        const { page, errors } = await openPhoto(plainPage, 0);
        let s = await lightboxState(page);
        assert.equal(s.prev, false, 'no previous button on the first photo');
        assert.equal(s.next, true);
        await page.locator('.klOVlightbox_nav_next').click();
        await waitForPhoto(page, 'photo02');
        await page.keyboard.press('ArrowRight');
        await waitForPhoto(page, 'photo03');
        await page.keyboard.press('ArrowLeft');
        await waitForPhoto(page, 'photo02');
        s = await lightboxState(page);
        assert.equal(s.prev, true);
        await page.locator('.klOVlightbox_nav_prev').click();
        await waitForPhoto(page, 'photo01');
        for (const name of ['photo02', 'photo03', 'photo04', 'photo05']) {
            await page.keyboard.press('ArrowRight');
            await waitForPhoto(page, name);
        }
        s = await lightboxState(page);
        assert.equal(s.next, false, 'no next button on the last photo');
        assert.equal(s.prev, true);
        await page.keyboard.press('ArrowRight');  // nothing beyond the last photo
        await waitForPhoto(page, 'photo05');
        assert.deepEqual(errors, []);
        await page.close();
    });

    test('a horizontal swipe moves, a short one does not', async () => {
        const { page } = await openPhoto(plainPage, 2);
        const swipe = (fromX, toX) => page.evaluate(([a, b]) => {
            const overlay = document.querySelector('.klOVlightbox');
            const touch = (x) => new Touch({ identifier: 1, target: overlay, clientX: x, clientY: 300 });
            overlay.dispatchEvent(new TouchEvent('touchstart', { bubbles: true, cancelable: true,
                touches: [touch(a)], changedTouches: [touch(a)] }));
            overlay.dispatchEvent(new TouchEvent('touchend', { bubbles: true, cancelable: true,
                touches: [], changedTouches: [touch(b)] }));
        }, [fromX, toX]);
        await swipe(700, 400);
        await waitForPhoto(page, 'photo04');
        await swipe(400, 700);
        await waitForPhoto(page, 'photo03');
        await swipe(400, 410);
        await waitForPhoto(page, 'photo03');
        await page.close();
    });

    test('Escape, the close button and a click on the background close it', async () => {
        const { page } = await openPhoto(plainPage, 3);
        await page.keyboard.press('Escape');
        let s = await lightboxState(page);
        assert.equal(s.open, false);
        assert.equal(s.blurred, false);

        await page.locator('.klOVimg a').nth(0).click();
        await waitForPhoto(page, 'photo01');
        await page.locator('.klOVlightbox_close').click();
        s = await lightboxState(page);
        assert.equal(s.open, false);
        assert.equal(s.blurred, false);

        await page.locator('.klOVimg a').nth(4).click();
        await waitForPhoto(page, 'photo05');
        await page.locator('.klOVlightbox img').click();  // the photo itself keeps it open
        assert.equal((await lightboxState(page)).open, true);
        await page.mouse.click(VIEWPORT.width / 2, 15);
        s = await lightboxState(page);
        assert.equal(s.open, false);
        assert.equal(s.blurred, false);
        // Keys do nothing once closed; the page keeps working.
        await page.keyboard.press('ArrowRight');
        assert.equal((await lightboxState(page)).open, false);
        await page.close();
    });

    test('a window resize fits the photo again', async () => {
        const { page } = await openPhoto(plainPage, 0);
        await page.setViewportSize({ width: 500, height: 400 });
        await page.waitForFunction(() => {
            const r = document.querySelector('.klOVlightbox img').getBoundingClientRect();
            return r.right <= 500 && r.bottom <= 400;
        });
        const b = (await lightboxState(page)).imgBox;
        assert.ok(b.left >= 40 && b.right <= 460 && b.top >= 40 && b.bottom <= 360, JSON.stringify(b));
        await page.close();
    });

    test('the captioned variant shows the title as text; the plain one shows none', async () => {
        const captioned = await openPhoto(captionedPage, 1);
        const title = await captioned.page.locator('.klOVimg a').nth(1).getAttribute('title');
        assert.ok(title.includes('photo02'), title);
        let s = await lightboxState(captioned.page);
        assert.equal(s.caption, title);
        await captioned.page.keyboard.press('ArrowRight');
        await waitForPhoto(captioned.page, 'photo03');
        s = await lightboxState(captioned.page);
        assert.ok(s.caption.includes('photo03'), s.caption);
        // Markup in a title stays text.
        await captioned.page.keyboard.press('Escape');
        await captioned.page.evaluate(() => {
            document.querySelectorAll('.klOVimg a')[0].setAttribute('title', '<b>bold</b> & co');
        });
        await captioned.page.locator('.klOVimg a').nth(0).click();
        await waitForPhoto(captioned.page, 'photo01');
        s = await lightboxState(captioned.page);
        assert.equal(s.caption, '<b>bold</b> & co');
        await captioned.page.screenshot({ path: path.join(outputRoot, 'lightbox-caption.png') });
        await captioned.page.close();

        const plain = await openPhoto(plainPage, 1);
        s = await lightboxState(plain.page);
        assert.equal(s.caption, null);
        await plain.page.close();
    });
});
