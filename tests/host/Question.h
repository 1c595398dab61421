// SPDX-License-Identifier: Apache-2.0
// Messages and questions of the toolkit, which it does not count among its windows.
#ifndef COUNTERSIGN_TESTS_HOST_QUESTION_H
#define COUNTERSIGN_TESTS_HOST_QUESTION_H

#include <gtk/gtk.h>

#include <string>

// What the message that has the keyboard says, without what it explains below; empty if there is none.
inline std::string shownQuestion()
{
    std::string text;
    GList* const pWindows = gtk_window_list_toplevels();
    for (GList* pWindow = pWindows; pWindow != nullptr; pWindow = pWindow->next)
    {
        if (GTK_IS_MESSAGE_DIALOG(pWindow->data) && gtk_window_is_active(GTK_WINDOW(pWindow->data)) != FALSE)
        {
            char* pText = nullptr;
            g_object_get(pWindow->data, "text", &pText, nullptr);
            text += pText == nullptr ? "" : pText;
            g_free(pText);
        }
    }
    g_list_free(pWindows);
    return text;
}

#endif
