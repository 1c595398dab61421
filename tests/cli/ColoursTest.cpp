// SPDX-License-Identifier: Apache-2.0
// Colours of verdicts: on a terminal that knows them, and nowhere else.
#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <termios.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "Program.h"

namespace
{

class Colours : public Program
{
protected:
    void SetUp() override
    {
        Program::SetUp();
        for (const char* pName : {"bad", "good", "weak", "unsigned"})
        {
            _folder.write(pName, "contents");
        }
        outputOf({"sign", "-k", "private.pem", "bad", "good"});
        outputOf({"sign", "-d", "-k", "private.pem", "weak"});
        _folder.write("bad", "changed");
    }

    // What the program writes to a terminal that is its standard output and nothing else.
    std::string onTerminal(const std::vector<std::string>& arguments, const char* pTerm, const char* pNoColour) const
    {
        const int master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        EXPECT_TRUE(master >= 0 && grantpt(master) == 0 && unlockpt(master) == 0);
        // Open for as long as the program needs to begin; line ends come as they are.
        const int terminal = open(ptsname(master), O_RDWR | O_NOCTTY | O_CLOEXEC);
        struct termios mode = {};
        EXPECT_EQ(tcgetattr(terminal, &mode), 0);
        cfmakeraw(&mode);
        EXPECT_EQ(tcsetattr(terminal, TCSANOW, &mode), 0);
        tsCommand toRun = command(arguments);
        toRun._outputPath = ptsname(master);
        toRun._prepare = [pTerm, pNoColour]
        {
            unsetenv("TERM");
            unsetenv("NO_COLOR");
            if (pTerm != nullptr)
            {
                setenv("TERM", pTerm, 1);
            }
            if (pNoColour != nullptr)
            {
                setenv("NO_COLOR", pNoColour, 1);
            }
        };
        static_cast<void>(tsRun(toRun));
        close(terminal);
        // Until all that was written has come, and nobody has the terminal open.
        std::string result;
        std::array<char, 4096> buffer;
        for (ssize_t amount = 1; amount > 0;)
        {
            amount = read(master, buffer.data(), buffer.size());
            result.append(buffer.data(), amount > 0 ? static_cast<std::size_t>(amount) : 0);
        }
        close(master);
        return result;
    }

    const std::vector<std::string> _test = {"test", "-k", "public.pem", "bad", "good", "weak", "unsigned"};
    const std::string _plain = "bad: BAD\ngood: good\nweak: weak\nunsigned: not signed\n";
};

}  // namespace

TEST_F(Colours, AreTheVerdictsOnATerminal)
{
    const std::string coloured = "bad: \033[1;31mBAD\033[0m\ngood: \033[32mgood\033[0m\nweak: \033[33mweak\033[0m\n"
                                 "unsigned: \033[33mnot signed\033[0m\n";
    EXPECT_EQ(onTerminal(_test, "xterm-256color", nullptr), coloured);
    // Empty, it says nothing.
    EXPECT_EQ(onTerminal(_test, "linux", ""), coloured);
}

TEST_F(Colours, AreLeftOutWhereNobodyWantsThem)
{
    EXPECT_EQ(onTerminal(_test, "xterm", "1"), _plain);
    EXPECT_EQ(onTerminal(_test, "dumb", nullptr), _plain);
    EXPECT_EQ(onTerminal(_test, "", nullptr), _plain);
    EXPECT_EQ(onTerminal(_test, nullptr, nullptr), _plain);
    tsCommand toPipe = command(_test);
    toPipe._prepare = []
    {
        setenv("TERM", "xterm", 1);
        unsetenv("NO_COLOR");
    };
    EXPECT_EQ(tsRun(toPipe)._output, _plain);
}

TEST_F(Colours, StandBehindNoOtherWord)
{
    // The key, the sum, and what is no verdict.
    EXPECT_EQ(onTerminal({"test", "--summary", "-k", "public.pem", "-k", "private.pem", "good"}, "xterm", nullptr),
              "good: \033[32mgood\033[0m, public.pem\n1 document: 1 good\n");
    EXPECT_EQ(onTerminal({"sign", "-f", "-k", "private.pem", "good"}, "xterm", nullptr), "good: signed, good.sig\n");
    EXPECT_EQ(onTerminal({"test", "--json", "-k", "public.pem", "good"}, "xterm", nullptr).find('\033'),
              std::string::npos);
}
