// SPDX-License-Identifier: Apache-2.0
#include "host/desktop/hoApplicationArguments.h"

#include "host/documents/hoDocumentArguments.h"
#include "platform/toolkit/gtTextConversion.h"

#include <gtest/gtest.h>
#include <wx/app.h>

#include <filesystem>
#include <vector>

namespace
{
using Paths = std::vector<gtString>;

// The application object as if it had been started with other arguments.
class ApplicationArguments : public testing::Test
{
protected:
    ApplicationArguments() : _before(wxTheApp->argv.GetArguments()) {}
    ~ApplicationArguments() override { start(std::vector<wxString>(_before.begin(), _before.end())); }

    static void start(const std::vector<wxString>& arguments)
    {
        std::vector<const wchar_t*> pointers;
        for (const wxString& argument : arguments)
        {
            pointers.push_back(argument.wc_str());
        }
        wxTheApp->argv.Init(static_cast<int>(pointers.size()), pointers.data());
    }

private:
    const wxArrayString _before;
};
}  // namespace

TEST_F(ApplicationArguments, AreDocumentsBehindTheProgram)
{
    start({"program", "a", "b c"});
    EXPECT_EQ(hoApplicationDocuments(), (Paths{"a", "b c"}));
    start({"program"});
    EXPECT_TRUE(hoApplicationDocuments().empty());
    start({});
    EXPECT_TRUE(hoApplicationDocuments().empty());
}

TEST_F(ApplicationArguments, CanBeADocumentThatTheDesktopAskedFor)
{
    const gtString path("/folder/\xff \xc3\xa9");
    start({gtPathTextFromBytes(path)});
    EXPECT_EQ(hoApplicationDocuments(), Paths{path});
}

TEST_F(ApplicationArguments, DoNotHoldTheProgramItself)
{
    start({gtPathTextFromBytes(hoApplicationPath())});
    EXPECT_TRUE(hoApplicationDocuments().empty());
    const Paths ofProcess = hoProcessArguments();
    ASSERT_FALSE(ofProcess.empty());
    start({gtPathTextFromBytes(ofProcess[0])});
    EXPECT_TRUE(hoApplicationDocuments().empty());
}

TEST_F(ApplicationArguments, AreNoneWithoutAnApplication)
{
    wxAppConsole* const pApp = wxAppConsole::GetInstance();
    wxAppConsole::SetInstance(nullptr);
    EXPECT_TRUE(hoApplicationDocuments().empty());
    wxAppConsole::SetInstance(pApp);
}

TEST_F(ApplicationArguments, KnowWhereTheProgramIs)
{
    EXPECT_EQ(hoApplicationPath().asStdString(), std::filesystem::read_symlink("/proc/self/exe").string());
}
