// SPDX-License-Identifier: Apache-2.0
// What stands in the rows of the opened documents: a model whose texts are made when a row is painted or read aloud, so
// that ten thousand documents cost no more than the screenful that is seen.
//
// Rows count from 0 like the list's positions, and are the same. How many there are is told by RowAppended, RowDeleted
// and Reset; a row that the list of documents does not have is empty. The list must outlive the model. Main thread
// only.
#ifndef COUNTERSIGN_HO_DOCUMENT_ROWS_H
#define COUNTERSIGN_HO_DOCUMENT_ROWS_H

#include "host/documents/hoDocumentList.h"

#include <wx/bmpbndl.h>
#include <wx/colour.h>
#include <wx/dataview.h>
#include <wx/vector.h>

class hoDocumentRows : public wxDataViewVirtualListModel
{
public:
    explicit hoDocumentRows(const hoDocumentList& documents);

    // Whether there is a key that could tell a signature from another one; states are worded accordingly.
    void setCanTest(bool canTest) { _canTest = canTest; }
    // Of every other row.
    void setAlternateColour(const wxColour& colour) { _alternateColour = colour; }

    // The text of a cell. A column's number is that of hoDocumentList::Column.
    wxString textOf(std::size_t row, unsigned int column) const;
    // What the tooltip says of a row: everything exactly.
    wxString tooltipOf(std::size_t row) const;

private:
    void GetValueByRow(wxVariant& value, unsigned int row, unsigned int column) const override;
    bool GetAttrByRow(unsigned int row, unsigned int column, wxDataViewItemAttr& attributes) const override;
    bool SetValueByRow(const wxVariant& value, unsigned int row, unsigned int column) override;

    const hoDocumentList& _documents;
    const wxVector<wxBitmapBundle> _icons;
    wxColour _alternateColour;
    bool _canTest;
};

#endif
