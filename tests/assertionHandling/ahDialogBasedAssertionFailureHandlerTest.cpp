// SPDX-License-Identifier: Apache-2.0
#include "assertionHandling/ahDialogBasedAssertionFailureHandler.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <new>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <type_traits>
#include <unistd.h>

#include <gtest/gtest.h>
#include <wx/toplevel.h>

#include "assertionHandling/ahAssertDialog.h"
#include "platform/baseTools/gtAssertionFailureHandlerRegistry.h"
#include "platform/osWrappers/osProcess.h"
#include "platform/osWrappers/osTime.h"
#include "tests/support/failingAllocation.h"
#include "tests/support/tsCaughtErrors.h"

namespace
{

class OpenHandler : public ahDialogBasedAssertionFailureHandler
{
public:
    using ahDialogBasedAssertionFailureHandler::_ignoredSourceLocations;
    using ahDialogBasedAssertionFailureHandler::_mainThreadId;
    using ahDialogBasedAssertionFailureHandler::ahDialogBasedAssertionFailureHandler;
};

osFilePath path(const char* pText)
{
    return osFilePath(gtString(pText));
}

std::string now()
{
    gtString text;
    osTime().setFromCurrentTime().timeAsString(text, static_cast<osTime::TimeFormat>(0),
                                               static_cast<osTime::TimeZone>(1));
    return text.asCharArray();
}

// What the report says behind the time, which is checked to be that of the call.
std::string reportOf(int errorNumber, const char* pFunction, const char* pFile, int line, const char* pMessage)
{
    OpenHandler handler(1);
    const tsCaughtErrors errors;
    const std::string before = now();
    errno = errorNumber;
    handler.outputAssertionMessageToStderr(pFunction, pFile, line, pMessage);
    const int errorNumberAfterwards = errno;
    const std::string after = now();
    const std::string report = errors.take();

    EXPECT_EQ(errorNumberAfterwards, errorNumber);
    const std::size_t end = report.find(" - Assertion failure: ");
    EXPECT_NE(end, std::string::npos) << report;
    const std::string time = report.substr(0, end);
    EXPECT_LE(before, time);
    EXPECT_LE(time, after);
    return report.substr(std::min(end, report.size()));
}

std::string describedBy(int errorNumber)
{
    return std::string(": ") + std::strerror(errorNumber) + "\n";
}

int amountOfWindows()
{
    return static_cast<int>(wxTopLevelWindows.size());
}

}  // namespace

TEST(Handler, IsSilentWhateverItIsTold)
{
    ahDialogBasedAssertionFailureHandler handler(osGetCurrentThreadId());
    const tsCaughtErrors errors;
    testing::internal::CaptureStdout();
    const long live = amountOfLiveAllocations();
    handler.onAssertionFailure(nullptr, nullptr, 0, nullptr);
    handler.onAssertionFailure("f", nullptr, -1, "m");
    handler.onAssertionFailure("", "", INT_MIN, "");
    handler.onAssertionFailure("function", "file.cpp", 7, "Assertion failure (x)");
    EXPECT_EQ(amountOfLiveAllocations(), live);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(errors.take(), "");
    EXPECT_EQ(amountOfWindows(), 0);
}

TEST(Handler, RegisteredOneKeepsFailedAssertionsSilentOnAnyThread)
{
    OpenHandler handler(osGetCurrentThreadId());
    const tsCaughtErrors errors;
    gtTriggerAssertonFailureHandler("f", "file.cpp", 1, "before");
    const std::string without = errors.take();
    EXPECT_NE(without, "");

    gtRegisterAssertionFailureHandler(&handler);
    gtTriggerAssertonFailureHandler("f", "file.cpp", 1, "m");
    std::thread([] { gtTriggerAssertonFailureHandler(nullptr, nullptr, 2, nullptr); }).join();
    EXPECT_EQ(errors.take(), "");
    gtUnRegisterAssertionFailureHandler(&handler);
    EXPECT_EQ(gtAmountOfRegisteredAssertionFailureHandlers(), 0);
}

