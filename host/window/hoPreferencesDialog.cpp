// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoPreferencesDialog.h"

#include "host/signing/hoOrderedWork.h"
#include "host/window/hoScreenFit.h"
#include "host/window/hoTexts.h"

#include <wx/checkbox.h>
#include <wx/choice.h>
#include <wx/sizer.h>
#include <wx/stattext.h>

#include <algorithm>
#include <iterator>

namespace
{
const wxSize usualSize(1, 1);  // as large as its contents are
const int usualPoints[] = {8, 9, 10, 11, 12, 14, 16, 18, 20, 24, 28, 32};

// In order and each once, with 0 in front and what is chosen among them.
std::vector<int> withChosen(std::vector<int> values, int chosen)
{
    values.push_back(0);
    values.push_back(chosen);
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
    return values;
}

std::vector<int> amountsOfJobs(int chosen)
{
    const int processors = std::min(static_cast<int>(hoOrderedWork::amountOfProcessors()), hoPreferences::mostJobs);
    std::vector<int> values;
    for (int amount = 1; amount < processors; amount = amount < 4 ? amount + 1 : amount * 2)
    {
        values.push_back(amount);
    }
    return withChosen(values, chosen);
}

int positionOf(const std::vector<int>& values, int value)
{
    return static_cast<int>(std::find(values.begin(), values.end(), value) - values.begin());
}
}  // namespace

hoPreferencesDialog::hoPreferencesDialog(wxWindow* pParent, const hoPreferences& preferences)
    : wxDialog(pParent, wxID_ANY, _("Preferences"), wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER),
      _jobs(amountsOfJobs(preferences._jobs)),
      _points(withChosen({std::begin(usualPoints), std::end(usualPoints)}, preferences._textPoints)),
      _pPlace(nullptr),
      _pRecent(nullptr),
      _pOffer(nullptr),
      _pSigned(nullptr),
      _pJobs(nullptr),
      _pPoints(nullptr)
{
    std::vector<wxString> jobs;
    for (const int amount : _jobs)
    {
        jobs.push_back(amount == 0 ? _("As many as processors") : hoPlainNumber(amount));
    }
    std::vector<wxString> points;
    for (const int size : _points)
    {
        points.push_back(size == 0 ? _("As the desktop says") : hoFilledText(_("%s points"), {hoPlainNumber(size)}));
    }
    auto* pBoxes = new wxBoxSizer(wxVERTICAL);
    _pPlace = addBox(*pBoxes, _("Remember the window's &place and columns"), "place", preferences._isPlaceRemembered);
    _pRecent =
        addBox(*pBoxes, _("Remember &recent documents, keys and folders"), "recent", preferences._areRecentRemembered);
    _pOffer = addBox(*pBoxes, _("O&ffer the last key at the start"), "offer", preferences._isKeyOffered);
    auto* pChoices = new wxFlexGridSizer(2, FromDIP(wxSize(12, 8)));
    _pSigned = addChoice(
        *pChoices, _("Documents that are &signed already:"), "signed",
        {_("Ask whether to replace signatures"), _("Keep good signatures, ask about others"), _("Keep all signatures")},
        static_cast<int>(preferences._signedDocuments));
    _pJobs = addChoice(*pChoices, _("Documents at onc&e:"), "jobs", jobs, positionOf(_jobs, preferences._jobs));
    _pPoints = addChoice(*pChoices, _("Size of the &text, from the next start on:"), "points", points,
                         positionOf(_points, preferences._textPoints));
    auto* pButtons = CreateSeparatedButtonSizer(wxOK | wxCANCEL);

    auto* pTop = new wxBoxSizer(wxVERTICAL);
    pTop->Add(pBoxes, wxSizerFlags().Expand().DoubleBorder(wxLEFT | wxRIGHT | wxTOP));
    pTop->Add(pChoices, wxSizerFlags().Expand().DoubleBorder());
    pTop->AddStretchSpacer();
    pTop->Add(pButtons, wxSizerFlags().Expand().DoubleBorder(wxLEFT | wxRIGHT | wxBOTTOM));
    SetSizer(pTop);
    hoFitOnScreen(*this, FromDIP(usualSize));
    CentreOnParent();
    _pPlace->SetFocus();
}

hoPreferences hoPreferencesDialog::preferences() const
{
    hoPreferences preferences;
    preferences._isPlaceRemembered = _pPlace->IsChecked();
    preferences._areRecentRemembered = _pRecent->IsChecked();
    preferences._isKeyOffered = _pOffer->IsChecked();
    preferences._signedDocuments = static_cast<hoSignedDocuments>(_pSigned->GetSelection());
    preferences._jobs = _jobs.at(static_cast<std::size_t>(_pJobs->GetSelection()));
    preferences._textPoints = _points.at(static_cast<std::size_t>(_pPoints->GetSelection()));
    return preferences;
}

wxCheckBox* hoPreferencesDialog::addBox(wxSizer& sizer, const wxString& label, const char* pName, bool isChecked)
{
    auto* pBox = new wxCheckBox(this, wxID_ANY, label);
    pBox->SetName(pName);
    pBox->SetValue(isChecked);
    sizer.Add(pBox, wxSizerFlags().Border(wxBOTTOM));
    return pBox;
}

wxChoice* hoPreferencesDialog::addChoice(wxSizer& sizer, const wxString& label, const char* pName,
                                         const std::vector<wxString>& texts, int chosen)
{
    auto* pLabel = new wxStaticText(this, wxID_ANY, label);
    auto* pChoice = new wxChoice(this, wxID_ANY);
    pChoice->SetName(pName);
    for (const wxString& text : texts)
    {
        pChoice->Append(text);
    }
    pChoice->SetSelection(chosen);
    sizer.Add(pLabel, wxSizerFlags().CentreVertical());
    sizer.Add(pChoice, wxSizerFlags(1).Expand());
    return pChoice;
}
