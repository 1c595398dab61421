// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoMessageBar.h"

#include "host/messages/hoMessages.h"
#include "host/window/hoCommands.h"
#include "host/window/hoDetailsDialog.h"
#include "host/window/hoDisplayText.h"
#include "host/window/hoTexts.h"
#include "platform/toolkit/gtColours.h"
#include "platform/toolkit/gtTextConversion.h"

#include <wx/frame.h>
#include <wx/infobar.h>
#include <wx/sizer.h>

#include <algorithm>

namespace
{
const std::size_t mostNameCharacters = 60;
const std::size_t mostRefusalsListed = 1000;
}  // namespace

hoMessageBar::hoMessageBar(wxFrame& frame) : _frame(frame), _pBar(nullptr) {}

void hoMessageBar::addRefusal(const gtString& path, const osFileResult& result)
{
    _refusals.emplace_back(path, result);
}

void hoMessageBar::clear()
{
    _refusals.clear();
    _result = hoSummary();
    _keyWarning = hoSummary();
}

void hoMessageBar::setOffer(const wxString& text, const wxString& button, std::function<void()> accept)
{
    _offer = text;
    _offerButton = button;
    _acceptOffer = std::move(accept);
}

void hoMessageBar::dismiss()
{
    const bool isOfferShown = !_shownButton.empty();
    clear();
    if (isOfferShown)
    {
        setOffer(wxString());
    }
    show();
}

void hoMessageBar::show()
{
    // Told apart by signs and words, too: colours alone do not reach everybody, and the desktop may show no icon.
    if (!_refusals.empty())
    {
        say(gtBarColour::Brown, wxString(wxUniChar(0x26A0)) + " " + refusalText(), wxICON_WARNING);
    }
    else if (!_result._line.empty() && _result._tone == hoSummaryTone::AllWell)
    {
        say(gtBarColour::Green, wxString(wxUniChar(0x2713)) + " " + _result._line, wxICON_INFORMATION);
    }
    else if (!_result._line.empty() && _result._tone == hoSummaryTone::NotAllSigned)
    {
        say(gtBarColour::Brown, wxString(wxUniChar(0x26A0)) + " " + _result._line, wxICON_WARNING);
    }
    else if (!_result._line.empty())
    {
        say(gtBarColour::Red,
            wxString(wxUniChar(0x2717)) + " " + hoFilledText(_("Not all is well. %s"), {_result._line}), wxICON_ERROR);
    }
    else if (!_keyWarning._line.empty())
    {
        say(gtBarColour::Brown, wxString(wxUniChar(0x26A0)) + " " + _keyWarning._line, wxICON_WARNING);
    }
    else if (!_offer.empty())
    {
        say(gtBarColour::Blue, _offer, wxICON_INFORMATION);
    }
    else if (_pBar != nullptr && _pBar->IsShown())
    {
        _pBar->Dismiss();
    }
}

void hoMessageBar::say(gtBarColour colour, const wxString& text, int icon)
{
    setFirstButton(colour == gtBarColour::Blue ? _offerButton : wxString());
    gtColourBar(bar(), colour);
    bar().ShowMessage(text, icon);
}

wxString hoMessageBar::refusalText() const
{
    if (_refusals.empty())
    {
        return wxString();
    }
    if (_refusals.size() > 1)
    {
        return hoCounted("%s document could not be opened.", "%s documents could not be opened.", _refusals.size());
    }
    const auto& [path, problem] = _refusals.front();
    return hoFilledText(_("Cannot open %s: %s."),
                        {hoQuotedText(hoDisplayText(hoLastComponent(path), mostNameCharacters)),
                         gtTextFromBytes(hoFileReason(problem))});
}

wxInfoBar& hoMessageBar::bar()
{
    if (_pBar == nullptr)
    {
        wxWindow* const pBelow = _frame.GetSizer()->GetItem(std::size_t(0))->GetWindow();
        _pBar = new wxInfoBar(&_frame);
        _pBar->AddButton(ID_SHOW_DETAILS, _("Details..."));
        _pBar->AddButton(wxID_CLOSE, _("Dismiss"));
        _pBar->Bind(wxEVT_BUTTON, &hoMessageBar::OnDetails, this, ID_SHOW_DETAILS);
        _pBar->Bind(
            wxEVT_BUTTON,
            // The button may go with the offer, but not in its own event.
            [this](wxCommandEvent&) { _frame.CallAfter([this] { acceptOffer(); }); }, ID_ACCEPT_OFFER);
        _pBar->Bind(
            wxEVT_BUTTON, [this](wxCommandEvent&) { dismiss(); }, wxID_CLOSE);
        _frame.GetSizer()->Insert(0, _pBar, wxSizerFlags().Expand());
        // The keyboard reaches it before the documents, because it stands above them.
        _pBar->MoveBeforeInTabOrder(pBelow);
    }
    return *_pBar;
}

void hoMessageBar::setFirstButton(const wxString& offer)
{
    if (offer == _shownButton)
    {
        return;
    }
    wxInfoBar& native = bar();
    native.RemoveButton(_shownButton.empty() ? ID_SHOW_DETAILS : ID_ACCEPT_OFFER);
    native.RemoveButton(wxID_CLOSE);
    if (offer.empty())
    {
        native.AddButton(ID_SHOW_DETAILS, _("Details..."));
    }
    else
    {
        native.AddButton(ID_ACCEPT_OFFER, wxControl::EscapeMnemonics(offer));
    }
    native.AddButton(wxID_CLOSE, _("Dismiss"));
    _shownButton = offer;
}

void hoMessageBar::acceptOffer()
{
    const std::function<void()> accept = _acceptOffer;
    setOffer(wxString());
    show();
    if (accept)
    {
        accept();
    }
}

void hoMessageBar::showRefusals()
{
    wxString text;
    const std::size_t listed = std::min(_refusals.size(), mostRefusalsListed);
    for (std::size_t i = 0; i < listed; ++i)
    {
        text +=
            hoDisplayText(_refusals[i].first) + "\n    " + gtTextFromBytes(hoFileReason(_refusals[i].second)) + "\n";
    }
    if (listed < _refusals.size())
    {
        text += hoCounted("and %s more", "and %s more", _refusals.size() - listed) + "\n";
    }
    const wxString heading =
        hoCounted("%s document could not be opened:", "%s documents could not be opened:", _refusals.size());
    hoDetailsDialog(&_frame, _("Documents that could not be opened"), heading, text).ShowModal();
}

void hoMessageBar::OnDetails(wxCommandEvent&)
{
    if (_refusals.empty())
    {
        const hoSummary& shown = _result._line.empty() ? _keyWarning : _result;
        hoDetailsDialog(&_frame, _("Details"), shown._line, shown._details).ShowModal();
    }
    else
    {
        // Told in full they have done their work; a result or a warning stays.
        showRefusals();
        _refusals.clear();
        show();
    }
}
