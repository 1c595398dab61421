// SPDX-License-Identifier: Apache-2.0
#include "skResources.h"

#include "tests/support/tsWindowTest.h"

#include <wx/window.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <malloc.h>
#include <unistd.h>

namespace
{
std::string firstLine(const std::string& path)
{
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    return line;
}

double amountOfEntries(const std::string& folder)
{
    std::error_code error;
    double amount = 0;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
    {
        ++amount;
    }
    return amount;
}

// Anonymous memory, in bytes: what files are mapped for comes and goes as the system likes.
double privateMemory(const std::string& process)
{
    std::ifstream file("/proc/" + process + "/smaps_rollup");
    std::string line;
    double bytes = 0;
    while (std::getline(file, line))
    {
        std::istringstream words(line);
        std::string name;
        double kilobytes = 0;
        words >> name >> kilobytes;
        bytes += name == "Anonymous:" || name == "Swap:" ? kilobytes * 1024 : 0;
    }
    return bytes;
}

// Without those that GLib keeps for a while in case there is work for them.
double amountOfThreads()
{
    std::error_code error;
    double amount = 0;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task", error))
    {
        amount += firstLine(task.path().string() + "/comm").compare(0, 5, "pool-") == 0 ? 0 : 1;
    }
    return amount;
}

double amountOfChildren()
{
    std::istringstream numbers(firstLine("/proc/self/task/" + std::to_string(getpid()) + "/children"));
    double amount = 0;
    for (std::string number; numbers >> number;)
    {
        ++amount;
    }
    return amount;
}

// The server that was started beside this program (scripts/with-display.sh); empty if there is none.
std::string findServer()
{
    const std::string parent = std::to_string(getppid());
    std::istringstream numbers(firstLine("/proc/" + parent + "/task/" + parent + "/children"));
    for (std::string number; numbers >> number;)
    {
        if (firstLine("/proc/" + number + "/comm") == "Xvfb")
        {
            return number;
        }
    }
    return "";
}

double amountOfWindows(const wxWindowList& windows)
{
    double amount = 0;
    for (const wxWindow* pWindow : windows)
    {
        amount += 1 + amountOfWindows(pWindow->GetChildren());
    }
    return amount;
}

double amountOfXWindows()
{
    std::string tree;
    tsRunProgram({"xwininfo", "-root", "-tree"}, &tree);
    return static_cast<double>(std::count(tree.begin(), tree.end(), '\n'));
}
}  // namespace

const char* skNameOf(skResource resource)
{
    const std::array<const char*, skAmountOfResources> names = {"heap",    "memory",   "X server", "descriptors",
                                                                "threads", "children", "windows",  "X windows"};
    return names.at(static_cast<std::size_t>(resource));
}

void skPrepareSampling()
{
    mallopt(M_ARENA_MAX, 1);
    // For what is started from here, the X server above all: an allocator left to itself keeps some megabytes of
    // pictures that were given back, at one time or another.
    setenv("MALLOC_MMAP_THRESHOLD_", "65536", 0);
    setenv("MALLOC_TRIM_THRESHOLD_", "65536", 0);
}

skSample skTakeSample()
{
    static const std::string server = findServer();
    const struct mallinfo2 heap = mallinfo2();
    // Reading the folder of descriptors takes one itself.
    return {static_cast<double>(heap.uordblks + heap.hblkhd),
            privateMemory("self"),
            privateMemory(server),
            amountOfEntries("/proc/self/fd") - 1,
            amountOfThreads(),
            amountOfChildren(),
            amountOfWindows(wxTopLevelWindows),
            amountOfXWindows()};
}
