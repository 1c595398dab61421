// SPDX-License-Identifier: Apache-2.0
// The view of the documents, and what it reports.
#include "tests/host/DocumentRows.h"
#include "tests/host/window/BareFrame.h"

#include "host/window/hoDocumentsView.h"

#include <gmock/gmock.h>

namespace
{
using testing::ElementsAre;
using testing::IsEmpty;

class DocumentsView : public BareFrame
{
protected:
    void SetUp() override
    {
        BareFrame::SetUp();
        _pView = new hoDocumentsView(_pFrame,
                                     {[this](const gtString& path, const osFileResult&) { _refused.push_back(path); },
                                      [this](const hoDocument& document) { _opened.push_back(document._path); },
                                      [this] { ++_changes; }, [this] { ++_outdated; }});
        showWith(_pView);
    }

    hoDocumentListCtrl* list() const { return findDocumentRows(_pView); }
    std::vector<gtString> selected() const
    {
        std::vector<gtString> paths;
        const std::vector<hoDocument> documents = _pView->documentsToProcess(false);
        for (const hoDocument& document : documents)
        {
            paths.push_back(document._path);
        }
        return _pView->amountSelected() == 0 ? std::vector<gtString>() : paths;
    }

    hoDocumentsView* _pView = nullptr;
    std::vector<gtString> _refused;
    std::vector<gtString> _opened;
    int _changes = 0;
    int _outdated = 0;
};
}  // namespace

TEST_F(DocumentsView, HasNoListWithoutDocuments)
{
    EXPECT_EQ(list(), nullptr);
    EXPECT_THAT(_pView->columnWidths(), IsEmpty());
    _pView->select({});
    _pView->selectAll();
    _pView->showChanges();
    EXPECT_EQ(list(), nullptr);
    EXPECT_EQ(_pView->copySelectedPaths(), 0U);
}

TEST_F(DocumentsView, ReportsWhatItOpensAndWhatItCannot)
{
    const gtString a = _folder.write("a", "text");
    const gtString missing = _folder.path("missing");
    _pView->openAndSelect({a, missing});
    EXPECT_THAT(_opened, ElementsAre(a));
    EXPECT_THAT(_refused, ElementsAre(missing));
    EXPECT_GE(_changes, 2);
    EXPECT_THAT(selected(), ElementsAre(a));
    EXPECT_EQ(_pView->documents().size(), 1U);
}

TEST_F(DocumentsView, SelectsWhatWasAskedForWhenTheEventIsDealtWith)
{
    const gtString a = _folder.write("a", "text");
    const gtString b = _folder.write("b", "text");
    _pView->open(a);
    _pView->openAskedFor(b);
    EXPECT_THAT(selected(), IsEmpty());
    _pView->showChanges();
    EXPECT_THAT(selected(), ElementsAre(b));
}

TEST_F(DocumentsView, SelectsTheNextDocumentAfterClosingOne)
{
    const gtString a = _folder.write("a", "text");
    const gtString b = _folder.write("b", "text");
    const gtString c = _folder.write("c", "text");
    _pView->openAndSelect({a, b, c});
    _pView->select({1});
    _pView->closeSelected();
    EXPECT_THAT(selected(), ElementsAre(c));
    EXPECT_EQ(_pView->documents().size(), 2U);
    _pView->closeAll();
    _pView->showChanges();
    EXPECT_TRUE(_pView->documents().isEmpty());
    EXPECT_EQ(_pView->GetSelection(), 0);
}

TEST_F(DocumentsView, GivesNoDocumentWhenNoneIsSelected)
{
    _pView->open(_folder.write("a", "text"));
    _pView->open(_folder.write("b", "text"));
    EXPECT_EQ(_pView->documentsToProcess(false).size(), 0U);
    EXPECT_EQ(_pView->documentsToProcess(true).size(), 2U);
    _pView->select({1});
    EXPECT_EQ(_pView->documentsToProcess(false).size(), 1U);
    EXPECT_EQ(_pView->documentsToProcess(true).size(), 2U);
}

