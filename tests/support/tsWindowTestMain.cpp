// SPDX-License-Identifier: Apache-2.0
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>
#include <wx/app.h>
#include <wx/init.h>

#if defined(__SANITIZE_ADDRESS__)
// What the font library keeps until the end. It never calls us, so nothing of ours hides behind it.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libfontconfig\n";
}

extern "C" const char* __lsan_default_options();
extern "C" const char* __lsan_default_options()
{
    return "print_suppressions=0";
}
#endif

namespace
{

wxAppConsole* makePlainApplication()
{
    return new wxApp;
}

// Whether the program only tells about itself and needs no display.
bool isAskedToListTests(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i)
    {
        const std::string argument(argv[i]);
        if (argument == "--gtest_list_tests" || argument == "--help" || argument == "-h")
        {
            return true;
        }
    }
    return false;
}

}  // namespace

int main(int argc, char** argv)
{
    const char* const isThere = "COUNTERSIGN_WINDOW_TEST_HAS_DISPLAY";
    if (!isAskedToListTests(argc, argv) && std::getenv(isThere) == nullptr)
    {
        setenv(isThere, "1", 1);
        // In English, wherever the tests run.
        setenv("LC_ALL", "C.UTF-8", 1);
        unsetenv("LANGUAGE");
        char script[] = COUNTERSIGN_SCRIPTS "/with-display.sh";
        char self[4096];
        const ssize_t length = readlink("/proc/self/exe", self, sizeof(self) - 1);
        if (length > 0)
        {
            self[length] = '\0';
            std::vector<char*> arguments{script, self};
            arguments.insert(arguments.end(), argv + 1, argv + argc);
            arguments.push_back(nullptr);
            execv(script, arguments.data());
        }
        std::perror(script);
        return 125;
    }

    testing::InitGoogleTest(&argc, argv);
    if (testing::GTEST_FLAG(list_tests))
    {
        return RUN_ALL_TESTS();
    }
    testing::GTEST_FLAG(death_test_style) = "threadsafe";

    if (wxAppConsole::GetInitializerFunction() == nullptr)
    {
        wxAppConsole::SetInitializerFunction(&makePlainApplication);
    }
    int amountOfArguments = 1;
    if (!wxEntryStart(amountOfArguments, argv))
    {
        static_cast<void>(std::fputs("the toolkit did not start\n", stderr));
        return 125;
    }
    const int result = RUN_ALL_TESTS();
    wxEntryCleanup();
    return result;
}
