#include "host/hoFolderWatcher.h"

#include "assertionHandling/ahTextConversion.h"
#include "host/hoBytes.h"

#include <wx/evtloop.h>
#include <wx/filename.h>
#include <wx/log.h>

#include <filesystem>
#include <utility>

namespace
{
const int pauseAfterChange = 150;  // milliseconds

wxFileName folderName(const std::string& folder)
{
    return wxFileName::DirName(ahPathTextFromBytes(hoToText(folder)));
}
}  // namespace

hoFolderWatcher::hoFolderWatcher(std::function<void()> onChange) : _onChange(std::move(onChange))
{
    _timer.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { _onChange(); });
}

void hoFolderWatcher::watch(const std::set<std::string>& folders)
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
                                _timer.StartOnce(pauseAfterChange);
                            }
                        });
    }
    // A folder that cannot be watched is no news for the user.
    const wxLogNull silence;
    for (auto folder = _folders.begin(); folder != _folders.end();)
    {
        // A folder that went away takes its watch along: one that comes back is a new one.
        std::error_code error;
        const bool isKept = folders.count(*folder) > 0 && std::filesystem::is_directory(*folder, error);
        if (isKept)
        {
            ++folder;
        }
        else
        {
            _pWatcher->Remove(folderName(*folder));
            folder = _folders.erase(folder);
        }
    }
    for (const std::string& folder : folders)
    {
        if (_folders.count(folder) == 0 && _pWatcher->Add(folderName(folder)))
        {
            _folders.insert(folder);
        }
    }
}
