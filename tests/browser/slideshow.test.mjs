// Generated Slideshow pages in Chromium: the classic page's timer, buttons, dots, counter and
// captions, and the slider's box and timing. Neither page needs jQuery.
import assert from 'node:assert/strict';
import fs from 'node:fs';
import path from 'node:path';
import { before, test } from 'node:test';
import { bothWays, freshDir, generate, makePhotos, open, outputRoot } from './support.mjs';

const box = { tfSsImageWidth: 400, tfSsImageHeight: 300, cbSsExifUC: 1, tfSsMetaDataToShow: 'Show Filename' };
const shows = {};  // page files

before(() => {
    const root = freshDir('slideshow');
    const photos = makePhotos(path.join(root, 'photos'), 4);
    const show = (name, settings, list = photos) => path.join(generate(path.join(root, name), { ...box, ...settings },
        list, { kind: 'slideshow' }), 'slideshow.html');
    shows.autorun = show('autorun', { cbSsAutorun: 1, tfSsInterval: 1 });
    const file = path.join(root, '50% off #1.jpg');  // a name that needs percent-encoding
    fs.copyFileSync(photos[0].file, file);
    shows.manual = show('manual', { cbSsAutorun: 0 }, [{ file }, ...photos.slice(1)]);
    shows.slider = show('slider', { pubSsTemplateChoice: 2, tfSsInterval: 1, tfSsImageWidth: 320, tfSsImageHeight: 200 });
});

// The numbers (from 1) of the slides shown, the counter and caption of the first one shown.
const state = (page) => page.$$eval('.klSsSlides', (slides) => {
    const shown = slides.filter((s) => getComputedStyle(s).display === 'block');
    const first = shown[0];
    return {
        shown: shown.map((s) => slides.indexOf(s) + 1),
        counter: first ? first.querySelector('.klSsNumbertext').textContent : null,
        caption: first ? first.querySelector('.klSsText').textContent : null,
    };
});
const waitForSlide = (page, n) => page.waitForFunction((k) => {
    const slides = [...document.querySelectorAll('.klSsSlides')];
    return slides.filter((s) => getComputedStyle(s).display === 'block')
        .map((s) => slides.indexOf(s) + 1).join() === String(k);
}, n, { timeout: 10000 });

bothWays((mode) => {
    const load = (file) => open(mode.browser, file, { lightbox: false });

    test('the classic page with autorun advances by itself; the caption shows in the slide', async () => {
        const page = await load(shows.autorun);
        assert.deepEqual(await state(page), { shown: [1], counter: '1 / 4', caption: 'photo01' });
        const inside = await page.$eval('.klSsSlides', (slide) => {
            const s = slide.getBoundingClientRect();
            const c = slide.querySelector('.klSsText').getBoundingClientRect();
            const img = slide.querySelector(':scope > img');
            return c.height > 0 && c.top >= s.top && c.bottom <= s.bottom && img.naturalWidth === 400;
        });
        assert.ok(inside, 'the caption lies inside the shown slide over a loaded photo');
        await page.screenshot({ path: path.join(outputRoot, 'slideshow-classic.png'), fullPage: true });
        await waitForSlide(page, 2);
        assert.deepEqual(await state(page), { shown: [2], counter: '2 / 4', caption: 'photo02' });
        await waitForSlide(page, 3);
        assert.deepEqual(page.errors, []);
        await page.close();
    });

    test('without autorun the page stays on slide 1; buttons and dots choose the slide', async () => {
        const page = await load(shows.manual);
        await page.waitForLoadState('load');
        const sizes = await page.$$eval('.klSsSlides > img', (imgs) => imgs.map((i) => i.naturalWidth));
        assert.deepEqual(sizes, [400, 400, 400, 400], 'every photo shows, the one named with "#" and "%" too');
        await page.waitForTimeout(1500);
        assert.deepEqual((await state(page)).shown, [1]);
        const steps = [
            ['.klSsNext', 2], ['.klSsNext', 3], ['.klSsPrev', 2], ['.klSsPrev', 1], ['.klSsPrev', 4],
            ['.klSsNext', 1], ['.klSsDot >> nth=2', 3], ['.klSsDot >> nth=0', 1], ['.klSsDot >> nth=3', 4],
        ];
        for (const [control, expected] of steps) {
            // The container's fixed ::after layer lies over the dots below it, so a pointer click
            // there reaches the container: the dots get their click event directly.
            if (control.startsWith('.klSsDot')) await page.locator(control).dispatchEvent('click');
            else await page.locator(control).click();
            const s = await state(page);
            assert.deepEqual([s.shown, s.counter], [[expected], `${expected} / 4`], `${control}`);
            const active = await page.$$eval('.klSsDot', (dots) =>
                dots.map((d, i) => (d.classList.contains('klSsActive') ? i + 1 : 0)).filter(Boolean));
            assert.deepEqual(active, [expected]);
        }
        assert.deepEqual(page.errors, []);
        await page.close();
    });

    test('the slider shows the first photo in a box of the exact size, then the later ones', async () => {
        const page = await load(shows.slider);
        const container = await page.$eval('.klSsSlideshow-container', (c) => {
            const r = c.getBoundingClientRect();
            return [r.width, r.height];
        });
        assert.deepEqual(container, [320, 200]);
        // A slide is in view when it lies exactly on the container.
        const inView = (n) => page.waitForFunction((k) => {
            const c = document.querySelector('.klSsSlideshow-container').getBoundingClientRect();
            const s = document.querySelector(`.slide${k}`).getBoundingClientRect();
            return Math.abs(s.left - c.left) < 1 && Math.abs(s.top - c.top) < 1;
        }, n, { timeout: 10000 });
        await inView(0);
        const first = await page.$eval('.slide0', async (s) => {
            const image = new Image();
            image.src = getComputedStyle(s).backgroundImage.slice(5, -2);
            await image.decode();
            return [image.src.split('/').pop(), image.naturalWidth, image.naturalHeight];
        });
        assert.deepEqual(first, ['photo01.jpeg', 320, 200]);
        await page.screenshot({ path: path.join(outputRoot, 'slideshow-slider.png'), fullPage: true });
        await inView(2);
        assert.deepEqual(page.errors, []);
        await page.close();
    });
});
