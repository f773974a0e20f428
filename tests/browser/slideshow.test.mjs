// Generated Slideshow pages in Chromium with no network, on a laptop and a phone.
import { execFileSync } from 'node:child_process';
import assert from 'node:assert/strict';
import path from 'node:path';
import { before, test } from 'node:test';
import { act, contrast, freshDir, generate, launch, makePhotos, open, SCREENS } from './support.mjs';

const box = { tfSsImageWidth: 400, tfSsImageHeight: 300, cbSsExifUC: 1, tfSsMetaDataToShow: 'Show Filename' };
const shows = {};  // page files
const [laptop, , phone] = SCREENS;

before(() => {
    const root = freshDir('slideshow');
    const photos = makePhotos(path.join(root, 'photos'), 4);
    const show = (name, settings, list = photos) => path.join(generate(path.join(root, name), settings, list,
        { kind: 'slideshow' }), 'slideshow.html');
    shows.autorun = show('autorun', { ...box, cbSsAutorun: 1, tfSsInterval: 1 });
    shows.manual = show('manual', { ...box, cbSsAutorun: 0 });
    shows.slider = show('slider', { ...box, pubSsTemplateChoice: 2, tfSsInterval: 1, tfSsImageWidth: 320, tfSsImageHeight: 200 });
    shows.defaults = show('defaults', {}, makePhotos(path.join(root, 'twelve'), 12));
    // The lightest and the darkest photo under light and dark captions.
    const [black, white] = ['black', 'white'].map((name) => ({ file: path.join(root, `${name}.jpg`) }));
    execFileSync('vips', ['black', black.file, '800', '600', '--bands', '3']);
    execFileSync('vips', ['invert', black.file, white.file]);
    shows.light = show('light', { ...box, tfSsFileNameFontColor: 'FFFFFF' }, [white, black]);
    shows.dark = show('dark', { ...box, tfSsFileNameFontColor: '222222' }, [white, black]);
});

// A page on a screen, offline. With `frozen`, the page's timers run only when the test moves its
// clock. page.done() closes its browser too.
async function visit(file, { name, viewport, ...screen } = laptop, frozen = false) {
    const context = await launch(viewport, true, screen);
    if (frozen) {
        await context.clock.install({ time: 0 });
        await context.clock.pauseAt(1000);
    }
    return open(context, file, { lightbox: false, closing: context.closeAll });
}

// The slide shown (from 1), its counter and caption, and the active dots.
const state = (page) => page.evaluate(() => {
    const slides = [...document.querySelectorAll('.klSsSlides')];
    const shown = slides.filter((s) => getComputedStyle(s).display === 'block');
    const dots = [...document.querySelectorAll('.klSsDot')];
    return {
        shown: shown.map((s) => slides.indexOf(s) + 1).join(),
        counter: shown[0]?.querySelector('.klSsNumbertext').textContent,
        caption: shown[0]?.querySelector('.klSsText').textContent,
        dots: dots.flatMap((d, i) => (d.classList.contains('klSsActive') ? [i + 1] : [])).join(),
    };
});

