// SPDX-License-Identifier: Apache-2.0
// A window with a button that fails an assertion, and the assertion kit. At its end the program prints what has failed.
#include <iostream>
#include <memory>

#include <wx/app.h>
#include <wx/button.h>
#include <wx/frame.h>
#include <wx/sizer.h>

#include "assertionReporting/arAssertionKit.h"
#include "assertionReporting/arAssertionReport.h"
#include "assertionReporting/arAssertionReportText.h"
#include "platform/baseTools/gtAssert.h"

class Application : public wxApp
{
public:
    bool OnInit() override
    {
        _pKit = std::make_unique<arAssertionKit>();
        _pKit->setAsking(true);
        _pKit->bridgeToolkit();

        auto* pFrame = new wxFrame(nullptr, wxID_ANY, "Assertion kit example");
        auto* pFail = new wxButton(pFrame, wxID_ANY, "&Fail");
        pFail->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { press(); });
        auto* pSizer = new wxBoxSizer(wxVERTICAL);
        pSizer->Add(pFail, wxSizerFlags(1).Expand().Border(wxALL, 40));
        pFrame->SetSizerAndFit(pSizer);
        pFail->SetFocus();
        pFrame->Show();
        return true;
    }

    int OnExit() override
    {
        for (const arAssertionRow& row : _pKit->report()->rows())
        {
            std::cout << row._function << ": " << row._message << ", " << row._count << " times, "
                      << arDecisionWord(row._decision) << '\n';
        }
        _pKit.reset();
        return 0;
    }

private:
    void press()
    {
        ++_presses;
        GT_ASSERT(_presses == 0);
    }

    std::unique_ptr<arAssertionKit> _pKit;
    int _presses = 0;
};

wxIMPLEMENT_APP(Application);
