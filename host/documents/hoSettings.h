// SPDX-License-Identifier: Apache-2.0
// What the application remembers between runs: names with values, in one small text file of the user's.
//
// Names hold ASCII letters, digits, '.', '-' and '_'; values are any bytes, escaped in the file (hoToPercentText). One
// line is one setting, "name=value". Other names must not be used: nobody checks. Never put a key, a passphrase or a
// document's contents here. Only std::bad_alloc comes out. Owned and used by one thread.
#ifndef COUNTERSIGN_HO_SETTINGS_H
#define COUNTERSIGN_HO_SETTINGS_H

#include "platform/baseTools/gtString.h"

#include <map>
#include <string>
#include <vector>

class hoSettings
{
public:
    // The text of a setting; fallback when there is none.
    gtString text(const gtString& name, const gtString& fallback = gtString()) const;
    // The number of a setting; fallback when there is none, when it is no whole decimal number, or when it lies outside
    // least and most.
    long number(const gtString& name, long fallback, long least, long most) const;
    // The values of name.1, name.2 and so on up to the first that is missing.
    std::vector<gtString> texts(const gtString& name) const;

    void setText(const gtString& name, const gtString& value) { _values[name] = value; }
    void setNumber(const gtString& name, long value) { _values[name] = std::to_string(value); }
    // Takes the place of all values of that list, so that a shorter list leaves none behind.
    void setTexts(const gtString& name, const std::vector<gtString>& values);

    // Takes away all settings whose names begin so.
    void remove(const gtString& beginning);

    // Replaces all settings by those of the file. A file that is missing, unreadable, larger than a mebibyte or not a
    // regular file leaves no settings and gives false; lines that make no sense are passed over.
    bool load(const gtString& path);

    // Writes the file: beside it first, readable by its owner alone, then renamed, so that there is always a whole one.
    // Missing folders are made. False, and nothing of the old file changed, when that is not possible.
    bool save(const gtString& path) const;

private:
    std::map<gtString, gtString> _values;
};

// The settings' file of the user who runs this: countersign/settings below $XDG_CONFIG_HOME if that is an absolute
// path, else below .config in the home folder. Empty when there is no home folder.
gtString hoUserSettingsPath();

#endif
