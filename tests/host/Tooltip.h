// SPDX-License-Identifier: Apache-2.0
// What the toolkit shows where the pointer rests.
#ifndef COUNTERSIGN_TESTS_HOST_TOOLTIP_H
#define COUNTERSIGN_TESTS_HOST_TOOLTIP_H

#include <gtk/gtk.h>

#include <string>

// The text of the labels in the widget.
inline std::string textOfLabels(GtkWidget* pWidget)
{
    if (GTK_IS_LABEL(pWidget))
    {
        return gtk_label_get_text(GTK_LABEL(pWidget));
    }
    std::string text;
    if (GTK_IS_CONTAINER(pWidget))
    {
        GList* const pChildren = gtk_container_get_children(GTK_CONTAINER(pWidget));
        for (GList* pChild = pChildren; pChild != nullptr; pChild = pChild->next)
        {
            text += textOfLabels(GTK_WIDGET(pChild->data));
        }
        g_list_free(pChildren);
    }
    return text;
}

// The text of the tooltip that is up, empty if there is none.
inline std::string shownTooltip()
{
    std::string text;
    GList* const pWindows = gtk_window_list_toplevels();
    for (GList* pWindow = pWindows; pWindow != nullptr; pWindow = pWindow->next)
    {
        GtkWidget* const pWidget = GTK_WIDGET(pWindow->data);
        if (gtk_window_get_type_hint(GTK_WINDOW(pWidget)) == GDK_WINDOW_TYPE_HINT_TOOLTIP &&
            gtk_widget_get_mapped(pWidget) != FALSE)
        {
            text += textOfLabels(pWidget);
        }
    }
    g_list_free(pWindows);
    return text;
}

#endif
