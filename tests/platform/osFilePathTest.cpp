// SPDX-License-Identifier: Apache-2.0
#include "platform/osWrappers/osFilePath.h"

#include <gtest/gtest.h>
#include <new>
#include <string>
#include <type_traits>
#include <utility>

#include "tests/support/failingAllocation.h"

namespace
{
static_assert(std::is_nothrow_move_constructible<osFilePath>::value, "");
static_assert(std::is_nothrow_move_assignable<osFilePath>::value, "");
static_assert(!std::is_convertible<gtString, osFilePath>::value, "a text is not taken for a path by accident");

std::string contents(const gtString& text)
{
    return std::string(text.asCharArray(), static_cast<std::size_t>(text.length()));
}

osFilePath pathOf(const std::string& text)
{
    return osFilePath(gtString(text.data(), static_cast<int>(text.size())));
}

struct Shape
{
    std::string path;
    std::string name;
    std::string extension;
    std::string fullName;
};

const Shape shapes[] = {
    {"/src/main.cpp", "main", "cpp", "main.cpp"},
    {"main.cpp", "main", "cpp", "main.cpp"},
    {"/src/main.window.cpp", "main.window", "cpp", "main.window.cpp"},
    {"Makefile", "Makefile", "", "Makefile"},
    {"/Makefile", "Makefile", "", "Makefile"},
    {"/a.b/Makefile", "Makefile", "", "Makefile"},
    {"a.b/c.d/e", "e", "", "e"},
    {"odd.", "odd", "", "odd."},
    {"odd..", "odd.", "", "odd.."},
    {"odd..cpp", "odd.", "cpp", "odd..cpp"},
    {".profile", ".profile", "", ".profile"},
    {"/home/me/.profile", ".profile", "", ".profile"},
    {".profile.bak", ".profile", "bak", ".profile.bak"},
    {"..a", "..a", "", "..a"},
    {"..a.b", "..a", "b", "..a.b"},
    {".", ".", "", "."},
    {"..", "..", "", ".."},
    {"...", "...", "", "..."},
    {"a/..", "..", "", ".."},
    {"", "", "", ""},
    {"/", "", "", ""},
    {"//", "", "", ""},
    {"/src/", "", "", ""},
    {"/src.d/", "", "", ""},
    {"a//b.c", "b", "c", "b.c"},
    {"./a.b", "a", "b", "a.b"},
    {"a.b c", "a", "b c", "a.b c"},
    {" . ", " ", " ", " . "},
    {"a\\b.c", "a\\b", "c", "a\\b.c"},
    {"\xff\xfe/\x80\x81.\xc3", "\x80\x81", "\xc3", "\x80\x81.\xc3"},
    {"\xc3\xa4.\xe2\x82\xac", "\xc3\xa4", "\xe2\x82\xac", "\xc3\xa4.\xe2\x82\xac"},
    {"line\nbreak.t\tt", "line\nbreak", "t\tt", "line\nbreak.t\tt"},
    {std::string("a\0b/c\0d.e\0f", 11), std::string("c\0d", 3), std::string("e\0f", 3), std::string("c\0d.e\0f", 7)},
};

TEST(osFilePath, IsTakenApart)
{
    for (const Shape& shape : shapes)
    {
        const osFilePath path = pathOf(shape.path);
        gtString name("what was there before");
        gtString extension("what was there before");
        gtString fullName("what was there before");
        path.getFileName(name);
        path.getFileExtension(extension);
        path.getFullFileName(fullName);
        EXPECT_EQ(contents(name), shape.name) << shape.path;
        EXPECT_EQ(contents(extension), shape.extension) << shape.path;
        EXPECT_EQ(contents(fullName), shape.fullName) << shape.path;
        EXPECT_EQ(contents(path.asString()), shape.path);
        EXPECT_EQ(std::string(path.asCharArray(), static_cast<std::size_t>(path.length())), shape.path);
        EXPECT_EQ(path.isEmpty(), shape.path.empty());
    }
}

TEST(osFilePath, Separators)
{
    EXPECT_EQ(osFilePath::osExtensionSeparator, '.');
    EXPECT_EQ(osFilePath::osPathSeparator, '/');
    const char& reference = osFilePath::osExtensionSeparator;
    EXPECT_EQ(&reference, &osFilePath::osExtensionSeparator);
}

TEST(osFilePath, StartsEmpty)
{
    const osFilePath path;
    EXPECT_TRUE(path.isEmpty());
    EXPECT_EQ(path.length(), 0);
    EXPECT_STREQ(path.asCharArray(), "");
    EXPECT_TRUE(path == osFilePath(gtString()));
}

TEST(osFilePath, ComparesAsGiven)
{
    const osFilePath path(gtString("/a/b.c"));
    EXPECT_TRUE(path == osFilePath(gtString("/a/b.c")));
    EXPECT_FALSE(path != osFilePath(gtString("/a/b.c")));
    for (const char* pOther : {"/a//b.c", "/a/./b.c", "/A/b.c", "/a/b.c/", "a/b.c", "/a/b.", "", "/a/b.cc"})
    {
        EXPECT_FALSE(path == osFilePath(gtString(pOther))) << pOther;
        EXPECT_TRUE(path != osFilePath(gtString(pOther))) << pOther;
    }
    EXPECT_FALSE(pathOf(std::string("a\0b", 3)) == pathOf(std::string("a\0c", 3)));
}

TEST(osFilePath, IsAValue)
{
    osFilePath path(gtString("/a/b.c"));
    const osFilePath copy(path);
    osFilePath assigned;
    assigned = path;
    path = osFilePath(gtString("other"));
    EXPECT_STREQ(copy.asCharArray(), "/a/b.c");
    EXPECT_TRUE(assigned == copy);
    const osFilePath moved(std::move(assigned));
    EXPECT_TRUE(moved == copy);
}

TEST(osFilePath, AnswersMayComeFromTheSameText)
{
    gtString text("/src/main.cpp");
    osFilePath(text).getFileName(text);
    EXPECT_STREQ(text.asCharArray(), "main");
}

TEST(osFilePath, LeavesTheAnswerAloneWithoutMemory)
{
    const std::string name(100, 'n');
    const std::string extension(100, 'e');
    const osFilePath path = pathOf(name + "." + extension);
    gtString answer("kept");
    const FailingAllocation failing(0);
    EXPECT_THROW(path.getFileName(answer), std::bad_alloc);
    EXPECT_THROW(path.getFileExtension(answer), std::bad_alloc);
    EXPECT_THROW(path.getFullFileName(answer), std::bad_alloc);
    EXPECT_STREQ(answer.asCharArray(), "kept");
}
}  // namespace
