// SPDX-License-Identifier: Apache-2.0
// Narrow text that travels between the rooms.
//
// - A text is a run of bytes and its length; every byte value may occur in it, NUL included. No encoding is assumed.
// - Lengths count bytes, without the terminating NUL that follows every text.
// - A null pointer where characters are expected reads as the empty text. Where a length is given beside the pointer,
//   a negative length reads as 0; exactly that many bytes are taken, NULs included, and the caller must have them.
// - Characters given to a member may lie inside the text that the member changes.
// - std::string and std::string_view become a gtString wherever one is expected; the other way is asked for by name, so
//   that no call has two meanings.
// - A text holds at most INT_MAX bytes. What would make it longer throws std::length_error; what finds no memory throws
//   std::bad_alloc; in both cases the text is what it was before.
// - Threads may read one text together; whoever changes it must be alone with it.
#ifndef GT_STRING_H
#define GT_STRING_H

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>

#pragma GCC visibility push(default)

class gtString
{
public:
    // The empty text. Allocates nothing.
    gtString() noexcept = default;

    // The characters up to the first NUL.
    gtString(const char* pChars);

    // The first length characters.
    gtString(const char* pChars, int length);

    // The same bytes. From a std::string that is given away, no memory is taken, and that is empty afterwards.
    gtString(std::string_view text);
    gtString(const std::string& text);
    gtString(std::string&& text);

    gtString(const gtString& other) = default;

    // Takes the other's characters; the other is empty afterwards.
    gtString(gtString&& other) noexcept;

    ~gtString() = default;

    gtString& operator=(const char* pChars);
    gtString& operator=(const gtString& other) = default;

    // Takes the other's characters; the other is empty afterwards (a text moved to itself stays what it is).
    gtString& operator=(gtString&& other) noexcept;

    // Append a text (this one is allowed), the characters up to the first NUL, the first length characters,
    // one character (NUL is a character like any other).
    gtString& append(const gtString& other);
    gtString& append(std::string_view other);
    gtString& append(const std::string& other);
    gtString& append(const char* pChars);
    gtString& append(const char* pChars, int length);
    gtString& append(char aChar);

    // Appends what printf would write for this format and these arguments, of whatever length; the arguments may point
    // into this text. A null format, and one that cannot be carried out (a wide character that the locale cannot
    // express, a result above INT_MAX), appends nothing.
    gtString& appendFormattedString(const char* pFormat, ...) __attribute__((format(printf, 2, 3)));

    // The characters and a NUL after them: never null, valid until the text is changed or destroyed.
    const char* asCharArray() const noexcept { return _text.c_str(); }

    // All bytes, NULs included: a view, valid as long as asCharArray() is, and a copy.
    std::string_view asStringView() const noexcept { return _text; }
    std::string asStdString() const { return _text; }

    int length() const noexcept { return static_cast<int>(_text.size()); }
    bool isEmpty() const noexcept { return _text.empty(); }

    // The character at an index of 0 to length(), which the caller must keep to; at length() it is NUL.
    char operator[](int index) const noexcept { return asCharArray()[index]; }

    // The text becomes empty. Its memory is kept for what is appended next.
    gtString& makeEmpty() noexcept;

    // Makes room for a text of this length, so that appending up to it allocates nothing. Never shrinks; a length that
    // there is room for already, or a negative one, does nothing.
    gtString& reserve(int length);

    // Equal when lengths and all bytes are. operator< orders by unsigned bytes, a beginning before the whole.
    bool operator==(const gtString& other) const noexcept { return _text == other._text; }
    bool operator!=(const gtString& other) const noexcept { return _text != other._text; }
    bool operator<(const gtString& other) const noexcept { return _text < other._text; }

private:
    std::string _text;
};

// Writes all bytes, within the stream's width and fill as a std::string is.
std::ostream& operator<<(std::ostream& stream, const gtString& text);

// The hash of asStringView().
template <>
struct std::hash<gtString>
{
    std::size_t operator()(const gtString& text) const noexcept
    {
        return std::hash<std::string_view>()(text.asStringView());
    }
};

#pragma GCC visibility pop

#endif
