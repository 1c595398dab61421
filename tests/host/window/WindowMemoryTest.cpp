// SPDX-License-Identifier: Apache-2.0
// What the window remembers, from one run to the next.
#include "tests/host/window/BareFrame.h"

#include "host/window/hoWindowMemory.h"

#include <gmock/gmock.h>

namespace
{
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class WindowMemory : public BareFrame
{
protected:
    void SetUp() override
    {
        BareFrame::SetUp();
        setenv("XDG_CONFIG_HOME", _folder.path().c_str(), 1);
    }
    std::function<void(const wxString&)> onProblem()
    {
        return [this](const wxString& text) { _problems.push_back(text.utf8_string()); };
    }
    std::vector<std::string> _problems;
};
}  // namespace

TEST_F(WindowMemory, GivesBackWhatWasSaved)
{
    {
        hoWindowMemory memory(onProblem());
        memory.load();
        memory.recentDocuments().add("/older");
        memory.recentDocuments().add("/newer");
        memory.settings().setText("folder", "/somewhere");
        memory.save(*_pFrame, {100, 50});
    }
    hoWindowMemory memory(onProblem());
    memory.load();
    EXPECT_THAT(memory.recentDocuments().paths(), ElementsAre("/newer", "/older"));
    EXPECT_EQ(memory.settings().text("folder"), "/somewhere");
    ASSERT_GE(memory.columnWidths().size(), 3U);
    EXPECT_EQ(memory.columnWidths()[0], 100);
    EXPECT_EQ(memory.columnWidths()[1], 50);
    EXPECT_EQ(memory.columnWidths()[2], 0);
    EXPECT_THAT(_problems, testing::IsEmpty());
}

TEST_F(WindowMemory, KeepsWidthsOfARunWithoutAList)
{
    {
        hoWindowMemory memory(onProblem());
        memory.load();
        memory.save(*_pFrame, {100});
        memory.save(*_pFrame, {});
    }
    hoWindowMemory memory(onProblem());
    memory.load();
    EXPECT_EQ(memory.columnWidths()[0], 100);
}

TEST_F(WindowMemory, ForgetsWhatThePreferencesDoNotWant)
{
    _pFrame->Show();
    hoWindowMemory memory(onProblem());
    memory.load();
    memory.noteDocument("/document");
    memory.noteKey("/key");
    memory.settings().setText("folder", "/somewhere");
    memory.settings().setText("keyFolder", "/elsewhere");
    memory.save(*_pFrame, {100, 50});
    const std::string before = _folder.read("countersign/settings");
    for (const char* pSetting : {"recent.1=", "recentKey.1=", "folder=", "keyFolder=", "column.1=", "window."})
    {
        EXPECT_THAT(before, HasSubstr(pSetting));
    }

    hoPreferences preferences;
    preferences._isPlaceRemembered = false;
    memory.setPreferences(preferences);
    memory.save(*_pFrame, {100, 50});
    const std::string withoutPlace = _folder.read("countersign/settings");
    EXPECT_THAT(withoutPlace, Not(HasSubstr("column.")));
    EXPECT_THAT(withoutPlace, Not(HasSubstr("window.")));
    EXPECT_THAT(withoutPlace, HasSubstr("recent.1="));

    preferences._areRecentRemembered = false;
    memory.setPreferences(preferences);
    memory.noteDocument("/other");
    memory.noteKey("/other");
    memory.save(*_pFrame, {100, 50});
    EXPECT_THAT(memory.recentDocuments().paths(), ElementsAre());
    EXPECT_THAT(memory.recentKeys().paths(), ElementsAre());
    EXPECT_EQ(memory.settings().text("folder"), "/somewhere") << "this run goes on with it";
    const std::string withoutLists = _folder.read("countersign/settings");
    for (const char* pSetting : {"recent.1=", "recentKey.", "folder=", "keyFolder="})
    {
        EXPECT_THAT(withoutLists, Not(HasSubstr(pSetting)));
    }
}

TEST_F(WindowMemory, LeavesAFileThatItCannotReadAsItIs)
{
    std::filesystem::create_directories(_folder.path("countersign/settings"));
    hoWindowMemory memory(onProblem());
    memory.load();
    EXPECT_EQ(_problems.size(), 1U);
    memory.recentDocuments().add("/a");
    memory.save(*_pFrame, {});
    EXPECT_TRUE(std::filesystem::is_directory(_folder.path("countersign/settings")));
    EXPECT_EQ(_problems.size(), 1U);
}

TEST_F(WindowMemory, TakesTheUsualSizeInTheFirstRun)
{
    hoWindowMemory memory(onProblem());
    memory.load();
    memory.restorePlace(*_pFrame, wxSize(640, 350));
    EXPECT_EQ(_pFrame->GetClientSize(), wxSize(640, 350));
}
