// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoDocumentListCtrl.h"

#include "host/messages/hoMessages.h"
#include "host/messages/hoNumbers.h"
#include "host/window/hoDisplayText.h"
#include "host/window/hoStateIcons.h"
#include "host/window/hoSummary.h"
#include "host/window/hoTexts.h"
#include "platform/toolkit/gtColours.h"
#include "platform/toolkit/gtTextConversion.h"

#include <wx/headerctrl.h>

#include <algorithm>
#include <iterator>

namespace
{
struct ColumnFace
{
    const char* _title;
    const char* _widestText;  // the column is as wide as this at first; null: as its contents are
    hoDocumentList::Column _column;
    wxListColumnFormat _format;
};

const ColumnFace columns[] = {
    {wxTRANSLATE("Name"), "A name of usual length.document", hoDocumentList::Column::Name, wxLIST_FORMAT_LEFT},
    {wxTRANSLATE("State"), nullptr, hoDocumentList::Column::State, wxLIST_FORMAT_LEFT},
    {wxTRANSLATE("Size"), nullptr, hoDocumentList::Column::Size, wxLIST_FORMAT_RIGHT},
    {wxTRANSLATE("Modified"), nullptr, hoDocumentList::Column::Modified, wxLIST_FORMAT_LEFT},
    {wxTRANSLATE("Path"), "/home/somebody", hoDocumentList::Column::Path, wxLIST_FORMAT_LEFT},
};
const int lastColumn = static_cast<int>(std::size(columns)) - 1;
const std::int64_t wideTime = 1796068800;  // seconds since 1970: the last day of a November
const int columnPadding = 20;
const int stateIconWidth = 18;
const int mostStateWidth = 240;
const int leastColumnWidth = 20;
const int mostColumnWidth = 4000;

int widthOf(const wxWindow& window, const ColumnFace& column)
{
    const auto width = [&](const wxString& text) { return window.GetTextExtent(text).GetWidth(); };
    int widest = 0;
    switch (column._column)
    {
    case hoDocumentList::Column::State:
        for (int state = 0; state <= static_cast<int>(hoDocumentState::Missing); ++state)
        {
            widest = std::max(widest, width(gtTextFromBytes(hoStateText(static_cast<hoDocumentState>(state), true))));
        }
        return widest;
    case hoDocumentList::Column::Size:
        return width(gtTextFromBytes(hoSizeText(999)));
    case hoDocumentList::Column::Modified:
        return width(hoTimeText(wideTime));
    default:
        return width(column._widestText);
    }
}
}  // namespace

hoDocumentListCtrl::hoDocumentListCtrl(wxWindow* pParent, const hoDocumentList& documents)
    : wxListCtrl(pParent, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxLC_REPORT | wxLC_VIRTUAL | wxBORDER_NONE),
      _documents(documents),
      _pRows(this),
      _tooltipRow(wxNOT_FOUND),
      _canTest(false)
{
    SetName("documents");
    SetSmallImages(hoStateIcons());
    for (int column = 0; column <= lastColumn; ++column)
    {
        const int picture = columns[column]._column == hoDocumentList::Column::State ? FromDIP(stateIconWidth) : 0;
        AppendColumn(wxGetTranslation(columns[column]._title), columns[column]._format,
                     widthOf(*this, columns[column]) + picture + FromDIP(columnPadding));
    }
    for (wxWindow* pChild : GetChildren())
    {
        if (dynamic_cast<const wxHeaderCtrl*>(pChild) == nullptr && pChild->GetName() != "wxlistctrlcolumntitles")
        {
            _pRows = pChild;
        }
    }
    gtColourAlternateRows(*this);
    gtMakeSelectedRowsLegible(*this);

    _pRows->Bind(wxEVT_SIZE, &hoDocumentListCtrl::OnSize, this);
    Bind(wxEVT_LIST_COL_END_DRAG,
         [this](wxListEvent& event)
         {
             CallAfter(&hoDocumentListCtrl::widenLastColumn);
             event.Skip();
         });
    _pRows->Bind(wxEVT_MOTION, &hoDocumentListCtrl::OnMotion, this);
}

void hoDocumentListCtrl::setCanTest(bool canTest)
{
    _canTest = canTest;
    Refresh();
}

void hoDocumentListCtrl::showChanges()
{
    // A new amount leaves the rows unpainted until the program is idle, which it is not while a job reports.
    if (GetItemCount() != static_cast<int>(_documents.size()))
    {
        SetItemCount(static_cast<long>(_documents.size()));
    }
    _tooltipRow = wxNOT_FOUND;
    _pRows->UnsetToolTip();
    Refresh();
}

std::vector<std::size_t> hoDocumentListCtrl::selected() const
{
    std::vector<std::size_t> rows;
    long row = GetNextItem(wxNOT_FOUND, wxLIST_NEXT_ALL, wxLIST_STATE_SELECTED);
    while (row != wxNOT_FOUND)
    {
        rows.push_back(static_cast<std::size_t>(row));
        row = GetNextItem(row, wxLIST_NEXT_ALL, wxLIST_STATE_SELECTED);
    }
    return rows;
}

