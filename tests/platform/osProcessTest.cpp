// SPDX-License-Identifier: Apache-2.0
#include "platform/osWrappers/osProcess.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <new>
#include <ostream>
#include <poll.h>
#include <set>
#include <sstream>
#include <string>
#if !defined(__APPLE__)
#include <sys/prctl.h>
#endif
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "tests/support/failingAllocation.h"
#include "tests/support/tsCaughtErrors.h"
#include "tests/support/tsSystemFault.h"

#if defined(SYS_close_range)
// Systems have this call since 2020.
extern "C" long syscall(long number, ...) noexcept
{
    if (number == SYS_close_range && tsFails("close_range"))
    {
        return -1;
    }
    // No call that comes here has more arguments.
    va_list list;
    va_start(list, number);
    const long first = va_arg(list, long);
    const long second = va_arg(list, long);
    const long third = va_arg(list, long);
    va_end(list);
    long (*realSyscall)(long, ...) = nullptr;
    void* const pSymbol = ::dlsym(RTLD_NEXT, "syscall");
    std::memcpy(&realSyscall, &pSymbol, sizeof realSyscall);
    return realSyscall(number, first, second, third);
}
#endif

extern "C" pid_t waitpid(pid_t process, int* pStatus, int options)
{
    if (tsFails("waitpid"))
    {
        return -1;
    }
    pid_t (*realWaitpid)(pid_t, int*, int) = nullptr;
    void* const pSymbol = ::dlsym(RTLD_NEXT, "waitpid");
    std::memcpy(&realWaitpid, &pSymbol, sizeof realWaitpid);
    return realWaitpid(process, pStatus, options);
}

extern "C" pid_t fork() noexcept
{
    if (tsFails("fork"))
    {
        return -1;
    }
    pid_t (*realFork)() = nullptr;
    void* const pSymbol = ::dlsym(RTLD_NEXT, "fork");
    std::memcpy(&realFork, &pSymbol, sizeof realFork);
    return realFork();
}

