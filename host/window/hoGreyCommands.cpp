// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoGreyCommands.h"

#include "host/window/hoCommands.h"
#include "host/window/hoSummary.h"
#include "host/window/hoTexts.h"
#include "platform/toolkit/gtMenuTooltip.h"

#include <wx/frame.h>
#include <wx/menu.h>

wxString hoWhyGrey(int command, const hoDocumentList& documents, std::size_t amountSelected, const hoKeyRing& keys,
                   bool isAtWork)
{
    switch (command)
    {
    case ID_SIGN:
    case ID_TEST:
    case ID_SIGN_ALL:
    case ID_TEST_ALL:
    {
        const bool isForAll = command == ID_SIGN_ALL || command == ID_TEST_ALL;
        const bool isTest = command == ID_TEST || command == ID_TEST_ALL;
        const std::size_t amount = isForAll ? documents.size() : amountSelected;
        if (isTest && !documents.isEmpty() && keys.canTest() && !isAtWork)
        {
            return hoWhyNoneSelected(documents, amount);
        }
        return hoWhyNoJob(documents, amount, keys, isAtWork);
    }
    case ID_CLOSE_DOCUMENTS:
    case ID_COPY_PATH:
    case ID_VIEW_DOCUMENTS:
    case ID_SHOW_IN_FOLDER:
        return hoWhyNoneSelected(documents, amountSelected);
    case ID_PROPERTIES:
        return amountSelected > 1 ? _("More than one document is selected.")
                                  : hoWhyNoneSelected(documents, amountSelected);
    case ID_CLOSE_ALL_DOCUMENTS:
    case wxID_SELECTALL:
        return hoWhyNoneSelected(documents, documents.size());
    case ID_FORGET_KEYS:
    case ID_KEY_INFORMATION:
        return keys.canTest() ? wxString() : _("No key is loaded.");
    default:
        return wxString();
    }
}

void hoExplainGreyCommands(wxFrame& frame, const std::function<wxString(int command)>& whyGrey,
                           const std::function<void(const wxString& reason)>& showReason)
{
    frame.Bind(wxEVT_MENU_OPEN,
               [&frame, whyGrey, showReason](wxMenuEvent& event)
               {
                   event.Skip();
                   wxMenu* const pMenu = event.GetMenu();
                   if (pMenu == nullptr)
                   {
                       return;
                   }
                   for (wxMenuItem* const pItem : pMenu->GetMenuItems())
                   {
                       gtSetMenuTooltip(*pItem, whyGrey(pItem->GetId()));
                   }
                   if (pMenu->FindChildItem(ID_SIGN) != nullptr)
                   {
                       // The toolkit empties the field for the menu, and brings back what it says now when that is
                       // closed.
                       const wxString reason = whyGrey(ID_SIGN);
                       showReason(reason);
                       frame.CallAfter([showReason, reason] { showReason(reason); });
                   }
               });
}
