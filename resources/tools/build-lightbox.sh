#!/usr/bin/env bash
# Writes the two lightbox scripts from one source; they differ only in the caption flag.
# jquery.lightbox.js: no caption; jquery02.lightbox.js: the anchor's title as caption.
set -euo pipefail
tools="$(cd "$(dirname "$0")" && pwd)"
out="$tools/../lightbox"
mkdir -p "$out"
sed 's/@SHOW_CAPTION@/false/' "$tools/lightbox.js.in" > "$out/jquery.lightbox.js"
sed 's/@SHOW_CAPTION@/true/' "$tools/lightbox.js.in" > "$out/jquery02.lightbox.js"
