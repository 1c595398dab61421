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
        git ls-files --error-unmatch LICENSE >/dev/null || complain "git does not list the files"
        # In the first lines, and nothing else than this licence. Metadata are free for all, as software centres ask.
        wrong=$(git ls-files -z '*.cpp' '*.h' '*.c' '*.sh' '*.py' '*.cmake' '*.cmake.in' '*CMakeLists.txt' '*.xml' \
            'desktop/actions/*' ':!tests/project/mutation' | xargs -0 awk '
            FNR > 5 { nextfile }
            match($0, /SPDX-License-Identifier: .*/) && !(FILENAME in said) {
                said[FILENAME] = substr($0, RSTART, RLENGTH)
                sub(/ *(-->|\*\/)$/, "", said[FILENAME])
            }
            END {
                for (i = 1; i < ARGC; ++i) {
                    licence = ARGV[i] ~ /\.metainfo\.xml$/ ? "CC0-1.0" : "Apache-2.0"
                    if (said[ARGV[i]] != "SPDX-License-Identifier: " licence) print ARGV[i] " says \"" said[ARGV[i]] "\""
                }
            }')
        [ -z "$wrong" ] || complain "$wrong"
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

    noticesAreThere)
        # What is compiled in is named with its notice, as its own package words it.
        words() {
            tr -s '[:space:]' ' ' | sed 's/ \. / /g'
        }
        ours=$(words <"$source/debian/copyright")
        # hasNotice PACKAGE OWNER BEGIN END: the notice goes from one expression to the other.
        hasNotice() {
            local theirs=/usr/share/doc/$1/copyright notice
            if [ ! -f "$theirs" ]; then
                echo "skipped: $1 is not installed, or without its notice"
                exit 77
            fi
            notice=$(sed -n "/^ $3/,/^ $4/{p;/^ $4/q}" "$theirs" | words)
            [ "${#notice}" -gt 1000 ] || complain "$theirs has another form"
            [ "${ours#*"${notice# }"}" != "$ours" ] || complain "debian/copyright does not have the notice of $1"
            [ "${ours#*"$2"}" != "$ours" ] || complain "debian/copyright does not say that $1 is $2's"
        }
        hasNotice libcli11-dev 'University of Cincinnati' 'Redistribution and use' 'SUCH DAMAGE'
        hasNotice nlohmann-json3-dev 'Niels Lohmann' 'Permission is hereby granted' 'SOFTWARE\.'
        ;;

    packagesNameTheirSources)
        # As README says, wherever the packages are built.
        if [ ! -f /usr/share/dpkg/pkg-info.mk ]; then
            echo "skipped: reading debian/rules takes the package dpkg-dev"
            exit 77
        fi
        debian=$(sed -nE '1s/^countersign \(([^)]*)\) .*/\1/p' "$source/debian/changelog")
        elsewhere=$(mktemp -d)
        trap 'rm -rf "$elsewhere"' EXIT
        cp -r "$source/debian" "$elsewhere"
        # shellcheck disable=SC2016
        said=$(make -s --no-print-directory -C "$elsewhere" -f debian/rules \
            --eval='said: ; @echo $(DEB_CFLAGS_MAINT_APPEND) $(DEB_CXXFLAGS_MAINT_APPEND)' said)
        expected="-ffile-prefix-map=$elsewhere=/usr/src/countersign-${debian%-*}"
        [ "$said" = "$expected $expected" ] || complain "the packages are compiled with: $said"
        ;;

    flatpakManifest)
        manifest=$source/flatpak/org.countersign.Countersign.yml
        if ! python3 -c 'import yaml' 2>/dev/null; then
            echo "skipped: python3-yaml is not installed"
            exit 77
        fi
        python3 - "$manifest" <<'END' || exit 1
import os, re, sys, yaml

path = sys.argv[1]
name = os.path.splitext(os.path.basename(path))[0]


class Loader(yaml.SafeLoader):
    """Takes no key twice."""

    def construct_mapping(self, node, deep=False):
        keys = [self.construct_object(key) for key, _ in node.value]
        expect(len(keys) == len(set(keys)), f"a key of {keys} stands there twice")
        return super().construct_mapping(node, deep)


def expect(condition, text):
    if not condition:
        sys.exit(f"{path}: {text}")


def known(mapping, names, where):
    expect(set(mapping) <= set(names.split()), f"unknown in {where}: {set(mapping) - set(names.split())}")


manifest = yaml.load(open(path), Loader)
known(manifest, "id runtime runtime-version sdk command finish-args cleanup modules", "the manifest")
for key in "id runtime runtime-version sdk command".split():
    expect(isinstance(manifest.get(key), str) and manifest[key], f"{key} is no text")
expect(manifest["id"] == name, f"the id is {manifest['id']}")
root = os.path.join(os.path.dirname(path), "..")
entry = open(os.path.join(root, "desktop", name + ".desktop")).read()
expect(f"Exec={manifest['command']} " in entry, "the command is not that of the desktop entry")
for argument in manifest["finish-args"]:
    expect(re.fullmatch(r"--(socket|share|env|filesystem|device|talk-name)=\S+", argument), f"argument {argument}")
    expect(argument != "--share=network", "it asks for the network")
for pattern in manifest["cleanup"]:
    expect(pattern.startswith("/") or pattern.startswith("*"), f"cleanup {pattern}")
expect([module["name"] for module in manifest["modules"]][-1] == "countersign", "the last module is not ours")
for module in manifest["modules"]:
    known(module, "name buildsystem builddir config-opts sources", module["name"])
    forms = {"cmake-ninja": r"-D\w+=\S+", "autotools": r"--[a-z]\S*"}
    expect(module["buildsystem"] in forms, f"the build system of {module['name']}")
    form = forms[module["buildsystem"]]
    expect(all(re.fullmatch(form, option) for option in module.get("config-opts", [])), f"options of {module['name']}")
    for source in module["sources"]:
        if source["type"] == "git":
            known(source, "type url tag commit", module["name"])
            expect(source["url"].startswith("https://") and source["tag"], f"the source of {module['name']}")
        else:
            known(source, "type path skip", module["name"])
            expect(source["type"] == "dir", f"the source of {module['name']}")
            found = os.path.join(os.path.dirname(path), source["path"], "CMakeLists.txt")
            expect(os.path.isfile(found), f"there is nothing to build in {source['path']}")
# An option that does not exist would be taken without a word.
options = re.findall(r"^\s*(?:option|set)\((COUNTERSIGN_\w+)", open(os.path.join(root, "CMakeLists.txt")).read(), re.M)
for option in manifest["modules"][-1]["config-opts"]:
    option = option[2:].split("=")[0]
    expect(option.startswith("CMAKE_") or option in options, f"there is no option {option}")
END
        # The builder's own reading, where it is installed.
        if command -v flatpak-builder >/dev/null 2>&1; then
            # It makes a folder where it is started.
            here=$(mktemp -d)
            trap 'rm -rf "$here"' EXIT
            shown=$(cd "$here" && flatpak-builder --show-manifest "$manifest" 2>&1) || complain "$shown"
            ! grep -i 'unknown property' <<<"$shown" || complain "flatpak-builder finds fault"
        fi
        ;;

    *)
        complain "unknown case '$case'"
        ;;
esac
