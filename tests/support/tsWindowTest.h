// SPDX-License-Identifier: Apache-2.0
// Tools for tests that open real windows. Link windowTestSupport: it brings a main() that
//
// - runs the test program on a virtual display that is its own meanwhile, with a window manager (not for
//   --gtest_list_tests);
// - starts the toolkit before the tests and ends it after them. The application object comes from the factory that the
//   program registers (an ApplicationShell, for one), else it is a plain wxApp. Its OnInit is not called, and no main
//   loop runs but while a test waits (tsRunUntil) or shows a modal dialog.
//
// Nothing here sleeps to get something done: everything waits for a condition, for tsPatience at most, which is long
// enough for a loaded machine and is a failure of the test when it is over. Main thread only.
#ifndef TS_WINDOW_TEST_H
#define TS_WINDOW_TEST_H

#include <functional>
#include <memory>
#include <string>

#include <wx/gdicmn.h>
#include <wx/image.h>

class wxTopLevelWindow;
class wxWindow;

// In milliseconds.
constexpr int tsPatience = 300000;

// Runs an event loop until the condition holds. False, and a failure that names "what", if it does not in time; modal
// dialogs that have come meanwhile are ended then, so that the test goes on.
bool tsRunUntil(const std::string& what, const std::function<bool()>& condition);

// Handles all events and idle work that are there now.
void tsRunEvents();

// Steps that are performed one after the other by whatever event loop is running: a modal dialog's, for one.
//
//     tsScript script;
//     script.waitUntil("the dialog has the keyboard", [&] { return tsHasKeyboard(dialog); })
//         .perform("press Return", [] { tsPressKeys("Return"); })
//         .start();
//     EXPECT_EQ(dialog.ShowModal(), wxID_OK);
//     EXPECT_TRUE(script.isFinished());
//
// A step that is not reached in time is a failure of the test; all modal dialogs and the running loop are ended then,
// so that the test goes on. An action may itself show a modal dialog: the steps go on in that one's loop. The script
// must outlive the loop that it works in.
class tsScript
{
public:
    tsScript();
    tsScript(const tsScript&) = delete;
    tsScript& operator=(const tsScript&) = delete;
    ~tsScript();

    tsScript& waitUntil(const std::string& what, std::function<bool()> condition);
    tsScript& perform(const std::string& what, std::function<void()> action);
    void start();

    bool isFinished() const;

private:
    class Runner;
    std::unique_ptr<Runner> _pRunner;
};

// The window that would get key presses now is this one: it is on the screen and its application knows that the window
// manager has given it the keyboard, and so does everybody else.
bool tsHasKeyboard(const wxTopLevelWindow& window);

// The modal dialog that is shown last, or null.
wxWindow* tsTopModalDialog();

// Real key presses by X names: "Return", "alt+i", "ctrl+o", "Tab". They go to whatever window has the keyboard.
void tsPressKeys(const std::string& keys);

// Types the text (ASCII) key by key.
void tsType(const std::string& text);
// Pastes a text by the clipboard. For paths in the desktop's file dialogs: these complete what is typed letter by
// letter, on a busy machine after the next letters have come.
void tsPaste(const std::string& text);

// A real click of the left button in the middle of the window, which must be visible and not covered.
void tsClick(const wxWindow& window);
void tsClickAt(const wxPoint& screenPosition);

// Double clicks there until the condition holds: on a busy machine the second click of a pair may come too late for the
// toolkit. For what a further double click does not spoil.
void tsDoubleClickAtUntil(const wxPoint& screenPosition, const std::string& what,
                          const std::function<bool()>& condition);

// Runs a program found in PATH with these arguments (no shell) until it ends: its exit status, -1 if it did not run.
// What it writes to standard output goes to *pOutput.
int tsRunProgram(const std::initializer_list<std::string>& arguments, std::string* pOutput = nullptr);

// A picture of the whole screen as it is now, and one that is written to a PNG file. What the toolkit has still to
// paint is not in it.
wxImage tsPictureOfScreen();
bool tsWritePicture(const wxRect& screenRect, const std::string& fileName);

// A picture of the whole screen once all windows have been painted as they now stand, and nothing moves any more.
wxImage tsPictureAtRest();

#endif
