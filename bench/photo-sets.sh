# The photo sets of the benchmarks; sourced by them.
#   mate   the JPEGs of /usr/share/backgrounds/mate (mate-backgrounds), 1280 to 5640 px wide
#   large  the 5120 x 2880 photos of plasma-workspace-wallpapers, JPEG and PNG
# A benchmark given no BENCH_SET runs itself once per set.

# The photos of set $1, one per line; none when the set is not installed.
photo_set() {
    case "$1" in
        mate) find /usr/share/backgrounds/mate -type f \( -iname '*.jpg' -o -iname '*.jpeg' \) | sort ;;
        large) find /usr/share/wallpapers -path '*/contents/images/5120x2880.*' -type f 2>/dev/null | sort ;;
    esac
}

# Runs "$@" (the benchmark with its arguments) once per set unless BENCH_SET names one; fills
# `sources` with the photos of the set otherwise. Exits when the set is not installed.
for_each_set() {
    if [ -z "${BENCH_SET:-}" ]; then
        for set in mate large; do BENCH_SET="$set" "$@"; done
        exit 0
    fi
    mapfile -t sources < <(photo_set "$BENCH_SET")
    if [ "${#sources[@]}" -eq 0 ]; then
        echo "photo set $BENCH_SET is not installed (mate-backgrounds, plasma-workspace-wallpapers): skipped"
        exit 0
    fi
    echo "photo set: $BENCH_SET (${#sources[@]} photos)"
}
