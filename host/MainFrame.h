// SPDX-License-Identifier: Apache-2.0
// The application's main window: a menu bar, the opened documents, a status bar. It wires the controllers together;
// each of them owns one job, knows no other, and reports by callback.
//
// Documents come from the menu, by drag and drop, from the application's arguments (read when the event loop runs) and
// through openFilePath. A document that cannot be opened adds no row; the window says so in a bar above the list. One
// that is open already is selected where it is. A dropped file that holds a key is loaded as one.
//
// There is one window a session: where the application is running already, a second start hands its documents over
// before anything is made; its native window is never created, so it cannot be shown, and it destroys itself.
//
// A signal that asks the program to end (terminate, hang-up, interrupt) gives up the job at hand as closing the window
// does, with nothing half written, whatever dialog is up; then the program ends by that signal. Where the connection to
// the display is lost, the job is given up, too, before the toolkit ends the program.
//
// Memory: belongs to the toolkit, like every top-level window. Threads: main thread only.
#ifndef COUNTERSIGN_MAIN_FRAME_H
#define COUNTERSIGN_MAIN_FRAME_H

#include "host/desktop/hoDisplayLoss.h"
#include "host/desktop/hoEndSignals.h"
#include "host/desktop/hoSingleInstance.h"
#include "host/desktop/hoTaskbarProgress.h"
#include "host/window/hoAssertionController.h"
#include "host/window/hoDocumentCommands.h"
#include "host/window/hoDocumentsView.h"
#include "host/window/hoKeyController.h"
#include "host/window/hoMessageBar.h"
#include "host/window/hoSigningController.h"
#include "host/window/hoToolBar.h"
#include "host/window/hoWindowMemory.h"

#include <wx/frame.h>

#include <memory>
#include <vector>

class hoMenuBar;
class hoStatusBar;
struct hoUriList;

class MainFrame : public wxFrame
{
public:
    MainFrame();
    MainFrame(const MainFrame&) = delete;
    MainFrame& operator=(const MainFrame&) = delete;

    // Opens the document; path is bytes, relative ones start at the current folder. isAskedFor: somebody waits for this
    // document, so it is selected and the window comes to the front once the present event is dealt with, together with
    // all that the event has brought; otherwise what is selected and what is in front stay as they are.
    void openFilePath(const gtString& path, bool isAskedFor);

    const hoDocumentList& documents() const { return _pView->documents(); }

    // What the bar above the list says, of each kind of message; see hoMessageBar.
    wxString refusalMessage() const { return _messageBar.refusalText(); }
    const hoSummary& workMessage() const { return _messageBar.result(); }
    const hoSummary& keyWarning() const { return _messageBar.keyWarning(); }
    const wxString& offer() const { return _messageBar.offer(); }

    // The keys that are loaded. What was found with other ones is no longer shown.
    const hoKeyRing& keys() const { return _keys.keys(); }
    void setKeys(const hoKeyRing& keys) { _keys.setKeys(keys); }

    // Whether documents are being signed or tested.
    bool isAtWork() const { return _signing.isAtWork(); }

    // Whether the question is up that comes when the window is closed meanwhile.
    bool isAskingToQuit() const { return _signing.isAskingToQuit(); }

    // Whether failed assertions come up as dialogs.
    bool hasAssertionDialogs() const { return _assertions.hasDialogs(); }
    void setAssertionDialogs(bool areOn) { _assertions.setDialogs(areOn); }

private:
    void makeWindow();
    void bindCommands();
    void bindEvents();

    void openNow(const std::vector<gtString>& paths);
    void openDropped(const hoUriList& list);
    void onKeysChanged();
    void onKeyWarning(const hoSummary& warning);
    // Offers the key that was loaded last, if its file is there and the preferences do not say otherwise.
    void offerRecentKey();
    void choosePreferences();
    wxString whyGrey(int command) const;

    // Rows and states are shown at once. Messages, status and recent documents are shown once the present event is
    // dealt with, however many documents it brought.
    void showChangesSoon();
    // The same, and the recent paths are written down.
    void rememberSoon();
    void showChangesNow();
    void endAllJobs();

    hoSingleInstance _instance;
    hoMenuBar* _pMenuBar;  // these three belong to the window, and are null where it was never created
    hoDocumentsView* _pView;
    hoStatusBar* _pStatusBar;
    hoMessageBar _messageBar;
    hoWindowMemory _memory;
    hoKeyController _keys;
    hoTaskbarProgress _taskbarProgress;
    hoSigningController _signing;
    hoAssertionController _assertions;
    hoDocumentCommands _documentCommands;
    hoToolBar _toolBar;
    std::unique_ptr<hoEndSignals> _pEndSignals;  // null where the window was never created
    std::unique_ptr<hoDisplayLoss> _pDisplayLoss;

    bool _areChangesPending;
    bool _isRecentChanged;
    bool _isFrontWanted;
};

#endif
