// SPDX-License-Identifier: Apache-2.0
// Shows how far long work is at the program's entry in the desktop's task bar or dock, where that listens to the signal
// of a launcher's entry (com.canonical.Unity.LauncherEntry).
#ifndef COUNTERSIGN_HO_TASKBAR_PROGRESS_H
#define COUNTERSIGN_HO_TASKBAR_PROGRESS_H

#include <memory>

// Nothing here waits, and nothing happens where there is no session bus. Signals go out while the main loop runs. Main
// thread only.
class hoTaskbarProgress
{
public:
    hoTaskbarProgress();
    // What is shown is taken away.
    ~hoTaskbarProgress();
    hoTaskbarProgress(const hoTaskbarProgress&) = delete;
    hoTaskbarProgress& operator=(const hoTaskbarProgress&) = delete;

    // part: from 0 to 1. Tells the desktop when it is another hundredth.
    void show(double part);
    // Takes it away.
    void end();

private:
    class Connection;
    std::shared_ptr<Connection> _pConnection;  // null while nothing is shown
    int _percent;
};

#endif
