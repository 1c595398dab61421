// SPDX-License-Identifier: Apache-2.0
// What was typed into a password field, without copies of it that nobody overwrites.
//
// The toolkit's own way to a field's text leaves two behind in memory that is given back, so the text is taken from the
// place where the desktop's field keeps it. That place is overwritten by the desktop when characters are deleted from
// the field and when the field goes away; a paste comes through the clipboard, which is not ours.
#ifndef COUNTERSIGN_HO_TYPED_SECRET_H
#define COUNTERSIGN_HO_TYPED_SECRET_H

#include <cstddef>
#include <memory>
#include <string_view>

class wxTextCtrl;

// A copy of a single-line field's text, UTF-8, which is overwritten when it goes away. Throws std::bad_alloc without
// memory. Main thread only.
class hoTypedSecret
{
public:
    explicit hoTypedSecret(const wxTextCtrl& field);
    ~hoTypedSecret();
    hoTypedSecret(const hoTypedSecret&) = delete;
    hoTypedSecret& operator=(const hoTypedSecret&) = delete;

    std::string_view text() const { return std::string_view(_pBytes.get(), _length); }

private:
    std::size_t _length;
    std::unique_ptr<char[]> _pBytes;
};

// Shows what is typed into a password field, or hides it. While it is shown, what draws it has copies of its own.
void hoShowTypedSecret(wxTextCtrl& field, bool isShown);

#endif
