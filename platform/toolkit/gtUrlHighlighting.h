// SPDX-License-Identifier: Apache-2.0
// Makes the URLs visible that a text control has detected.
#ifndef GT_URL_HIGHLIGHTING_H
#define GT_URL_HIGHLIGHTING_H

#include <cstddef>

class wxTextCtrl;

// While it lives, a control with wxTE_AUTO_URL does not look for URLs in what is written, if that is going to be more
// than gtMostDetected characters: looking takes time that grows with the square of their number in a line. They become
// visible all the same by gtHighlightUrls, but clicks on them are no events.
class gtUrlDetectionPause
{
public:
    gtUrlDetectionPause(wxTextCtrl* pTextCtrl, std::size_t amountOfCharacters);
    ~gtUrlDetectionPause();
    gtUrlDetectionPause(const gtUrlDetectionPause&) = delete;
    gtUrlDetectionPause& operator=(const gtUrlDetectionPause&) = delete;

private:
    wxTextCtrl* const _pTextCtrl;
    const long _style;
};

constexpr std::size_t gtMostDetected = 10000;

// To be called once after the text of a control with wxTE_AUTO_URL has been written with styles of its own: those hide
// the control's own way to mark a URL on some platforms. There the URLs of the text become blue and underlined,
// everything else about them and the text, the insertion point and the default style stay as they are. Of a line's URLs
// only the first thousand are marked, as each one takes longer than the one before.
void gtHighlightUrls(wxTextCtrl* pTextCtrl);

#endif
