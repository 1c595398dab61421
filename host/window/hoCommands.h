// SPDX-License-Identifier: Apache-2.0
// The ids of the main window's commands, in its menus and everywhere else. The toolkit's own ids (wxID_OPEN, wxID_EXIT
// and the like) stand for themselves.
#ifndef COUNTERSIGN_HO_COMMANDS_H
#define COUNTERSIGN_HO_COMMANDS_H

#include "host/documents/hoRecentDocuments.h"

#include <wx/defs.h>

#include <cstddef>

// So many keys have an entry of their own under Key > Forget one key.
constexpr std::size_t hoMostKeysToForget = 100;

enum hoCommand
{
    ID_CLOSE_DOCUMENTS = wxID_HIGHEST + 1,
    ID_CLOSE_ALL_DOCUMENTS,
    ID_VIEW_DOCUMENTS,
    ID_SHOW_IN_FOLDER,
    ID_PROPERTIES,
    ID_COPY_PATH,
    ID_CLEAR_RECENT,
    ID_SHOW_TOOL_BAR,
    ID_LOAD_PRIVATE_KEY,
    ID_LOAD_PUBLIC_KEY,
    ID_NEW_KEY_PAIR,
    ID_TEXTS,
    ID_KEY_INFORMATION,
    ID_CLEAR_RECENT_KEYS,
    ID_FORGET_KEYS,
    ID_SIGN,
    ID_SIGN_ALL,
    ID_TEST,
    ID_TEST_ALL,
    ID_ASSERTION_DIALOGS,
    ID_FAIL_ASSERTION,
    ID_ASSERTION_REPORT,
    ID_SHOW_DETAILS,
    ID_ACCEPT_OFFER,
    ID_RECENT_FIRST,
    ID_RECENT_LAST = ID_RECENT_FIRST + static_cast<int>(hoRecentDocuments::mostDocuments) - 1,
    ID_RECENT_KEY_FIRST,
    ID_RECENT_KEY_LAST = ID_RECENT_KEY_FIRST + static_cast<int>(hoRecentDocuments::mostDocuments) - 1,
    ID_FORGET_KEY_FIRST,
    ID_FORGET_KEY_LAST = ID_FORGET_KEY_FIRST + static_cast<int>(hoMostKeysToForget) - 1
};

#endif