TEST(Handler, HasItsOperationsAndFieldsInTheirOrder)
{
    using Interface = gtIAssertionFailureHandler;
    using Handler = ahDialogBasedAssertionFailureHandler;
    static_assert(std::is_base_of<Interface, Handler>::value, "");
    static_assert(std::has_virtual_destructor<Interface>::value, "");
    static_assert(!std::is_copy_constructible<Handler>::value, "");
    static_assert(!std::is_copy_assignable<Handler>::value, "");
    static_assert(!std::is_polymorphic<ahSourceCodeLocation>::value, "a plain record");

    // A member pointer to a virtual operation holds 1 + its offset in the table (Itanium C++ ABI 2.3).
    const auto onAssertionFailure = &Handler::onAssertionFailure;
    std::ptrdiff_t slot = 0;
    std::memcpy(&slot, &onAssertionFailure, sizeof(slot));
    EXPECT_EQ(slot, 1);

    OpenHandler handler(0x89ABCDEF);
    EXPECT_EQ(handler._mainThreadId, 0x89ABCDEF);
    const char* pObject = reinterpret_cast<const char*>(&handler);
    const char* pId = reinterpret_cast<const char*>(&handler._mainThreadId);
    const char* pList = reinterpret_cast<const char*>(&handler._ignoredSourceLocations);
    EXPECT_EQ(pId - pObject, static_cast<std::ptrdiff_t>(sizeof(void*)));
    EXPECT_EQ(pList - pObject, static_cast<std::ptrdiff_t>(2 * sizeof(void*)));
    EXPECT_EQ(sizeof(OpenHandler), 2 * sizeof(void*) + sizeof(gtPtrVector<ahSourceCodeLocation*>));

    const ahSourceCodeLocation location;
    EXPECT_TRUE(location._filePath.asString().isEmpty());
    EXPECT_EQ(location._lineNumber, 0);
    EXPECT_EQ(static_cast<const void*>(&location), static_cast<const void*>(&location._filePath));
}

TEST(Handler, NeverDisplaysADialogByItself)
{
    OpenHandler handler(1);
    EXPECT_FALSE(handler.shouldDisplayDialog());
    for (const int decision : {8001, 8002, 8000, 8006, 0, -1})
    {
        handler.handleUsersDecision(decision, path("/a.cpp"), 3);
        EXPECT_FALSE(handler.shouldDisplayDialog()) << decision;
    }
}

TEST(Handler, IgnoresNothingAtFirst)
{
    OpenHandler handler(1);
    EXPECT_FALSE(handler.isInIgnoredSourceLocations(path("/a.cpp"), 1));
    EXPECT_FALSE(handler.isInIgnoredSourceLocations(osFilePath(), 0));
}

TEST(Handler, IgnoresTheLocationsOfIgnoreAll)
{
    OpenHandler handler(1);
    handler.handleUsersDecision(8002, path("/p.cpp"), 12);
    EXPECT_TRUE(handler.isInIgnoredSourceLocations(path("/p.cpp"), 12));
    EXPECT_FALSE(handler.isInIgnoredSourceLocations(path("/p.cpp"), 13));
    EXPECT_FALSE(handler.isInIgnoredSourceLocations(path("/q.cpp"), 12));
    EXPECT_FALSE(handler.isInIgnoredSourceLocations(path("/P.cpp"), 12));
    EXPECT_FALSE(handler.isInIgnoredSourceLocations(path("//p.cpp"), 12));

    // An entry that matches is found in front of, between and behind others.
    handler.handleUsersDecision(8002, path("/p.cpp"), 13);
    handler.handleUsersDecision(8002, path("\xFF/q.cpp"), -1);
    EXPECT_TRUE(handler.isInIgnoredSourceLocations(path("/p.cpp"), 12));
    EXPECT_TRUE(handler.isInIgnoredSourceLocations(path("/p.cpp"), 13));
    EXPECT_TRUE(handler.isInIgnoredSourceLocations(path("\xFF/q.cpp"), -1));
    EXPECT_FALSE(handler.isInIgnoredSourceLocations(path("\xFF/q.cpp"), 12));

    ASSERT_EQ(handler._ignoredSourceLocations.size(), 3);
    EXPECT_EQ(handler._ignoredSourceLocations[0]->_lineNumber, 12);
    EXPECT_EQ(handler._ignoredSourceLocations[1]->_lineNumber, 13);
    EXPECT_STREQ(handler._ignoredSourceLocations[2]->_filePath.asString().asCharArray(), "\xFF/q.cpp");
}

