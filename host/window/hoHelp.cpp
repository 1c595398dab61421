// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoHelp.h"

#include "countersignVersion.h"
#include "host/desktop/hoManual.h"
#include "host/window/hoDisplayText.h"
#include "host/window/hoTexts.h"
#include "platform/toolkit/gtTextConversion.h"

#include <wx/aboutdlg.h>
#include <wx/msgdlg.h>
#include <wx/utils.h>

wxString hoAboutText()
{
    return _("Signs files and tells later whether they are still the same,\n"
             "encrypts short texts, and helps developers with failed assertions.\n"
             "\n"
             "A good signature holds a countersignature (RSA-PSS with SHA-256),\n"
             "which nobody can make without the private key. A weak one has none:\n"
             "its digest is an exclusive-or of the bytes, which protects against\n"
             "accidents, not against somebody who wants to deceive you.\n"
             "The encryption is textbook RSA without random padding: equal\n"
             "texts give equal cipher texts, and a guess can be checked.");
}

void hoShowAbout(wxWindow* pParent)
{
    wxAboutDialogInfo info;
    info.SetName("Countersign");
    info.SetVersion(COUNTERSIGN_VERSION);
    info.SetDescription(hoAboutText());
    wxAboutBox(info, pParent);
}

void hoShowManual(wxWindow* pParent, const gtString& program)
{
    const gtString manual = hoManualPath(program);
    if (manual.isEmpty())
    {
        wxMessageBox(_("The manual is not there. It is installed with the program, as "
                       "share/doc/countersign/manual.html; installing Countersign anew brings it back."),
                     _("Manual"), wxOK | wxICON_ERROR, pParent);
    }
    else if (!wxLaunchDefaultApplication(gtPathTextFromBytes(manual)))
    {
        wxMessageBox(hoFilledText(_("There is no program to open the manual with. It is %s and can be read in any "
                                    "browser."),
                                  {hoDisplayText(manual)}),
                     _("Manual"), wxOK | wxICON_ERROR, pParent);
    }
}
