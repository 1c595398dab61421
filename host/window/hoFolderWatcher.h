// SPDX-License-Identifier: Apache-2.0
// Tells that something in some folders may have changed.
//
// What has changed is for the caller to see: file systems tell too much, too little or in another order, and looking at
// the files again is cheap. Changes that follow each other closely are told once, and the longer the caller takes to
// look, the longer the pause before the next time. Folders that cannot be watched (no such folder, no more watches,
// another machine's) are passed over and tried again by the next watch(). Main thread.
#ifndef COUNTERSIGN_HO_FOLDER_WATCHER_H
#define COUNTERSIGN_HO_FOLDER_WATCHER_H

#include "platform/baseTools/gtString.h"

#include <wx/fswatcher.h>
#include <wx/timer.h>

#include <functional>
#include <memory>
#include <set>

class hoFolderWatcher
{
public:
    explicit hoFolderWatcher(std::function<void()> onChange);
    hoFolderWatcher(const hoFolderWatcher&) = delete;
    hoFolderWatcher& operator=(const hoFolderWatcher&) = delete;

    // Watches these folders (absolute paths) and no others. Does nothing without a running event loop.
    void watch(const std::set<gtString>& folders);

private:
    void unwatch(const std::set<gtString>& folders);

    std::function<void()> _onChange;
    std::set<gtString> _folders;  // that are watched
    wxTimer _timer;
    int _pause;  // milliseconds between a change and telling of it
    // The last member: it tells of what it has not told yet when it goes away.
    std::unique_ptr<wxFileSystemWatcher> _pWatcher;  // from the first folder on
};

#endif
