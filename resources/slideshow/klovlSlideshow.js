/*
 * Orvella slideshow controls, beside the page's own script (loaded from the first slide, so it
 * runs before that script, which stands at the end of the page).
 *
 * - Left / Right arrow keys move like the previous / next buttons.
 * - A move by button, dot or key starts the interval again: the next automatic change comes one
 *   whole interval after it, not a moment later.
 * - A pause button (and the space bar) stops and restarts the automatic changes.
 * - Captions and the photo counter get a backdrop, so they stay readable on light photos; the
 *   buttons' arrows a shadow.
 * - The dots take their clicks: the container's fixed ::after layer would otherwise lie over them.
 * - The maker's logo, which hangs below the show at its right, moves below the dots where they
 *   would meet (a phone, many photos).
 *
 * The page's timer is recognised as the function `showSlides` handed to setTimeout; the last one
 * is kept here so that a move or a pause can put it off.
 */
(function (window, document) {
    'use strict';

    if (window.klSsControls) return;
    window.klSsControls = true;

    var nativeSetTimeout = window.setTimeout;
    var nativeClearTimeout = window.clearTimeout;
    var advance = null;  // the page's showSlides, once its timer has run
    var delay = 0;
    var timer = null;
    var paused = false;

    window.setTimeout = function (fn, ms) {
        if (typeof fn !== 'function' || fn.name !== 'showSlides')
            return nativeSetTimeout.apply(window, arguments);
        advance = fn;
        delay = ms;
        nativeClearTimeout(timer);
        timer = paused ? null : nativeSetTimeout(fn, ms);
        return timer;
    };

    function restart() {
        if (!advance) return;
        nativeClearTimeout(timer);
        timer = paused ? null : nativeSetTimeout(advance, delay);
    }

    // Relative luminance of a computed "rgb(r, g, b)" colour.
    function luminance(colour) {
        var c = (colour.match(/[\d.]+/g) || [0, 0, 0]).slice(0, 3).map(function (v) {
            v = v / 255;
            return v <= 0.03928 ? v / 12.92 : Math.pow((v + 0.055) / 1.055, 2.4);
        });
        return 0.2126 * c[0] + 0.7152 * c[1] + 0.0722 * c[2];
    }

    // A dark backdrop behind light text, a light one behind dark text.
    function backdrop(element) {
        if (!element.textContent.trim()) return;
        var dark = luminance(window.getComputedStyle(element).color) > 0.18;
        element.style.backgroundColor = dark ? 'rgba(0,0,0,0.55)' : 'rgba(255,255,255,0.7)';
    }

    function each(selector, fn) {
        Array.prototype.forEach.call(document.querySelectorAll(selector), fn);
    }

    function meet(a, b) {
        return a.right > b.left && a.left < b.right && a.bottom > b.top && a.top < b.bottom;
    }

    function placeReference() {
        var references = document.querySelectorAll('.klSsRef');
        var dots = document.querySelectorAll('.klSsDot');
        each('.klSsRef', function (reference) {
            reference.style.bottom = '';
        });
        var shown = Array.prototype.filter.call(references, function (reference) {
            return reference.offsetParent !== null;
        })[0];
        if (!shown || !dots.length) return;
        var logo = (shown.querySelector('img') || shown).getBoundingClientRect();
        var reached = Array.prototype.some.call(dots, function (dot) {
            return meet(dot.getBoundingClientRect(), logo);
        });
        if (!reached) return;
        var below = dots[dots.length - 1].getBoundingClientRect().bottom + 4 + logo.height;
        var bottom = shown.offsetParent.getBoundingClientRect().bottom - below + 'px';
        each('.klSsRef', function (reference) {
            reference.style.bottom = bottom;
        });
    }

    function pauseButton(container) {
        var button = document.createElement('button');
        button.type = 'button';
        button.className = 'klSsPause';
        button.style.cssText = 'position:absolute;top:0;right:0;z-index:3;cursor:pointer;' +
            'padding:8px 12px;border:0;border-radius:0 0 0 3px;font:bold 16px/1 sans-serif;' +
            'color:#fff;background:rgba(0,0,0,0.55)';
        function show() {
            button.textContent = paused ? '\u25B6\uFE0E' : '\u2759\u2759';
            button.setAttribute('aria-label', paused ? 'Play' : 'Pause');
            button.title = paused ? 'Play' : 'Pause';
        }
        button.addEventListener('click', function () {
            paused = !paused;
            if (paused) {
                nativeClearTimeout(timer);
                timer = null;
            } else {
                restart();
            }
            show();
        });
        show();
        container.appendChild(button);
        return button;
    }

    document.addEventListener('DOMContentLoaded', function () {
        ['plusSlides', 'currentSlide'].forEach(function (name) {
            var move = window[name];
            if (typeof move !== 'function') return;
            window[name] = function (n) {
                move(n);
                restart();
            };
        });
        each('.klSsText, .klSsNumbertext', backdrop);
        each('.klSsPrev, .klSsNext', function (arrow) {
            arrow.style.textShadow = '0 0 4px #000, 0 0 2px #000';
        });
        var dot = document.querySelector('.klSsDot');
        if (dot) {
            dot.parentNode.style.position = 'relative';
            dot.parentNode.style.zIndex = '3';
        }
        placeReference();
        window.addEventListener('load', placeReference);
        window.addEventListener('resize', placeReference);
        var container = document.querySelector('.klSsSlideshow-container');
        var button = advance && container ? pauseButton(container) : null;

        document.addEventListener('keydown', function (event) {
            if (event.altKey || event.ctrlKey || event.metaKey || event.defaultPrevented) return;
            var target = event.target.tagName;
            if (target === 'INPUT' || target === 'TEXTAREA' || target === 'SELECT') return;
            if (event.key === 'ArrowLeft' || event.key === 'ArrowRight') {
                if (typeof window.plusSlides !== 'function') return;
                window.plusSlides(event.key === 'ArrowLeft' ? -1 : 1);
            } else if (event.key === ' ' && button && target !== 'BUTTON') {
                button.click();
            } else {
                return;
            }
            event.preventDefault();
        });
    });
})(window, document);