test('autorun: the interval, keys, buttons and dots, a move that starts the interval again, pause; without it, no pause and slide 1 stays', async () => {
    const page = await visit(shows.autorun, laptop, true);
    assert.deepEqual(await state(page), { shown: '1', counter: '1 / 4', caption: 'photo01', dots: '1' });
    assert.ok(await page.$eval('.klSsSlides', (slide) => {
        const [s, c] = [slide, slide.querySelector('.klSsText')].map((e) => e.getBoundingClientRect());
        return c.height > 0 && c.top >= s.top && c.bottom <= s.bottom;
    }), 'the caption lies inside the shown slide');
    await page.clock.runFor(1000);
    assert.deepEqual(await state(page), { shown: '2', counter: '2 / 4', caption: 'photo02', dots: '2' });
    // Half an interval in, a move: its slide holds for 0.9 s and the next one comes by 1.1 s.
    const steps = [['ArrowRight', '3', '4'], ['.klSsNext', '1', '2'], ['ArrowLeft', '1', '2'],
        ['.klSsDot >> nth=2', '3', '4'], ['.klSsPrev', '3', '4']];
    for (const [action, held, next] of steps) {
        await page.clock.runFor(500);
        await act(page, action);
        await page.clock.runFor(900);
        const during = (await state(page)).shown;
        await page.clock.runFor(200);
        assert.deepEqual([during, (await state(page)).dots], [held, next], action);
    }
    const pause = page.locator('.klSsPause');
    for (const [press, label, slide] of [[() => pause.click(), 'Play', '4'], [() => page.keyboard.press(' '), 'Pause', '1']]) {
        await press();
        await page.clock.runFor(label === 'Play' ? 5000 : 1100);
        assert.deepEqual([(await state(page)).shown, await pause.getAttribute('aria-label')], [slide, label]);
    }
    await page.done();
    // Without autorun the page stays on slide 1 and has no pause; buttons, keys and dots move.
    const manual = await visit(shows.manual, laptop, true);
    await manual.clock.runFor(5000);
    assert.deepEqual([(await state(manual)).shown, await manual.locator('.klSsPause').count()], ['1', 0]);
    for (const [action, expected] of [['.klSsPrev', 4], ['ArrowRight', 1], ['.klSsNext', 2], ['.klSsDot >> nth=2', 3]]) {
        await act(manual, action);
        const s = await state(manual);
        assert.deepEqual([s.shown, s.counter, s.dots], [`${expected}`, `${expected} / 4`, `${expected}`], action);
    }
    await manual.done();
});

test('offline at both sizes: every image from the output folder, slides at their own aspect, the logo clear of the dots, captions readable', async () => {
    for (const device of [laptop, phone]) {
        const page = await visit(shows.defaults, device);
        const seen = await page.evaluate(() => {
            const meet = (a, b) => a.right > b.left && a.left < b.right && a.bottom > b.top && a.top < b.bottom;
            const aspects = [...document.querySelectorAll('.klSsSlides')].map((slide) => {
                const [was, img] = [slide.style.display, slide.querySelector(':scope > img')];
                slide.style.display = 'block';
                const { width, height } = img.getBoundingClientRect();
                slide.style.display = was;
                return Math.abs(width / height / (img.naturalWidth / img.naturalHeight) - 1);
            });
            const logo = document.querySelector('.klSsSlides[style*=block] .klSsRef img').getBoundingClientRect();
            return {
                broken: [...document.images].filter((i) => !i.complete || !i.naturalWidth).map((i) => i.src),
                worstAspect: Math.max(...aspects) <= 0.06 ? 'within 6 %' : aspects,
                logo: logo.width > 0 && logo.right <= innerWidth
                    ? [...document.querySelectorAll('.klSsDot')].filter((d) => meet(d.getBoundingClientRect(), logo)).length : 'outside',
            };
        });
        assert.deepEqual(seen, { broken: [], worstAspect: 'within 6 %', logo: 0 }, device.name);
        // The font stylesheet the page names is the one request that would leave the machine.
        assert.deepEqual(page.context().away.filter((u) => !u.startsWith('https://fonts.googleapis.com/css')), [], device.name);
        await page.done();
        // Captions and the counter keep a contrast of 3:1 over a white and a black photo, light or dark.
        for (const show of [shows.light, shows.dark]) {
            const page = await visit(show, device, true);
            for (const [slide, photo] of [[1, 'white'], [2, 'black']]) {
                await page.evaluate((n) => {
                    currentSlide(n);
                    document.getAnimations().forEach((a) => a.finish());
                }, slide);
                for (const part of ['.klSsText', '.klSsNumbertext']) {
                    const ratio = await contrast(page, page.locator(`.klSsSlides >> nth=${slide - 1} >> ${part}`));
                    assert.ok(ratio >= 3, `${device.name} ${path.basename(path.dirname(show))} ${photo} ${part}: ${ratio}`);
                }
            }
            await page.done();
        }
    }
});

test('the slider shows the first photo in a box of the exact size, then the later ones', async () => {
    const page = await visit(shows.slider);
    const container = await page.locator('.klSsSlideshow-container').boundingBox();
    assert.deepEqual([container.width, container.height], [320, 200]);
    // A slide is in view when it lies exactly on the container (a CSS animation: real time).
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
    await inView(2);
    await page.done();
});
