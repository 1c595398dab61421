// SPDX-License-Identifier: Apache-2.0
// Makes the URLs visible that a text control has detected.
#ifndef AH_URL_HIGHLIGHTING_H
#define AH_URL_HIGHLIGHTING_H

#include <cstddef>

class wxTextCtrl;

// While it lives, a control with wxTE_AUTO_URL does not look for URLs in what is written, if that is going to be more
// than ahMostDetected characters: looking takes time that grows with the square of their number in a line. They become
// visible all the same by ahHighlightUrls, but clicks on them are no events.
class ahUrlDetectionPause
{
public:
    ahUrlDetectionPause(wxTextCtrl* pTextCtrl, std::size_t amountOfCharacters);
    ~ahUrlDetectionPause();
    ahUrlDetectionPause(const ahUrlDetectionPause&) = delete;
    ahUrlDetectionPause& operator=(const ahUrlDetectionPause&) = delete;

private:
    wxTextCtrl* const _pTextCtrl;
    const long _style;
};

constexpr std::size_t ahMostDetected = 10000;

// To be called once after the text of a control with wxTE_AUTO_URL has been written with styles of its own: those hide
// the control's own way to mark a URL on some platforms. There the URLs of the text become blue and underlined,
// everything else about them and the text, the insertion point and the default style stay as they are. In a line that
// holds more than a thousand of them, those are.
void ahHighlightUrls(wxTextCtrl* pTextCtrl);

#endif
