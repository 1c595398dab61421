// SPDX-License-Identifier: Apache-2.0
// The rows of the opened documents: a view of a document list, which makes a row's text when that row is painted, so
// that ten thousand documents cost no more than the screenful that is seen.
//
// Rows count from 0 like the list's positions, and are the same. Whoever changes the list calls showChanges afterwards.
// The list must outlive the control. Main thread only.
#ifndef COUNTERSIGN_HO_DOCUMENT_LIST_CTRL_H
#define COUNTERSIGN_HO_DOCUMENT_LIST_CTRL_H

#include "host/documents/hoDocumentList.h"

#include <wx/listctrl.h>

class hoDocumentListCtrl : public wxListCtrl
{
public:
    hoDocumentListCtrl(wxWindow* pParent, const hoDocumentList& documents);

    // Takes the list's present size and contents; rows that are still there stay selected by their number.
    void showChanges();

    // Whether there is a key that could tell a signature from another one; states are worded accordingly.
    void setCanTest(bool canTest);

    std::vector<std::size_t> selected() const;

    // Selects these rows and no others, makes the first of them the current one and scrolls to it.
    // Rows that do not exist are passed over.
    void select(const std::vector<std::size_t>& rows);

    void selectAll();

    // The widths of the columns but the last, which takes what is left; widths that make no sense are passed over.
    std::vector<int> columnWidths() const;
    void setColumnWidths(const std::vector<int>& widths);

    // Makes the column of the states wide enough for this one, if it is not too long and the column is narrower.
    void makeRoomForState(const wxString& text);

    // The column that a header belongs to.
    static hoDocumentList::Column columnAt(int column);

    // What the tooltip says of a row: everything exactly.
    wxString tooltipOf(std::size_t row) const;

private:
    wxString OnGetItemText(long row, long column) const override;
    int OnGetItemColumnImage(long row, long column) const override;

    void OnSize(wxSizeEvent& event);
    void OnMotion(wxMouseEvent& event);
    void widenLastColumn();

    const hoDocumentList& _documents;
    wxWindow* _pRows;  // the child that shows the rows and gets the mouse
    long _tooltipRow;
    bool _canTest;
};

#endif
