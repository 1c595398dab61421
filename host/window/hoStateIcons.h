// SPDX-License-Identifier: Apache-2.0
// A small picture for each state of a document, different in shape and not by colour alone.
#ifndef COUNTERSIGN_HO_STATE_ICONS_H
#define COUNTERSIGN_HO_STATE_ICONS_H

#include "host/documents/hoDocumentList.h"

#include <wx/bmpbndl.h>
#include <wx/vector.h>

// In the order of the states: the picture of a state is at its number. Main thread, once the toolkit runs.
wxVector<wxBitmapBundle> hoStateIcons();

#endif
