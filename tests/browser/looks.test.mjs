// How a gallery made with no setting changed looks, on a laptop and on a phone, with real
// photographs captioned through their EXIF comments.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import fs from 'node:fs';
import path from 'node:path';
import { after, before, test } from 'node:test';
import { freshDir, generate, launch, open, outputRoot } from './support.mjs';

const nature = '/usr/share/backgrounds/mate/nature';
let browser;
let out;

before(async () => {
    const root = freshDir('looks');
    const photos = fs.readdirSync(nature).filter((n) => n.endsWith('.jpg')).sort().slice(0, 9)
        .map((name, i) => {
            const file = path.join(root, name);
            fs.copyFileSync(path.join(nature, name), file);
            const caption = i === 1 ? 'A longer caption that has to wrap over more than one line '
                + 'when the cell is narrow' : `Photo ${i + 1}`;
            execFileSync(process.env.ORVELLA_BINARY, ['meta', 'set-comment', file, caption]);
            return { file };
        });
    out = generate(path.join(root, 'site'), {}, photos);
    browser = await launch();
});

after(async () => browser && browser.closeAll());

const inside = (inner, outer) => inner.left >= outer.left - 1 && inner.right <= outer.right + 1
    && inner.top >= outer.top - 1 && inner.bottom <= outer.bottom + 1;

for (const width of [1440, 390]) {
    test(`default gallery at ${width} pixels: filled, centred, captions inside, readable`, async () => {
        const page = await open(browser, path.join(out, 'myIndex.html'));
        await page.setViewportSize({ width, height: 900 });
        await page.waitForFunction(() => [...document.images].every((i) => i.complete));
        const cells = await page.$$eval('.klOVresponsive', (els) => els.map((cell) => {
            const box = (e) => JSON.parse(JSON.stringify(e.getBoundingClientRect()));
            const img = cell.querySelector('img');
            const caption = cell.querySelector('.klOVdescription');
            return {
                cell: box(cell), img: box(img), caption: box(caption),
                natural: img.naturalWidth / img.naturalHeight, naturalWidth: img.naturalWidth,
                captionFont: parseFloat(getComputedStyle(caption).fontSize),
            };
        }));
        const pageWidth = await page.evaluate(() => document.documentElement.clientWidth);
        assert.equal(cells.length, 9);
        const left = Math.min(...cells.map((c) => c.img.left));
        const right = pageWidth - Math.max(...cells.map((c) => c.img.right));
        // The thumbnails span the page, with margins within 4 % of each other (the stylesheet's
        // cells are 24 % wide, so four of them leave 4 % of the row on the right).
        assert.ok(pageWidth - left - right > 0.8 * pageWidth, `${left} ${right} of ${pageWidth}`);
        assert.ok(Math.abs(left - right) < 0.04 * pageWidth, `margins ${left} and ${right}`);
        for (const c of cells) {
            // Shown at their own proportions, never stretched, and sharp (not enlarged).
            assert.ok(Math.abs(c.img.width / c.img.height - c.natural) < 0.02, JSON.stringify(c));
            assert.ok(c.img.width <= c.naturalWidth + 1, JSON.stringify(c));
            assert.ok(inside(c.caption, c.cell), JSON.stringify(c));
            assert.ok(c.caption.top >= c.img.bottom - 1, JSON.stringify(c));
            assert.ok(c.captionFont >= 14, `caption font ${c.captionFont}px`);
        }
        // Neighbouring cells do not overlap.
        for (let i = 1; i < cells.length; ++i) {
            const [a, b] = [cells[i - 1].cell, cells[i].cell];
            assert.ok(b.left >= a.right - 1 || b.top >= a.bottom - 1, `${i}: ${JSON.stringify([a, b])}`);
        }
        await page.screenshot({ path: path.join(outputRoot, `looks-${width}.png`), fullPage: true });
        assert.deepEqual(page.errors, []);
    });
}
