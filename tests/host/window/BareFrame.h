// SPDX-License-Identifier: Apache-2.0
// A frame without anything of the main window's, for controllers to be tested in.
#ifndef COUNTERSIGN_TESTS_HOST_BARE_FRAME_H
#define COUNTERSIGN_TESTS_HOST_BARE_FRAME_H

#include "tests/support/TemporaryFolder.h"
#include "tests/support/tsWindowTest.h"

#include <gtest/gtest.h>
#include <wx/frame.h>
#include <wx/sizer.h>

class BareFrame : public testing::Test
{
protected:
    void SetUp() override
    {
        _pFrame = new wxFrame(nullptr, wxID_ANY, "bare", wxDefaultPosition, wxSize(700, 400));
        _pFrame->SetSizer(new wxBoxSizer(wxVERTICAL));
    }
    void TearDown() override
    {
        delete _pFrame;
        tsRunEvents();
    }

    // Puts the window into the frame and shows that.
    void showWith(wxWindow* pContents)
    {
        _pFrame->GetSizer()->Add(pContents, wxSizerFlags(1).Expand());
        _pFrame->Layout();
        _pFrame->Show();
        tsRunUntil("the frame has the keyboard", [this] { return tsHasKeyboard(*_pFrame); });
    }

    const TemporaryFolder _folder;
    wxFrame* _pFrame = nullptr;
};

#endif
