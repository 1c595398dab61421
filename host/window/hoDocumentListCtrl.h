// SPDX-License-Identifier: Apache-2.0
// The rows of the opened documents: the system's own list, which a screen reader knows, as a view of a document list.
//
// Rows count from 0 like the list's positions, and are the same. Whoever changes the list says what has changed
// afterwards, by the functions show...; each takes the time of what has changed, whatever the number of documents. The
// list must outlive the control. Main thread only.
#ifndef COUNTERSIGN_HO_DOCUMENT_LIST_CTRL_H
#define COUNTERSIGN_HO_DOCUMENT_LIST_CTRL_H

#include "host/documents/hoDocumentList.h"

#include <wx/dataview.h>

#include <functional>
#include <vector>

class hoDocumentRows;

class hoDocumentListCtrl : public wxDataViewCtrl
{
public:
    struct Callbacks
    {
        std::function<void()> _onSelection;  // other rows are selected, or may be
        std::function<void(hoDocumentList::Column column, bool isAscending)> _onSort;  // the user wants this order
    };

    hoDocumentListCtrl(wxWindow* pParent, const hoDocumentList& documents, Callbacks callbacks);

    // Documents have been added at the end.
    void showNew();
    // Documents have been taken out; rows: where they were, in ascending order.
    void showClosed(const std::vector<std::size_t>& rows);
    // The list is in another order; before: what its sort has given. Documents stay selected.
    void showOrder(const std::vector<std::size_t>& before);
    // Something that is shown of these documents has changed; rows that do not exist are passed over.
    void showChanged(const std::vector<std::size_t>& rows);
    // The same of all of them, and whether there is a key that could tell a signature from another one.
    void showStates(bool canTest);

    std::vector<std::size_t> selected() const;
    std::size_t amountSelected() const;
    // The row that the keyboard is on, or hoDocumentList::nowhere.
    std::size_t current() const;
    // Where a row is, in this window; empty when it is out of sight.
    wxRect placeOf(std::size_t row) const;

    // Selects these rows and no others, makes the first of them the current one and scrolls to it.
    // Rows that do not exist are passed over.
    void select(const std::vector<std::size_t>& rows);
    void selectAllRows();
    // Selects the row that the keyboard is on, or does not select it any more.
    void toggleCurrent();

    // No column says any more that the rows are in its order.
    void removeSortIndicator();

    // The widths of the columns but the last, which takes what is left; widths that make no sense are passed over.
    std::vector<int> columnWidths() const;
    void setColumnWidths(const std::vector<int>& widths);

    // Makes the column of the states wide enough for this one, if it is not too long and the column is narrower.
    void makeRoomForState(const wxString& text);

private:
    void addColumns();
    void takeColours();
    void onSelection();

    const hoDocumentList& _documents;
    const Callbacks _callbacks;
    hoDocumentRows* const _pRows;  // the control has a share in it
    // Counting takes as long as there are rows, and menus ask often.
    mutable std::size_t _amountSelected;
    mutable bool _isAmountKnown;
};

#endif
