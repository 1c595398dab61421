// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoDocumentListCtrl.h"

#include "host/messages/hoMessages.h"
#include "host/messages/hoNumbers.h"
#include "host/window/hoDisplayText.h"
#include "host/window/hoDocumentRows.h"
#include "host/window/hoSummary.h"
#include "host/window/hoTexts.h"
#include "platform/toolkit/gtColours.h"
#include "platform/toolkit/gtListRows.h"
#include "platform/toolkit/gtReaders.h"
#include "platform/toolkit/gtTextConversion.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace
{
struct ColumnFace
{
    const char* _title;
    const char* _widestText;  // the column is as wide as this at first; null: as its contents are
    hoDocumentList::Column _column;
    wxAlignment _alignment;
};

const ColumnFace columns[] = {
    {wxTRANSLATE("Name"), "A name of usual length.document", hoDocumentList::Column::Name, wxALIGN_LEFT},
    {wxTRANSLATE("State"), nullptr, hoDocumentList::Column::State, wxALIGN_LEFT},
    {wxTRANSLATE("Size"), nullptr, hoDocumentList::Column::Size, wxALIGN_RIGHT},
    {wxTRANSLATE("Modified"), nullptr, hoDocumentList::Column::Modified, wxALIGN_LEFT},
    {wxTRANSLATE("Path"), "/home/somebody", hoDocumentList::Column::Path, wxALIGN_LEFT},
};
const unsigned int lastColumn = static_cast<unsigned int>(std::size(columns)) - 1;
const std::int64_t wideTime = 1796068800;  // seconds since 1970: the last day of a November
const int columnPadding = 20;
const int stateIconWidth = 18;
const int leastColumnWidth = 20;
const int mostColumnWidth = 4000;
const int leastLastWidth = 200;
const int mostStateWidth = 240;
// More than these are taken out of the rows together, which makes the rows anew.
const std::size_t mostClosedOneByOne = 200;

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

hoDocumentListCtrl::hoDocumentListCtrl(wxWindow* pParent, const hoDocumentList& documents, Callbacks callbacks)
    : wxDataViewCtrl(pParent, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxDV_MULTIPLE | wxBORDER_NONE),
      _documents(documents),
      _callbacks(std::move(callbacks)),
      _pRows(new hoDocumentRows(documents)),
      _amountSelected(0),
      _isAmountKnown(false)
{
    SetName("documents");
    gtNameForReaders(*this, _("Documents"));
    AssociateModel(_pRows);
    _pRows->DecRef();
    gtSearchColumn(*this, static_cast<int>(hoDocumentList::Column::Name));
    addColumns();
    takeColours();
    gtMakeSelectedRowsLegible(*this);
    gtMakeColumnHeadsLegible(*this);
    gtRepaintWhenResized(*this);

    gtFollowSorting(*this, [this](int column, bool isAscending)
                    { _callbacks._onSort(static_cast<hoDocumentList::Column>(column), isAscending); });
    gtShowRowTooltips(*this, [this](std::size_t row) { return _pRows->tooltipOf(row); });
    Bind(wxEVT_DATAVIEW_SELECTION_CHANGED, [this](wxDataViewEvent&) { onSelection(); });
    Bind(wxEVT_SYS_COLOUR_CHANGED,
         [this](wxSysColourChangedEvent& event)
         {
             takeColours();
             Refresh();
             event.Skip();
         });
}

void hoDocumentListCtrl::addColumns()
{
    const int flags = wxDATAVIEW_COL_RESIZABLE | wxDATAVIEW_COL_SORTABLE;
    for (const ColumnFace& column : columns)
    {
        const bool isState = column._column == hoDocumentList::Column::State;
        const int width = widthOf(*this, column) + FromDIP(columnPadding) + (isState ? FromDIP(stateIconWidth) : 0);
        // A fixed width, without which the list would measure every row.
        const wxString title = wxGetTranslation(column._title);
        const unsigned int number = static_cast<unsigned int>(column._column);
        wxDataViewColumn* const pColumn =
            isState ? AppendIconTextColumn(title, number, wxDATAVIEW_CELL_INERT, width, column._alignment, flags)
                    : AppendTextColumn(title, number, wxDATAVIEW_CELL_INERT, width, column._alignment, flags);
        pColumn->GetRenderer()->EnableEllipsize(wxELLIPSIZE_END);
    }
    GetColumn(lastColumn)->SetMinWidth(FromDIP(leastLastWidth));
}

void hoDocumentListCtrl::takeColours()
{
    _pRows->setAlternateColour(gtAlternateRowColour());
}

void hoDocumentListCtrl::onSelection()
{
    _isAmountKnown = false;
    _callbacks._onSelection();
}

void hoDocumentListCtrl::showNew()
{
    while (_pRows->GetCount() < _documents.size())
    {
        _pRows->RowAppended();
    }
}

void hoDocumentListCtrl::showClosed(const std::vector<std::size_t>& rows)
{
    if (rows.size() > mostClosedOneByOne)
    {
        _pRows->Reset(static_cast<unsigned int>(_documents.size()));
        gtSearchColumn(*this, static_cast<int>(hoDocumentList::Column::Name));
    }
    else
    {
        std::for_each(rows.rbegin(), rows.rend(),
                      [this](std::size_t row) { _pRows->RowDeleted(static_cast<unsigned int>(row)); });
    }
    onSelection();
}

void hoDocumentListCtrl::makeRoomForState(const wxString& text)
{
    for (unsigned int number = 0; number < lastColumn; ++number)
    {
        wxDataViewColumn* const pColumn = GetColumn(number);
        const int now = gtColumnWidth(*pColumn);
        const int width = GetTextExtent(text).GetWidth() + FromDIP(stateIconWidth) + FromDIP(columnPadding);
        if (columns[number]._column == hoDocumentList::Column::State && now < width)
        {
            pColumn->SetWidth(std::min(width, std::max(now, FromDIP(mostStateWidth))));
        }
    }
}

void hoDocumentListCtrl::showOrder(const std::vector<std::size_t>& before)
{
    std::size_t row = 0;
    while (row < before.size() && before[row] == row)
    {
        ++row;
    }
    if (row < before.size())
    {
        gtReorderRows(*this, before);
    }
}

void hoDocumentListCtrl::showChanged(const std::vector<std::size_t>& rows)
{
    for (const std::size_t row : rows)
    {
        if (row < _documents.size())
        {
            gtRowChanged(*this, row);
        }
    }
}

void hoDocumentListCtrl::showStates(bool canTest)
{
    _pRows->setCanTest(canTest);
    for (std::size_t row = 0; row < _documents.size(); ++row)
    {
        gtRowChanged(*this, row);
    }
}

std::vector<std::size_t> hoDocumentListCtrl::selected() const
{
    wxDataViewItemArray items;
    GetSelections(items);
    std::vector<std::size_t> rows;
    rows.reserve(items.size());
    for (const wxDataViewItem& item : items)
    {
        rows.push_back(_pRows->GetRow(item));
    }
    return rows;
}

std::size_t hoDocumentListCtrl::amountSelected() const
{
    if (!_isAmountKnown)
    {
        _amountSelected = static_cast<std::size_t>(GetSelectedItemsCount());
        _isAmountKnown = true;
    }
    return _amountSelected;
}

std::size_t hoDocumentListCtrl::current() const
{
    const wxDataViewItem item = GetCurrentItem();
    return item.IsOk() ? _pRows->GetRow(item) : hoDocumentList::nowhere;
}

wxRect hoDocumentListCtrl::placeOf(std::size_t row) const
{
    return GetItemRect(_pRows->GetItem(static_cast<unsigned int>(row)));
}

void hoDocumentListCtrl::select(const std::vector<std::size_t>& rows)
{
    wxDataViewItemArray items;
    for (const std::size_t row : rows)
    {
        if (row < _documents.size())
        {
            items.push_back(_pRows->GetItem(static_cast<unsigned int>(row)));
        }
    }
    if (!items.empty())
    {
        SetCurrentItem(items.front());
    }
    if (!items.empty() && items.size() == _documents.size())
    {
        SelectAll();
    }
    else
    {
        SetSelections(items);
    }
    if (!items.empty())
    {
        gtScrollToRow(*this, _pRows->GetRow(items.front()));
    }
    // The toolkit tells only of what the user selects.
    onSelection();
}

void hoDocumentListCtrl::selectAllRows()
{
    SelectAll();
    onSelection();
}

void hoDocumentListCtrl::toggleCurrent()
{
    const wxDataViewItem item = GetCurrentItem();
    if (item.IsOk())
    {
        IsSelected(item) ? Unselect(item) : Select(item);
        onSelection();
    }
}

void hoDocumentListCtrl::removeSortIndicator()
{
    for (unsigned int column = 0; column <= lastColumn; ++column)
    {
        if (GetColumn(column)->IsSortKey())
        {
            GetColumn(column)->UnsetAsSortKey();
        }
    }
}

std::vector<int> hoDocumentListCtrl::columnWidths() const
{
    std::vector<int> widths;
    widths.reserve(lastColumn);
    for (unsigned int column = 0; column < lastColumn; ++column)
    {
        widths.push_back(gtColumnWidth(*GetColumn(column)));
    }
    return widths;
}

void hoDocumentListCtrl::setColumnWidths(const std::vector<int>& widths)
{
    for (unsigned int column = 0; column < std::min<std::size_t>(lastColumn, widths.size()); ++column)
    {
        const int width = widths[column];
        if (width >= leastColumnWidth && width <= mostColumnWidth)
        {
            GetColumn(column)->SetWidth(width);
        }
    }
}
