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
        .perform("press Return", [] { tsPressKeys("Return"); })
        .start();
    EXPECT_EQ(dialog.ShowModal(), AH_IGNORE_ALL_BUTTON_ID);
    EXPECT_TRUE(script.isFinished());
}
