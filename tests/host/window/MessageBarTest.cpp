// SPDX-License-Identifier: Apache-2.0
// Which message comes first, and what becomes of the others.
#include "tests/host/Tooltip.h"
#include "tests/host/window/BareFrame.h"

#include "host/messages/hoMessages.h"
#include "host/window/hoCommands.h"
#include "host/window/hoMessageBar.h"

#include <wx/infobar.h>
#include <wx/panel.h>

namespace
{
class MessageBar : public BareFrame
{
protected:
    wxInfoBar* nativeBar() const
    {
        for (wxWindow* pChild : _pFrame->GetChildren())
        {
            if (auto* pBar = dynamic_cast<wxInfoBar*>(pChild))
            {
                return pBar;
            }
        }
        return nullptr;
    }
};
}  // namespace

TEST_F(MessageBar, IsNotMadeWithoutAMessage)
{
    showWith(new wxPanel(_pFrame));
    hoMessageBar bar(*_pFrame);
    bar.show();
    EXPECT_EQ(nativeBar(), nullptr);
    EXPECT_TRUE(bar.refusalText().empty());
}

TEST_F(MessageBar, ComesAndGoesAboveTheRest)
{
    auto* pPanel = new wxPanel(_pFrame);
    showWith(pPanel);
    hoMessageBar bar(*_pFrame);
    bar.setResult({"1 document: 1 signed.", "details", hoSummaryTone::AllWell});
    EXPECT_EQ(nativeBar(), nullptr) << "only show() shows";
    bar.show();
    ASSERT_NE(nativeBar(), nullptr);
    const wxInfoBar& native = *nativeBar();
    tsRunUntil("the bar is shown", [&] { return native.IsShownOnScreen(); });
    EXPECT_EQ(_pFrame->GetSizer()->GetItem(std::size_t(0))->GetWindow(), &native);
    EXPECT_EQ(_pFrame->GetSizer()->GetItem(std::size_t(1))->GetWindow(), pPanel);

    bar.dismiss();
    EXPECT_FALSE(native.IsShown());
    EXPECT_TRUE(bar.result()._line.empty());
}

TEST_F(MessageBar, CountsDocumentsThatCouldNotBeOpened)
{
    hoMessageBar bar(*_pFrame);
    bar.addRefusal("/a/folder", osFileProblem::IsFolder);
    EXPECT_EQ(bar.refusalText().utf8_string(),
              "Cannot open \u201cfolder\u201d: " + hoFileReason(osFileProblem::IsFolder).asStdString() + ".");
    bar.addRefusal("/a/other", osFileProblem::NotThere);
    EXPECT_EQ(bar.refusalText(), "2 documents could not be opened.");
    bar.clear();
    EXPECT_TRUE(bar.refusalText().empty());
}

TEST_F(MessageBar, ForgetsEveryKindOfMessage)
{
    hoMessageBar bar(*_pFrame);
    bar.addRefusal("/a", osFileProblem::NotThere);
    bar.setResult({"result", "", hoSummaryTone::NotWell});
    bar.setKeyWarning({"warning", "", hoSummaryTone::NotWell});
    EXPECT_EQ(bar.keyWarning()._line, "warning");
    bar.clear();
    EXPECT_TRUE(bar.refusalText().empty());
    EXPECT_TRUE(bar.result()._line.empty());
    EXPECT_TRUE(bar.keyWarning()._line.empty());
}

TEST_F(MessageBar, ShowsTheFirstOfSeveralMessages)
{
    showWith(new wxPanel(_pFrame));
    hoMessageBar bar(*_pFrame);
    const auto expectShown = [&](const std::string& text)
    {
        bar.show();
        ASSERT_NE(nativeBar(), nullptr);
        EXPECT_NE(textOfLabels(nativeBar()->GetHandle()).find(text), std::string::npos)
            << textOfLabels(nativeBar()->GetHandle());
    };
    bar.setOffer("an offer", "Load", {});
    bar.setKeyWarning({"a warning", "", hoSummaryTone::NotWell});
    expectShown("a warning");
    bar.setResult({"a result", "", hoSummaryTone::AllWell});
    expectShown("a result");
    bar.addRefusal("/a", osFileProblem::NotThere);
    expectShown("Cannot open");
    bar.clear();
    expectShown("an offer");
}

TEST_F(MessageBar, ShowsAnOfferWhereThereIsNothingElse)
{
    showWith(new wxPanel(_pFrame));
    hoMessageBar bar(*_pFrame);
    bool isAccepted = false;
    bar.setOffer("A key?", "Load a&b", [&] { isAccepted = true; });
    bar.show();
    ASSERT_NE(nativeBar(), nullptr);
    const auto buttons = [this] { return std::vector<int>{nativeBar()->GetButtonId(0), nativeBar()->GetButtonId(1)}; };
    EXPECT_EQ(nativeBar()->GetButtonCount(), 2U);
    EXPECT_EQ(buttons(), (std::vector<int>{ID_ACCEPT_OFFER, wxID_CLOSE}));
    bar.setResult({"1 document: 1 signed.", "details", hoSummaryTone::AllWell});
    bar.show();
    EXPECT_EQ(nativeBar()->GetButtonCount(), 2U);
    EXPECT_EQ(buttons(), (std::vector<int>{ID_SHOW_DETAILS, wxID_CLOSE}));
    bar.dismiss();
    EXPECT_EQ(buttons(), (std::vector<int>{ID_ACCEPT_OFFER, wxID_CLOSE})) << "the offer is back";
    EXPECT_FALSE(isAccepted);
    wxCommandEvent click(wxEVT_BUTTON, ID_ACCEPT_OFFER);
    nativeBar()->HandleWindowEvent(click);
    EXPECT_FALSE(isAccepted) << "not in the button's own event";
    tsRunUntil("it is accepted", [&] { return isAccepted; });
    EXPECT_FALSE(nativeBar()->IsShown());
    bar.setOffer("A key?", "Load", {});
    bar.show();
    bar.dismiss();
    EXPECT_FALSE(nativeBar()->IsShown());
    EXPECT_EQ(bar.offer(), "");
}
