// SPDX-License-Identifier: Apache-2.0
#include "assertionReporting/arAssertionReportWindow.h"

#include "assertionReporting/arAssertionReportText.h"
#include "assertionReporting/arStackTrace.h"
#include "platform/baseTools/gtNumberText.h"
#include "platform/baseTools/gtString.h"
#include "platform/osWrappers/osAtomicFile.h"
#include "platform/osWrappers/osProcess.h"
#include "platform/toolkit/gtDisplayText.h"
#include "platform/toolkit/gtMainThreadCall.h"
#include "platform/toolkit/gtTextConversion.h"

#include <wx/accel.h>
#include <wx/button.h>
#include <wx/clipbrd.h>
#include <wx/dataobj.h>
#include <wx/filedlg.h>
#include <wx/listctrl.h>
#include <wx/msgdlg.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

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
const wxSize listSize(980, 220);
const wxSize stackSize(980, 140);
const int pauseAfterShowing = 100;  // milliseconds

gtString nameOf(const gtString& path)
{
    const std::string_view bytes = path.asStringView();
    const std::size_t start = bytes.rfind('/') + 1;
    return start == bytes.size() ? path : gtString(bytes.substr(start));
}

void copyText(const wxString& text)
{
    const wxClipboardLocker clipboard;
    if (!clipboard || !wxTheClipboard->SetData(new wxTextDataObject(text)))
    {
        return;
    }
    wxTheClipboard->Flush();
}

wxString amountText(std::uint64_t amount, const char* one, const char* many)
{
    return gtTextFromBytes(gtNumberText(amount)) + " " + (amount == 1 ? one : many);
}
}  // namespace

// A row's text is made when the row is painted.
class arAssertionReportList : public wxListCtrl
{
public:
    arAssertionReportList(wxWindow* pParent, const std::vector<arAssertionRow>& rows)
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

    std::vector<arAssertionRow> selected() const
    {
        std::vector<arAssertionRow> rows;
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
        const arAssertionRow& row = _rows[static_cast<std::size_t>(position)];
        switch (column)
        {
        case COLUMN_PLACE:
            return gtDisplayText(nameOf(row._file)) + ":" + std::to_string(row._line);
        case COLUMN_COUNT:
            return gtTextFromBytes(gtNumberText(row._count));
        case COLUMN_FIRST:
            return gtTextFromBytes(arReportTime(row._firstSeconds));
        case COLUMN_LAST:
            return gtTextFromBytes(arReportTime(row._lastSeconds));
        case COLUMN_THREAD:
            return gtTextFromBytes(arThreadWords(row, _mainThreadId));
        case COLUMN_DECISION:
            return arDecisionWord(row._decision);
        default:
            return gtDisplayText(row._message);
        }
    }

    const std::vector<arAssertionRow>& _rows;
    const unsigned int _mainThreadId;
};

arAssertionReportWindow::arAssertionReportWindow(wxWindow* pParent, std::shared_ptr<arAssertionReport> pReport)
    : wxDialog(pParent, wxID_ANY, "Assertion report", wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER | wxMAXIMIZE_BOX),
      _pReport(std::move(pReport)),
      _pHeading(new wxStaticText(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize, wxST_NO_AUTORESIZE)),
      _pList(new arAssertionReportList(this, _rows)),
      _pStack(new wxTextCtrl(this, wxID_ANY, wxString(), wxDefaultPosition, FromDIP(stackSize),
                             wxTE_MULTILINE | wxTE_READONLY | wxTE_DONTWRAP)),
      _isChanged(false),
      _pFollow(std::make_unique<gtMainThreadCall>([this] { followReport(); }))
{
    // The toolkit would say its own words in the user's language, beside our English ones.
    auto* pCopy = new wxButton(this, wxID_COPY, "&Copy");
    auto* pSave = new wxButton(this, wxID_SAVEAS, "&Save...");
    auto* pClose = new wxButton(this, wxID_CLOSE, "&Close");
    pCopy->SetToolTip("Copy the selected rows, or all if none is selected (Ctrl+C)");
    pSave->SetToolTip("Write all rows to a file (Ctrl+S)");
    SetEscapeId(wxID_CLOSE);
    wxAcceleratorEntry keys[] = {{wxACCEL_CTRL, 'C', wxID_COPY}, {wxACCEL_CTRL, 'S', wxID_SAVEAS}};
    SetAcceleratorTable(wxAcceleratorTable(static_cast<int>(std::size(keys)), keys));
    _pHeading->SetName("assertionReportHeading");

    _pStack->SetName("assertionStack");
    _pList->Bind(wxEVT_LIST_ITEM_SELECTED, [this](wxListEvent&) { showStack(); });
    _pList->Bind(wxEVT_LIST_ITEM_DESELECTED, [this](wxListEvent&) { showStack(); });
    _pList->Bind(wxEVT_LIST_ITEM_ACTIVATED, [this](wxListEvent& event) { openSource(event.GetIndex()); });

    const auto whenAny = [this](wxUpdateUIEvent& event) { event.Enable(!_rows.empty()); };
    Bind(wxEVT_UPDATE_UI, whenAny, wxID_COPY);
    Bind(wxEVT_UPDATE_UI, whenAny, wxID_SAVEAS);
    Bind(wxEVT_BUTTON, &arAssertionReportWindow::OnCopy, this, wxID_COPY);
    Bind(wxEVT_MENU, &arAssertionReportWindow::OnCopy, this, wxID_COPY);
    Bind(wxEVT_BUTTON, &arAssertionReportWindow::OnSave, this, wxID_SAVEAS);
    Bind(wxEVT_MENU, &arAssertionReportWindow::OnSave, this, wxID_SAVEAS);
    Bind(
        wxEVT_BUTTON, [this](wxCommandEvent&) { Hide(); }, wxID_CLOSE);

    auto* pButtons = new wxBoxSizer(wxHORIZONTAL);
    pButtons->AddStretchSpacer();
    pButtons->Add(pCopy, wxSizerFlags().Border(wxRIGHT));
    pButtons->Add(pSave, wxSizerFlags().Border(wxRIGHT));
    pButtons->Add(pClose);
    auto* pTop = new wxBoxSizer(wxVERTICAL);
    pTop->Add(_pHeading, wxSizerFlags().Expand().DoubleBorder(wxLEFT | wxRIGHT | wxTOP));
    pTop->Add(_pList, wxSizerFlags(3).Expand().DoubleBorder());
    pTop->Add(new wxStaticText(this, wxID_ANY, "Stack of the selected row's last failure:"),
              wxSizerFlags().DoubleBorder(wxLEFT | wxRIGHT));
    pTop->Add(_pStack, wxSizerFlags(2).Expand().DoubleBorder());
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
    _pReport->setListener([this] { _pFollow->request(); });
    showRows();
}

