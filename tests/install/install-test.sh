#!/usr/bin/env bash
# Installs orvella into a scratch DESTDIR as `make install` does and checks what a desktop and a
# terminal find there: the program, desktop entry, MIME type, icons, manual page and completion;
# uninstalls; then builds the Debian package and reads it back with dpkg-deb.
#
# Usage: install-test.sh BUILD_DIR VERSION SCRATCH_DIR
set -uo pipefail
build=$1 version=$2 scratch=$3

failures=0
fail() {
    echo "FAIL: $*" >&2
    failures=$((failures + 1))
}
contains() {  # contains TEXT WORD...: every WORD is a line of TEXT
    local text=$1 word
    shift
    for word in "$@"; do grep -qxF -- "$word" <<<"$text" || return 1; done
}

rm -rf "$scratch"
mkdir -p "$scratch"
dest=$scratch/root
export LC_ALL=C.UTF-8

DESTDIR=$dest cmake --install "$build" --prefix /usr >"$scratch/install.log" 2>&1 ||
    fail "cmake --install: $(cat "$scratch/install.log")"
expected=(
    usr/bin/orvella
    usr/share/applications/orvella.desktop
    usr/share/mime/packages/orvella.xml
    usr/share/icons/hicolor/scalable/apps/orvella.svg
    usr/share/icons/hicolor/48x48/apps/orvella.png
    usr/share/icons/hicolor/128x128/apps/orvella.png
    usr/share/icons/hicolor/256x256/apps/orvella.png
    usr/share/man/man1/orvella.1.gz
    usr/share/bash-completion/completions/orvella
)
installed=$(cd "$dest" && find . -type f -printf '%P\n' | sort)
[[ $installed == "$(printf '%s\n' "${expected[@]}" | sort)" ]] ||
    fail "installed files differ from the list:"$'\n'"$installed"

bin=$dest/usr/bin/orvella
[[ -x $bin ]] || fail "usr/bin/orvella is not executable"
out=$("$bin" --version)
[[ $? == 0 && $out == "orvella $version" ]] || fail "--version printed \"$out\""
help=$("$bin" --help) || fail "--help failed"
commands=$(awk '/^Commands:/ { on = 1; next } on && !NF { on = 0 } on { print $1 }' <<<"$help")
[[ -n $commands ]] || fail "--help lists no commands"
all_help=$help
for command in $commands; do
    text=$("$bin" "$command" --help) || fail "$command --help failed"
    all_help+=$'\n'$text
done
options=$(grep -oE -- '(^|[^a-z-])--[a-z][a-z0-9-]*' <<<"$all_help" | grep -oE -- '--[a-z0-9-]+' |
    sort -u)

desktop=$dest/usr/share/applications/orvella.desktop
validation=$(desktop-file-validate "$desktop" 2>&1)
[[ $? == 0 && -z $validation ]] || fail "desktop-file-validate: $validation"
entry=$(sed -n '/^\[Desktop Entry\]/,/^\[/p' "$desktop")
contains "$entry" "Name=Orvella" "GenericName=Photo Web Gallery Creator" "Exec=orvella %F" \
    "Icon=orvella" "Categories=Graphics;Photography;" "Type=Application" ||
    fail "desktop entry keys: $entry"
mimetypes=$(grep '^MimeType=' <<<"$entry" | cut -d= -f2 | tr ';' '\n')
contains "$mimetypes" image/jpeg image/png image/tiff application/x-orvella-project ||
    fail "desktop entry MIME types: $mimetypes"

# The project type: the MIME database tools take the package and map *.orvprj to it.
mkdir -p "$scratch/mime/packages"
cp "$dest/usr/share/mime/packages/orvella.xml" "$scratch/mime/packages/"
update-mime-database "$scratch/mime" 2>"$scratch/mime.log" ||
    fail "update-mime-database: $(cat "$scratch/mime.log")"
grep -q '^50:application/x-orvella-project:\*\.orvprj$' "$scratch/mime/globs2" ||
    fail "*.orvprj is not mapped: $(cat "$scratch/mime/globs2")"
[[ -f $scratch/mime/application/x-orvella-project.xml ]] || fail "the project type is missing"

for size in 48 128 256; do
    png=$dest/usr/share/icons/hicolor/${size}x${size}/apps/orvella.png
    dims="$(vipsheader -f width "$png")x$(vipsheader -f height "$png") $(vipsheader -f bands "$png")"
    [[ $dims == "${size}x${size} 4" ]] || fail "icon $size: $dims"
done
svg=$dest/usr/share/icons/hicolor/scalable/apps/orvella.svg
dims="$(vipsheader -f width "$svg" 2>&1)x$(vipsheader -f height "$svg" 2>&1)"
[[ $dims == 256x256 ]] || fail "scalable icon: $dims"