TEST_F(DocumentsView, TellsThatAllAreSelected)
{
    _pView->openAndSelect({_folder.write("a", "text"), _folder.write("b", "text")});
    _pView->select({0});
    tsRunEvents();
    const int before = _changes;
    _pView->selectAll();
    EXPECT_EQ(_pView->amountSelected(), 2U);
    EXPECT_GT(_changes, before);
}

TEST_F(DocumentsView, StaysPaintedWhileOutcomesCome)
{
    for (const char* pName : {"a", "b", "c"})
    {
        _pView->open(_folder.write(pName, "text"));
    }
    _pView->showChanges();
    const auto ink = [this]
    {
        const wxImage picture = tsPictureOfScreen();
        const wxRect area = list()->GetScreenRect();
        int amount = 0;
        // Below the column heads.
        for (int y = area.GetTop() + 40; picture.IsOk() && y < area.GetBottom(); ++y)
        {
            for (int x = area.GetLeft(); x < area.GetRight(); ++x)
            {
                amount += picture.GetGreen(x, y) < 128 ? 1 : 0;
            }
        }
        return amount;
    };
    tsRunUntil("the list has the size of its page", [this] { return list()->GetSize() == _pView->GetClientSize(); });
    tsRunEvents();
    _pView->Update();
    // Painted before the program is idle.
    _pView->showOutcomes({});
    list()->Refresh();
    list()->Update();
    EXPECT_GT(ink(), 100);
}

TEST_F(DocumentsView, TellsWhenAVerdictNoLongerHolds)
{
    _pView->open(_folder.write("a", "text"));
    _pView->refreshDocuments();
    EXPECT_EQ(_outdated, 0);
    _folder.write("a.sig", "00");
    _pView->refreshDocuments();
    EXPECT_EQ(_outdated, 1);
}

TEST_F(DocumentsView, LooksAtFilesBeforeTheyAreWorkedOn)
{
    _pView->open(_folder.write("a", "text"));
    _folder.write("a", "a longer text");
    const std::vector<hoDocument> documents = _pView->documentsToProcess(true);
    ASSERT_EQ(documents.size(), 1U);
    EXPECT_EQ(documents[0]._facts._size, 13U);
}

