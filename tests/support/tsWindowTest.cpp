// SPDX-License-Identifier: Apache-2.0
#include "tests/support/tsWindowTest.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <iostream>
#include <list>
#include <set>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>
#include <wx/app.h>
#include <wx/clipbrd.h>
#include <wx/dialog.h>
#include <wx/evtloop.h>
#include <wx/stopwatch.h>
#include <wx/timer.h>
#include <wx/toplevel.h>

#ifdef __WXGTK__
#include <gtk/gtk.h>
#endif

namespace
{

const int pollInterval = 10;
const int pauseAfterDoubleClick = 5000;  // milliseconds

#ifdef __WXGTK__

bool isOnX11()
{
    GdkDisplay* const pDisplay = gdk_display_get_default();
    return pDisplay != nullptr && std::string(G_OBJECT_TYPE_NAME(pDisplay)) == "GdkX11Display";
}

// The window manager tells everybody which window is active a moment after that one has got the keyboard.
bool isActiveForEverybody(const wxTopLevelWindow& window)
{
    if (!isOnX11())
    {
        // Others tell nobody.
        return true;
    }
    GdkWindow* const pWindow = gtk_widget_get_window(window.GetHandle());
    G_GNUC_BEGIN_IGNORE_DEPRECATIONS
    GdkWindow* const pActive = gdk_screen_get_active_window(gtk_widget_get_screen(window.GetHandle()));
    G_GNUC_END_IGNORE_DEPRECATIONS
    if (pActive != nullptr)
    {
        g_object_unref(pActive);
    }
    return pActive == pWindow;
}

#else

bool isOnX11()
{
    return true;
}

bool isActiveForEverybody(const wxTopLevelWindow& /*window*/)
{
    return true;
}

#endif

#ifdef __WXGTK__

// That a window has been through a whole frame, its sizes and its pixels, since this was made.
class FrameOf
{
public:
    explicit FrameOf(GtkWidget* pWindow)
        : _pWindow(GTK_WIDGET(g_object_ref(pWindow))),
          _pClock(GDK_FRAME_CLOCK(g_object_ref(gtk_widget_get_frame_clock(pWindow)))),
          _handler(g_signal_connect(_pClock, "after-paint", G_CALLBACK(onPainted), this))
    {
        gtk_widget_queue_draw(pWindow);
        gdk_frame_clock_request_phase(_pClock, GDK_FRAME_CLOCK_PHASE_AFTER_PAINT);
    }
    ~FrameOf()
    {
        g_signal_handler_disconnect(_pClock, _handler);
        g_object_unref(_pClock);
        g_object_unref(_pWindow);
    }
    FrameOf(const FrameOf&) = delete;
    FrameOf& operator=(const FrameOf&) = delete;

    // What is hidden meanwhile is painted no more.
    bool isOver() const { return _isPainted || !gtk_widget_get_mapped(_pWindow); }

private:
    static void onPainted(GdkFrameClock* /*pClock*/, FrameOf* pThis) { pThis->_isPainted = true; }

    GtkWidget* _pWindow;
    GdkFrameClock* _pClock;
    gulong _handler;
    bool _isPainted = false;
};

// Menus and the like too.
void waitForFrame()
{
    std::list<FrameOf> frames;
    GList* const pWindows = gtk_window_list_toplevels();
    for (GList* pItem = pWindows; pItem != nullptr; pItem = pItem->next)
    {
        auto* const pWindow = GTK_WIDGET(pItem->data);
        if (gtk_widget_get_mapped(pWindow))
        {
            frames.emplace_back(pWindow);
        }
    }
    g_list_free(pWindows);
    tsRunUntil(
        "the windows are painted",
        [&] { return std::all_of(frames.begin(), frames.end(), [](const FrameOf& frame) { return frame.isOver(); }); });
    gdk_display_sync(gdk_display_get_default());
}

#else

void waitForFrame()
{
    for (wxWindow* pWindow : wxTopLevelWindows)
    {
        pWindow->Refresh();
        pWindow->Update();
    }
}

#endif

class Deadline
{
public:
    Deadline() : _end(std::chrono::steady_clock::now() + std::chrono::milliseconds(tsPatience)) {}
    bool isOver() const { return std::chrono::steady_clock::now() > _end; }

private:
    std::chrono::steady_clock::time_point _end;
};

// Again and again, each time that long after the last one: a condition that takes a picture is slow, and a timer that
// is always due leaves the toolkit no time to paint.
class Timer : public wxTimer
{
public:
    explicit Timer(std::function<void()> notify) : _notify(std::move(notify)) {}
    void begin()
    {
        _isWanted = true;
        StartOnce(pollInterval);
    }
    void end()
    {
        _isWanted = false;
        Stop();
    }
    void Notify() override
    {
        _notify();
        if (_isWanted)
        {
            StartOnce(pollInterval);
        }
    }

private:
    std::function<void()> _notify;
    bool _isWanted = false;
};

std::set<wxDialog*> modalDialogs()
{
    std::set<wxDialog*> dialogs;
    for (wxWindow* pWindow : wxTopLevelWindows)
    {
        auto* pDialog = dynamic_cast<wxDialog*>(pWindow);
        if (pDialog != nullptr && pDialog->IsModal())
        {
            dialogs.insert(pDialog);
        }
    }
    return dialogs;
}

void endModalDialogsBut(const std::set<wxDialog*>& kept)
{
    for (wxDialog* pDialog : modalDialogs())
    {
        if (kept.count(pDialog) == 0)
        {
            pDialog->EndModal(wxID_ABORT);
        }
    }
}

void endAllLoops()
{
    endModalDialogsBut({});
    wxEventLoopBase* pLoop = wxEventLoopBase::GetActive();
    if (pLoop != nullptr && pLoop->IsRunning())
    {
        pLoop->ScheduleExit(1);
    }
}

}  // namespace

