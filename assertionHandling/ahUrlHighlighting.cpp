#include "assertionHandling/ahUrlHighlighting.h"

#include <wx/textctrl.h>

void ahHighlightUrls(wxTextCtrl* /*pTextCtrl*/) {}
