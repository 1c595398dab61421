#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# What is said of the release in several places agrees.
#
#   release.sh CASE SOURCE-FOLDER
set -u
case=$1 source=$2
metainfo=$source/desktop/org.countersign.Countersign.metainfo.xml

complain() {
    printf '%s\n' "$*" >&2
    exit 1
}

version=$(sed -n 's/^ *VERSION \([0-9.]*\)$/\1/p' "$source/CMakeLists.txt" | head -n 1)
[ -n "$version" ] || complain "CMakeLists.txt has no version"
# "VERSION DATE" a line, the newest first.
changes=$(sed -nE 's/^## ([0-9]+\.[0-9]+\.[0-9]+) \(([0-9]{4}-[0-9]{2}-[0-9]{2})\)$/\1 \2/p' "$source/CHANGELOG.md")
newest=$(head -n 1 <<<"$changes")

case $case in
    versionsAgree)
        [ "${newest% *}" = "$version" ] || complain "CMakeLists.txt: $version, CHANGELOG.md: ${newest% *}"

        releases=$(sed -nE 's/.*<release version="([^"]*)" date="([^"]*)".*/\1 \2/p' "$metainfo")
        [ "$releases" = "$changes" ] || complain "CHANGELOG.md: $changes, metainfo: $releases"

        if [ -f "$source/debian/changelog" ]; then
            debian=$(sed -nE '1s/^countersign \(([^)]*)\) .*/\1/p' "$source/debian/changelog")
            # A revision of the package alone changes what is behind the plus sign or the tilde.
            [ "${debian%%[+~]*}" = "$version" ] || complain "CMakeLists.txt: $version, debian/changelog: $debian"
            written=$(sed -n 's/^ -- .*>  //p' "$source/debian/changelog" | tail -n 1)
            first=$(tail -n 1 <<<"$changes")
            [ "$(date -u -d "$written" +%F)" = "${first#* }" ] ||
                complain "the first release is of ${first#* } in CHANGELOG.md and of $written in debian/changelog"
        fi
        ;;

    changesAreInOrder)
        # All second-level headings are releases, but for the topmost one.
        headings=$(grep -c '^## ' "$source/CHANGELOG.md")
        [ "$(grep -m 1 '^## ' "$source/CHANGELOG.md")" = '## Unreleased' ] || complain "the topmost heading is another"
        [ "$headings" -eq $((1 + $(wc -l <<<"$changes"))) ] || complain "a heading is neither a version nor the topmost"
        [ "$(sort -rV <<<"$changes")" = "$changes" ] || complain "the versions are not in order"
        while read -r _ day; do
            [ "$(date -u -d "$day" +%F 2>/dev/null)" = "$day" ] || complain "no such day: $day"
        done <<<"$changes"
        ;;

    tagIsTheVersion)
        # On a tagged commit; skipped (77) elsewhere.
        tags=$(git -C "$source" tag --points-at HEAD 2>/dev/null | grep -E '^v[0-9]')
        if [ -z "$tags" ]; then
            echo "skipped: this commit has no tag of a version"
            exit 77
        fi
        [ "$tags" = "v$version" ] || complain "CMakeLists.txt: $version, tags: $tags"
        sed -n '/^## Unreleased$/,/^## [0-9]/p' "$source/CHANGELOG.md" | grep -q '^- ' &&
            complain "the tagged commit has changes that belong to no release"
        exit 0
        ;;

    tagsAreLookedAt)
        # The case before this, in repositories that have tags.
        here=$(mktemp -d)
        trap 'rm -rf "$here"' EXIT
        try() {
            "$0" tagIsTheVersion "$here" >"$here/output" 2>&1
            [ "$?" -eq "$1" ] || complain "$2: status other than $1: $(cat "$here/output")"
        }
        git() {
            command git -C "$here" -c user.name=x -c user.email=x@x.example -c init.defaultBranch=main \
                -c commit.gpgSign=false -c tag.gpgSign=false "$@" >"$here/git" 2>&1 || complain "$(cat "$here/git")"
        }
        git init
        cp "$source/CMakeLists.txt" "$here"
        printf '## Unreleased\n\n## %s (2000-01-01)\n\n- A change\n' "$version" >"$here/CHANGELOG.md"
        git add CMakeLists.txt CHANGELOG.md
        git commit -m x
        try 77 "no tag"
        git tag other
        try 77 "a tag that is no version"
        git tag "v$version"
        try 0 "the version's tag"
        git tag v77.0.0
        try 1 "a tag besides"
        git tag -d v77.0.0
        printf '## Unreleased\n\n- Another\n\n## %s (2000-01-01)\n\n- A change\n' "$version" >"$here/CHANGELOG.md"
        try 1 "changes that were not released"
        git tag -d "v$version"
        git tag v77.0.0
        try 1 "another version's tag"
        ;;

    licenceIsSaid)
        grep -q '<project_license>Apache-2.0</project_license>' "$metainfo" || complain "metainfo has another licence"
        cd "$source" || exit 1
        [ -f LICENSE ] || complain "LICENSE is not there"
        [ -e .git ] || { echo "skipped: which files are ours is known in a repository only" && exit 77; }
        # In the first lines, and nothing else than this licence. Metadata are free for all, as software centres ask.
        while read -r file; do
            line=$(head -n 5 "$file" | grep -m 1 -o 'SPDX-License-Identifier: .*' | sed 's/ *\(-->\|\*\/\)$//')
            case $file in
                *.metainfo.xml) [ "$line" = 'SPDX-License-Identifier: CC0-1.0' ] ;;
                *) [ "$line" = 'SPDX-License-Identifier: Apache-2.0' ] ;;
            esac || complain "$file says '$line'"
        done < <(git ls-files '*.cpp' '*.h' '*.c' '*.sh' '*.py' '*.cmake' '*.cmake.in' '*CMakeLists.txt' '*.xml' \
            'desktop/actions/*' ':!tests/project/mutation')
        ;;

    screenshotsAreThere)
        amount=0
        while read -r width height name; do
            file=$source/docs/images/$name
            [ -f "$file" ] || complain "docs/images/$name is not there"
            size=$(od -An -N 8 -j 16 -t u1 "$file")
            read -r _ _ w1 w0 _ _ h1 h0 <<<"$size"
            [ "$((w1 * 256 + w0))x$((h1 * 256 + h0))" = "${width}x$height" ] ||
                complain "$name is $((w1 * 256 + w0))x$((h1 * 256 + h0)), metainfo says ${width}x$height"
            amount=$((amount + 1))
        done < <(sed -nE 's/.*<image type="source" width="([0-9]*)" height="([0-9]*)">.*\/([^/<]*)<.*/\1 \2 \3/p' "$metainfo")
        [ "$amount" -gt 0 ] || complain "there are no screenshots"
        [ "$amount" -eq "$(grep -c '<screenshot[ >]' "$metainfo")" ] ||
            complain "$amount pictures for $(grep -c '<screenshot[ >]' "$metainfo") screenshots"
        ;;

    *)
        complain "unknown case '$case'"
        ;;
esac