bool tsRunUntil(const std::string& what, const std::function<bool()>& condition)
{
    const Deadline deadline;
    const std::set<wxDialog*> below = modalDialogs();
    bool holds = false;
    std::exception_ptr pThrown;
    wxGUIEventLoop loop;
    Timer timer(
        [&]
        {
            // Nothing may be thrown through the toolkit's own loop.
            try
            {
                // Dialogs that came within this loop end before it does. Until then the condition is asked on, as it
                // may end them itself, and what has held once need not hold any more.
                holds = condition() || holds;
            }
            catch (...)
            {
                pThrown = std::current_exception();
            }
            if (holds || pThrown || deadline.isOver())
            {
                loop.ScheduleExit();
            }
            if (!holds && deadline.isOver())
            {
                endModalDialogsBut(below);
            }
        });
    timer.begin();
    loop.Run();
    timer.end();
    if (pThrown)
    {
        std::rethrow_exception(pThrown);
    }
    if (!holds)
    {
        ADD_FAILURE() << "waited in vain until " << what;
    }
    return holds;
}

void tsRunEvents()
{
    wxGUIEventLoop loop;
    const wxEventLoopActivator activator(&loop);
    while (loop.Pending())
    {
        loop.Dispatch();
    }
    while (loop.ProcessIdle())
    {
    }
}

class tsScript::Runner
{
public:
    struct Step
    {
        std::string what;
        std::function<bool()> condition;
        std::function<void()> action;
    };

    Runner() : _timer([this] { goOn(); }) {}

    void start()
    {
        _deadline = Deadline();
        _timer.begin();
    }

    bool isFinished() const { return _next == _steps.size() && !_isActionPending; }

    std::vector<Step> _steps;

private:
    void goOn()
    {
        if (_isActionPending)
        {
            return;
        }
        if (_next == _steps.size())
        {
            _timer.end();
            return;
        }
        const Step& step = _steps[_next];
        if (step.condition && !step.condition())
        {
            if (_deadline.isOver())
            {
                _timer.end();
                ADD_FAILURE() << "waited in vain until " << step.what;
                endAllLoops();
            }
            return;
        }
        ++_next;
        _deadline = Deadline();
        if (step.action)
        {
            // Not from within the timer: it would be silent in a loop that the action runs.
            _isActionPending = true;
            wxTheApp->CallAfter(
                [this, action = step.action]
                {
                    _isActionPending = false;
                    action();
                });
        }
    }

    Timer _timer;
    Deadline _deadline;
    std::size_t _next = 0;
    bool _isActionPending = false;
};

tsScript::tsScript() : _pRunner(new Runner) {}

tsScript::~tsScript() = default;

tsScript& tsScript::waitUntil(const std::string& what, std::function<bool()> condition)
{
    _pRunner->_steps.push_back({what, std::move(condition), nullptr});
    return *this;
}

tsScript& tsScript::perform(const std::string& what, std::function<void()> action)
{
    _pRunner->_steps.push_back({what, nullptr, std::move(action)});
    return *this;
}

void tsScript::start()
{
    _pRunner->start();
}

bool tsScript::isFinished() const
{
    return _pRunner->isFinished();
}

bool tsHasKeyboard(const wxTopLevelWindow& window)
{
    // IsActive is not const in the toolkit, and changes nothing.
    return window.IsShownOnScreen() && const_cast<wxTopLevelWindow&>(window).IsActive() && isActiveForEverybody(window);
}

wxWindow* tsTopModalDialog()
{
    wxWindow* pTop = nullptr;
    for (wxWindow* pWindow : wxTopLevelWindows)
    {
        const auto* pDialog = dynamic_cast<wxDialog*>(pWindow);
        if (pDialog != nullptr && pDialog->IsModal())
        {
            pTop = pWindow;
        }
    }
    return pTop;
}

void tsPressKeys(const std::string& keys)
{
    EXPECT_EQ(tsRunProgram({"xdotool", "key", "--clearmodifiers", keys}), 0);
}

