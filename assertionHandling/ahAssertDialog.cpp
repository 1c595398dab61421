// SPDX-License-Identifier: Apache-2.0
#include "assertionHandling/ahAssertDialog.h"

#include <algorithm>
#include <cmath>

#include <wx/button.h>
#include <wx/colour.h>
#include <wx/font.h>
#include <wx/gdicmn.h>
#include <wx/icon.h>
#include <wx/sizer.h>
#include <wx/textctrl.h>
#include <wx/wupdlock.h>

#include "assertionHandling/ahAssertDialogIcon.h"
#include "platform/baseTools/gtString.h"
#include "platform/toolkit/gtTextConversion.h"
#include "platform/toolkit/gtTextLayout.h"
#include "platform/toolkit/gtUrlHighlighting.h"

namespace
{

const int borderWidth = 10;

wxFont normalFont()
{
    wxFont font(*wxNORMAL_FONT);
    font.SetEncoding(wxFONTENCODING_DEFAULT);
    return font;
}

// How bright a colour is, 0 to 1, and how well two can be told from each other, 1 to 21 (WCAG 2.1, "relative luminance"
// and "contrast ratio").
double luminance(const wxColour& colour)
{
    const auto linear = [](unsigned char value)
    {
        const double part = value / 255.0;
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.Red()) + 0.7152 * linear(colour.Green()) + 0.0722 * linear(colour.Blue());
}

double contrast(const wxColour& one, const wxColour& other)
{
    const double first = luminance(one) + 0.05;
    const double second = luminance(other) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

// What the report's blue and black are read on: the theme's own where that will do.
wxColour readableBackground(const wxColour& themesBackground)
{
    const double leastContrast = 7;
    const wxColour light(0xF6, 0xF5, 0xF4);
    // Black stands out from whatever blue stands out from; on black itself neither does.
    const bool isReadable =
        luminance(themesBackground) > luminance(*wxBLUE) && contrast(*wxBLUE, themesBackground) >= leastContrast;
    return isReadable ? themesBackground : light;
}

wxString showableTextFromBytes(const gtString& bytes)
{
    return gtShowableText(gtTextFromBytes(bytes));
}

// Name, separator and extension; the separator also without an extension.
gtString fileNameText(const osFilePath& filePath)
{
    gtString name;
    gtString extension;
    filePath.getFileName(name);
    filePath.getFileExtension(extension);
    gtString text;
    text.append(name).append(osFilePath::osExtensionSeparator).append(extension);
    return text;
}

}  // namespace

wxBEGIN_EVENT_TABLE(ahAssertDialog, wxDialog)
    EVT_BUTTON(AH_IGNORE_BUTTON_ID, ahAssertDialog::OnIgnoreButton)
    EVT_BUTTON(AH_IGNORE_ALL_BUTTON_ID, ahAssertDialog::OnIgnoreAllButton)
    EVT_BUTTON(AH_OPEN_BUTTON_ID, ahAssertDialog::OnOpenButton)
    EVT_BUTTON(AH_DEBUG_BUTTON_ID, ahAssertDialog::OnDebugButton)
    EVT_BUTTON(AH_EXIT_BUTTON_ID, ahAssertDialog::OnExitButton)
wxEND_EVENT_TABLE()

ahAssertDialog::ahAssertDialog(const osFilePath& filePath, int lineNumber, const wxString& message, wxWindow* parent)
    : wxDialog(parent, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize, wxDEFAULT_DIALOG_STYLE | wxSTAY_ON_TOP),
      _filePath(filePath),
      _lineNumber(lineNumber),
      _assertionMessage(message),
      _pIgnoreButton(nullptr),
      _pIgnoreAllButton(nullptr),
      _pOpenButton(nullptr),
      _pDebugButton(nullptr),
      _pExitButton(nullptr),
      _pButtonsSizer(nullptr)
{
    loadIcon();
    setDialogTitle();

    const wxColour themesBackground = GetBackgroundColour();
    const wxColour background = readableBackground(themesBackground);
    if (background != themesBackground)
    {
        SetBackgroundColour(background);
    }
    wxTextCtrl* pReport = new wxTextCtrl(this, wxID_ANY, wxString(), wxDefaultPosition, wxSize(400, 250),
                                         wxTE_MULTILINE | wxTE_READONLY | wxTE_RICH | wxTE_AUTO_URL | wxBORDER_NONE);
    pReport->SetFont(normalFont());
    pReport->SetBackgroundColour(GetBackgroundColour());
    fillAssertionMessageBody(pReport);

    // The report keeps its size however wide the buttons are.
    wxBoxSizer* pTopSizer = new wxBoxSizer(wxVERTICAL);
    pTopSizer->Add(pReport, 0, wxLEFT | wxRIGHT | wxTOP, borderWidth);

    _pIgnoreButton = new wxButton(this, AH_IGNORE_BUTTON_ID, wxS("&Ignore"));
    _pIgnoreAllButton = new wxButton(this, AH_IGNORE_ALL_BUTTON_ID, wxS("Ignore &all"));
    _pOpenButton = new wxButton(this, AH_OPEN_BUTTON_ID, wxS("&Open"));
    _pDebugButton = new wxButton(this, AH_DEBUG_BUTTON_ID, wxS("&Debug"));
    _pExitButton = new wxButton(this, AH_EXIT_BUTTON_ID, wxS("&Exit"));
    _pIgnoreAllButton->SetDefault();
    _pIgnoreAllButton->SetFocus();

    _pButtonsSizer = new wxBoxSizer(wxHORIZONTAL);
    _pButtonsSizer->Add(_pIgnoreButton, 0, wxRIGHT, borderWidth);
    _pButtonsSizer->Add(_pIgnoreAllButton, 0, wxRIGHT, borderWidth);
    _pButtonsSizer->Add(_pOpenButton, 0, wxRIGHT, borderWidth);
    _pButtonsSizer->Add(_pDebugButton, 0, wxRIGHT, borderWidth);
    _pButtonsSizer->Add(_pExitButton, 0, 0, 0);

    // wxCENTRE is not a sizer's alignment, and is meant: the row lies where the sizer puts it by default.
    pTopSizer->Add(_pButtonsSizer, 0, wxALL | wxCENTRE, borderWidth);

    SetSizer(pTopSizer);
    pTopSizer->SetSizeHints(this);
    CentreOnScreen(wxBOTH);
}

ahAssertDialog::~ahAssertDialog() = default;

int ahAssertDialog::ShowModal()
{
    return wxDialog::ShowModal();
}

void ahAssertDialog::OnIgnoreButton(wxCommandEvent& /*event*/)
{
    EndModal(AH_IGNORE_BUTTON_ID);
}

void ahAssertDialog::OnIgnoreAllButton(wxCommandEvent& /*event*/)
{
    EndModal(AH_IGNORE_ALL_BUTTON_ID);
}

void ahAssertDialog::OnOpenButton(wxCommandEvent& /*event*/)
{
    EndModal(AH_OPEN_BUTTON_ID);
}

void ahAssertDialog::OnDebugButton(wxCommandEvent& /*event*/)
{
    EndModal(AH_DEBUG_BUTTON_ID);
}

void ahAssertDialog::OnExitButton(wxCommandEvent& /*event*/)
{
    EndModal(AH_EXIT_BUTTON_ID);
}

bool ahAssertDialog::loadIcon()
{
    SetIcon(wxIcon(ahAssertDialogIcon));
    return true;
}

void ahAssertDialog::setDialogTitle()
{
    gtString title;
    title = "Assert in: ";
    title.append(fileNameText(_filePath)).append(" - ").append("Line: ").appendFormattedString("%d", _lineNumber);
    SetTitle(showableTextFromBytes(title));
}

void ahAssertDialog::fillAssertionMessageBody(wxTextCtrl* pTextCtrl)
{
    const wxFont bodyFont = normalFont();
    const int bodySize = bodyFont.GetPointSize();
    wxFont largeFont = normalFont();
    largeFont.SetPointSize(bodySize + 4);
    wxFont boldFont = normalFont();
    boldFont.SetWeight(wxFONTWEIGHT_BOLD);
    wxFont headingFont = normalFont();
    headingFont.SetPointSize(bodySize + 2);

    const wxTextAttr headingStyle(*wxBLUE, wxNullColour, headingFont);
    const wxTextAttr labelStyle(*wxBLACK, wxNullColour, boldFont);
    const wxTextAttr largeStyle(*wxBLACK, wxNullColour, largeFont);
    const wxTextAttr bodyStyle(*wxBLACK, wxNullColour, bodyFont);

    gtString lineText;
    lineText.appendFormattedString("%d", _lineNumber);

    {
        const std::size_t length = _assertionMessage.length() + static_cast<std::size_t>(_filePath.length());
        const gtUrlDetectionPause noSlowDetection(pTextCtrl, length);
        // Otherwise every piece lays out all that is there already.
        const wxWindowUpdateLocker noPainting(pTextCtrl);

        pTextCtrl->SetDefaultStyle(headingStyle);
        pTextCtrl->AppendText(wxS("Debug Assertion Failed!"));
        pTextCtrl->AppendText(wxS("\n\n"));

        pTextCtrl->SetDefaultStyle(labelStyle);
        pTextCtrl->AppendText(wxS("File Name: "));
        pTextCtrl->SetDefaultStyle(largeStyle);
        pTextCtrl->AppendText(showableTextFromBytes(fileNameText(_filePath)));
        pTextCtrl->AppendText(wxS(" - "));
        pTextCtrl->AppendText(gtTextFromBytes(lineText));
        pTextCtrl->AppendText(wxS("\n\n"));

        pTextCtrl->SetDefaultStyle(labelStyle);
        pTextCtrl->AppendText(wxS("File Path: "));
        pTextCtrl->SetDefaultStyle(bodyStyle);
        pTextCtrl->AppendText(showableTextFromBytes(_filePath.asString()));
        pTextCtrl->AppendText(wxS("\n"));
        pTextCtrl->AppendText(wxS("\n"));

        pTextCtrl->SetDefaultStyle(headingStyle);
        pTextCtrl->AppendText(wxS("Assert Reason: \n\n"));
        pTextCtrl->SetDefaultStyle(bodyStyle);
        pTextCtrl->AppendText(gtShowableText(_assertionMessage));
    }

    // In pieces a long line is also quicker to highlight in.
    gtAllowBreaksInLongWords(pTextCtrl);
    gtHighlightUrls(pTextCtrl);
}