TEST(Handler, DoesNothingButIgnoreByIgnoreAll)
{
    // An editor that is not found would be a line.
    const char* const pOldPath = std::getenv("PATH");
    const std::string oldPath(pOldPath == nullptr ? "" : pOldPath);
    setenv("PATH", "/nonexistent", 1);
    OpenHandler handler(1);
    const tsCaughtErrors errors;
    handler.handleUsersDecision(8002, path("/p.cpp"), 12);
    EXPECT_EQ(errors.take(), "");
    setenv("PATH", oldPath.c_str(), 1);
}

TEST(Handler, KeepsEqualLocationsTwice)
{
    OpenHandler handler(1);
    handler.handleUsersDecision(8002, path("/p.cpp"), 12);
    handler.handleUsersDecision(8002, path("/p.cpp"), 12);
    EXPECT_EQ(handler._ignoredSourceLocations.size(), 2);
    EXPECT_TRUE(handler.isInIgnoredSourceLocations(path("/p.cpp"), 12));
}

TEST(Handler, SkipsNullEntries)
{
    OpenHandler handler(1);
    handler._ignoredSourceLocations.push_back(nullptr);
    EXPECT_FALSE(handler.isInIgnoredSourceLocations(osFilePath(), 0));
    handler.handleUsersDecision(8002, path("/p.cpp"), 1);
    handler._ignoredSourceLocations.push_back(nullptr);
    EXPECT_TRUE(handler.isInIgnoredSourceLocations(path("/p.cpp"), 1));
}

TEST(Handler, FreesItsLocations)
{
    const long live = amountOfLiveAllocations();
    {
        const std::string longPath(1000, 'p');
        gtIAssertionFailureHandler* pHandler = new OpenHandler(1);
        for (int i = 0; i < 100; ++i)
        {
            static_cast<OpenHandler*>(pHandler)->handleUsersDecision(8002, path(longPath.c_str()), i);
        }
        static_cast<OpenHandler*>(pHandler)->_ignoredSourceLocations.push_back(nullptr);
        delete pHandler;
    }
    EXPECT_EQ(amountOfLiveAllocations(), live);
}

TEST(Handler, NoDecisionChangesNothing)
{
    OpenHandler handler(1);
    const tsCaughtErrors errors;
    for (const int decision : {8001, 8000, 8006, 0, -1, INT_MIN, INT_MAX, static_cast<int>(wxID_CANCEL)})
    {
        handler.handleUsersDecision(decision, path("/p.cpp"), 12);
        EXPECT_EQ(handler._ignoredSourceLocations.size(), 0) << decision;
    }
    EXPECT_EQ(errors.take(), "");
}

TEST(Handler, WithoutMemoryALocationIsNotAddedAndNothingIsLost)
{
    const std::string longPath(1000, 'p');
    const osFilePath location = path(longPath.c_str());
    bool hasBeenSilent = false;
    bool hasThrown = false;
    bool isDone = false;
    // Every allocation of the decision fails once, the first to the last.
    for (long i = 0; !isDone; ++i)
    {
        ASSERT_LT(i, 20);
        OpenHandler handler(1);
        handler.handleUsersDecision(8002, path("/first.cpp"), 1);
        const long live = amountOfLiveAllocations();
        bool throws = false;
        try
        {
            const OneFailingAllocation failure(i);
            handler.handleUsersDecision(8002, location, 5);
        }
        catch (const std::bad_alloc&)
        {
            throws = true;
        }
        isDone = handler._ignoredSourceLocations.size() == 2;
        if (!isDone)
        {
            EXPECT_EQ(handler._ignoredSourceLocations.size(), 1);
            EXPECT_FALSE(handler.isInIgnoredSourceLocations(location, 5));
            EXPECT_TRUE(handler.isInIgnoredSourceLocations(path("/first.cpp"), 1));
            EXPECT_EQ(amountOfLiveAllocations(), live);
            hasThrown = hasThrown || throws;
            hasBeenSilent = hasBeenSilent || !throws;
        }
    }
    EXPECT_TRUE(hasBeenSilent) << "the record's allocation";
    EXPECT_TRUE(hasThrown) << "the path's and the list's";
}

