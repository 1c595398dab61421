// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoStateIcons.h"

#include <string>

namespace
{

// What stands on a square of 16 units: shapes without an outline, lines of two units.
constexpr const char* ring = R"(<circle cx="8" cy="8" r="5.5" fill="#fff" stroke="#77767b" stroke-width="1"/>)";
constexpr const char* check = R"(<path d="M4.5 8.5 7 11 11.5 5.5" stroke="#fff"/>)";

std::string contents(hoDocumentState state)
{
    using namespace std::string_literals;
    switch (state)
    {
    case hoDocumentState::NotSigned:
        return ring;
    case hoDocumentState::NotTested:
        return ring + R"(<path d="M6 6.5 8 5 10 6.5 8 8.5V9.5M8 11V12" stroke="#77767b"/>)"s;
    case hoDocumentState::SignedByMe:
        // A seal: a square with its corners cut.
        return R"(<path d="M4 1H12L15 4V12L12 15H4L1 12V4Z" fill="#1f5fbf"/>)"s + check;
    case hoDocumentState::Good:
        return R"(<circle cx="8" cy="8" r="7" fill="#1b7f3b"/>)"s + check;
    case hoDocumentState::Bad:
        return R"(<circle cx="8" cy="8" r="7" fill="#c01c28"/>
                  <path d="M5.3 5.3 10.7 10.7M10.7 5.3 5.3 10.7" stroke="#fff"/>)";
    case hoDocumentState::Weak:
        // A good one's check on a warning's colour, on a corner.
        return R"(<path d="M8 .5 15.5 8 8 15.5 .5 8Z" fill="#b36b00"/>)"s + check;
    case hoDocumentState::AnotherKey:
        // A key's bow, shank and bit.
        return R"(<circle cx="8" cy="8" r="7" fill="#77767b"/>
                  <circle cx="5.5" cy="8" r="2" stroke="#fff"/><path d="M7.5 8H12.5V10.5" stroke="#fff"/>)";
    case hoDocumentState::NotASignature:
        // A page with a corner folded.
        return R"(<path d="M3 1H10L13.5 4.5V15H3Z" fill="#77767b"/>
                  <path d="M5.6 5.8 10.9 11.2M10.9 5.8 5.6 11.2" stroke="#fff"/>)";
    case hoDocumentState::Changed:
        return R"(<path d="M8 1 15.5 14.5H.5Z" fill="#b36b00"/><path d="M8 5.5V10M8 11.5V13" stroke="#fff"/>)";
    case hoDocumentState::CannotBeRead:
        return R"(<circle cx="8" cy="8" r="6" fill="#fff" stroke="#77767b"/><path d="M4 12 12 4" stroke="#77767b"/>)";
    case hoDocumentState::Missing:
        // The outline of a page that is not there.
        return R"(<path d="M3.5 1.5H10L13 4.5V14.5H3.5Z" fill="#fff" stroke="#77767b" stroke-width="1"
                        stroke-dasharray="2 1.5"/>)";
    }
    return std::string();
}

}  // namespace

wxVector<wxBitmapBundle> hoStateIcons()
{
    wxVector<wxBitmapBundle> icons;
    for (int state = 0; state <= static_cast<int>(hoDocumentState::Missing); ++state)
    {
        const std::string picture =
            R"(<svg xmlns="http://www.w3.org/2000/svg" width="16" height="16"><g fill="none" stroke-width="2">)" +
            contents(static_cast<hoDocumentState>(state)) + "</g></svg>";
        icons.push_back(wxBitmapBundle::FromSVG(picture.c_str(), wxSize(16, 16)));
    }
    return icons;
}