void hoDocumentListCtrl::select(const std::vector<std::size_t>& rows)
{
    SetItemState(wxNOT_FOUND, 0, wxLIST_STATE_SELECTED);
    bool isFirst = true;
    for (const std::size_t row : rows)
    {
        if (row >= _documents.size())
        {
            continue;
        }
        const long item = static_cast<long>(row);
        SetItemState(item, wxLIST_STATE_SELECTED, wxLIST_STATE_SELECTED);
        if (isFirst)
        {
            SetItemState(item, wxLIST_STATE_FOCUSED, wxLIST_STATE_FOCUSED);
            EnsureVisible(item);
        }
        isFirst = false;
    }
}

void hoDocumentListCtrl::selectAll()
{
    SetItemState(wxNOT_FOUND, wxLIST_STATE_SELECTED, wxLIST_STATE_SELECTED);
}

std::vector<int> hoDocumentListCtrl::columnWidths() const
{
    std::vector<int> widths;
    widths.reserve(static_cast<std::size_t>(lastColumn));
    for (int column = 0; column < lastColumn; ++column)
    {
        widths.push_back(GetColumnWidth(column));
    }
    return widths;
}

void hoDocumentListCtrl::setColumnWidths(const std::vector<int>& widths)
{
    for (int column = 0; column < std::min(lastColumn, static_cast<int>(widths.size())); ++column)
    {
        const int width = widths[static_cast<std::size_t>(column)];
        if (width >= leastColumnWidth && width <= mostColumnWidth)
        {
            SetColumnWidth(column, width);
        }
    }
    widenLastColumn();
}

void hoDocumentListCtrl::makeRoomForState(const wxString& text)
{
    for (int column = 0; column < lastColumn; ++column)
    {
        const int width = GetTextExtent(text).GetWidth() + FromDIP(stateIconWidth) + FromDIP(columnPadding);
        if (columns[column]._column == hoDocumentList::Column::State && GetColumnWidth(column) < width)
        {
            SetColumnWidth(column, std::min(width, std::max(GetColumnWidth(column), FromDIP(mostStateWidth))));
            widenLastColumn();
        }
    }
}

hoDocumentList::Column hoDocumentListCtrl::columnAt(int column)
{
    return columns[column]._column;
}

wxString hoDocumentListCtrl::tooltipOf(std::size_t row) const
{
    const hoDocument& document = _documents[row];
    return hoDisplayText(document._path) + "\n" +
           // The state, the size and the time of a document.
           hoFilledText(_("%1$s, %2$s, modified %3$s"), {hoVerdictWords(document._verdict, _canTest),
                                                         gtTextFromBytes(hoExactSizeText(document._facts._size)),
                                                         hoTimeText(document._facts._modifiedSeconds, true)});
}

wxString hoDocumentListCtrl::OnGetItemText(long row, long column) const
{
    const std::size_t position = static_cast<std::size_t>(row);
    if (position >= _documents.size())
    {
        return wxString();
    }
    const hoDocument& document = _documents[position];
    switch (columns[column]._column)
    {
    case hoDocumentList::Column::Name:
        return hoDisplayText(document.name());
    case hoDocumentList::Column::State:
        return hoVerdictWords(document._verdict, _canTest);
    case hoDocumentList::Column::Size:
        return gtTextFromBytes(hoSizeText(document._facts._size));
    case hoDocumentList::Column::Modified:
        return hoTimeText(document._facts._modifiedSeconds);
    case hoDocumentList::Column::Path:
        return hoDisplayText(document._path);
    }
    return wxString();
}

int hoDocumentListCtrl::OnGetItemColumnImage(long row, long column) const
{
    const std::size_t position = static_cast<std::size_t>(row);
    const bool isState = columns[column]._column == hoDocumentList::Column::State && position < _documents.size();
    return isState ? static_cast<int>(_documents[position]._verdict._state) : -1;
}

void hoDocumentListCtrl::OnSize(wxSizeEvent& event)
{
    widenLastColumn();
    event.Skip();
}

void hoDocumentListCtrl::OnMotion(wxMouseEvent& event)
{
    event.Skip();
    int where = 0;
    const long row = event.Dragging() ? wxNOT_FOUND : HitTest(event.GetPosition(), where);
    if (row == _tooltipRow)
    {
        return;
    }
    _tooltipRow = row;
    if (row >= 0 && static_cast<std::size_t>(row) < _documents.size())
    {
        _pRows->SetToolTip(tooltipOf(static_cast<std::size_t>(row)));
    }
    else
    {
        _pRows->UnsetToolTip();
    }
}

void hoDocumentListCtrl::widenLastColumn()
{
    int width = _pRows->GetClientSize().GetWidth();
    for (int column = 0; column < lastColumn; ++column)
    {
        width -= GetColumnWidth(column);
    }
    SetColumnWidth(lastColumn, std::max(width, FromDIP(200)));
}
