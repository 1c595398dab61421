// SPDX-License-Identifier: Apache-2.0
// What the system's own list can do for the rows of a virtual model and the toolkit's class for it does not offer.
// Rows count from 0. Main thread only.
#ifndef GT_LIST_ROWS_H
#define GT_LIST_ROWS_H

#include <wx/string.h>

#include <cstddef>
#include <functional>
#include <vector>

class wxDataViewColumn;
class wxDataViewCtrl;

// Tells the list that its rows have changed places: before[i] is where the row stood that is at i. Selected rows stay
// selected at their new places, and so does the current one. before holds each row of the list once.
void gtReorderRows(wxDataViewCtrl& list, const std::vector<std::size_t>& before);

// Tells the list, and whoever reads it aloud, that a row has other contents. Takes the same time for a row that is out
// of sight, and is for rows in sight no more than to paint them again.
void gtRowChanged(wxDataViewCtrl& list, std::size_t row);

// Scrolls until the row is in sight, at once or when the list has got its place on the screen.
void gtScrollToRow(wxDataViewCtrl& list, std::size_t row);

// What the user types is looked for at the beginning of this column of the model. For every time that the list has got
// its model, or the model is reset.
void gtSearchColumn(wxDataViewCtrl& list, int column);

// Calls this when the user wants another order, by the mouse or the keyboard: with the model's column, and whether it
// ascends. For once, after the list has got its model.
void gtFollowSorting(wxDataViewCtrl& list, std::function<void(int column, bool isAscending)> onSort);

// Shows this text of the row that the mouse rests on, or that the keyboard asks for.
void gtShowRowTooltips(wxDataViewCtrl& list, std::function<wxString(std::size_t row)> textOf);

// Paints the list anew when it gets another size. What it keeps of its picture does not know of the room that it gains,
// so that what was there before would stay. For once.
void gtRepaintWhenResized(wxDataViewCtrl& list);

// The width that a column has been given by the program or the user, also before it is on the screen.
int gtColumnWidth(const wxDataViewColumn& column);

#endif
