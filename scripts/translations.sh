#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Collects the texts of the window's sources into the template po/countersign.pot, and brings the catalogues po/*.po up to
# date with it (needs xgettext and msgmerge, package gettext). What has no translation then, or is marked "fuzzy" because
# it resembles another text, is for a translator.
#
#   scripts/translations.sh
#   scripts/translations.sh --template FILE    writes the template there, and changes nothing else
set -u
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

command -v xgettext >/dev/null || fail "looking for xgettext (install gettext)"
template=$root/po/countersign.pot
[ "${1:-}" != --template ] || template=$(realpath -- "${2:?--template takes a file}")
cd "$root" || fail "entering $root"

# Nothing that differs from day to day, or when a line is added somewhere.
LC_ALL=C xgettext --language=C++ --from-code=UTF-8 --add-comments --add-location=file --output=- \
    --package-name=Countersign --copyright-holder='The Countersign developers' \
    --msgid-bugs-address=developers@countersign.example \
    --keyword --keyword=_ --keyword=wxTRANSLATE --keyword=wxGETTEXT_IN_CONTEXT:1c,2 --keyword=hoCounted:1,2 \
    --keyword=hoTranslated --keyword=hoTranslatedPlural:1,2 \
    --flag=_:1:pass-c-format --flag=hoTranslated:1:pass-c-format --flag=hoFilledText:1:c-format \
    --flag=hoCounted:1:c-format --flag=hoCounted:2:c-format \
    --flag=hoTranslatedPlural:1:c-format --flag=hoTranslatedPlural:2:c-format \
    host/*.cpp host/messages/*.cpp host/window/*.cpp po/toolkit-texts.h |
    sed -e '/^"POT-Creation-Date: /d' -e 's/^# SOME DESCRIPTIVE TITLE\.$/# The texts of the window of Countersign./' \
        -e '/^# Copyright (C) YEAR/d' -e '/^# FIRST AUTHOR/d' -e '1,20s/^#, fuzzy$/#/' -e 's/charset=CHARSET/charset=UTF-8/' \
        -e 's/^# This file is distributed under the same license as .*/# SPDX-License-Identifier: Apache-2.0/' \
        >"$template.new"
[ "${PIPESTATUS[0]}" -eq 0 ] || fail "collecting the texts"
mv "$template.new" "$template" || fail "writing $template"
[ "${1:-}" != --template ] || exit 0

for catalogue in po/*.po; do
    step "updating $catalogue" msgmerge --quiet --update --backup=none --add-location=file "$catalogue" "$template"
    msgattrib --untranslated --no-obsolete --no-wrap "$catalogue" | sed -n 's/^msgid "\(..*\)"$/no translation: \1/p'
    msgattrib --only-fuzzy --no-obsolete --no-wrap "$catalogue" | sed -n 's/^msgid "\(..*\)"$/fuzzy: \1/p'
done