man=$dest/usr/share/man/man1/orvella.1.gz
warnings=$(MANWIDTH=80 man --warnings -l "$man" 2>&1 >"$scratch/man.txt") || fail "man -l failed"
[[ -z $warnings ]] || fail "man warnings: $warnings"
page=$(cat "$scratch/man.txt")
for command in $commands; do
    grep -qE "^ +orvella $command\$" <<<"$page" || fail "no section for \"$command\" in the manual"
done
for option in $options; do
    grep -qF -- "$option" <<<"$page" || fail "option $option is not in the manual"
done
grep -qF "orvella $version" <<<"$page" || fail "the manual does not name version $version"

completion=$dest/usr/share/bash-completion/completions/orvella
complete_words() {  # the words bash completion offers for a command line (last word: "" or a start)
    bash -c 'source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _orvella
             printf "%s\n" "${COMPREPLY[@]}"' _ "$completion" "$@" 2>&1
}
offered=$(cd "$scratch" && complete_words orvella "")
contains "$offered" $commands || fail "commands offered: $offered"
offered=$(complete_words orvella --)
contains "$offered" --help --version --verbose || fail "global options offered: $offered"
for command in $commands; do
    # Options the command's help names, leaving out `quoted` lines of other commands.
    command_options=$("$bin" "$command" --help | sed 's/`[^`]*`//g' |
        grep -oE -- '(^|[^a-z-])--[a-z][a-z0-9-]*' | grep -oE -- '--[a-z0-9-]+' | sort -u)
    offered=$(complete_words orvella "$command" gallery --)
    contains "$offered" $command_options --help || fail "$command options offered: $offered"
done
kinds=$(complete_words orvella settings "")
[[ -n $kinds ]] && contains "$kinds" gallery || fail "kinds offered: $kinds"
for kind in $kinds; do
    names=$("$bin" settings "$kind" | tail -n +2 | cut -f1 | sed 's/$/=/' | sort)
    [[ -n $names ]] || fail "orvella settings $kind lists nothing"
    offered=$(complete_words orvella generate "$kind" --out x --set "" | sort)
    [[ $offered == "$names" ]] || fail "settings of $kind offered differ from orvella settings $kind"
done
offered=$(complete_words orvella generate gallery --set tfPageT)
[[ $offered == "tfPageTitle=" ]] || fail "--set tfPageT completes to: $offered"

DESTDIR=$dest cmake --build "$build" --target uninstall >"$scratch/uninstall.log" 2>&1 ||
    fail "uninstall: $(cat "$scratch/uninstall.log")"
left=$(find "$dest" -type f -o -type l)
[[ -z $left ]] || fail "left after uninstall: $left"

if ! command -v dpkg-shlibdeps >/dev/null || ! command -v cpack >/dev/null; then
    echo "SKIPPED: the Debian package (dpkg-shlibdeps or cpack missing)"
else
    (cd "$build" && cpack -G DEB -B "$scratch/package") >"$scratch/cpack.log" 2>&1 ||
        fail "cpack: $(cat "$scratch/cpack.log")"
    deb=$scratch/package/orvella_${version}_$(dpkg --print-architecture).deb
    if [[ ! -f $deb ]]; then
        fail "no package $deb"
    else
        info=$(dpkg-deb --info "$deb")
        depends=$(dpkg-deb --field "$deb" Depends | tr ',' '\n' | sed 's/^ *//; s/ .*//')
        for library in 'libqt6core6(t64)?' 'libqt6gui6(t64)?' 'libqt6widgets6(t64)?' \
            'libvips42(t64)?' 'libexiv2-[0-9]+(v5|t64)?' 'qt6-qpa-plugins'; do
            grep -qxE "$library" <<<"$depends" || fail "Depends names no $library: $depends"
        done
        for script in postinst postrm; do
            grep -qE "^ +[0-9]+ bytes, +[0-9]+ lines +\* +$script " <<<"$info" ||
                fail "no executable $script: $info"
        done
        contents=$(dpkg-deb --contents "$deb" | awk '{ print $NF }')
        for file in "${expected[@]}"; do
            grep -qxF "./$file" <<<"$contents" || fail "the package lacks $file"
        done
        # The package's program runs, and its dependencies can be met here.
        dpkg-deb -x "$deb" "$scratch/unpacked"
        out=$("$scratch/unpacked/usr/bin/orvella" --version)
        [[ $out == "orvella $version" ]] || fail "packaged --version printed \"$out\""
        if command -v apt-get >/dev/null; then
            apt-get install -s "$deb" >"$scratch/apt.log" 2>&1 ||
                fail "apt-get cannot meet the dependencies: $(cat "$scratch/apt.log")"
        fi
    fi
fi

if ((failures)); then
    echo "$failures checks failed" >&2
    exit 1
fi
echo "install, uninstall and package: all checks passed"
