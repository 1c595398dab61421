// SPDX-License-Identifier: Apache-2.0
// The application's main window: a menu bar, the list of opened documents, a status bar.
//
// The window is a view of a hoDocumentList and words what that finds. Documents come from the menu, by drag and drop,
// from the application's arguments (read once the window stands) and through openFilePath. A document that cannot be
// opened adds no row; the window says so in a bar above the list, which waits for the user and never blocks. One that
// is open already is selected where it is.
//
// There is one window a session: where the application is running already, a second start hands its arguments to that one
// over the session bus, and its own window is never shown and goes away by itself. Documents that come over the bus go
// through the application's MacOpenFile.
//
// A signal that asks the program to end (terminate, hang-up, interrupt) gives up the work at hand as closing the window
// does, with nothing half written, whatever dialog is up; then the program ends by that signal. Where the connection to the display is lost the work is
// given up, too, before the toolkit ends the program.
//
// What the window remembers between runs (its place, the recent documents, the last folder) is in hoUserSettingsPath().
// Memory: belongs to the toolkit, like every top-level window. Threads: main thread only.
#ifndef COUNTERSIGN_MAIN_FRAME_H
#define COUNTERSIGN_MAIN_FRAME_H

#include "host/desktop/hoDisplayLoss.h"
#include "host/desktop/hoEndSignals.h"
#include "host/desktop/hoSessionBus.h"
#include "host/documents/hoDocumentList.h"
#include "host/documents/hoRecentDocuments.h"
#include "host/documents/hoSettings.h"
#include "host/documents/hoUriList.h"
#include "host/keys/hoKeyRing.h"
#include "host/window/hoFolderWatcher.h"
#include "host/window/hoSigningWords.h"

#include <wx/frame.h>
#include <wx/stopwatch.h>
#include <wx/timer.h>

#include <memory>
#include <utility>
#include <vector>

class ahDialogBasedAssertionFailureHandler;
class hoAssertionReport;
class hoAssertionReportWindow;
class hoDocumentListCtrl;
class hoInteractiveAssertionFailureHandler;
class hoProgressDialog;
class wxInfoBar;
class wxListEvent;
class wxSimplebook;

class MainFrame : public wxFrame
{
public:
    MainFrame();
    ~MainFrame() override;

    MainFrame(const MainFrame&) = delete;
    MainFrame& operator=(const MainFrame&) = delete;

    // As the toolkit's, but never shows the window of a second start.
    bool Show(bool isShown = true) override;

    // Opens the document; path is bytes, relative ones start at the current folder. isAskedFor: somebody waits for this
    // document, so it is selected and the window comes to the front once the present event is dealt with, together with
    // all that the event has brought; otherwise what is selected and what is in front stay as they are.
    void openFilePath(const gtString& path, bool isAskedFor);

    const hoDocumentList& documents() const { return _documents; }

    // What the bar above the list says of documents that could not be opened; empty when there is nothing to say.
    wxString refusalMessage() const;

    // What the bar says of the last signing or testing; an empty line when there is nothing to say.
    const hoWorkSummary& workMessage() const { return _message; }

    // What it says of a private key that others can get at, when it has been loaded and until it is dismissed or the next
    // thing is begun; an empty line when there is nothing to say.
    const hoWorkSummary& keyWarning() const { return _keyWarning; }

    // The keys that are loaded, and the switch for them: what was found with other ones is not shown any more.
    const hoKeyRing& keys() const { return _keys; }
    void setKeys(const hoKeyRing& keys);

    // Whether documents are being signed or tested.
    bool isAtWork() const { return _pWork != nullptr; }

    // Whether failed assertions come up as dialogs, and the switch for it.
    bool hasAssertionDialogs() const { return _pInteractiveHandler != nullptr; }
    void setAssertionDialogs(bool areOn);

private:
    enum class KeyWish
    {
        Any,
        Private,
        Public
    };
    using Refusal = std::pair<gtString, osFileProblem>;