void tsType(const std::string& text)
{
    EXPECT_EQ(tsRunProgram({"xdotool", "type", "--clearmodifiers", "--", text}), 0);
}

void tsPaste(const std::string& text)
{
    const wxClipboardLocker lock;
    // The clipboard takes it.
    EXPECT_TRUE(wxTheClipboard->SetData(new wxTextDataObject(wxString::FromUTF8(text))));
    tsPressKeys("ctrl+v");
}

void tsClick(const wxWindow& window)
{
    const wxRect rect = window.GetScreenRect();
    tsClickAt(rect.GetPosition() + wxPoint(rect.width / 2, rect.height / 2));
}

void tsClickAt(const wxPoint& screenPosition)
{
    // Not told to wait for the mouse to move: it may be there already, and the server keeps the order by itself.
    EXPECT_EQ(tsRunProgram({"xdotool", "mousemove", std::to_string(screenPosition.x), std::to_string(screenPosition.y),
                            "click", "1"}),
              0);
}

void tsDoubleClickAtUntil(const wxPoint& screenPosition, const std::string& what,
                          const std::function<bool()>& condition)
{
    std::unique_ptr<wxStopWatch> pSinceClicks;
    tsRunUntil(what,
               [&]
               {
                   const bool holds = condition();
                   if (!holds && (!pSinceClicks || pSinceClicks->Time() > pauseAfterDoubleClick))
                   {
                       EXPECT_EQ(tsRunProgram({"xdotool", "mousemove", std::to_string(screenPosition.x),
                                               std::to_string(screenPosition.y), "click", "--repeat", "2", "--delay",
                                               "50", "1"}),
                                 0);
                       pSinceClicks = std::make_unique<wxStopWatch>();
                   }
                   return holds;
               });
}

int tsRunProgram(const std::initializer_list<std::string>& arguments, std::string* pOutput)
{
    std::vector<std::string> texts(arguments);
    if (!isOnX11() && std::set<std::string>{"xdotool", "import", "xprop", "wmctrl"}.count(texts[0]) > 0)
    {
        // It would fail again and again, and the test wait for what it does until the end of its time.
        std::cerr << "this test runs " << texts[0] << ", which takes X11\n";
        std::_Exit(1);
    }
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts)
    {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);

    // Not for programs that other threads start meanwhile: the end of this one's output would not be seen.
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
    {
        return -1;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, ends[0]);
    posix_spawn_file_actions_addclose(&actions, ends[1]);
    pid_t child = -1;
    const int error = posix_spawnp(&child, pointers[0], &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);

    char buffer[4096];
    ssize_t amount = 0;
    while (error == 0 && ((amount = read(ends[0], buffer, sizeof(buffer))) > 0 || (amount < 0 && errno == EINTR)))
    {
        if (pOutput != nullptr && amount > 0)
        {
            pOutput->append(buffer, static_cast<std::size_t>(amount));
        }
    }
    close(ends[0]);
    int status = 0;
    if (error != 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status))
    {
        return -1;
    }
    return WEXITSTATUS(status);
}

wxImage tsPictureOfScreen()
{
    // A file of this process alone: a pipe would have to be emptied while the camera waits.
    char name[] = "/tmp/countersign-picture-XXXXXX.png";
    const int file = mkstemps(name, 4);
    if (file < 0)
    {
        return wxImage();
    }
    close(file);
    wxImage picture;
    if (tsRunProgram({"import", "-silent", "-window", "root", name}) == 0)
    {
        if (wxImage::FindHandler(wxBITMAP_TYPE_PNG) == nullptr)
        {
            wxImage::AddHandler(new wxPNGHandler);
        }
        picture.LoadFile(wxString::FromUTF8(name), wxBITMAP_TYPE_PNG);
    }
    static_cast<void>(std::remove(name));
    return picture;
}

wxImage tsPictureAtRest()
{
    wxImage last;
    tsRunUntil("nothing moves on the screen",
               [&]
               {
                   // A busy program may take two equal pictures before it paints the first time.
                   tsRunEvents();
                   waitForFrame();
                   const wxImage now = tsPictureOfScreen();
                   const bool isAtRest =
                       last.IsOk() && now.IsOk() && last.GetSize() == now.GetSize() &&
                       std::equal(now.GetData(), now.GetData() + 3 * now.GetWidth() * now.GetHeight(), last.GetData());
                   last = now;
                   return isAtRest;
               });
    return last;
}

bool tsWritePicture(const wxRect& screenRect, const std::string& fileName)
{
    const wxImage picture = tsPictureOfScreen();
    if (!picture.IsOk())
    {
        return false;
    }
    const wxRect inside = wxRect(picture.GetSize()).Intersect(screenRect);
    return picture.GetSubImage(inside).SaveFile(wxString::FromUTF8(fileName), wxBITMAP_TYPE_PNG);
}
