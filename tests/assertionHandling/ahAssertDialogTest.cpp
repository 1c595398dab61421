#include "assertionHandling/ahAssertDialog.h"

#include <gtest/gtest.h>
#include <wx/button.h>
#include <wx/textctrl.h>

#include "tests/support/tsWindowTest.h"

TEST(Dialog, ReturnMeansIgnoreAll)
{
    ahAssertDialog dialog(osFilePath(gtString("/home/u/notes.txt")), 42, "see https://example.org/x for more", nullptr);
    tsScript script;
    script.waitUntil("the dialog has the keyboard", [&] { return tsHasKeyboard(dialog); })
        .perform("picture", [&] { tsWritePicture(wxRect(0, 0, 1280, 900), "/tmp/cs/as/p1.png"); })
        .perform("press Return", [] { tsPressKeys("Return"); })
        .start();
    EXPECT_EQ(dialog.ShowModal(), AH_IGNORE_ALL_BUTTON_ID);
    EXPECT_TRUE(script.isFinished());
}
