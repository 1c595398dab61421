// SPDX-License-Identifier: Apache-2.0
// Help > Manual and Help > About.
#include "tests/host/MainFrameFixture.h"

#include "host/window/hoHelp.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

namespace
{
using testing::HasSubstr;

class Help : public MainFrameFixture
{
protected:
    void TearDown() override
    {
        setenv("PATH", _path.c_str(), 1);
        MainFrameFixture::TearDown();
    }
    // Leaves a message that comes up while something is done.
    template <class Work>
    void withMessage(Work work)
    {
        tsScript script;
        script.waitUntil("a message has the keyboard", [] { return isActive("Manual"); })
            .perform("leave it", [] { tsPressKeys("Return"); })
            .start();
        work();
        EXPECT_TRUE(script.isFinished());
    }

    const std::string _path = std::getenv("PATH");
};
}  // namespace

TEST_F(Help, OpensTheManual)
{
    start();
    // The desktop's opener, as far as this program can tell.
    const std::string opener =
        _folder.write("xdg-open", "#!/bin/sh\nprintf %s \"$1\" >'" + _folder.path("new") + "'\nmv '" +
                                      _folder.path("new") + "' '" + _folder.path("opened") + "'\n");
    ASSERT_EQ(chmod(opener.c_str(), 0700), 0);
    setenv("PATH", (_folder.path() + ":" + _path).c_str(), 1);
    tsPressKeys("F1");
    tsRunUntil("the manual is opened", [this] { return std::filesystem::exists(_folder.path("opened")); });
    EXPECT_THAT(_folder.read("opened"), testing::EndsWith("docs/manual.html"));
    EXPECT_TRUE(std::filesystem::is_regular_file(_folder.read("opened")));
}

TEST_F(Help, SaysThatThereIsNoManual)
{
    start();
    withMessage([this] { hoShowManual(_pFrame, _folder.path("bin/program")); });
}

TEST_F(Help, TellsWhatItIsAndWhatItIsNot)
{
    start();
    EXPECT_THAT(hoAboutText().utf8_string(), HasSubstr("countersignature (RSA-PSS with SHA-256)"));
    EXPECT_THAT(hoAboutText().utf8_string(), HasSubstr("textbook RSA"));
    EXPECT_THAT(hoAboutText().utf8_string(), HasSubstr("exclusive-or"));
    EXPECT_THAT(hoAboutText().utf8_string(), HasSubstr("not against"));
    choose("alt+h", "a");
    tsRunUntil("it is shown", [] { return isActive("About Countersign"); });
    tsPressKeys("Escape");
    tsRunUntil("it is gone", [this] { return tsHasKeyboard(*_pFrame); });
}