TEST(Handler, ReportIsOneTextThroughPerror)
{
    EXPECT_EQ(reportOf(ENOENT, "F", "P", 7, "M"), " - Assertion failure: M F P line 7\r\n" + describedBy(ENOENT));
    EXPECT_EQ(reportOf(0, "run()", "/src/a b.cpp", -2147483647 - 1, "x != 0"),
              " - Assertion failure: x != 0 run() /src/a b.cpp line -2147483648\r\n" + describedBy(0));
    EXPECT_EQ(reportOf(EACCES, "", "", 0, ""), " - Assertion failure:    line 0\r\n" + describedBy(EACCES));
}

TEST(Handler, ReportTellsTheLocalTime)
{
    const char* const pOldZone = std::getenv("TZ");
    const std::string oldZone(pOldZone == nullptr ? "" : pOldZone);
    const bool hadZone = pOldZone != nullptr;
    const auto localTime = []
    {
        const std::time_t seconds = std::time(nullptr);
        std::tm parts = {};
        localtime_r(&seconds, &parts);
        char text[40] = {};
        EXPECT_GT(std::strftime(text, sizeof(text), "%Y-%m-%d %H:%M:%S", &parts), 0U);
        return std::string(text);
    };

    std::set<std::string> hours;
    for (const char* pZone : {"UTC0", "EAST-5:30", "WEST+9"})
    {
        setenv("TZ", pZone, 1);
        tzset();
        OpenHandler handler(1);
        const tsCaughtErrors errors;
        const std::string before = localTime();
        handler.outputAssertionMessageToStderr("f", "p", 1, "m");
        const std::string after = localTime();
        const std::string report = errors.take();
        const std::string time = report.substr(0, report.find(" - Assertion failure: "));
        EXPECT_LE(before, time) << pZone;
        EXPECT_LE(time, after) << pZone;
        hours.insert(time.substr(0, std::strlen("2026-11-21 01")));
    }
    EXPECT_EQ(hours.size(), 3U) << "the zones are told from each other";

    if (hadZone)
    {
        setenv("TZ", oldZone.c_str(), 1);
    }
    else
    {
        unsetenv("TZ");
    }
    tzset();
}

TEST(Handler, ReportTakesBytesAsTheyAreAndNoFormats)
{
    EXPECT_EQ(reportOf(EINTR, "f\xFF", "%s%n", 1, "100% \xC3\xA9"),
              " - Assertion failure: 100% \xC3\xA9 f\xFF %s%n line 1\r\n" + describedBy(EINTR));
    const std::string longText(100000, 'm');
    EXPECT_EQ(reportOf(EINTR, "f", "p", 1, longText.c_str()),
              " - Assertion failure: " + longText + " f p line 1\r\n" + describedBy(EINTR));
}

TEST(Handler, ReportDescribesTheCallersErrnoAndLeavesIt)
{
    // Every allocation in this program changes errno, and so does writing to a full device.
    const std::string longText(100000, 'm');
    EXPECT_EQ(reportOf(EPERM, "f", "p", 1, longText.c_str()),
              " - Assertion failure: " + longText + " f p line 1\r\n" + describedBy(EPERM));

    const int oldStderr = dup(STDERR_FILENO);
    const int full = open("/dev/full", O_WRONLY);
    ASSERT_GE(full, 0);
    ASSERT_GE(dup2(full, STDERR_FILENO), 0);
    OpenHandler handler(1);
    errno = EPERM;
    handler.outputAssertionMessageToStderr("f", "p", 1, longText.c_str());
    const int errnoAfterwards = errno;
    dup2(oldStderr, STDERR_FILENO);
    close(full);
    close(oldStderr);
    EXPECT_EQ(errnoAfterwards, EPERM);
}