    void makeMenus();
    void bindEvents();

    void OnOpen(wxCommandEvent& event);
    void OnRecent(wxCommandEvent& event);
    void OnClearRecent(wxCommandEvent& event);
    void OnCloseDocuments(wxCommandEvent& event);
    void OnCloseAllDocuments(wxCommandEvent& event);
    void OnCopyPath(wxCommandEvent& event);
    void OnSelectAll(wxCommandEvent& event);
    void OnNewKeyPair(wxCommandEvent& event);
    void OnFailAssertion(wxCommandEvent& event);
    void OnAssertionReport(wxCommandEvent& event);
    void OnShowDetails(wxCommandEvent& event);
    void OnColumnClick(wxListEvent& event);
    void OnContextMenu(wxContextMenuEvent& event);
    void OnClose(wxCloseEvent& event);
    void tidyUp();

    bool handOverArguments();
    void openArguments();
    void openAskedFor(const std::vector<gtString>& paths);
    void select(const std::vector<std::size_t>& rows);
    void showWhatWasAskedFor();
    // Opens one document and gives its position, or hoDocumentList::nowhere.
    std::size_t openQuietly(const gtString& path);
    // Looks at all documents again, and watches the folders that they are in.
    void refreshDocuments();
    void watchFolders();
    void openDropped(const hoUriList& list);
    void comeToFront();

    void chooseKey(bool isPrivate);
    void loadKey(const gtString& path, KeyWish wish);
    // Signs or tests these documents, or all if there are no rows.
    void startWork(hoDocumentWork::Kind kind, const std::vector<std::size_t>& rows);
    void followWork();
    void endWork();

    // Changes of the documents are shown at once; the words about them and what is remembered of them once the present
    // event is dealt with, however many documents it brought.
    void showChangesSoon();
    void showChangesNow();
    // Made when there is something to show in them: a start without documents has neither.
    hoDocumentListCtrl& list();
    wxInfoBar& messageBar();

    void showMessage();
    void clearMessage();
    void showStatus();
    void fillRecentMenu();
    void loadSettings();
    void restorePlace();
    void remember();

    static ahDialogBasedAssertionFailureHandler* silentHandler();

    hoSessionBus _sessionBus;
    std::unique_ptr<hoEndSignals> _pEndSignals;  // as long as there is something to tidy up
    std::unique_ptr<hoDisplayLoss> _pDisplayLoss;
    bool _isHandedOver;  // to the window of an earlier start; this one is empty then
    hoDocumentList _documents;
    hoRecentDocuments _recent;
    hoSettings _settings;
    std::vector<Refusal> _refusals;  // that the bar tells about
    hoWorkSummary _message;
    hoWorkSummary _keyWarning;
    hoKeyRing _keys;
    std::unique_ptr<hoDocumentWork> _pWork;  // null when nothing is being signed or tested
    hoKeyRing _workKeys;                     // that it began with
    std::vector<hoWorkOutcome> _outcomes;    // so far
    wxTimer _workTimer;
    wxStopWatch _workTime;
    hoFolderWatcher _watcher;
    bool _areChangesPending;
    bool _isRecentChanged;
    std::vector<gtString> _askedFor;  // documents that are to be selected
    bool _isFrontWanted;
    bool _canRemember;                                           // the file holds nothing that could not be read
    const std::shared_ptr<hoAssertionReport> _pAssertionReport;  // of this run
    std::shared_ptr<hoInteractiveAssertionFailureHandler> _pInteractiveHandler;

    hoProgressDialog* _pProgressDialog;
    hoAssertionReportWindow* _pReportWindow;  // null until it is asked for
    wxMenu* _pRecentMenu;
    wxInfoBar* _pMessageBar;  // null until it is needed
    wxSimplebook* _pPages;
    hoDocumentListCtrl* _pList;  // null until it is needed
};

#endif
