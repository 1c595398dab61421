// SPDX-License-Identifier: Apache-2.0
// What the list of the documents shows, as a test reads it.
#ifndef COUNTERSIGN_TESTS_HOST_DOCUMENT_ROWS_H
#define COUNTERSIGN_TESTS_HOST_DOCUMENT_ROWS_H

#include "host/window/hoDocumentListCtrl.h"

#include <string>

// Null as long as there has been no document.
inline hoDocumentListCtrl* findDocumentRows(wxWindow* pParent)
{
    return dynamic_cast<hoDocumentListCtrl*>(wxWindow::FindWindowByName("documents", pParent));
}

inline wxDataViewVirtualListModel& modelOf(hoDocumentListCtrl& list)
{
    return *dynamic_cast<wxDataViewVirtualListModel*>(list.GetModel());
}

inline unsigned int amountOfRows(hoDocumentListCtrl& list)
{
    return modelOf(list).GetCount();
}

// The text of a cell, without the state's picture.
inline std::string textOfRow(hoDocumentListCtrl& list, int row, int column)
{
    wxVariant value;
    modelOf(list).GetValueByRow(value, static_cast<unsigned int>(row), static_cast<unsigned int>(column));
    if (value.GetType() == "wxDataViewIconText")
    {
        wxDataViewIconText both;
        both << value;
        return both.GetText().utf8_string();
    }
    return value.GetString().utf8_string();
}

// Where a cell is on the screen; empty when it is out of sight.
inline wxRect placeOfCell(hoDocumentListCtrl& list, int row, int column)
{
    wxRect rect = list.GetItemRect(modelOf(list).GetItem(static_cast<unsigned int>(row)),
                                   list.GetColumn(static_cast<unsigned int>(column)));
    if (!rect.IsEmpty())
    {
        rect.SetPosition(list.ClientToScreen(rect.GetPosition()));
    }
    return rect;
}

#endif
