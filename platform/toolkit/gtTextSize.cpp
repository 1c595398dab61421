// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/gtTextSize.h"

#ifdef __WXGTK__
#include <string>

#include <gtk/gtk.h>

namespace
{
// A font as "Cantarell Bold 11": its last word is the size, if it is a number.
std::string withSize(const std::string& font, int points)
{
    const std::size_t blank = font.find_last_of(' ');
    const bool hasSize =
        blank != std::string::npos && font.find_first_not_of("0123456789.", blank + 1) == std::string::npos;
    return (hasSize ? font.substr(0, blank) : font) + " " + std::to_string(points);
}
}  // namespace
#endif

void gtSetTextSize(int points)
{
#ifdef __WXGTK__
    GtkSettings* const pSettings = gtk_settings_get_default();
    if (pSettings == nullptr)
    {
        return;
    }
    // What the program has set before.
    gtk_settings_reset_property(pSettings, "gtk-font-name");
    if (points <= 0)
    {
        return;
    }
    char* pName = nullptr;
    g_object_get(pSettings, "gtk-font-name", &pName, nullptr);
    const std::string sized = withSize(pName != nullptr ? pName : "Sans", points);
    g_object_set(pSettings, "gtk-font-name", sized.c_str(), nullptr);
    g_free(pName);
#else
    static_cast<void>(points);
#endif
}