TEST_F(DocumentsView, ShowsTheIconAndTheWordsOfEachState)
{
    using State = hoDocumentState;
    enum Colour
    {
        Blue,
        Green,
        Red,
        Amber,
        Grey  // none of the others
    };
    struct Face
    {
        const char* _file;
        const char* _words;
        State _state;
        Colour _colour;
    };
    const Face faces[] = {{"01", "Not signed", State::NotSigned, Grey},
                          {"02", "Not tested", State::NotTested, Grey},
                          {"03", "Signed by me", State::SignedByMe, Blue},
                          {"04", "Good", State::Good, Green},
                          {"05", "Weak", State::Weak, Amber},
                          {"06", "Bad", State::Bad, Red},
                          {"07", "Another key", State::AnotherKey, Grey},
                          {"08", "Not a signature", State::NotASignature, Grey},
                          {"09", "Changed since", State::Changed, Amber},
                          {"10", "Cannot be read", State::CannotBeRead, Grey},
                          {"11", "Missing", State::Missing, Grey}};
    const wxColour colours[] = {wxColour(0x1F, 0x5F, 0xBF), wxColour(0x1B, 0x7F, 0x3B), wxColour(0xC0, 0x1C, 0x28),
                                wxColour(0xB3, 0x6B, 0x00)};
    std::vector<hoSigningOutcome> outcomes;
    for (const Face& face : faces)
    {
        const std::size_t row = _pView->open(_folder.write(face._file, "text"));
        hoSigningOutcome& outcome = outcomes.emplace_back();
        outcome._path = _pView->documents()[row]._path;
        outcome._verdict._state = face._state;
        outcome._verdict._file = _pView->documents()[row]._facts;
    }
    _pView->showChanges();
    _pView->forgetStates(true);
    _pView->showOutcomes(outcomes);
    _folder.write("02.sig", "00");
    std::filesystem::remove(_folder.path("10"));
    std::filesystem::create_directory(_folder.path("10"));
    std::filesystem::remove(_folder.path("11"));
    _pView->refreshDocuments();
    tsRunUntil("the rows are painted", [this]
               { return list()->GetSize() == _pView->GetClientSize() && !placeOfCell(*list(), 10, 1).IsEmpty(); });
    // Away from the rows.
    tsRunProgram({"xdotool", "mousemove", "1270", "890"});
    // How many of the picture's pixels have which of the colours.
    const auto amounts = [&](const wxImage& screen, int row)
    {
        const wxRect cell = placeOfCell(*list(), row, 1);
        std::vector<int> found(std::size(colours), 0);
        for (int y = cell.GetTop(); y <= cell.GetBottom(); ++y)
        {
            for (int x = cell.GetLeft(); x < cell.GetLeft() + 24; ++x)
            {
                for (std::size_t i = 0; i < std::size(colours); ++i)
                {
                    const bool isIt = std::abs(screen.GetRed(x, y) - colours[i].Red()) < 10 &&
                                      std::abs(screen.GetGreen(x, y) - colours[i].Green()) < 10 &&
                                      std::abs(screen.GetBlue(x, y) - colours[i].Blue()) < 10;
                    found[i] += isIt ? 1 : 0;
                }
            }
        }
        return found;
    };
    tsRunUntil("they can be read",
               [&]
               {
                   const wxImage now = tsPictureOfScreen();
                   const wxRect cell = placeOfCell(*list(), 10, 1);
                   int dark = 0;
                   for (int x = cell.GetLeft(); x < cell.GetRight(); ++x)
                   {
                       dark += now.GetGreen(x, cell.GetTop() + cell.GetHeight() / 2) < 100 ? 1 : 0;
                   }
                   return dark > 5;
               });
    const wxImage screen = tsPictureOfScreen();
    for (int row = 0; row < static_cast<int>(std::size(faces)); ++row)
    {
        const Face& face = faces[row];
        EXPECT_EQ(textOfRow(*list(), row, 1), face._words);
        const std::vector<int> found = amounts(screen, row);
        for (std::size_t i = 0; i < found.size(); ++i)
        {
            const bool isExpected = static_cast<std::size_t>(face._colour) == i;
            EXPECT_EQ(found[i] > 20, isExpected) << face._words << ", colour " << i << ": " << found[i];
        }
    }
}

TEST_F(DocumentsView, OpensTheDocumentOfASignatureFile)
{
    const gtString a = _folder.write("a", "text");
    _pView->openAndSelect({gtString(_folder.write("a.sig", "00"))});
    EXPECT_THAT(selected(), ElementsAre(a));
}

TEST_F(DocumentsView, KeepsColumnWidthsForTheList)
{
    _pView->setColumnWidths({123, 0, 77});
    _pView->open(_folder.write("a", "text"));
    ASSERT_GE(_pView->columnWidths().size(), 3U);
    EXPECT_EQ(_pView->columnWidths()[0], 123);
    EXPECT_GT(_pView->columnWidths()[1], 0);
    EXPECT_EQ(_pView->columnWidths()[2], 77);
}

TEST_F(DocumentsView, NoticesADocumentThatIsGone)
{
    _pView->open(_folder.write("a", "text"));
    _pView->showChanges();
    const int before = _changes;
    std::filesystem::remove(_folder.path("a"));
    _pView->refreshDocuments();
    EXPECT_EQ(_pView->documents()[0]._verdict._state, hoDocumentState::Missing);
    EXPECT_EQ(_changes, before + 1);
}
