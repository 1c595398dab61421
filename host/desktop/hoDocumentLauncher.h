// SPDX-License-Identifier: Apache-2.0
// Opens documents in the desktop's programs for them, and shows them in its file manager.
//
// Nothing here waits: what comes of a request is told by the callbacks, from GLib's main loop of the thread that made
// the object, never from inside open() or showInFolder(). No toolkit here, GIO alone. Paths are absolute, bytes as the
// file system knows them. For one thread.
#ifndef COUNTERSIGN_HO_DOCUMENT_LAUNCHER_H
#define COUNTERSIGN_HO_DOCUMENT_LAUNCHER_H

#include "platform/baseTools/gtString.h"

#include <functional>
#include <memory>
#include <vector>

// GIO's GAppLaunchContext.
// NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
struct _GAppLaunchContext;

class hoDocumentLauncher
{
public:
    enum class Problem
    {
        Missing,    // there is no such file
        NoProgram,  // the desktop has no program for it
        Refused     // anything else; _reason tells
    };

    struct Failure
    {
        gtString _path;  // the document's, or where a folder cannot be shown, the folder's
        Problem _problem = Problem::Refused;
        gtString _reason;  // what the system says; UTF-8
    };

    struct Callbacks
    {
        std::function<void(const Failure& failure)> _onFailure;
        // The document is a program and was not run; its folder is shown instead.
        std::function<void(const gtString& path)> _onProgram;
    };

    explicit hoDocumentLauncher(Callbacks callbacks);
    // What has been asked for goes on; no callback comes any more.
    ~hoDocumentLauncher();
    hoDocumentLauncher(const hoDocumentLauncher&) = delete;
    hoDocumentLauncher& operator=(const hoDocumentLauncher&) = delete;

    // pContext: how the program that is started comes to the front; may be null, and is only looked at during its own
    // request. A file that would run, by its permissions and its type or by its type alone, is shown in its folder.
    void open(const gtString& path, _GAppLaunchContext* pContext);

    // By the file manager on the session bus, which selects the documents; where there is none, their folders are
    // opened in the desktop's program for folders.
    void showInFolder(const std::vector<gtString>& paths, _GAppLaunchContext* pContext);

private:
    class Request;

    const std::shared_ptr<Callbacks> _pCallbacks;
};

#endif
