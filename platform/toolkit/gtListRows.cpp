// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/gtListRows.h"

#include <wx/dataview.h>

#include <memory>
#include <utility>

#ifdef __WXGTK__

#include <gtk/gtk.h>

namespace
{
using SortCallback = std::function<void(int column, bool isAscending)>;
using TextOfRow = std::function<wxString(std::size_t row)>;

GtkTreeView* viewOf(wxDataViewCtrl& list)
{
    return GTK_TREE_VIEW(list.GtkGetTreeView());
}

struct PathEnd
{
    void operator()(GtkTreePath* pPath) const { gtk_tree_path_free(pPath); }
};
using Path = std::unique_ptr<GtkTreePath, PathEnd>;

template <class Function>
void forgetFunction(gpointer pFunction, GClosure* /*pClosure*/)
{
    delete static_cast<Function*>(pFunction);
}

// The object owns the function from now on.
template <class Function>
void connectSignal(gpointer pObject, const char* pSignal, GCallback handler, Function function)
{
    g_signal_connect_data(pObject, pSignal, handler, new Function(std::move(function)), &forgetFunction<Function>,
                          GConnectFlags(0));
}

void onSortColumnChanged(GtkTreeSortable* pModel, gpointer pFunction)
{
    gint column = -1;
    GtkSortType order = GTK_SORT_ASCENDING;
    gtk_tree_sortable_get_sort_column_id(pModel, &column, &order);
    if (column >= 0)
    {
        (*static_cast<SortCallback*>(pFunction))(column, order == GTK_SORT_ASCENDING);
    }
}

gboolean onQueryTooltip(GtkWidget* pWidget, gint x, gint y, gboolean isByKeyboard, GtkTooltip* pTooltip,
                        gpointer pFunction)
{
    GtkTreePath* pFound = nullptr;
    if (gtk_tree_view_get_tooltip_context(GTK_TREE_VIEW(pWidget), &x, &y, isByKeyboard, nullptr, &pFound, nullptr) ==
        FALSE)
    {
        return FALSE;
    }
    const Path path(pFound);
    const std::size_t row = static_cast<std::size_t>(gtk_tree_path_get_indices(path.get())[0]);
    const wxString text = (*static_cast<TextOfRow*>(pFunction))(row);
    gtk_tooltip_set_text(pTooltip, text.utf8_string().c_str());
    gtk_tree_view_set_tooltip_row(GTK_TREE_VIEW(pWidget), pTooltip, path.get());
    return text.empty() ? FALSE : TRUE;
}

void onSizeAllocate(GtkWidget* pWidget, GdkRectangle* /*pSize*/, gpointer /*pData*/)
{
    if (gtk_widget_get_realized(pWidget) != FALSE)
    {
        gdk_window_invalidate_rect(gtk_tree_view_get_bin_window(GTK_TREE_VIEW(pWidget)), nullptr, FALSE);
    }
}
}  // namespace

void gtRepaintWhenResized(wxDataViewCtrl& list)
{
    g_signal_connect_after(viewOf(list), "size-allocate", G_CALLBACK(onSizeAllocate), nullptr);
}

void gtReorderRows(wxDataViewCtrl& list, const std::vector<std::size_t>& before)
{
    if (before.empty())
    {
        return;
    }
    std::vector<gint> order(before.begin(), before.end());
    const Path root(gtk_tree_path_new());
    gtk_tree_model_rows_reordered(gtk_tree_view_get_model(viewOf(list)), root.get(), nullptr, order.data());
}

void gtRowChanged(wxDataViewCtrl& list, std::size_t row)
{
    GtkTreeModel* const pModel = gtk_tree_view_get_model(viewOf(list));
    const Path path(gtk_tree_path_new_from_indices(static_cast<gint>(row), -1));
    GtkTreeIter place;
    if (gtk_tree_model_get_iter(pModel, &place, path.get()) != FALSE)
    {
        gtk_tree_model_row_changed(pModel, path.get(), &place);
    }
}