namespace
{
using testing::AnyOf;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;

using Strings = std::vector<std::string>;

osFilePath pathOf(const std::string& text)
{
    return osFilePath(gtString(text.data(), static_cast<int>(text.size())));
}

TEST(osGetCurrentThreadId, IsTheSystems)
{
    EXPECT_EQ(osGetCurrentThreadId(), static_cast<unsigned int>(::getpid()));
    EXPECT_EQ(osGetCurrentThreadId(), osGetCurrentThreadId());
    std::thread(
        []()
        {
            const std::string task = std::filesystem::read_symlink("/proc/thread-self").filename();
            EXPECT_EQ(std::to_string(osGetCurrentThreadId()), task);
        })
        .join();
}

TEST(osGetCurrentThreadId, IsDifferentOnEveryThread)
{
    constexpr std::size_t amount = 8;
    std::array<unsigned int, amount> ids = {};
    std::atomic<std::size_t> arrived = 0;
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < amount; ++i)
    {
        threads.emplace_back(
            [&, i]()
            {
                ids[i] = osGetCurrentThreadId();
                ++arrived;
                while (arrived < amount)  // all are alive together
                {
                    std::this_thread::yield();
                }
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    std::set<unsigned int> all(ids.begin(), ids.end());
    all.insert(osGetCurrentThreadId());
    EXPECT_EQ(all.size(), amount + 1);
}

// A folder with programs of ours, which is all that PATH holds. Each program reports to a pipe that is called like it
// with ".report".
class osOpenFileInSourceCodeEditorTest : public testing::Test
{
protected:
    osOpenFileInSourceCodeEditorTest()
    {
        std::string pattern = testing::TempDir() + "editorsXXXXXX";
        if (::mkdtemp(pattern.data()) == nullptr)
        {
            std::abort();
        }
        _folder = pattern;
        const char* const pPath = std::getenv("PATH");
        _pathBefore = pPath == nullptr ? "" : pPath;
        ::setenv("PATH", _folder.c_str(), 1);
    }

    ~osOpenFileInSourceCodeEditorTest() override
    {
        ::setenv("PATH", _pathBefore.c_str(), 1);
        std::filesystem::remove_all(_folder);
    }

    std::string nameOf(const std::string& name) const { return _folder + "/" + name; }

    void makeProgram(const std::string& name, const std::string& text, unsigned int mode = 0755) const
    {
        std::ofstream(nameOf(name)) << text;
        ::chmod(nameOf(name).c_str(), mode);
    }

    // An editor that reports its arguments.
    void makeEditor(const std::string& name) const { makeReporter(name, "printf '%s\\0' \"$@\""); }

    // An editor that reports what the shell command writes. There, $outputs is "null" if its own outputs go nowhere.
    void makeReporter(const std::string& name, const std::string& command) const
    {
        std::filesystem::create_directories(std::filesystem::path(nameOf(name)).parent_path());
        if (::mkfifo((nameOf(name) + ".report").c_str(), 0600) != 0)
        {
            std::abort();
        }
        makeProgram(name, "#!/bin/sh\n"
                          "[ /proc/$$/fd/1 -ef /dev/null ] && [ /proc/$$/fd/2 -ef /dev/null ] && outputs=null\n"
                          "{ " +
                              command + "\n} >\"$0.report\" 2>&1\n");
    }

    // Waits for the editor's report, to its end; not forever, should the editor not come.
    std::string reportOf(const std::string& name) const
    {
        constexpr int patience = 300000;
        const int pipe = ::open((nameOf(name) + ".report").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        pollfd waiting = {pipe, POLLIN, 0};
        std::string report;
        char buffer[4096];
        for (ssize_t amount = 1; amount > 0;)
        {
            const int isThere = ::poll(&waiting, 1, patience);
            if (isThere == 0)
            {
                ADD_FAILURE() << name << " does not report";
                break;
            }
            amount = ::read(pipe, buffer, sizeof buffer);
            if (amount > 0)
            {
                report.append(buffer, static_cast<std::size_t>(amount));
            }
            else if (amount < 0 && (errno == EINTR || errno == EAGAIN))
            {
                amount = 1;
            }
        }
        ::close(pipe);
        return report;
    }

    Strings argumentsOf(const std::string& name) const
    {
        std::istringstream report(reportOf(name));
        Strings arguments;
        for (std::string argument; std::getline(report, argument, '\0');)
        {
            arguments.push_back(argument);
        }
        return arguments;
    }

    static void open(const std::string& file, int lineNumber)
    {
        osOpenFileInSourceCodeEditor(pathOf(file), lineNumber);
    }

    static std::string stderrOfOpening(const std::string& file, int lineNumber)
    {
        const tsCaughtErrors errors;
        open(file, lineNumber);
        return errors.take();
    }

    // Opens no file, with that done by the writes to standard error; there are as many as have an answer.
    static void expectLineOfWrites(const std::vector<long>& answers, const std::string& line)
    {
        tsFault writes{"write", answers};
        writes._isOfThread = true;
        writes._descriptor = STDERR_FILENO;
        const tsSystemFault disturbed(writes);
        EXPECT_EQ(stderrOfOpening("", 5), line);
        EXPECT_EQ(disturbed.amountOfCalls(), static_cast<int>(answers.size()));
    }

private:
    std::string _folder;
    std::string _pathBefore;
};

struct Case
{
    const char* pEditor;
    Strings atLine12;
};

// The name of the test's instance.
std::ostream& operator<<(std::ostream& stream, const Case& one)
{
    return stream << one.pEditor;
}

class osEveryEditorTest : public osOpenFileInSourceCodeEditorTest, public testing::WithParamInterface<Case>
{
};

TEST_P(osEveryEditorTest, GoesToTheLine)
{
    const Case& one = GetParam();
    makeEditor(one.pEditor);
    open("/src/a b.cpp", 12);
    EXPECT_EQ(argumentsOf(one.pEditor), one.atLine12);
}

TEST_P(osEveryEditorTest, OpensWithoutALine)
{
    const Case& one = GetParam();
    makeEditor(one.pEditor);
    for (const int lineNumber : {0, -1, -2147483647 - 1})
    {
        open("/src/a b.cpp", lineNumber);
        EXPECT_THAT(argumentsOf(one.pEditor), ElementsAre("/src/a b.cpp"));
    }
    if (one.atLine12.front() != "/src/a b.cpp")
    {
        open("/src/a b.cpp", 1);
        EXPECT_NE(argumentsOf(one.pEditor).front(), "/src/a b.cpp");
    }
}

const Case cases[] = {
    {"code", {"--goto", "/src/a b.cpp:12"}},
    {"codium", {"--goto", "/src/a b.cpp:12"}},
    {"subl", {"/src/a b.cpp:12"}},
    {"kate", {"--line=12", "/src/a b.cpp"}},
    {"gedit", {"+12", "/src/a b.cpp"}},
    {"geany", {"--line=12", "/src/a b.cpp"}},
    {"kwrite", {"--line=12", "/src/a b.cpp"}},
    {"mousepad", {"--line=12", "/src/a b.cpp"}},
    {"pluma", {"+12", "/src/a b.cpp"}},
    {"xed", {"+12", "/src/a b.cpp"}},
    {"gvim", {"+12", "/src/a b.cpp"}},
    {"emacs", {"+12", "/src/a b.cpp"}},
    {"xdg-open", {"/src/a b.cpp"}},
};

INSTANTIATE_TEST_SUITE_P(all, osEveryEditorTest, testing::ValuesIn(cases),
                         [](const testing::TestParamInfo<Case>& instance)
                         {
                             std::string name = instance.param.pEditor;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST_F(osOpenFileInSourceCodeEditorTest, TakesTheFirstEditorThatIsThere)
{
    // From the last to the first: each new one is preferred to those that are there.
    for (auto one = std::rbegin(cases); one != std::rend(cases); ++one)
    {
        makeEditor(one->pEditor);
        open("/src/a b.cpp", 12);
        EXPECT_EQ(argumentsOf(one->pEditor), one->atLine12) << one->pEditor;
    }
}

TEST_F(osOpenFileInSourceCodeEditorTest, TakesTheFirstFolderOfPath)
{
    makeEditor("one/gedit");
    makeEditor("two/gedit");
    makeEditor("two/kate");
    ::setenv("PATH", (nameOf("missing") + ":" + nameOf("two") + ":" + nameOf("one")).c_str(), 1);
    open("/f", 3);
    EXPECT_THAT(argumentsOf("two/kate"), ElementsAre("--line=3", "/f"));
    std::filesystem::remove(nameOf("two/kate"));
    open("/f", 3);
    EXPECT_THAT(argumentsOf("two/gedit"), ElementsAre("+3", "/f"));
    std::filesystem::remove(nameOf("two/gedit"));
    open("/f", 3);
    EXPECT_THAT(argumentsOf("one/gedit"), ElementsAre("+3", "/f"));
}

TEST_F(osOpenFileInSourceCodeEditorTest, HandsTheNameOverAsItIs)
{
    makeEditor("gedit");
    for (const char* pName : {"/a b/c\td\ne.cpp", "/quote'\"`$HOME`$(false)\\;&|<>*?[]{}~#!", "/\xff\xfe\x80.cpp",
                              "plain.cpp", "./-rf", "src/a:b", "~", "/+x", "%f%l%s.cpp", " ", "a\n"})
    {
        open(pName, 5);
        EXPECT_THAT(argumentsOf("gedit"), ElementsAre("+5", pName));
    }
    const std::string longName = "/" + std::string(100000, 'n');
    open(longName, 2147483647);
    EXPECT_THAT(argumentsOf("gedit"), ElementsAre("+2147483647", longName));
}

TEST_F(osOpenFileInSourceCodeEditorTest, ARelativeNameIsLookedForWhereSourcesAre)
{
    makeEditor("gedit");
    const std::string folder = nameOf("tree");
    std::filesystem::create_directories(folder + "/room");
    std::ofstream(folder + "/room/inTree.cpp") << "source";
    const auto opened = [&](const std::string& name)
    {
        open(name, 5);
        const Strings arguments = argumentsOf("gedit");
        return arguments.empty() ? std::string() : arguments.back();
    };

    // Found nowhere.
    EXPECT_EQ(opened("room/inTree.cpp"), "room/inTree.cpp");

    osAddSourceCodeFolder(pathOf(nameOf("missing")));
    osAddSourceCodeFolder(pathOf(folder));
    EXPECT_EQ(opened("room/inTree.cpp"), folder + "/room/inTree.cpp");
    EXPECT_EQ(opened("other/inTree.cpp"), "other/inTree.cpp");
    EXPECT_EQ(opened("/room/inTree.cpp"), "/room/inTree.cpp");

    // What the current folder has comes first.
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::create_directories(nameOf("current/room"));
    std::ofstream(nameOf("current/room/inTree.cpp")) << "source";
    std::filesystem::current_path(nameOf("current"));
    EXPECT_EQ(opened("room/inTree.cpp"), "room/inTree.cpp");
    std::filesystem::current_path(before);
}

TEST_F(osOpenFileInSourceCodeEditorTest, ARelativeNameIsLookedForAboveTheProgram)
{
    makeEditor("gedit");
    // A program that was built in TREE/build/bin from TREE/room/inTree.cpp.
    std::filesystem::create_directories(nameOf("tree/build/bin"));
    std::filesystem::create_directories(nameOf("tree/room"));
    std::ofstream(nameOf("tree/room/aboveProgram.cpp")) << "source";
    const std::string program = nameOf("tree/build/bin/probe");
    std::filesystem::copy_file(BREAKPOINT_PROBE, program);
    for (const char* pName : {"room/aboveProgram.cpp", "../../room/aboveProgram.cpp"})
    {
        const pid_t process = ::fork();
        if (process == 0)
        {
            ::setenv("LD_LIBRARY_PATH", PLATFORM_LIBRARIES, 1);
            ::execl(program.c_str(), program.c_str(), "open", pName, nullptr);
            ::_exit(1);
        }
        int status = -1;
        EXPECT_EQ(::waitpid(process, &status, 0), process);
        EXPECT_EQ(status, 0);
        const Strings arguments = argumentsOf("gedit");
        ASSERT_EQ(arguments.size(), 2U);
        EXPECT_TRUE(std::filesystem::equivalent(arguments[1], nameOf("tree/room/aboveProgram.cpp"))) << arguments[1];
    }
}

TEST_F(osOpenFileInSourceCodeEditorTest, NamesLikeOptionsAndAddressesBecomePlainPaths)
{
    makeEditor("gedit");
    for (const char* pName : {"-rf", "--help", "-", "+12", "-a/b", "mailto:me", "http://x", "a:b/c"})
    {
        open(pName, 5);
        EXPECT_THAT(argumentsOf("gedit"), ElementsAre("+5", std::string("./") + pName));
    }
    std::filesystem::remove(nameOf("gedit"));
    makeEditor("subl");
    open("-x", 5);
    EXPECT_THAT(argumentsOf("subl"), ElementsAre("./-x:5"));
}

TEST_F(osOpenFileInSourceCodeEditorTest, PercentSignsOfTheNameAreNoPlaceholders)
{
    makeEditor("code");
    open("/%f%l%", 5);
    EXPECT_THAT(argumentsOf("code"), ElementsAre("--goto", "/%f%l%:5"));
}

TEST_F(osOpenFileInSourceCodeEditorTest, NamesThatNoFileHasAreOneLine)
{
    makeEditor("gedit");
    EXPECT_EQ(stderrOfOpening("", 5), "Cannot open \"\" at line 5: no file can have this name\n");
    EXPECT_EQ(stderrOfOpening(std::string("a\0b", 3), 5),
              "Cannot open \"a b\" at line 5: no file can have this name\n");
}

TEST_F(osOpenFileInSourceCodeEditorTest, WithoutAnyProgramItIsOneLine)
{
    const std::string line = "\" at line 5: no graphical editor that is known here, and no desktop default, is "
                             "installed\n";
    EXPECT_EQ(stderrOfOpening("/src/a.cpp", 5), "Cannot open \"/src/a.cpp" + line);
    EXPECT_EQ(stderrOfOpening("/a\nb\x7f%s\xff", 5), "Cannot open \"/a b %s\xff" + line);

    // Neither is run: a folder, what may not be executed, what only the current directory holds, an editor for
    // terminals.
    std::filesystem::create_directory(nameOf("kate"));
    makeProgram("gedit", "#!/bin/sh\n", 0644);
    makeProgram("emacs-nox", "#!/bin/sh\n");
    ASSERT_EQ(::symlink("emacs-nox", nameOf("emacs").c_str()), 0);
    ASSERT_EQ(::symlink("nowhere", nameOf("code").c_str()), 0);
    EXPECT_EQ(stderrOfOpening("/src/a.cpp", 5), "Cannot open \"/src/a.cpp" + line);

    makeProgram("xed", "#!/bin/sh\n");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(nameOf(""));
    for (const char* pPath : {"", ":", ".", "::.:", "missing"})
    {
        ::setenv("PATH", pPath, 1);
        EXPECT_EQ(stderrOfOpening("/src/a.cpp", 5), "Cannot open \"/src/a.cpp" + line) << pPath;
    }
    std::filesystem::current_path(before);
}

TEST_F(osOpenFileInSourceCodeEditorTest, WithoutPathTheUsualFoldersAreLookedThrough)
{
    const char* const pBefore = std::getenv("PATH");
    const std::string before = pBefore == nullptr ? "" : pBefore;
    for (const char* pPath : {"", "/one:/two", static_cast<const char*>(nullptr)})
    {
        ::unsetenv("PATH");
        if (pPath != nullptr)
        {
            ::setenv("PATH", pPath, 1);
        }
        // Nothing is found; what is looked for is noted in memory that is there already.
        Strings paths(60, std::string(60, ' '));
        std::size_t amount = 0;
        tsFault notThere{"stat", {-ENOENT}};
        notThere._isForGood = true;
        notThere._isOfThread = true;
        notThere._before = [&](const char* pLookedFor) { paths.at(amount++) = pLookedFor; };
        std::string text;
        {
            const tsSystemFault noEditors(notThere);
            text = stderrOfOpening("/f", 3);
        }
        paths.resize(amount);
        EXPECT_THAT(text, HasSubstr("is installed"));
        if (pPath == nullptr)
        {
            ASSERT_GE(paths.size(), 39U);
            EXPECT_THAT(Strings(paths.begin(), paths.begin() + 4),
                        ElementsAre("/usr/local/bin/code", "/usr/bin/code", "/bin/code", "/usr/local/bin/codium"));
            EXPECT_EQ(paths.back(), "/bin/xdg-open");
            EXPECT_EQ(paths.size(), 39U);
        }
        else
        {
            EXPECT_THAT(paths, testing::SizeIs(*pPath == '\0' ? 0 : 26));
        }
    }
    ::setenv("PATH", before.c_str(), 1);
}

TEST_F(osOpenFileInSourceCodeEditorTest, LinkToAGraphicalEditorIsFollowed)
{
    makeEditor("emacs-gtk");
    ASSERT_EQ(::symlink("emacs-gtk", nameOf("emacs").c_str()), 0);
    ASSERT_EQ(::symlink("emacs-gtk.report", nameOf("emacs.report").c_str()), 0);
    open("/f", 3);
    EXPECT_THAT(argumentsOf("emacs"), ElementsAre("+3", "/f"));
}

TEST_F(osOpenFileInSourceCodeEditorTest, ProgramThatCannotBeStartedIsPassedOver)
{
    // Without a line that names its interpreter a script is a matter for shells, and none is asked.
    makeProgram("code", "exit 0\n");
    makeProgram("subl", "#!/nowhere/interpreter\n");
    makeEditor("gedit");
    open("/f", 3);
    EXPECT_THAT(argumentsOf("gedit"), ElementsAre("+3", "/f"));
}

TEST_F(osOpenFileInSourceCodeEditorTest, IfNoneCanBeStartedItIsOneLine)
{
    makeProgram("code", "exit 0\n");
    makeProgram("xdg-open", "");
    // The line comes from another process, in its own time: read standard error to its end.
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const int before = ::dup(STDERR_FILENO);
    ASSERT_EQ(::dup2(ends[1], STDERR_FILENO), STDERR_FILENO);
    open("/f", 3);
    ::dup2(before, STDERR_FILENO);
    ::close(before);
    ::close(ends[1]);
    std::string text;
    char buffer[100];
    for (ssize_t amount = 0; (amount = ::read(ends[0], buffer, sizeof buffer)) > 0;)
    {
        text.append(buffer, static_cast<std::size_t>(amount));
    }
    ::close(ends[0]);
    EXPECT_EQ(text, "Cannot open \"/f\" at line 3: no editor could be started\n");
}

TEST_F(osOpenFileInSourceCodeEditorTest, DoesNotWaitAndLeavesNoChild)
{
    makeEditor("gedit");
    open("/f", 3);
    // The editor is stuck in its report, which nobody has read yet: this is before its end.
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
    EXPECT_THAT(argumentsOf("gedit"), ElementsAre("+3", "/f"));
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

std::atomic<int> amountOfSigchld = 0;

void countSigchld(int)
{
    ++amountOfSigchld;
}

TEST_F(osOpenFileInSourceCodeEditorTest, LeavesNoChildWhereSignalsInterrupt)
{
    makeEditor("kate");
    {
        const tsSystemFault interrupted("waitpid", {-EINTR, -EINTR, -EINTR});
        open("/a.c", 1);
        EXPECT_GE(interrupted.amountOfCalls(), 3);
    }
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
    EXPECT_FALSE(argumentsOf("kate").empty());
}

// In a process of its own, because one that ended here with status 0 would look like success.
TEST_F(osOpenFileInSourceCodeEditorTest, ComesBackToTheProcessThatCalled)
{
    makeEditor("kate");
    EXPECT_EXIT(
        {
            const pid_t own = ::getpid();
            open("/a.c", 1);
            argumentsOf("kate");
            std::_Exit(::getpid() == own ? 7 : 8);
        },
        testing::ExitedWithCode(7), "");
}

TEST_F(osOpenFileInSourceCodeEditorTest, LeavesTheProgramsSignalsAndChildrenAlone)
{
    makeEditor("gedit");
    amountOfSigchld = 0;
    struct sigaction action = {};
    struct sigaction before = {};
    action.sa_handler = countSigchld;
    ASSERT_EQ(::sigaction(SIGCHLD, &action, &before), 0);
    sigset_t maskBefore;
    sigset_t mask;
    sigemptyset(&mask);
    sigaddset(&mask, SIGUSR1);
    ASSERT_EQ(::pthread_sigmask(SIG_SETMASK, &mask, &maskBefore), 0);

    // A child of the program's own, which has ended and waits for being collected.
    const pid_t child = ::fork();
    if (child == 0)
    {
        ::_exit(42);
    }
    siginfo_t info;
    while (::waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT) != 0 && errno == EINTR)
    {
    }

    sigset_t maskAtFork;
    sigemptyset(&maskAtFork);
    tsFault fork{"fork", {tsWorks}};
    fork._isForGood = true;
    fork._isOfThread = true;
    fork._before = [&](const char*) { ::pthread_sigmask(SIG_SETMASK, nullptr, &maskAtFork); };
    {
        const tsSystemFault watched(fork);
        open("/f", 3);
    }

    // None of the program's handlers may run in the new process.
    EXPECT_EQ(sigismember(&maskAtFork, SIGTERM), 1);
    EXPECT_EQ(sigismember(&maskAtFork, SIGCHLD), 1);

    sigset_t maskAfter;
    ASSERT_EQ(::pthread_sigmask(SIG_SETMASK, &maskBefore, &maskAfter), 0);
    for (int number = 1; number < NSIG; ++number)
    {
        EXPECT_EQ(sigismember(&maskAfter, number), number == SIGUSR1 ? 1 : 0) << number;
    }
    struct sigaction after = {};
    ASSERT_EQ(::sigaction(SIGCHLD, &before, &after), 0);
    EXPECT_EQ(after.sa_handler, countSigchld);
    EXPECT_LE(amountOfSigchld, 2);
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 42);
    argumentsOf("gedit");
}

TEST_F(osOpenFileInSourceCodeEditorTest, WorksWhereChildrenAreNotCollected)
{
    makeEditor("gedit");
    struct sigaction action = {};
    struct sigaction before = {};
    action.sa_handler = SIG_IGN;
    ASSERT_EQ(::sigaction(SIGCHLD, &action, &before), 0);
    EXPECT_EQ(stderrOfOpening("/f", 3), "");
    EXPECT_THAT(argumentsOf("gedit"), ElementsAre("+3", "/f"));
    ASSERT_EQ(::sigaction(SIGCHLD, &before, nullptr), 0);
}

class osEditorsStateTest : public osOpenFileInSourceCodeEditorTest
{
protected:
    // With a descriptor of this number, or a larger one, that the editor must not have.
    void expectACleanState(int highNumber);
};

void osEditorsStateTest::expectACleanState(int highNumber)
{
    // $$ is the editor. Its report is on 1 and 2; 0 must be /dev/null and nothing else may be open. What the shell has
    // open itself has two digits, but for the folder while it lists it.
    const std::string script = R"(
echo
for d in /proc/$$/fd/*; do
    f=${d##*/}
    [ -e $d ] && [ ${#f} -ne 2 ] && echo fd $f
done
[ /proc/$$/fd/0 -ef /dev/null ] && echo null
read -r stat </proc/$$/stat
echo "stat $stat"
while read -r line; do
    case $line in Sig[BI]*) echo "$line" ;; esac
done </proc/$$/status
echo "marker $COUNTERSIGN_TEST_MARKER"
umask
pwd
)";
    makeReporter("gedit", script);
    const int inheritable = ::open("/dev/null", O_RDONLY);
    const int low = ::fcntl(inheritable, F_DUPFD, 7);
    ASSERT_GE(low, 7);
    ASSERT_LE(low, 9);
    const int high = ::fcntl(inheritable, F_DUPFD, highNumber);
    ASSERT_GE(high, highNumber);
    ::setenv("COUNTERSIGN_TEST_MARKER", "value", 1);
    // Every signal that can be ignored is, those for real time, too; a child that nobody collects is another matter.
    std::vector<int> ignored;
    std::vector<struct sigaction> before;
    for (int number = 1; number < NSIG; ++number)
    {
        struct sigaction action = {};
        struct sigaction old = {};
        action.sa_handler = SIG_IGN;
        if (number != SIGCHLD && ::sigaction(number, &action, &old) == 0)
        {
            ignored.push_back(number);
            before.push_back(old);
        }
    }
    EXPECT_THAT(ignored, testing::IsSupersetOf({SIGHUP, SIGPIPE, 31, SIGRTMIN, SIGRTMAX}));
    sigset_t mask;
    sigset_t maskBefore;
    sigfillset(&mask);
    ASSERT_EQ(::pthread_sigmask(SIG_SETMASK, &mask, &maskBefore), 0);
    const mode_t umaskBefore = ::umask(0027);
    // The tests themselves may have been started with /dev/null.
    const int keptInput = ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 100);
    const int input = ::open(nameOf("gedit").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::dup2(input, STDIN_FILENO), STDIN_FILENO);
    if (input != STDIN_FILENO)
    {
        ::close(input);
    }
    open("/f", 3);
    ASSERT_TRUE(keptInput < 0 ? ::close(STDIN_FILENO) == 0 : ::dup2(keptInput, STDIN_FILENO) == STDIN_FILENO);
    ::close(keptInput);
    ::umask(umaskBefore);
    ASSERT_EQ(::pthread_sigmask(SIG_SETMASK, &maskBefore, nullptr), 0);
    for (std::size_t i = 0; i < ignored.size(); ++i)
    {
        ASSERT_EQ(::sigaction(ignored[i], &before[i], nullptr), 0);
    }
    ::unsetenv("COUNTERSIGN_TEST_MARKER");
    ::close(inheritable);
    ::close(high);
    ::close(low);

    const std::string report = reportOf("gedit");
    std::istringstream lines(report);
    Strings descriptors;
    std::string statLine;
    for (std::string line; std::getline(lines, line);)
    {
        if (line.rfind("fd ", 0) == 0)
        {
            descriptors.push_back(line.substr(3));
        }
        if (line.rfind("stat ", 0) == 0)
        {
            statLine = line.substr(5);
        }
    }
    EXPECT_THAT(descriptors, Each(AnyOf("0", "1", "2"))) << report;
    EXPECT_THAT(descriptors, testing::SizeIs(3)) << report;
    EXPECT_THAT(report, HasSubstr("\nnull\n"));
    EXPECT_THAT(report, HasSubstr("\nSigBlk:\t0000000000000000\n"));
    EXPECT_THAT(report, HasSubstr("\nSigIgn:\t0000000000000000\n"));
    EXPECT_THAT(report, HasSubstr("\nmarker value\n0027\n"));
    EXPECT_THAT(report, HasSubstr("\n" + std::filesystem::current_path().string() + "\n"));

    // pid (name) state parent group session
    std::istringstream stat(statLine.substr(statLine.rfind(')') + 1));
    std::string state;
    long parent = 0;
    long group = 0;
    long session = 0;
    stat >> state >> parent >> group >> session;
    EXPECT_NE(parent, ::getpid());
    EXPECT_EQ(std::to_string(session), statLine.substr(0, statLine.find(' '))) << "it leads a session of its own";
}

TEST_F(osEditorsStateTest, IsClean)
{
    expectACleanState(200);
}

#if defined(SYS_close_range)
TEST_F(osEditorsStateTest, IsCleanWhereDescriptorsAreClosedOneByOne)
{
    tsFault unknownCall{"close_range", {-ENOSYS}};
    unknownCall._isForGood = true;
    const tsSystemFault oldSystem(unknownCall);
    expectACleanState(200);
    // The highest that is looked for, if there may be so many.
    struct rlimit before = {};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    struct rlimit wide = before;
    wide.rlim_cur = 65536;
    wide.rlim_max = std::max<rlim_t>(before.rlim_max, 65536);
    if (::setrlimit(RLIMIT_NOFILE, &wide) != 0)
    {
        wide.rlim_cur = before.rlim_max;
        wide.rlim_max = before.rlim_max;
        ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &wide), 0);
    }
    std::filesystem::remove(nameOf("gedit.report"));
    expectACleanState(static_cast<int>(wide.rlim_cur) - 1);
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
}
#endif

TEST_F(osOpenFileInSourceCodeEditorTest, WorksWithStandardDescriptorsClosed)
{
    makeEditor("gedit");
    EXPECT_EXIT(
        {
            ::close(STDIN_FILENO);
            ::close(STDOUT_FILENO);
            ::close(STDERR_FILENO);
            open("/f", 3);
            std::_Exit(3);
        },
        testing::ExitedWithCode(3), "");
    EXPECT_THAT(argumentsOf("gedit"), ElementsAre("+3", "/f"));
}

TEST_F(osOpenFileInSourceCodeEditorTest, EditorsOutputsGoNowhere)
{
    makeReporter("gedit", "echo \"$outputs\"");
    open("/f", 3);
    EXPECT_EQ(reportOf("gedit"), "null\n");
    // Then /dev/null itself is opened as descriptor 0.
    EXPECT_EXIT(
        {
            ::close(STDIN_FILENO);
            open("/f", 3);
            std::_Exit(3);
        },
        testing::ExitedWithCode(3), "");
    EXPECT_EQ(reportOf("gedit"), "null\n");
}

TEST_F(osOpenFileInSourceCodeEditorTest, LinesAreWrittenWholeWhereverWritingStops)
{
    const std::string line = "Cannot open \"\" at line 5: no file can have this name\n";
    std::vector<long> answers = {5, -EINTR, -EINTR, 1, 2};
    answers.insert(answers.end(), line.size() - 8, 1);
    expectLineOfWrites(answers, line);

    // After an error, or where nothing is taken, there is no point in going on.
    expectLineOfWrites({5, -EIO}, line.substr(0, 5));
    errno = 0;
    expectLineOfWrites({5, -EINTR, 0}, line.substr(0, 5));
}

TEST_F(osOpenFileInSourceCodeEditorTest, WithoutAnotherProcessItIsOneLine)
{
    makeEditor("gedit");
    for (const int amount : {0, 1})  // before the first one fails, and before that one's own fails
    {
        tsFault noFork{"fork", {-EAGAIN}};
        noFork._number = amount + 1;
        noFork._isForGood = true;
        noFork._isOfThread = true;
        std::string text;
        {
            const tsSystemFault full(noFork);
            text = stderrOfOpening("/f", 3);
        }
        EXPECT_EQ(text, "Cannot open \"/f\" at line 3: the system could not start another process\n");
        EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
    }
    open("/g", 3);
    EXPECT_THAT(argumentsOf("gedit"), ElementsAre("+3", "/g"));
}

TEST_F(osOpenFileInSourceCodeEditorTest, StartsNothingWithoutMemory)
{
    makeEditor("gedit");
    const osFilePath path = pathOf("/a/path/that/is/long/enough/to/need/memory/of/its/own.cpp");
    int failures = 0;
    for (bool hasSucceeded = false; !hasSucceeded; ++failures)
    {
        try
        {
            const FailingAllocation failing(failures);
            osOpenFileInSourceCodeEditor(path, 3);
            hasSucceeded = true;
        }
        catch (const std::bad_alloc&)
        {
            EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
        }
    }
    EXPECT_GT(failures, 5);
    // Were two editors running, both would report.
    EXPECT_THAT(argumentsOf("gedit"), ElementsAre("+3", path.asCharArray()));
}

TEST_F(osOpenFileInSourceCodeEditorTest, SeveralThreadsOpenFiles)
{
    makeReporter("kate", "printf .");
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; ++i)
    {
        threads.emplace_back(
            []()
            {
                for (int round = 0; round < 5; ++round)
                {
                    open("/f", 3);
                }
            });
    }
    // A pipe that this end keeps open for writing as well does not end between two editors.
    const int pipe = ::open((nameOf("kate") + ".report").c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_GE(pipe, 0);
    std::string report;
    char buffer[100];
    while (report.size() < 20)
    {
        const ssize_t amount = ::read(pipe, buffer, sizeof buffer);
        ASSERT_GT(amount, 0);
        report.append(buffer, static_cast<std::size_t>(amount));
    }
    ::close(pipe);
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    EXPECT_EQ(report, std::string(20, '.'));
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
}

// Runs a shell command line of the test's own and gives what it writes.
std::string outputOf(const std::string& command, int& status)
{
    std::string output;
    FILE* const pPipe = ::popen(command.c_str(), "r");  // NOLINT(cert-env33-c): the command is the test's own
    if (pPipe == nullptr)
    {
        status = -1;
        return output;
    }
    char buffer[4096];
    for (std::size_t amount = 0; (amount = std::fread(buffer, 1, sizeof buffer, pPipe)) > 0;)
    {
        output.append(buffer, amount);
    }
    status = ::pclose(pPipe);
    return output;
}

void expectThatADebuggerStops(const std::string& way)
{
    int status = 0;
    const std::string output =
        outputOf("LC_ALL=C ASAN_OPTIONS=detect_leaks=0 gdb -nx -batch -ex run -ex backtrace -ex 'echo stopped here\\n' "
                 "-ex continue --args '" BREAKPOINT_PROBE "' " +
                     way + " 2>&1",
                 status);
    if (output.find("Operation not permitted") != std::string::npos && output.find("SIGTRAP") == std::string::npos)
    {
        GTEST_SKIP() << "tracing is not permitted here: " << output;
    }
    // In this order.
    std::size_t position = 0;
    for (const char* pExpected : {"before the trap", "received signal SIGTRAP", "osThrowBreakpointException", "main",
                                  "stopped here", "after the trap, 0 counted", "exited with code 011"})
    {
        position = output.find(pExpected, position);
        ASSERT_NE(position, std::string::npos) << pExpected << " is missing in its place in:\n" << output;
    }
}

TEST(osThrowBreakpointException, StopsADebuggerAndResumes)
{
    expectThatADebuggerStops("");
}

TEST(osIsDebuggerAttached, TellsADebuggerFromNone)
{
    EXPECT_FALSE(osIsDebuggerAttached());
    int status = 0;
    EXPECT_EQ(outputOf("'" BREAKPOINT_PROBE "' debugger", status), "no debugger\n");
    // The search for leaks would need to trace the process, too.
    const std::string output = outputOf(
        "ASAN_OPTIONS=\"$ASAN_OPTIONS:detect_leaks=0\" gdb -nx -batch -ex run -ex quit --args '" BREAKPOINT_PROBE
        "' debugger 2>&1",
        status);
    if (output.find("Operation not permitted") != std::string::npos && output.find("debugger\n") == std::string::npos)
    {
        GTEST_SKIP() << "tracing is not permitted here: " << output;
    }
    EXPECT_NE(output.find("a debugger\n"), std::string::npos) << output;
}

TEST(osThrowBreakpointException, CallsTheProgramsHandlerWithoutADebugger)
{
    int status = 0;
    EXPECT_EQ(outputOf("'" BREAKPOINT_PROBE "' handler", status), "before the trap\nafter the trap, 1 counted\n");
    EXPECT_EQ(WEXITSTATUS(status), 9);
}

TEST(osThrowBreakpointException, EndsTheProcessWithoutDebuggerAndHandler)
{
    EXPECT_EXIT(
        {
            static_cast<void>(std::signal(SIGTRAP, SIG_DFL));
            osThrowBreakpointException();
        },
        testing::KilledBySignal(SIGTRAP), "");
}

std::atomic<unsigned int> threadOfTheTrap = 0;

void noteThreadOfTheTrap(int)
{
    threadOfTheTrap = osGetCurrentThreadId();
}

// In a process of its own. A signal for the process would go to its first thread.
TEST(osThrowBreakpointException, IsRaisedOnTheCallingThread)
{
    EXPECT_EXIT(
        {
            static_cast<void>(std::signal(SIGTRAP, noteThreadOfTheTrap));
            unsigned int id = 0;
            std::thread(
                [&]()
                {
                    id = osGetCurrentThreadId();
                    osThrowBreakpointException();
                })
                .join();
            std::_Exit(threadOfTheTrap == id ? 7 : 8);
        },
        testing::ExitedWithCode(7), "");
}

// Runs the probe until it crashes, in a folder that takes its core file, with these limits for the file's size. Returns
// whether the system has written its memory down.
bool leavesCoreFile(const char* pWay, rlim_t limit)
{
    std::string folder = testing::TempDir() + "core.XXXXXX";
    EXPECT_NE(mkdtemp(folder.data()), nullptr);
    const pid_t process = fork();
    if (process == 0)
    {
        const struct rlimit limits = {limit, limit};
        if (chdir(folder.c_str()) == 0 && setrlimit(RLIMIT_CORE, &limits) == 0)
        {
            execl(BREAKPOINT_PROBE, BREAKPOINT_PROBE, pWay, nullptr);
        }
        _exit(1);
    }
    int status = 0;
    EXPECT_EQ(waitpid(process, &status, 0), process);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT) << status;
    std::error_code error;
    const bool isThere = !std::filesystem::is_empty(folder, error);
    std::filesystem::remove_all(folder, error);
    return isThere || (WIFSIGNALED(status) && WCOREDUMP(status));
}

