#include "TemporaryFolder.h"

#include "host/hoDocumentArguments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> documents(const std::vector<std::string>& arguments, const std::string& program)
{
    std::vector<gtString> given;
    for (const std::string& argument : arguments)
    {
        given.emplace_back(argument.c_str());
    }
    std::vector<std::string> found;
    for (const gtString& document : hoDocumentArguments(given, program.c_str()))
    {
        found.emplace_back(document.asCharArray());
    }
    return found;
}
}  // namespace

TEST(DocumentArguments, FollowTheProgramsName)
{
    EXPECT_THAT(documents({"program", "b", "", "a"}, "/bin/program"), ElementsAre("b", "a"));
    EXPECT_THAT(documents({"program", "-x", "--help", "--"}, "/bin/program"), ElementsAre("-x", "--help", "--"));
    EXPECT_THAT(documents({"program", "--", "-x", "--"}, "/bin/program"), ElementsAre("-x", "--"));
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
