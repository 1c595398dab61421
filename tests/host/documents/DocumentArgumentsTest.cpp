// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TemporaryFolder.h"

#include "host/documents/hoDocumentArguments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<gtString> texts(const std::vector<std::string>& plainTexts)
{
    std::vector<gtString> found;
    for (const std::string& text : plainTexts)
    {
        found.emplace_back(text.c_str());
    }
    return found;
}

std::vector<std::string> plain(const std::vector<gtString>& texts)
{
    std::vector<std::string> found;
    for (const gtString& text : texts)
    {
        found.emplace_back(text.asCharArray());
    }
    return found;
}

std::vector<std::string> documents(const std::vector<std::string>& arguments, const std::string& program)
{
    return plain(hoDocumentArguments(texts(arguments), program.c_str()));
}

std::vector<std::string> withLost(const std::vector<std::string>& toolkits, const std::vector<std::string>& process)
{
    const auto isLost = [](const gtString& argument) { return argument.asCharArray()[0] == '\xff'; };
    return plain(hoRestoreLostArguments(texts(toolkits), texts(process), isLost));
}
}  // namespace

TEST(DocumentArguments, FollowTheProgramsName)
{
    EXPECT_THAT(documents({"program", "b", "", "a"}, "/bin/program"), ElementsAre("b", "a"));
    EXPECT_THAT(documents({"program", "-x", "--help", "--"}, "/bin/program"), ElementsAre("-x", "--help", "--"));
    EXPECT_THAT(documents({}, "/bin/program"), IsEmpty());
    EXPECT_THAT(documents({"program"}, "/bin/program"), IsEmpty());
}

TEST(DocumentArguments, OneThatStandsAloneMayHaveArrivedBeforeTheWindow)
{
    const TemporaryFolder folder;
    const std::string program = folder.write("program", "");
    const std::string document = folder.write("document", "");
    std::filesystem::create_symlink("program", folder.path("short"));
    EXPECT_THAT(documents({document}, program), ElementsAre(document));
    EXPECT_THAT(documents({folder.path("missing")}, program), ElementsAre(folder.path("missing")));
    EXPECT_THAT(documents({program}, program), IsEmpty());
    EXPECT_THAT(documents({folder.path("short")}, program), IsEmpty());
    EXPECT_THAT(documents({""}, program), IsEmpty());
    EXPECT_THAT(documents({"./program"}, program), IsEmpty());
}

TEST(DocumentArguments, ThatTheToolkitDroppedComeBackInTheirPlaces)
{
    EXPECT_THAT(withLost({"p", "a", "b"}, {"p", "\3771", "a", "\3772", "b", "\3773"}),
                ElementsAre("p", "\3771", "a", "\3772", "b", "\3773"));
    EXPECT_THAT(withLost({"p", "a"}, {"p", "--toolkits-option", "\xff", "a"}), ElementsAre("p", "\xff", "a"));
    EXPECT_THAT(withLost({"p", "a"}, {"p", "a"}), ElementsAre("p", "a"));
}

TEST(DocumentArguments, ThatAreNotTheProcessesOwnStayAsTheyAre)
{
    EXPECT_THAT(withLost({"/document"}, {"p", "\xff"}), ElementsAre("/document"));
    EXPECT_THAT(withLost({"p", "a"}, {}), ElementsAre("p", "a"));
    EXPECT_THAT(withLost({"p", "b", "a"}, {"p", "a", "b"}), ElementsAre("p", "b", "a"));
}

TEST(DocumentArguments, OfTheProcessAreAsItWasStarted)
{
    const std::vector<gtString> arguments = hoProcessArguments();
    ASSERT_FALSE(arguments.empty());
    EXPECT_NE(std::string(arguments[0].asCharArray()).find("test_hostEngine"), std::string::npos);
}
