// SPDX-License-Identifier: Apache-2.0
// The handler that the application registers with the base library for failed assertions, and the kit for reacting to
// one interactively.
//
// The entry point, onAssertionFailure, is silent on purpose: with this handler registered a failed assertion anywhere
// in the process does nothing at all, and execution continues. Nothing in this class calls the other members. They are
// the pieces from which a derived class makes an interactive handler: arInteractiveAssertionFailureHandler of the room
// assertionReporting is one, and safe whatever thread fails, which no two lines with these members are: the dialog
// needs the toolkit's thread, and the list of ignored locations has no lock.
//
// Arguments have one order everywhere: function name, file, line, message. A decision is the window id of the button
// that was pressed: AH_IGNORE_BUTTON_ID and so on in assertionHandling/ahAssertDialog.h.
//
// Memory: the handler owns its list of ignored locations, which only grows. It may not be copied.
// Threads: onAssertionFailure and shouldDisplayDialog may be called from any thread. No member takes a lock: the
// caller must see to it that the list of ignored locations (isInIgnoredSourceLocations, displayAssertionDialog,
// handleUsersDecision) is used by one thread at a time, and that displayAssertionDialog runs on the toolkit's thread.
#ifndef AH_DIALOG_BASED_ASSERTION_FAILURE_HANDLER_H
#define AH_DIALOG_BASED_ASSERTION_FAILURE_HANDLER_H

#include "assertionHandling/ahSourceCodeLocation.h"
#include "platform/baseTools/gtIAssertionFailureHandler.h"
#include "platform/baseTools/gtPtrVector.h"
#include "platform/osWrappers/osFilePath.h"

#pragma GCC visibility push(default)

class ahDialogBasedAssertionFailureHandler : public gtIAssertionFailureHandler
{
public:
    // Keeps the main thread's id (osGetCurrentThreadId); the list of ignored locations is empty. Registers nothing.
    explicit ahDialogBasedAssertionFailureHandler(unsigned int mainThreadId);

    ahDialogBasedAssertionFailureHandler(const ahDialogBasedAssertionFailureHandler&) = delete;
    ahDialogBasedAssertionFailureHandler& operator=(const ahDialogBasedAssertionFailureHandler&) = delete;

    // Returns at once: no output, no window, no other member called. Any argument may be null.
    void onAssertionFailure(const char* functionName, const char* fileName, int lineNumber,
                            const char* message) override;

    // Deletes every ignored location. The caller must have unregistered the handler before.
    ~ahDialogBasedAssertionFailureHandler() override;

    // False, always.
    bool shouldDisplayDialog() const;

    // Whether the list of ignored locations holds one with an equal path (osFilePath's equality: compared as given,
    // nothing is folded or normalised) and the same line.
    bool isInIgnoredSourceLocations(const osFilePath& filePath, int lineNumber);

    // Writes one report to standard error, through perror:
    //
    //     <local time> - Assertion failure: <message> <function> <file> line <n>\r\n: <description of errno>\n
    //
    // The message comes before the function on purpose, and so does the line break before the description. That is of
    // the errno at the time of the call, which has the same value again when the function returns. A null text is left
    // out. Bytes go out as they are.
    void outputAssertionMessageToStderr(const char* functionName, const char* fileName, int lineNumber,
                                        const char* message);

    // Shows the assertion dialog, without an owner window, until the user decides, and returns the decision: one of the
    // five codes, or what the toolkit returns for a dialog closed otherwise (wxID_CANCEL for the close box), which is
    // no decision. For an ignored location it returns AH_IGNORE_BUTTON_ID and no window is created.
    // A null message counts as empty; one that is not UTF-8 is shown all the same. The function's name is not shown.
    // The toolkit must be running and this must be its thread, which is not checked. The modal loop handles other
    // events too, so whatever fails an assertion meanwhile comes back in here if the caller lets it.
    // What leaves the dialog as an exception comes out of here after the dialog is gone.
    int displayAssertionDialog(const char* functionName, const osFilePath& filePath, int lineNumber,
                               const char* message);

    // Carries a decision out:
    //
    //     AH_IGNORE_BUTTON_ID      nothing
    //     AH_IGNORE_ALL_BUTTON_ID  appends the location to the list, also when it is there already. Strong exception
    //                              guarantee; if there is no memory for the record itself nothing is appended
    //     AH_OPEN_BUTTON_ID        osOpenFileInSourceCodeEditor(filePath, lineNumber)
    //     AH_DEBUG_BUTTON_ID       osThrowBreakpointException()
    //     AH_EXIT_BUTTON_ID        exit(0): exit-time handlers and static destructors run, the application object's
    //                              OnExit does not. Does not return
    //     any other                nothing
    void handleUsersDecision(int usersDecision, const osFilePath& filePath, int lineNumber);

protected:
    unsigned int _mainThreadId;
    gtPtrVector<ahSourceCodeLocation*> _ignoredSourceLocations;
};

#pragma GCC visibility pop

#endif
