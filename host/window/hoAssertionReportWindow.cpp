// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoAssertionReportWindow.h"

#include "host/assertions/hoAssertionReportText.h"
#include "host/window/hoClipboard.h"
#include "host/window/hoDisplayText.h"
#include "platform/osWrappers/osAtomicFile.h"
#include "platform/osWrappers/osProcess.h"
#include "platform/toolkit/gtTextConversion.h"

#include <wx/accel.h>
#include <wx/button.h>
#include <wx/filedlg.h>
#include <wx/listctrl.h>
#include <wx/msgdlg.h>
#include <wx/sizer.h>
#include <wx/stattext.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>

namespace
{
enum Column
{
    COLUMN_PLACE = 0,
    COLUMN_COUNT,
    COLUMN_FIRST,
    COLUMN_LAST,
    COLUMN_THREAD,
    COLUMN_DECISION,
    COLUMN_REASON
};

struct ColumnFace
{
    const char* _title;
    const char* _widestText;  // the column is as wide as this at first
    wxListColumnFormat _format;
};

const ColumnFace columns[] = {
    {"Place", "crSomeSourceFile.cpp:1234", wxLIST_FORMAT_LEFT},
    {"Count", "99,999", wxLIST_FORMAT_RIGHT},
    {"First", "2026-11-30 20:00:00", wxLIST_FORMAT_LEFT},
    {"Last", "2026-11-30 20:00:00", wxLIST_FORMAT_LEFT},
    {"Thread", "main (4000000)", wxLIST_FORMAT_LEFT},
    {"Decision", "ignore all", wxLIST_FORMAT_LEFT},
    {"Reason", "Assertion failure (a rather long one)", wxLIST_FORMAT_LEFT},
};
const int columnPadding = 24;
const wxSize listSize(980, 280);
const int pauseAfterShowing = 100;  // milliseconds

gtString nameOf(const std::string& path)
{
    const std::size_t start = path.rfind('/') + 1;
    return gtString(start == path.size() ? path : path.substr(start));
}

wxString amountText(std::uint64_t amount, const char* one, const char* many)
{
    return hoNumberText(amount) + " " + (amount == 1 ? one : many);
}
}  // namespace

// A row's text is made when the row is painted.
class hoAssertionReportList : public wxListCtrl
{
public:
    hoAssertionReportList(wxWindow* pParent, const std::vector<hoAssertionRow>& rows)
        : wxListCtrl(pParent, wxID_ANY, wxDefaultPosition, pParent->FromDIP(listSize), wxLC_REPORT | wxLC_VIRTUAL),
          _rows(rows),
          _mainThreadId(osGetCurrentThreadId())
    {
        SetName("assertionReport");
        for (const ColumnFace& column : columns)
        {
            AppendColumn(column._title, column._format,
                         GetTextExtent(column._widestText).GetWidth() + FromDIP(columnPadding));
        }
        EnableAlternateRowColours();
    }

    unsigned int mainThreadId() const { return _mainThreadId; }

    std::vector<hoAssertionRow> selected() const
    {
        std::vector<hoAssertionRow> rows;
        long row = GetNextItem(wxNOT_FOUND, wxLIST_NEXT_ALL, wxLIST_STATE_SELECTED);
        while (row != wxNOT_FOUND)
        {
            rows.push_back(_rows[static_cast<std::size_t>(row)]);
            row = GetNextItem(row, wxLIST_NEXT_ALL, wxLIST_STATE_SELECTED);
        }
        return rows;
    }

private:
    wxString OnGetItemText(long position, long column) const override
    {
        if (position < 0 || static_cast<std::size_t>(position) >= _rows.size())
        {
            return wxString();
        }
        const hoAssertionRow& row = _rows[static_cast<std::size_t>(position)];
        switch (column)
        {
        case COLUMN_PLACE:
            return hoDisplayText(nameOf(row._file)) + ":" + std::to_string(row._line);
        case COLUMN_COUNT:
            return hoNumberText(row._count);
        case COLUMN_FIRST:
            return hoReportTime(row._firstSeconds);
        case COLUMN_LAST:
            return hoReportTime(row._lastSeconds);
        case COLUMN_THREAD:
            return hoThreadWords(row, _mainThreadId);
        case COLUMN_DECISION:
            return hoDecisionWord(row._decision);
        default:
            return hoDisplayText(gtString(row._message));
        }
    }

    const std::vector<hoAssertionRow>& _rows;
    const unsigned int _mainThreadId;
};

