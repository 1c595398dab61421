// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoDetailsDialog.h"

#include "host/window/hoClipboard.h"
#include "host/window/hoSaveFile.h"
#include "host/window/hoScreenFit.h"
#include "host/window/hoTexts.h"
#include "platform/toolkit/gtTextConversion.h"
#include "platform/toolkit/gtTextDirection.h"

#include <wx/button.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>
#include <wx/tokenzr.h>

#include <algorithm>

namespace
{
const wxSize usualSize(584, 370);
// Longer lines are scrolled.
const int mostWidth = 880;
// What is beside the lines: borders, and a bar to scroll.
const int besideLines = 64;
const wxSize leastTextSize(200, 80);

void save(wxWindow& parent, const wxString& text)
{
    hoSaveFileQuestion question;
    question._title = _("Save the details");
    question._name = _("details.txt");
    question._types = _("Text (*.txt)|*.txt|All files|*");
    question._failure = _("Cannot save %s: %s.");
    hoSaveFile(parent, question, gtBytesFromText(text));
}

// Lines are not broken, since a path may have blanks anywhere; so they get room where there is some.
wxSize sizeFor(const wxWindow& dialog, const wxString& text)
{
    wxString longest;
    for (wxStringTokenizer lines(text, "\n"); lines.HasMoreTokens();)
    {
        const wxString line = lines.GetNextToken();
        if (line.length() > longest.length())
        {
            longest = line;
        }
    }
    wxSize size = dialog.FromDIP(usualSize);
    // Of a hostile line the beginning is enough.
    const int width = dialog.GetTextExtent(longest.Left(static_cast<std::size_t>(mostWidth))).GetWidth();
    size.IncTo(wxSize(std::min(width + dialog.FromDIP(besideLines), dialog.FromDIP(mostWidth)), -1));
    return size;
}
}  // namespace

hoDetailsDialog::hoDetailsDialog(wxWindow* pParent, const wxString& title, const wxString& heading,
                                 const wxString& text)
    : wxDialog(pParent, wxID_ANY, title, wxDefaultPosition, wxDefaultSize, wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER)
{
    auto* pHeading = new wxStaticText(this, wxID_ANY, wxControl::EscapeMnemonics(heading), wxDefaultPosition,
                                      wxDefaultSize, wxST_NO_AUTORESIZE | wxST_ELLIPSIZE_END);
    auto* pText = new wxTextCtrl(this, wxID_ANY, text, wxDefaultPosition, wxDefaultSize,
                                 wxTE_MULTILINE | wxTE_READONLY | wxTE_DONTWRAP);
    auto* pCopy = new wxButton(this, wxID_COPY, _("Copy &all"));
    auto* pSave = new wxButton(this, wxID_SAVE, _("&Save..."));
    auto* pClose = new wxButton(this, wxID_CLOSE);
    pHeading->SetMinSize(wxSize(1, pHeading->GetBestSize().GetHeight()));
    pText->SetMinSize(FromDIP(leastTextSize));
    pCopy->SetToolTip(_("Copy the whole text to the clipboard"));
    pSave->SetToolTip(_("Write the whole text to a file"));
    SetEscapeId(wxID_CLOSE);
    SetAffirmativeId(wxID_CLOSE);

    pCopy->Bind(wxEVT_BUTTON, [text](wxCommandEvent&) { hoCopyText(text); });
    pSave->Bind(wxEVT_BUTTON, [this, text](wxCommandEvent&) { save(*this, text); });

    auto* pButtons = new wxBoxSizer(wxHORIZONTAL);
    pButtons->AddStretchSpacer();
    pButtons->Add(pCopy, wxSizerFlags().Border(wxRIGHT));
    pButtons->Add(pSave, wxSizerFlags().Border(wxRIGHT));
    pButtons->Add(pClose);
    auto* pTop = new wxBoxSizer(wxVERTICAL);
    pTop->Add(pHeading, wxSizerFlags().Expand().DoubleBorder(wxLEFT | wxRIGHT | wxTOP));
    pTop->Add(pText, wxSizerFlags(1).Expand().DoubleBorder());
    pTop->Add(pButtons, wxSizerFlags().Expand().DoubleBorder(wxLEFT | wxRIGHT | wxBOTTOM));
    gtAlignTexts(*this);
    SetSizer(pTop);
    hoFitOnScreen(*this, sizeFor(*this, text));
    CentreOnParent();
    pClose->SetDefault();
    pClose->SetFocus();
}