TEST(osWriteNoCoreFiles, KeepsTheMemoryOfACrashedProcessFromTheDisk)
{
    EXPECT_FALSE(leavesCoreFile("crashWithoutCore", RLIM_INFINITY));
    EXPECT_FALSE(leavesCoreFile("crashWithoutCore", 0));
    if (!leavesCoreFile("crash", RLIM_INFINITY))
    {
        GTEST_SKIP() << "no process leaves a core file here";
    }
}

TEST(osWriteNoCoreFiles, TakesTheLimitThatHoldsForPipesToo)
{
    EXPECT_EXIT(
        {
            struct rlimit limits = {};
            getrlimit(RLIMIT_CORE, &limits);
            const rlim_t hardLimit = limits.rlim_max;
            osWriteNoCoreFiles();
            getrlimit(RLIMIT_CORE, &limits);
            const bool isLow = hardLimit == 0 || limits.rlim_cur == 1;
            std::_Exit((isLow && limits.rlim_max == hardLimit) ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

#if !defined(__APPLE__)
TEST(osWriteNoCoreFiles, ForbidsTracingWhereNoLimitCanBeSet)
{
    EXPECT_EXIT(
        {
            osWriteNoCoreFiles();
            const bool isTraceable = prctl(PR_GET_DUMPABLE, 0, 0, 0, 0) == 1;
            struct rlimit none = {};
            setrlimit(RLIMIT_CORE, &none);
            osWriteNoCoreFiles();
            std::_Exit((isTraceable && prctl(PR_GET_DUMPABLE, 0, 0, 0, 0) == 0) ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}
#endif

TEST(osWriteNoCoreFiles, LeavesTheDebuggerItsBreakpoint)
{
    expectThatADebuggerStops("noCore");
}
}  // namespace
