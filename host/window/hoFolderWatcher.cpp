// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoFolderWatcher.h"

#include "platform/toolkit/gtTextConversion.h"

#include <wx/evtloop.h>
#include <wx/filename.h>
#include <wx/log.h>
#include <wx/stopwatch.h>

#include <algorithm>
#include <filesystem>
#include <utility>

namespace
{
const int pauseAfterChange = 150;  // milliseconds
const long longestPause = 10000;
const long shareOfTime = 10;  // looking takes a tenth of the time at most

// Not the reading of files: that changes nothing, and those who read most are we.
const int changes = wxFSW_EVENT_ALL & ~wxFSW_EVENT_ACCESS;

wxFileName folderName(const gtString& folder)
{
    return wxFileName::DirName(gtPathTextFromBytes(folder));
}
}  // namespace

hoFolderWatcher::hoFolderWatcher(std::function<void()> onChange)
    : _onChange(std::move(onChange)), _pause(pauseAfterChange)
{
    _timer.Bind(wxEVT_TIMER,
                [this](wxTimerEvent&)
                {
                    const wxStopWatch watch;
                    _onChange();
                    _pause =
                        static_cast<int>(std::clamp(shareOfTime * watch.Time(), long(pauseAfterChange), longestPause));
                });
}

void hoFolderWatcher::watch(const std::set<gtString>& folders)
{
    if (wxEventLoopBase::GetActive() == nullptr || (folders.empty() && _folders.empty()))
    {
        return;
    }
    if (_pWatcher == nullptr)
    {
        _pWatcher = std::make_unique<wxFileSystemWatcher>();
        _pWatcher->Bind(wxEVT_FSWATCHER,
                        [this](wxFileSystemWatcherEvent&)
                        {
                            if (!_timer.IsRunning())
                            {
                                _timer.StartOnce(_pause);
                            }
                        });
    }
    // A folder that cannot be watched is no news for the user.
    const wxLogNull silence;
    std::set<gtString> gone;
    for (auto folder = _folders.begin(); folder != _folders.end();)
    {
        // A folder that went away takes its watch along: one that comes back is a new one.
        std::error_code error;
        const bool isKept = folders.count(*folder) > 0 && std::filesystem::is_directory(folder->asStdString(), error);
        if (isKept)
        {
            ++folder;
        }
        else
        {
            gone.insert(*folder);
            folder = _folders.erase(folder);
        }
    }
    unwatch(gone);
    for (const gtString& folder : folders)
    {
        if (_folders.count(folder) == 0 && _pWatcher->Add(folderName(folder), changes))
        {
            _folders.insert(folder);
        }
    }
}

// The toolkit drops the watch of a folder that is deleted by itself, and takes it for a mistake to be asked for it
// again.
void hoFolderWatcher::unwatch(const std::set<gtString>& folders)
{
    if (folders.empty())
    {
        return;
    }
    wxArrayString texts;
    _pWatcher->GetWatchedPaths(&texts);
    const std::set<wxString> watched(texts.begin(), texts.end());
    for (const gtString& folder : folders)
    {
        const wxFileName name = folderName(folder);
        if (watched.count(name.GetFullPath()) > 0)
        {
            _pWatcher->Remove(name);
        }
    }
}