arAssertionReportWindow::~arAssertionReportWindow()
{
    _pReport->setListener(nullptr);
}

bool arAssertionReportWindow::saveAs(const gtString& path)
{
    const osWritingResult writing = osWriteFileAtomically(path, gtBytesFromText(text(false)).asStringView(), true);
    if (!writing.isOk())
    {
        wxMessageBox("The report could not be written to " + gtDisplayText(path) + ": " +
                         gtTextFromBytes(std::strerror(writing._systemError)) + ".",
                     "Assertion report", wxOK | wxICON_ERROR, this);
    }
    return writing.isOk();
}

// Every showing asks to be told of the next change, which may be there already.
void arAssertionReportWindow::followReport()
{
    _isChanged = true;
    if (!_pause.IsRunning())
    {
        showRows();
    }
}

void arAssertionReportWindow::showRows()
{
    _isChanged = false;
    _pause.StartOnce(pauseAfterShowing);
    _rows = _pReport->rows();
    const std::uint64_t failures = _pReport->amountOfFailures();
    const std::uint64_t withoutRow = _pReport->amountWithoutRow();
    wxString heading = "No assertion has failed while there were dialogs for them.";
    if (failures > 0)
    {
        heading = amountText(failures, "failure", "failures") + " at " + amountText(_rows.size(), "place", "places");
        if (withoutRow > 0)
        {
            heading += ", " + gtTextFromBytes(gtNumberText(withoutRow)) + " of them elsewhere and not listed";
        }
        heading += ".";
    }
    _pHeading->SetLabel(heading);
    _pList->SetItemCount(static_cast<long>(_rows.size()));
    _pList->Refresh();
    showStack();
}

// Of the first selected row, or of the first of all if none is selected.
void arAssertionReportWindow::showStack()
{
    const std::vector<arAssertionRow> selected = _pList->selected();
    const arAssertionRow* const pRow =
        !selected.empty() ? &selected.front() : (_rows.empty() ? nullptr : &_rows.front());
    const std::vector<std::uintptr_t> stack = pRow == nullptr ? std::vector<std::uintptr_t>() : pRow->_stack;
    if (stack == _shownStack && (pRow == nullptr || !_pStack->IsEmpty()))
    {
        return;
    }
    _shownStack = stack;
    wxString text;
    int number = 0;
    for (const gtString& line : arStackLines(stack))
    {
        text += wxString::Format("%2d  ", number++) + gtDisplayText(line) + "\n";
    }
    if (text.empty() && pRow != nullptr)
    {
        text = arHasStacks() ? "There was no memory for it."
                             : "This program was built without a library that reads stacks.";
    }
    _pStack->ChangeValue(text);
}

void arAssertionReportWindow::openSource(long position) const
{
    if (position >= 0 && static_cast<std::size_t>(position) < _rows.size())
    {
        const arAssertionRow& row = _rows[static_cast<std::size_t>(position)];
        osOpenFileInSourceCodeEditor(osFilePath(row._file), row._line);
    }
}

wxString arAssertionReportWindow::text(bool isOnlySelected) const
{
    std::vector<arAssertionRow> rows = isOnlySelected ? _pList->selected() : std::vector<arAssertionRow>();
    wxString text;
    // Line by line: bytes that are no text in one do not touch the others.
    for (const gtString& line : arAssertionReportLines(rows.empty() ? _rows : rows, _pList->mainThreadId()))
    {
        text += gtTextFromBytes(line) + "\n";
    }
    return text;
}

void arAssertionReportWindow::OnCopy(wxCommandEvent&)
{
    if (!_rows.empty())
    {
        copyText(text(true));
    }
}

void arAssertionReportWindow::OnSave(wxCommandEvent&)
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
