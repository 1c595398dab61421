// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoTypedSecret.h"
#include "platform/baseTools/gtWipe.h"

#include <wx/textctrl.h>

#include <algorithm>
#include <string>

#ifdef __WXGTK__
#include <gtk/gtk.h>
#endif

hoTypedSecret::hoTypedSecret(const wxTextCtrl& field) : _length(0)
{
#ifdef __WXGTK__
    const std::string_view text = gtk_entry_get_text(GTK_ENTRY(field.GetHandle()));
#else
    const std::string text = field.GetValue().utf8_string();
#endif
    _length = text.size();
    _pBytes = std::make_unique<char[]>(_length);
    std::copy(text.begin(), text.end(), _pBytes.get());
}

hoTypedSecret::~hoTypedSecret()
{
    gtWipe(_pBytes.get(), _length);
}

void hoShowTypedSecret(wxTextCtrl& field, bool isShown)
{
    const long style = field.GetWindowStyleFlag();
    field.SetWindowStyleFlag(isShown ? style & ~wxTE_PASSWORD : style | wxTE_PASSWORD);
}
