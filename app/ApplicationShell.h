// SPDX-License-Identifier: Apache-2.0
// The toolkit's application object: installs the process-wide handler for failed assertions, opens the main window, and
// passes on the documents that the desktop asks the application to open.
//
// The main window is the host's. This room reaches it by #include "MainFrame.h", found on the include path of the
// target that links applicationShell, and asks of it no more than this:
//
//     class MainFrame : public wxFrame
//     {
//     public:
//         MainFrame();                                          // no arguments; may look at wxGetApp()
//         void openFilePath(const gtString& path, bool flag);   // flag true: a document that the desktop asks for
//     };
//
// If it has an operator new of its own, then also the one that takes std::nothrow_t: MainFrame is made by
// new (std::nothrow).
//
// Life: the toolkit's entry makes the object through wxCreateApp and sets argc and argv, then
//
//     OnInit    the handler is made and registered, then the main window is made, shown, and becomes the top window
//     ...       the event loop
//     OnExit    the handler is unregistered and deleted
//
// Memory: the application owns the handler, from OnInit to OnExit. The main window belongs to the toolkit.
// Threads: everything here runs on the main thread. wxGetApp() may be called from any thread while the object lives.
#ifndef APPLICATION_SHELL_H
#define APPLICATION_SHELL_H

#include <wx/app.h>

// On macOS the toolkit's application class has the operation and calls it.
#if defined(__WXMAC__)
#define APPLICATION_SHELL_MAC_OVERRIDE override
#else
#define APPLICATION_SHELL_MAC_OVERRIDE
#endif

class ahDialogBasedAssertionFailureHandler;
class MainFrame;

class ApplicationShell : public wxApp
{
public:
    // No window, no handler, and no arguments until the toolkit's entry sets them.
    ApplicationShell();

    ApplicationShell(const ApplicationShell&) = delete;
    ApplicationShell& operator=(const ApplicationShell&) = delete;

    // Deletes neither the main window nor the handler.
    ~ApplicationShell() override;

    // False, which ends the start-up, only if there was no memory for the main window; the handler stays registered
    // then. Without memory for the handler a failed assertion is reported and start-up goes on.
    // Does not call the base class: the toolkit's own reading of the command line would refuse document names.
    // What a constructor throws goes on to the toolkit.
    bool OnInit() override;

    // Always 0. May be called again, and without OnInit before. Leaves the main window alone, and does not call the
    // base class: a host that has installed a global wxConfig object deletes it itself.
    int OnExit() override;

    // A document that the desktop asks to open. fileName: a path text (see platform/toolkit/gtTextConversion.h), which
    // goes back to the same bytes.
    // With a main window: passed on to its openFilePath with the flag true.
    // Before that, with argc 0 and argv without arguments: kept there, argc being 1 and argv[0] the path text. So a
    // host that reads the arguments must know that argv[0] is the program's name only if the toolkit's entry set it.
    // Before that, with arguments there already: a failed assertion is reported and the document is dropped.
    // After the toolkit has deleted the main window it counts as not yet there.
    // A virtual operation of the toolkit's on macOS; elsewhere the host's desktop integration calls it.
    void MacOpenFile(const wxString& fileName) APPLICATION_SHELL_MAC_OVERRIDE;

protected:
    MainFrame* _pMainFrame;
    ahDialogBasedAssertionFailureHandler* _pAssertionFailureHandler;
};

// The application's one instance. There must be one, and it must be an ApplicationShell.
ApplicationShell& wxGetApp();

#endif
