// SPDX-License-Identifier: Apache-2.0
// The main window of this folder's tests: an empty window that notes what the application does with it, and fails on
// demand.
#ifndef TESTS_APP_MAIN_FRAME_H
#define TESTS_APP_MAIN_FRAME_H

#include <cstddef>
#include <functional>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include <wx/frame.h>

class gtString;

class MainFrame : public wxFrame
{
public:
    // Runs whileConstructing, which may throw.
    MainFrame();
    ~MainFrame() override;

    // Runs whileShowing before it is shown.
    bool Show(bool isShown = true) override;

    void openFilePath(const gtString& path, bool flag);

    // Null while hasNoMemory; counted in amountOfLive.
    static void* operator new(std::size_t size);
    static void* operator new(std::size_t size, const std::nothrow_t& tag) noexcept;
    static void operator delete(void* pMemory) noexcept;
    static void operator delete(void* pMemory, const std::nothrow_t& tag) noexcept;

    static bool hasNoMemory;
    static int amountOfLive;

    // Functions, so that static objects of other files may use them before main().
    static std::function<void(MainFrame&)>& whileConstructing();
    static std::function<void(MainFrame&)>& whileShowing();
    static std::vector<std::pair<std::string, bool>>& openedPaths();
};

#endif