void gtScrollToRow(wxDataViewCtrl& list, std::size_t row)
{
    const Path path(gtk_tree_path_new_from_indices(static_cast<gint>(row), -1));
    gtk_tree_view_scroll_to_cell(viewOf(list), path.get(), nullptr, FALSE, 0, 0);
}

void gtSearchColumn(wxDataViewCtrl& list, int column)
{
    gtk_tree_view_set_search_column(viewOf(list), column);
}

void gtFollowSorting(wxDataViewCtrl& list, SortCallback onSort)
{
    connectSignal(gtk_tree_view_get_model(viewOf(list)), "sort-column-changed", G_CALLBACK(onSortColumnChanged),
                  std::move(onSort));
}

void gtShowRowTooltips(wxDataViewCtrl& list, TextOfRow textOf)
{
    connectSignal(viewOf(list), "query-tooltip", G_CALLBACK(onQueryTooltip), std::move(textOf));
    gtk_widget_set_has_tooltip(list.GtkGetTreeView(), TRUE);
}

int gtColumnWidth(const wxDataViewColumn& column)
{
    return gtk_tree_view_column_get_fixed_width(GTK_TREE_VIEW_COLUMN(column.GetGtkHandle()));
}

#else

#include <algorithm>

namespace
{
wxDataViewVirtualListModel& modelOf(wxDataViewCtrl& list)
{
    return *static_cast<wxDataViewVirtualListModel*>(list.GetModel());
}
}  // namespace

void gtReorderRows(wxDataViewCtrl& list, const std::vector<std::size_t>& before)
{
    wxDataViewVirtualListModel& model = modelOf(list);
    std::vector<bool> wasSelected(before.size(), false);
    wxDataViewItemArray items;
    list.GetSelections(items);
    for (const wxDataViewItem& item : items)
    {
        wasSelected[model.GetRow(item)] = true;
    }
    items.clear();
    for (std::size_t row = 0; row < before.size(); ++row)
    {
        if (wasSelected[before[row]])
        {
            items.push_back(model.GetItem(static_cast<unsigned int>(row)));
        }
    }
    list.SetSelections(items);
    list.Refresh();
}

void gtRowChanged(wxDataViewCtrl& list, std::size_t row)
{
    modelOf(list).RowChanged(static_cast<unsigned int>(row));
}

void gtScrollToRow(wxDataViewCtrl& list, std::size_t row)
{
    list.EnsureVisible(modelOf(list).GetItem(static_cast<unsigned int>(row)));
}

void gtSearchColumn(wxDataViewCtrl& /*list*/, int /*column*/) {}

void gtFollowSorting(wxDataViewCtrl& list, std::function<void(int column, bool isAscending)> onSort)
{
    list.Bind(wxEVT_DATAVIEW_COLUMN_SORTED,
              [onSort](wxDataViewEvent& event)
              {
                  const wxDataViewColumn* const pColumn = event.GetDataViewColumn();
                  onSort(static_cast<int>(pColumn->GetModelColumn()), pColumn->IsSortOrderAscending());
              });
}

void gtShowRowTooltips(wxDataViewCtrl& list, std::function<wxString(std::size_t row)> textOf)
{
    list.Bind(wxEVT_MOTION,
              [&list, textOf](wxMouseEvent& event)
              {
                  event.Skip();
                  wxDataViewItem item;
                  wxDataViewColumn* pColumn = nullptr;
                  list.HitTest(event.GetPosition(), item, pColumn);
                  list.SetToolTip(item.IsOk() ? textOf(modelOf(list).GetRow(item)) : wxString());
              });
}

void gtRepaintWhenResized(wxDataViewCtrl& /*list*/) {}

int gtColumnWidth(const wxDataViewColumn& column)
{
    return column.GetWidth();
}

#endif
