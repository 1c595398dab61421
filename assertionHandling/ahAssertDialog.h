// SPDX-License-Identifier: Apache-2.0
// A modal window for one failed assertion: above five buttons it reports what failed, and the developer's choice among
// the buttons is what ShowModal returns. It carries nothing out itself.
//
//     ahAssertDialog dialog(filePath, lineNumber, message, nullptr);
//     const int decision = dialog.ShowModal();
//
// Each button's window id is also the decision. The toolkit's own ways to close a dialog stay: the close box gives
// wxID_CANCEL, which is none of the five; Escape does nothing, since there is no cancel button.
//
// Memory: the dialog owns all its windows and sizers through the toolkit. It may be made on the stack.
// Threads: the toolkit's main thread only, with the toolkit running.
#ifndef AH_ASSERT_DIALOG_H
#define AH_ASSERT_DIALOG_H

#include <wx/dialog.h>
#include <wx/event.h>
#include <wx/string.h>

#include "platform/osWrappers/osFilePath.h"

#pragma GCC visibility push(default)

class wxBoxSizer;
class wxButton;
class wxTextCtrl;

// The buttons' window ids, which are the decisions, in the order of the buttons.
enum ahAssertDialogButtonId
{
    AH_IGNORE_BUTTON_ID = 8001,      // ignore this occurrence
    AH_IGNORE_ALL_BUTTON_ID = 8002,  // ignore this location from now on: the default, reached by Return
    AH_OPEN_BUTTON_ID = 8003,        // open the source file at the line
    AH_DEBUG_BUTTON_ID = 8004,       // break into the debugger
    AH_EXIT_BUTTON_ID = 8005         // end the process
};

class ahAssertDialog : public wxDialog
{
public:
    // Builds the whole window, report included, centred on the screen; it is not shown yet. Where blue and black cannot
    // be read on the theme's background, as in dark themes, the window gets a light one.
    // filePath: the source file as the failed assertion names it, any bytes. lineNumber: any number.
    // message: the reason, of any length, possibly empty; a megabyte without a line break takes the toolkit seconds to
    // lay out, more if its directions change or if it has nothing but characters that no font has. parent: the owner
    // window, null for none.
    ahAssertDialog(const osFilePath& filePath, int lineNumber, const wxString& message, wxWindow* parent);

    ahAssertDialog(const ahAssertDialog&) = delete;
    ahAssertDialog& operator=(const ahAssertDialog&) = delete;

    ~ahAssertDialog() override;

    // wxDialog::ShowModal: the id of the button that was pressed, or what the toolkit gives for another way to close.
    int ShowModal() override;

    // The five buttons' handlers: each ends the modal loop with its button's id. The dialog must be running modally.
    void OnIgnoreButton(wxCommandEvent& event);
    void OnIgnoreAllButton(wxCommandEvent& event);
    void OnOpenButton(wxCommandEvent& event);
    void OnDebugButton(wxCommandEvent& event);
    void OnExitButton(wxCommandEvent& event);

    // Sets the window icon, once more: the constructor does so already. Always true. The icon reaches the screen when
    // the window is realised.
    bool loadIcon();

    // Sets the title "Assert in: <name>.<extension> - Line: <line>". The separator stands there also when the file has
    // no extension ("Assert in: Makefile. - Line: 12"), on purpose.
    void setDialogTitle();

    // Appends the report to the control and leaves the insertion point at its end:
    //
    //     Debug Assertion Failed!                 blue, two points larger
    //
    //     File Name: <name>.<extension> - <line>  label bold, the rest four points larger
    //
    //     File Path: <path>                       label bold
    //
    //     Assert Reason:                          blue, two points larger
    //
    //     <message>                               as it stands, without a line break at the end
    //
    // Labels, sizes and colours count from the toolkit's normal font and stock colours. URLs in it stay visibly
    // highlighted when the control detects URLs, a thousand in a line. A line with a word that is longer than
    // gtLongestUnbrokenWord breaks at the margin, wherever in a word that is. Only a NUL, and code points that no text
    // can hold, are replaced (see gtShowableText): the control would drop the whole text around them.
    // The control must be a multi-line rich one and empty; the constructor has written its own control's report.
    void fillAssertionMessageBody(wxTextCtrl* pTextCtrl);

protected:
    osFilePath _filePath;
    int _lineNumber;
    wxString _assertionMessage;
    // The windows and the sizer belong to the toolkit.
    wxButton* _pIgnoreButton;
    wxButton* _pIgnoreAllButton;
    wxButton* _pOpenButton;
    wxButton* _pDebugButton;
    wxButton* _pExitButton;
    wxBoxSizer* _pButtonsSizer;

    wxDECLARE_EVENT_TABLE();
};

#pragma GCC visibility pop

#endif