hoAssertionReportWindow::hoAssertionReportWindow(wxWindow* pParent, std::shared_ptr<hoAssertionReport> pReport)
    : wxDialog(pParent, wxID_ANY, "Assertion report", wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER | wxMAXIMIZE_BOX),
      _pReport(std::move(pReport)),
      _pHeading(new wxStaticText(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize, wxST_NO_AUTORESIZE)),
      _pList(new hoAssertionReportList(this, _rows)),
      _isChanged(false),
      _follow([this] { followReport(); })
{
    auto* pCopy = new wxButton(this, wxID_COPY);
    auto* pSave = new wxButton(this, wxID_SAVEAS, "&Save...");
    auto* pClose = new wxButton(this, wxID_CLOSE);
    pCopy->SetToolTip("Copy the selected rows, or all if none is selected (Ctrl+C)");
    pSave->SetToolTip("Write all rows to a file (Ctrl+S)");
    SetEscapeId(wxID_CLOSE);
    wxAcceleratorEntry keys[] = {{wxACCEL_CTRL, 'C', wxID_COPY}, {wxACCEL_CTRL, 'S', wxID_SAVEAS}};
    SetAcceleratorTable(wxAcceleratorTable(static_cast<int>(std::size(keys)), keys));
    _pHeading->SetName("assertionReportHeading");

    const auto whenAny = [this](wxUpdateUIEvent& event) { event.Enable(!_rows.empty()); };
    Bind(wxEVT_UPDATE_UI, whenAny, wxID_COPY);
    Bind(wxEVT_UPDATE_UI, whenAny, wxID_SAVEAS);
    Bind(wxEVT_BUTTON, &hoAssertionReportWindow::OnCopy, this, wxID_COPY);
    Bind(wxEVT_MENU, &hoAssertionReportWindow::OnCopy, this, wxID_COPY);
    Bind(wxEVT_BUTTON, &hoAssertionReportWindow::OnSave, this, wxID_SAVEAS);
    Bind(wxEVT_MENU, &hoAssertionReportWindow::OnSave, this, wxID_SAVEAS);
    Bind(
        wxEVT_BUTTON, [this](wxCommandEvent&) { Hide(); }, wxID_CLOSE);

    auto* pButtons = new wxBoxSizer(wxHORIZONTAL);
    pButtons->AddStretchSpacer();
    pButtons->Add(pCopy, wxSizerFlags().Border(wxRIGHT));
    pButtons->Add(pSave, wxSizerFlags().Border(wxRIGHT));
    pButtons->Add(pClose);
    auto* pTop = new wxBoxSizer(wxVERTICAL);
    pTop->Add(_pHeading, wxSizerFlags().Expand().DoubleBorder(wxLEFT | wxRIGHT | wxTOP));
    pTop->Add(_pList, wxSizerFlags(1).Expand().DoubleBorder());
    pTop->Add(pButtons, wxSizerFlags().Expand().DoubleBorder(wxLEFT | wxRIGHT | wxBOTTOM));
    SetSizerAndFit(pTop);
    SetMinSize(FromDIP(wxSize(420, 240)));
    CentreOnParent();
    pClose->SetDefault();
    _pList->SetFocus();

    _pause.Bind(wxEVT_TIMER,
                [this](wxTimerEvent&)
                {
                    if (_isChanged)
                    {
                        showRows();
                    }
                });
    _pReport->setListener([this] { _follow.request(); });
    showRows();
}

hoAssertionReportWindow::~hoAssertionReportWindow()
{
    _pReport->setListener(nullptr);
}

bool hoAssertionReportWindow::saveAs(const gtString& path)
{
    const int error = osWriteFileAtomically(path, gtBytesFromText(text(false)).asStringView(), true);
    if (error != 0)
    {
        wxMessageBox("The report could not be written to " + hoDisplayText(path) + ": " +
                         gtTextFromBytes(std::strerror(error)) + ".",
                     "Assertion report", wxOK | wxICON_ERROR, this);
    }
    return error == 0;
}

// Every showing asks to be told of the next change, which may be there already.
void hoAssertionReportWindow::followReport()
{
    _isChanged = true;
    if (!_pause.IsRunning())
    {
        showRows();
    }
}

void hoAssertionReportWindow::showRows()
{
    _isChanged = false;
    _pause.StartOnce(pauseAfterShowing);
    _rows = _pReport->rows();
    const std::uint64_t failures = _pReport->amountOfFailures();
    const std::uint64_t withoutRow = _pReport->amountWithoutRow();
    wxString heading = "No assertion has failed while Developer > Assertion dialogs was on.";
    if (failures > 0)
    {
        heading = amountText(failures, "failure", "failures") + " at " + amountText(_rows.size(), "place", "places");
        if (withoutRow > 0)
        {
            heading += ", " + hoNumberText(withoutRow) + " of them elsewhere and not listed";
        }
        heading += ".";
    }
    _pHeading->SetLabel(heading);
    _pList->SetItemCount(static_cast<long>(_rows.size()));
    _pList->Refresh();
}

wxString hoAssertionReportWindow::text(bool isOnlySelected) const
{
    std::vector<hoAssertionRow> rows = isOnlySelected ? _pList->selected() : std::vector<hoAssertionRow>();
    wxString text;
    // Line by line: bytes that are no text in one do not touch the others.
    for (const std::string& line : hoAssertionReportLines(rows.empty() ? _rows : rows, _pList->mainThreadId()))
    {
        text += gtTextFromBytes(gtString(line)) + "\n";
    }
    return text;
}

void hoAssertionReportWindow::OnCopy(wxCommandEvent&)
{
    if (!_rows.empty())
    {
        hoCopyText(text(true));
    }
}

void hoAssertionReportWindow::OnSave(wxCommandEvent&)
{
    if (_rows.empty())
    {
        return;
    }
    wxFileDialog dialog(this, "Save the assertion report", wxString(), "assertions.tsv",
                        "Text with tabs (*.tsv)|*.tsv|All files|*", wxFD_SAVE | wxFD_OVERWRITE_PROMPT);
    if (dialog.ShowModal() == wxID_OK)
    {
        saveAs(gtPathBytesFromText(dialog.GetPath()));
    }
}
