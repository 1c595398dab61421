// SPDX-License-Identifier: Apache-2.0
// Which folders are watched.
#include "tests/host/window/BareFrame.h"

#include "host/window/hoFolderWatcher.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace
{
class FolderWatcher : public BareFrame
{
protected:
    void SetUp() override
    {
        BareFrame::SetUp();
        for (const char* pName : {"a", "b", "c"})
        {
            std::filesystem::create_directory(_folder.path(pName));
        }
    }
    std::set<gtString> folders(const std::vector<std::string>& names) const
    {
        std::set<gtString> paths;
        for (const std::string& name : names)
        {
            paths.insert(gtString(_folder.path(name)));
        }
        return paths;
    }
    // Nothing is watched without a running loop.
    void inLoop(const std::function<void()>& action)
    {
        bool isDone = false;
        _pFrame->CallAfter(
            [&]
            {
                action();
                isDone = true;
            });
        tsRunUntil("it is done", [&] { return isDone; });
    }
    // Of the whole process, as the system counts them.
    static int amountOfWatches()
    {
        int amount = 0;
        for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fdinfo"))
        {
            std::ifstream lines(entry.path());
            for (std::string line; std::getline(lines, line);)
            {
                amount += line.rfind("inotify wd:", 0) == 0 ? 1 : 0;
            }
        }
        return amount;
    }
};
}  // namespace

TEST_F(FolderWatcher, WatchesNoOtherFolders)
{
    hoFolderWatcher watcher([] {});
    int before = 0;
    inLoop([&] { before = amountOfWatches(); });
    for (const std::vector<std::string>& wanted :
         std::vector<std::vector<std::string>>{{"a", "b", "c"}, {"b"}, {"b", "c"}, {"missing", "a"}, {}, {"a"}})
    {
        inLoop([&] { watcher.watch(folders(wanted)); });
        const bool isOneMissing = !wanted.empty() && wanted.front() == "missing";
        EXPECT_EQ(amountOfWatches() - before, static_cast<int>(wanted.size()) - (isOneMissing ? 1 : 0))
            << testing::PrintToString(wanted);
    }
}

TEST_F(FolderWatcher, TellsOfChangesInThem)
{
    int told = 0;
    hoFolderWatcher watcher([&] { ++told; });
    inLoop([&] { watcher.watch(folders({"a", "b"})); });
    _folder.write("b/new", "x");
    tsRunUntil("it is told", [&] { return told > 0; });
}
