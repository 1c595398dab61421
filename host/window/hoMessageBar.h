// SPDX-License-Identifier: Apache-2.0
// The bar above the documents: one message at a time, with its details in a dialog. It waits for the user and never
// blocks.
//
// Documents that could not be opened come first, then the result of the last signing or testing, then a warning about a
// private key, then an offer, which has a button of its own instead of Details. What is set here is shown by show(), so
// that many changes of one event are one message. The native bar is made when there is something to show. Main thread
// only.
#ifndef COUNTERSIGN_HO_MESSAGE_BAR_H
#define COUNTERSIGN_HO_MESSAGE_BAR_H

#include "host/window/hoSummary.h"
#include "platform/toolkit/gtColours.h"

#include <functional>
#include <utility>
#include <vector>

class wxCommandEvent;
class wxFrame;
class wxInfoBar;

class hoMessageBar
{
public:
    // The frame must outlive this object. When a message is shown for the first time the frame has a sizer, and the bar
    // becomes the first item of it.
    explicit hoMessageBar(wxFrame& frame);
    hoMessageBar(const hoMessageBar&) = delete;
    hoMessageBar& operator=(const hoMessageBar&) = delete;

    void addRefusal(const gtString& path, const osFileResult& result);
    void setResult(const hoSummary& result) { _result = result; }
    void setKeyWarning(const hoSummary& warning) { _keyWarning = warning; }
    // Something that the user may want, with the words of its button. It stays while other messages come and go, until
    // it is accepted, or taken back by an empty text.
    void setOffer(const wxString& text, const wxString& button = wxString(), std::function<void()> accept = {});
    // All but the offer.
    void clear();
    // Forgets every message, the offer only if it is what the bar shows, and takes the bar away if nothing is left.
    void dismiss();

    // Shows the message that comes first, or takes the bar away when there is none.
    void show();

    // What is to be said of each; empty, or with an empty line, when there is nothing.
    wxString refusalText() const;
    const hoSummary& result() const { return _result; }
    const hoSummary& keyWarning() const { return _keyWarning; }
    const wxString& offer() const { return _offer; }

private:
    wxInfoBar& bar();
    void say(gtBarColour colour, const wxString& text, int icon);
    // The buttons of the bar: an empty one means Details.
    void setFirstButton(const wxString& offer);
    void acceptOffer();
    void showRefusals();
    void OnDetails(wxCommandEvent& event);

    wxFrame& _frame;
    wxInfoBar* _pBar;                                          // belongs to the frame; null until it is needed
    std::vector<std::pair<gtString, osFileResult>> _refusals;  // the documents that could not be opened
    hoSummary _result;
    hoSummary _keyWarning;
    wxString _offer;
    wxString _offerButton;
    std::function<void()> _acceptOffer;
    wxString _shownButton;  // the offer's, while the bar has it instead of Details
};

#endif
