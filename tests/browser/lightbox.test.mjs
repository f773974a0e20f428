// The lightbox of a generated Photo Gallery, driven in Chromium like a user would.
import assert from 'node:assert/strict';
import path from 'node:path';
import { after, before, test } from 'node:test';
import { freshDir, generate, launch, makePhotos, open, outputRoot } from './support.mjs';

const ONE_PAGE = { ifNumberOfColumns: 3, ifNumberOfRows: 2 };  // 5 photos on one page
let browser;
let plainPage;
let captionedPage;

before(async () => {
    const root = freshDir('lightbox');
    const photos = makePhotos(path.join(root, 'photos'), 5);
    plainPage = path.join(generate(path.join(root, 'plain'), { ...ONE_PAGE, cbCaptionStatus: 0 }, photos),
        'myIndex.html');
    captionedPage = path.join(generate(path.join(root, 'captioned'), {
        ...ONE_PAGE, cbCaptionStatus: 1, cbPgShowMetaData: 1, btShowFileName: 1,
        tfPgMetaDataToShow: 'Show Filename',
    }, photos), 'myIndex.html');
    browser = await launch();
});

after(async () => browser && browser.closeAll());

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

test('a click on a thumbnail opens its big image, fitted in the window; Escape closes it', async () => {
    const page = await open(browser, plainPage);
    await page.locator('.klOVimg a').nth(1).click();
    await waitForPhoto(page, 'photo02');
    assert.deepEqual(await state(page), { open: true, blurred: true, prev: true, next: true, caption: null });
    const b = await page.locator('.klOVlightbox img').boundingBox();
    assert.ok(b.x >= 40 && b.y >= 40 && b.x + b.width <= 1060 && b.y + b.height <= 760, JSON.stringify(b));
    await page.screenshot({ path: path.join(outputRoot, 'lightbox-open.png') });
    await page.keyboard.press('Escape');
    assert.deepEqual(await state(page), { open: false, blurred: false, prev: false, next: false, caption: null });
    assert.deepEqual(page.errors, []);
    await page.close();
});

test('buttons and arrow keys move through the photos of the page, hiding at the ends', async () => {
    const page = await open(browser, plainPage);
    await page.locator('.klOVimg a').first().click();
    await waitForPhoto(page, 'photo01');
    assert.equal((await state(page)).prev, false, 'no previous button on the first photo');
    for (const [action, name] of [['.klOVlightbox_nav_next', 'photo02'], ['ArrowRight', 'photo03'],
        ['ArrowLeft', 'photo02'], ['.klOVlightbox_nav_prev', 'photo01'], ['ArrowRight', 'photo02'],
        ['ArrowRight', 'photo03'], ['ArrowRight', 'photo04'], ['ArrowRight', 'photo05']]) {
        await (action.startsWith('.') ? page.locator(action).click() : page.keyboard.press(action));
        await waitForPhoto(page, name);
    }
    assert.equal((await state(page)).next, false, 'no next button on the last photo');
    await page.keyboard.press('ArrowRight');
    await waitForPhoto(page, 'photo05');  // nothing beyond the last photo
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
