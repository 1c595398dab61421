// SPDX-License-Identifier: Apache-2.0
// Takes a picture of the assertion dialog on the present display, and ends.
//
//   picture_assertion_dialog PICTURE.png [FILE LINE REASON]
#include <cstdio>
#include <cstdlib>

#include <wx/app.h>
#include <wx/init.h>
#include <wx/textctrl.h>

#include "assertionHandling/ahAssertDialog.h"
#include "platform/toolkit/gtTextConversion.h"
#include "tests/support/tsWindowTest.h"

namespace
{

wxAppConsole* makeApplication()
{
    return new wxApp;
}

// Whether there is something to read: dark on light.
bool isPainted(const wxRect& screenRect)
{
    const wxImage picture = tsPictureOfScreen();
    if (!picture.IsOk())
    {
        return false;
    }
    bool hasDark = false;
    bool hasLight = false;
    const wxRect rect = wxRect(picture.GetSize()).Intersect(screenRect);
    for (int y = rect.GetTop(); y <= rect.GetBottom(); ++y)
    {
        for (int x = rect.GetLeft(); x <= rect.GetRight(); ++x)
        {
            hasDark = hasDark || picture.GetRed(x, y) < 80;
            hasLight = hasLight || picture.GetRed(x, y) > 200;
        }
    }
    return hasDark && hasLight;
}

bool takePicture(const char* pPicture, const char* pFile, int lineNumber, const char* pReason)
{
    ahAssertDialog dialog(osFilePath(gtString(pFile)), lineNumber, gtTextFromBytes(pReason), nullptr);
    const wxWindow* pReport = dialog.GetChildren().GetFirst()->GetData();
    bool isWritten = false;
    tsScript script;
    script.waitUntil("the dialog has the keyboard", [&] { return tsHasKeyboard(dialog); })
        .waitUntil("the report is painted", [&] { return isPainted(pReport->GetScreenRect()); })
        .perform("take the picture",
                 [&]
                 {
                     isWritten = tsWritePicture(dialog.GetScreenRect(), pPicture);
                     dialog.EndModal(AH_IGNORE_BUTTON_ID);
                 })
        .start();
    dialog.ShowModal();
    return isWritten;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 2 && argc != 5)
    {
        static_cast<void>(std::fputs("usage: picture_assertion_dialog PICTURE.png [FILE LINE REASON]\n", stderr));
        return 2;
    }
    wxAppConsole::SetInitializerFunction(&makeApplication);
    int amountOfArguments = 1;
    if (!wxEntryStart(amountOfArguments, argv))
    {
        return 2;
    }
    const bool isTaken =
        argc == 5 ? takePicture(argv[1], argv[2], static_cast<int>(std::strtol(argv[3], nullptr, 10)), argv[4])
                  : takePicture(argv[1], "/home/ada/countersign/host/hoDocumentList.cpp", 118,
                                "Assertion failure (index < _documents.size())\n\n"
                                "What to do about it: https://example.org/countersign/assertions");
    wxEntryCleanup();
    return isTaken ? 0 : 1;
}
