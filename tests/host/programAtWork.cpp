// SPDX-License-Identifier: Apache-2.0
// The application with its real window, at work from its start on: it signs and tests its documents again and again,
// for the tests to end it in the middle. It writes a line to standard output when it begins.
//
//   program_at_work KEY-FILE work|question|progress|lost|exit DOCUMENT...
//
// work: signs, tests, removes the signatures, and so on. question: asks whether to replace signatures, which nobody
// answers. progress: signs until it is ended, which takes documents that are large enough. lost: like work, and the
// signal SIGUSR1 cuts its connection to the display. exit: like work, and the signal SIGUSR1 fails an assertion, whose
// dialog is answered with Exit.
#include "app/ApplicationShell.h"
#include "assertionHandling/ahAssertDialog.h"
#include "host/MainFrame.h"
#include "host/keys/hoKeyFile.h"
#include "platform/baseTools/gtAssert.h"

#include <wx/init.h>
#include <wx/menu.h>
#include <wx/timer.h>

#include <csignal>
#include <cstdio>
#include <string>
#include <sys/socket.h>
#include <unistd.h>

// The last: it defines short words.
#include <gdk/gdkx.h>

namespace
{
const char* keyFile = nullptr;
int displayConnection = -1;
std::string mode;
volatile std::sig_atomic_t isExitWanted = 0;

class AtWork : public ApplicationShell
{
public:
    bool OnInit() override
    {
        if (!ApplicationShell::OnInit())
        {
            return false;
        }
        hoKeyFileFacts facts;
        hoKeyRing keys;
        keys._private._pKey = hoLoadKeyFile(keyFile, nullptr, facts);
        _pMainFrame->setKeys(keys);
        if (mode == "lost")
        {
            displayConnection = ConnectionNumber(gdk_x11_get_default_xdisplay());
            static_cast<void>(std::signal(SIGUSR1, [](int) { shutdown(displayConnection, SHUT_RDWR); }));
        }
        if (mode == "exit")
        {
            static_cast<void>(std::signal(SIGUSR1, [](int) { isExitWanted = 1; }));
            _pMainFrame->setAssertionDialogs(true);
        }
        _timer.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { goOn(); });
        _timer.Start(1);
        return true;
    }

private:
    void goOn()
    {
        if (isExitWanted == 1)
        {
            isExitWanted = 2;
            // Not from within the timer, which would be silent in the dialog's loop.
            CallAfter([] { GT_ASSERT(isExitWanted == 0); });
        }
        if (auto* pDialog = isExitWanted == 2 ? assertDialog() : nullptr)
        {
            pDialog->EndModal(AH_EXIT_BUTTON_ID);
        }
        const hoDocumentList& documents = _pMainFrame->documents();
        if (documents.isEmpty() || _pMainFrame->isAtWork())
        {
            return;
        }
        if (!_isAnnounced)
        {
            _isAnnounced = true;
            static_cast<void>(std::puts("at work"));
            static_cast<void>(std::fflush(stdout));
        }
        if (mode == "question")
        {
            _timer.Stop();
        }
        if (isSigningAndTesting() && !_isSigned)
        {
            for (std::size_t i = 0; i < documents.size(); ++i)
            {
                unlink(hoSignaturePath(documents[i]._path).asCharArray());
            }
        }
        choose(isSigningAndTesting() && _isSigned ? "Test all" : "Sign all");
        _isSigned = !_isSigned;
    }

    static bool isSigningAndTesting() { return mode == "work" || mode == "lost" || mode == "exit"; }

    static ahAssertDialog* assertDialog()
    {
        for (wxWindow* pWindow : wxTopLevelWindows)
        {
            auto* pDialog = dynamic_cast<ahAssertDialog*>(pWindow);
            if (pDialog != nullptr && pDialog->IsModal())
            {
                return pDialog;
            }
        }
        return nullptr;
    }

    void choose(const char* pItem)
    {
        wxCommandEvent event(wxEVT_MENU, _pMainFrame->GetMenuBar()->FindMenuItem("Signature", pItem));
        _pMainFrame->ProcessWindowEvent(event);
    }

    wxTimer _timer;
    bool _isSigned = false;
    bool _isAnnounced = false;
};

wxAppConsole* makeApplication()
{
    return new AtWork;
}
}  // namespace

int main(int argc, char** argv)
{
    if (argc < 3)
    {
        return 2;
    }
    keyFile = argv[1];
    mode = argv[2];
    argv[2] = argv[0];
    wxAppConsole::SetInitializerFunction(&makeApplication);
    argc -= 2;
    return wxEntry(argc, argv + 2);
}
