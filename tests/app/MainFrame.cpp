// SPDX-License-Identifier: Apache-2.0
#include "MainFrame.h"

#include "platform/baseTools/gtString.h"

bool MainFrame::hasNoMemory = false;
int MainFrame::amountOfLive = 0;

std::function<void(MainFrame&)>& MainFrame::whileConstructing()
{
    static std::function<void(MainFrame&)> function;
    return function;
}

std::function<void(MainFrame&)>& MainFrame::whileShowing()
{
    static std::function<void(MainFrame&)> function;
    return function;
}

std::vector<std::pair<std::string, bool>>& MainFrame::openedPaths()
{
    static std::vector<std::pair<std::string, bool>> paths;
    return paths;
}

MainFrame::MainFrame() : wxFrame(nullptr, wxID_ANY, "main window")
{
    if (whileConstructing())
    {
        whileConstructing()(*this);
    }
}

MainFrame::~MainFrame() = default;

bool MainFrame::Show(bool isShown)
{
    if (whileShowing())
    {
        whileShowing()(*this);
    }
    return wxFrame::Show(isShown);
}

void MainFrame::openFilePath(const gtString& path, bool flag)
{
    openedPaths().emplace_back(std::string(path.asCharArray(), static_cast<std::size_t>(path.length())), flag);
}

void* MainFrame::operator new(std::size_t size)
{
    ++amountOfLive;
    return ::operator new(size);
}

void* MainFrame::operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept
{
    if (hasNoMemory)
    {
        return nullptr;
    }
    void* pMemory = ::operator new(size, std::nothrow);
    amountOfLive += pMemory != nullptr ? 1 : 0;
    return pMemory;
}

void MainFrame::operator delete(void* pMemory) noexcept
{
    amountOfLive -= pMemory != nullptr ? 1 : 0;
    ::operator delete(pMemory);
}

void MainFrame::operator delete(void* pMemory, const std::nothrow_t& /*tag*/) noexcept
{
    MainFrame::operator delete(pMemory);
}
