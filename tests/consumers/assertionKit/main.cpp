// SPDX-License-Identifier: Apache-2.0
// An outside program with a window of its own on the installed package: switches the assertion kit on, fails an
// assertion of each kind, and prints the report. The test compares it.
#include <cstdio>
#include <memory>
#include <stdexcept>

#include <wx/app.h>
#include <wx/frame.h>
#include <wx/timer.h>

#include "assertionHandling/ahAssertDialog.h"
#include "assertionReporting/arAssertionKit.h"
#include "assertionReporting/arAssertionReport.h"
#include "platform/baseTools/gtAssert.h"

class Application : public wxApp
{
public:
    bool OnInit() override
    {
        _pKit = std::make_unique<arAssertionKit>();
        _pKit->setAsking(true);
        _pKit->bridgeToolkit();

        auto* pFrame = new wxFrame(nullptr, wxID_ANY, "window");
        pFrame->Bind(wxEVT_CLOSE_WINDOW, [](wxCloseEvent&) { throw std::runtime_error("from a handler"); });
        // The user who answers the dialog.
        _answer.Bind(wxEVT_TIMER, [](wxTimerEvent&) { answer(); });
        _answer.Start(50);
        CallAfter([pFrame] { pFrame->Close(); });
        CallAfter([pFrame] { pFrame->Destroy(); });
        return true;
    }

    int OnExit() override
    {
        _answer.Stop();
        // The main loop is over, and with it the time of dialogs.
        GT_ASSERT_EX(1 + 1 == 3, "a check");
        wxCHECK_MSG(1 + 1 == 3, print(), "the toolkit's check");
        return 1;
    }

private:
    int print()
    {
        for (const arAssertionRow& row : _pKit->report()->rows())
        {
            std::printf("%s: %s\n", row._function.asCharArray(), row._message.asCharArray());
        }
        _pKit.reset();
        return 0;
    }

    static void answer()
    {
        for (wxWindow* pWindow : wxTopLevelWindows)
        {
            auto* pDialog = dynamic_cast<ahAssertDialog*>(pWindow);
            if (pDialog != nullptr && pDialog->IsModal())
            {
                pDialog->EndModal(AH_IGNORE_BUTTON_ID);
            }
        }
    }

    std::unique_ptr<arAssertionKit> _pKit;
    wxTimer _answer;
};

wxIMPLEMENT_APP(Application);
