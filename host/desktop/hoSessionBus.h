// SPDX-License-Identifier: Apache-2.0
// The application on the session bus: the one running process owns the application's name and takes documents there,
// from the desktop and from later starts of itself.
//
// No toolkit here, GIO alone. Paths are bytes as the file system knows them; a URI is decoded before a path
// leaves this class, and one that names no file of this machine (hoPathOfUri) comes out as the URI itself, for the
// window to say that it cannot be opened.
#ifndef HO_SESSION_BUS_H
#define HO_SESSION_BUS_H

#include "platform/baseTools/gtString.h"

#include <functional>
#include <memory>
#include <utility>
#include <vector>

class hoSessionBus
{
public:
    enum class Outcome
    {
        NoBus,      // there is no bus, or the name's owner does not answer: go on alone
        First,      // the name is ours, requests will come
        HandedOver  // another process has taken the documents: nothing is left to do here
    };

    using OpenFunction = std::function<void(const std::vector<gtString>& paths)>;
    using ActivateFunction = std::function<void()>;
    using StartupIdFunction = std::function<void(const gtString& id)>;

    hoSessionBus();
    // Gives the name back; no function is called any more.
    ~hoSessionBus();
    hoSessionBus(const hoSessionBus&) = delete;
    hoSessionBus& operator=(const hoSessionBus&) = delete;

    // onStartupId is called before one of the two functions of start(), when the desktop or the later start says by
    // what the window may come to the front: an activation token, or a startup id. To be set before start().
    void setOnStartupId(StartupIdFunction onStartupId) { _onStartupId = std::move(onStartupId); }

    // What the desktop said about this start, for the window that answers; without it, what the environment says
    // (DESKTOP_STARTUP_ID). To be set before start().
    void setStartupId(const gtString& id) { _startupId = id; }

    // Claims the name. Where another process has it, that one is asked to open the paths, or to come to the front if
    // there are none; relative paths are taken from the current folder. Blocks until the bus has answered:
    // some seconds at the most where it and the owner of the name work, half a minute where neither answers any more,
    // and longer only if the bus takes the connection and then says nothing. Call it once.
    //
    // The two functions are called from GLib's main loop of the calling thread, never from inside start(), each
    // after its caller on the bus has its answer, so that they may take their time (open a dialog, for one).
    //
    // An owner that comes to these paths only when this process has given up waiting does not open them.
    Outcome start(const std::vector<gtString>& paths, OpenFunction onOpen, ActivateFunction onActivate);

    // Gives the name back before the end, so that whoever asks from now on does not ask for nothing: a later start is
    // the first one then.
    void leave();

    // The name on the bus, which is the desktop id, and the object's path.
    static const char* const NAME;
    static const char* const OBJECT_PATH;

private:
    class Connection;
    StartupIdFunction _onStartupId;
    gtString _startupId;
    std::unique_ptr<Connection> _pConnection;
};

#endif