TEST(Handler, ReportLeavesNullTextsOut)
{
    EXPECT_EQ(reportOf(EPERM, nullptr, nullptr, 7, nullptr),
              " - Assertion failure:    line 7\r\n" + describedBy(EPERM));
}

TEST(Handler, IgnoredLocationNeedsNoWindow)
{
    // There is no toolkit running here: a window could not even be made.
    OpenHandler handler(1);
    handler.handleUsersDecision(8002, path("/p.cpp"), 12);
    EXPECT_EQ(handler.displayAssertionDialog("f", path("/p.cpp"), 12, "m"), 8001);
    EXPECT_EQ(handler.displayAssertionDialog(nullptr, path("/p.cpp"), 12, nullptr), 8001);
    EXPECT_EQ(amountOfWindows(), 0);
}

TEST(Handler, OpenStartsTheEditorAtTheLine)
{
    namespace fs = std::filesystem;
    char folder[] = "/tmp/countersign-editor-XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    // The one that is looked for first.
    const fs::path editor = fs::path(folder) / "code";
    std::ofstream(editor) << "#!/bin/sh\nprintf '%s\\n' \"$@\" > \"$0.part\" && mv \"$0.part\" \"$0.called\"\n";
    fs::permissions(editor, fs::perms::owner_all);
    const char* const pOldPath = std::getenv("PATH");
    ASSERT_NE(pOldPath, nullptr);
    const std::string oldPath(pOldPath == nullptr ? "" : pOldPath);
    setenv("PATH", (std::string(folder) + ":/bin:/usr/bin").c_str(), 1);

    OpenHandler handler(1);
    handler.handleUsersDecision(8003, path("/src/a b.cpp"), 42);
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(5);
    while (!fs::exists(editor.string() + ".called") && std::chrono::steady_clock::now() < end)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    std::stringstream arguments;
    arguments << std::ifstream(editor.string() + ".called").rdbuf();
    EXPECT_NE(arguments.str().find("/src/a b.cpp"), std::string::npos) << arguments.str();
    EXPECT_NE(arguments.str().find("42"), std::string::npos) << arguments.str();
    EXPECT_EQ(handler._ignoredSourceLocations.size(), 0);

    setenv("PATH", oldPath.c_str(), 1);
    fs::remove_all(folder);
}

namespace
{
volatile std::sig_atomic_t amountOfTraps = 0;
}

// In a process of its own, because one that ended here with status 0 would look like success.
TEST(HandlerDeathTest, DebugRaisesTheTrapAndGoesOn)
{
    EXPECT_EXIT(
        {
            struct sigaction count = {};
            count.sa_handler = [](int) { amountOfTraps = amountOfTraps + 1; };
            sigaction(SIGTRAP, &count, nullptr);
            OpenHandler handler(1);
            handler.handleUsersDecision(8004, path("/p.cpp"), 1);
            std::_Exit(amountOfTraps == 1 && handler._ignoredSourceLocations.size() == 0 ? 7 : 8);
        },
        testing::ExitedWithCode(7), "^$");
}

TEST(HandlerDeathTest, ExitEndsTheProcessWithStatusZeroThroughTheExitHandlers)
{
    EXPECT_EXIT(
        {
            static_cast<void>(std::atexit([] { static_cast<void>(std::fputs("exit handlers run", stderr)); }));
            auto* pHandler = new OpenHandler(1);
            gtRegisterAssertionFailureHandler(pHandler);
            pHandler->handleUsersDecision(8005, path("/p.cpp"), 1);
            static_cast<void>(std::fputs("not reached", stderr));
            std::_Exit(3);
        },
        testing::ExitedWithCode(0), "^exit handlers run$");
}
