// SPDX-License-Identifier: Apache-2.0
// hoDocumentLauncher with a desktop of the test's own: a program for text files that writes down what it gets, and a
// file manager on a bus.
#include "RecordingBus.h"
#include "host/desktop/hoDocumentLauncher.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cstdlib>

namespace
{
using testing::ElementsAre;
using Problem = hoDocumentLauncher::Problem;

// GLib reads these once; so they are set before anything asks for them.
class Desktop
{
public:
    Desktop()
    {
        setenv("XDG_DATA_HOME", _folder.path("share").c_str(), 1);
        // The types of files are the system's, its programs are not.
        setenv("XDG_DATA_DIRS", _folder.path("system").c_str(), 1);
        std::filesystem::create_directory(_folder.path("system"));
        std::filesystem::create_directory_symlink("/usr/share/mime", _folder.path("system/mime"));
        setenv("XDG_CONFIG_HOME", _folder.path("config").c_str(), 1);
        setenv("XDG_CONFIG_DIRS", _folder.path("none").c_str(), 1);
        std::filesystem::create_directories(_folder.path("share/applications"));
        const std::string viewer =
            _folder.write("viewer", "#!/bin/sh\necho \"$1\" >>'" + _folder.path("viewed") + "'\n");
        std::filesystem::permissions(viewer, std::filesystem::perms::owner_all);
        _folder.write("share/applications/viewer.desktop",
                      "[Desktop Entry]\nType=Application\nName=Viewer\nExec=" + viewer + " %f\n");
        _folder.write("share/applications/mimeapps.list", "[Default Applications]\ntext/plain=viewer.desktop\n"
                                                          "application/x-desktop=viewer.desktop\n"
                                                          "application/x-shellscript=viewer.desktop\n"
                                                          "inode/directory=viewer.desktop\n");
    }
    std::string viewed() const { return _folder.read("viewed"); }

private:
    const TemporaryFolder _folder;
};

const Desktop desktop;

class DocumentLauncher : public testing::Test
{
protected:
    void SetUp() override
    {
        unsetenv("DBUS_SESSION_BUS_ADDRESS");
        // Where GLib would look for a bus.
        setenv("XDG_RUNTIME_DIR", _folder.path().c_str(), 1);
        _viewedBefore = desktop.viewed();
    }
    std::string viewed() const { return desktop.viewed().substr(_viewedBefore.size()); }

    const TemporaryFolder _folder;
    std::string _viewedBefore;
    std::vector<hoDocumentLauncher::Failure> _failures;
    std::vector<gtString> _programs;
    hoDocumentLauncher _launcher{{[this](const hoDocumentLauncher::Failure& failure) { _failures.push_back(failure); },
                                  [this](const gtString& path) { _programs.push_back(path); }}};
};
}  // namespace

TEST_F(DocumentLauncher, OpensADocumentInItsProgram)
{
    const std::string path = _folder.write("a b%\xe4.txt", "some text\n");
    _launcher.open(path, nullptr);
    EXPECT_EQ(viewed(), "") << "not from inside the call";
    runMainContextUntil([&] { return viewed() == path + "\n"; });
    EXPECT_TRUE(_failures.empty());
}

TEST_F(DocumentLauncher, TellsWhatCannotBeOpened)
{
    const std::string picture = _folder.write("a.png", "\x89PNG\r\n\x1a\n");
    _launcher.open(picture, nullptr);
    runMainContextUntil([&] { return _failures.size() == 1; });
    EXPECT_EQ(_failures.front()._problem, Problem::NoProgram);
    EXPECT_EQ(_failures.front()._path.asStdString(), picture);
    EXPECT_FALSE(_failures.front()._reason.isEmpty());
    _launcher.open(_folder.path("none"), nullptr);
    runMainContextUntil([&] { return _failures.size() == 2; });
    EXPECT_EQ(_failures.back()._problem, Problem::Missing);
    _launcher.showInFolder({gtString(_folder.path("none/a"))}, nullptr);
    runMainContextUntil([&] { return _failures.size() == 3; });
    EXPECT_EQ(_failures.back()._problem, Problem::Missing);
    EXPECT_EQ(_failures.back()._path.asStdString(), _folder.path("none"));
}

// The folder comes up instead, here in the program for folders, since there is no bus.
TEST_F(DocumentLauncher, RunsNoProgram)
{
    const std::string script = _folder.write("run.sh", "#!/bin/sh\necho run\n");
    std::filesystem::permissions(script, std::filesystem::perms::owner_all);
    const std::string entry = _folder.write("start.desktop", "[Desktop Entry]\nType=Application\nExec=true\n");
    std::string expected;
    for (const std::string& path : {script, entry})
    {
        _programs.clear();
        _launcher.open(path, nullptr);
        expected += _folder.path() + "\n";
        runMainContextUntil([&] { return viewed().size() >= expected.size(); });
        EXPECT_EQ(viewed(), expected);
        EXPECT_THAT(_programs, ElementsAre(gtString(path)));
    }
    // The same script without the permission is a text.
    std::filesystem::permissions(script, std::filesystem::perms::owner_read);
    _launcher.open(script, nullptr);
    expected += script + "\n";
    runMainContextUntil([&] { return viewed().size() >= expected.size(); });
    EXPECT_EQ(viewed(), expected);
    EXPECT_TRUE(_failures.empty());
}

// Whatever their permissions are: the desktop's program for them runs them.
TEST_F(DocumentLauncher, RunsNoProgramOfOtherSystems)
{
    std::string expected;
    for (const char* pName : {"setup.exe", "library.jar", "start.jnlp", "setup.msi"})
    {
        SCOPED_TRACE(pName);
        _programs.clear();
        const std::string path = _folder.write(pName, "x");
        _launcher.open(path, nullptr);
        expected += _folder.path() + "\n";
        runMainContextUntil([&] { return viewed().size() >= expected.size() || !_failures.empty(); });
        EXPECT_EQ(viewed(), expected);
        EXPECT_THAT(_programs, ElementsAre(gtString(path)));
        ASSERT_TRUE(_failures.empty()) << _failures.front()._reason;
    }
}

TEST_F(DocumentLauncher, CallsNobodyWhenItIsGone)
{
    {
        hoDocumentLauncher launcher({[](const hoDocumentLauncher::Failure&) { FAIL(); }, nullptr});
        launcher.open(_folder.path("none"), nullptr);
    }
    _launcher.open(_folder.path("none either"), nullptr);
    runMainContextUntil([&] { return !_failures.empty(); });
}

TEST_F(DocumentLauncher, ShowsDocumentsByTheFileManagerOnTheBus)
{
    RecordingBus bus("/org/freedesktop/FileManager1",
                     "<interface name='org.freedesktop.FileManager1'><method name='ShowItems'>"
                     "<arg type='as' direction='in'/><arg type='s' direction='in'/></method></interface>",
                     "()");
    // There is no file manager yet: the folder is opened.
    _launcher.showInFolder({gtString(_folder.path("a")), gtString(_folder.path("b"))}, nullptr);
    runMainContextUntil([&] { return viewed() == _folder.path() + "\n"; });
    bus.takeName("org.freedesktop.FileManager1");
    _launcher.showInFolder({gtString(_folder.path("a b")), gtString(_folder.path("c"))}, nullptr);
    runMainContextUntil([&] { return !bus.calls().empty(); });
    EXPECT_EQ(bus.calls(),
              "ShowItems(['file://" + _folder.path("a%20b") + "', 'file://" + _folder.path("c") + "'], '')");
    EXPECT_EQ(viewed(), _folder.path() + "\n");
    EXPECT_TRUE(_failures.empty());
}
