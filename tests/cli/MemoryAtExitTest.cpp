// SPDX-License-Identifier: Apache-2.0
// Stops the program at its very end and looks through all memory that it may write to: nothing of its keys and texts
// may be left there. What it is given as arguments is not looked for, as the system shows these to everybody.
#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "cliTestSupport.h"
#include "host/keys/hoKeyFile.h"
#include "tests/support/tsProcess.h"

namespace
{

struct Secret
{
    std::string name;
    std::string bytes;
};

// What the process may write to, as one text a mapping.
std::vector<std::string> memoryOf(pid_t process)
{
    const std::string folder = "/proc/" + std::to_string(process);
    std::ifstream maps(folder + "/maps");
    const int memory = open((folder + "/mem").c_str(), O_RDONLY | O_CLOEXEC);
    EXPECT_GE(memory, 0);
    std::vector<std::string> result;
    for (std::string line; std::getline(maps, line);)
    {
        unsigned long begin = 0;
        unsigned long end = 0;
        char dash = '\0';
        std::string rights;
        std::istringstream fields(line);
        if (!(fields >> std::hex >> begin >> dash >> end >> rights) || rights[1] != 'w')
        {
            continue;
        }
        std::string bytes(end - begin, '\0');
        const ssize_t amount = pread(memory, bytes.data(), bytes.size(), static_cast<off_t>(begin));
        bytes.resize(amount < 0 ? 0 : static_cast<std::size_t>(amount));
        result.push_back(std::move(bytes));
    }
    close(memory);
    return result;
}

class MemoryAtExit : public ::testing::Test
{
protected:
    void SetUp() override
    {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        GTEST_SKIP() << "a sanitizer's memory is too large to be looked through";
#endif
        makeKeys(_folder, 2048);
        hoKeyFileFacts facts;
        const std::unique_ptr<const hoKey> pKey =
            hoLoadKeyFile(gtString((_folder / "private.pem").c_str()), nullptr, facts);
        ASSERT_NE(pKey, nullptr);
        const unsigned int* const pDigits = pKey->privateKey().numberDigits() + 12;
        const std::string digits(reinterpret_cast<const char*>(pDigits), 16);
        _secrets = {{"digits", digits},
                    {"bytes", std::string(digits.rbegin(), digits.rend())},
                    {"hexadecimal text", hoFixedWidthText(pDigits, 4).asStdString()}};
        const std::string file = _folder.read("private.pem");
        _secrets.push_back({"file", file.substr(file.find('\n', 400) + 1, 40)});
        for (const char* pText : texts)
        {
            _secrets.push_back({std::string("text ") + pText, pText});
        }
    }

    // The names of the secrets that are in the process's memory.
    std::vector<std::string> namesFoundIn(pid_t process) const
    {
        std::vector<std::string> found;
        for (const std::string& bytes : memoryOf(process))
        {
            for (const Secret& secret : _secrets)
            {
                if (bytes.find(secret.bytes) != std::string::npos)
                {
                    found.push_back(secret.name);
                }
            }
        }
        return found;
    }

    // Runs the program, and gives the names of the secrets that are in its memory at its end.
    std::vector<std::string> leftBy(const std::vector<std::string>& arguments, const std::string& input)
    {
        _folder.write("input", input);
        const pid_t process = fork();
        if (process == 0)
        {
            std::vector<char*> pointers = {const_cast<char*>(COUNTERSIGN_PROGRAM)};
            for (const std::string& argument : arguments)
            {
                pointers.push_back(const_cast<char*>(argument.c_str()));
            }
            pointers.push_back(nullptr);
            const int in = chdir(_folder.path().c_str()) == 0 ? open("input", O_RDONLY) : -1;
            const int out = open("output", O_WRONLY | O_CREAT | O_TRUNC, 0600);
            if (in < 0 || out < 0 || dup2(in, 0) < 0 || dup2(out, 1) < 0 || dup2(out, 2) < 0 ||
                ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0)
            {
                _exit(99);
            }
            execv(COUNTERSIGN_PROGRAM, pointers.data());
            _exit(99);
        }
        int status = 0;
        EXPECT_EQ(waitpid(process, &status, 0), process);
        EXPECT_TRUE(WIFSTOPPED(status)) << "the program stops when it begins";
        EXPECT_EQ(ptrace(PTRACE_SETOPTIONS, process, nullptr, PTRACE_O_TRACEEXIT | PTRACE_O_EXITKILL), 0);
        std::vector<std::string> found;
        bool isSeen = false;
        while (!WIFEXITED(status) && !WIFSIGNALED(status))
        {
            if (WIFSTOPPED(status) && (status >> 8) == (SIGTRAP | (PTRACE_EVENT_EXIT << 8)))
            {
                isSeen = true;
                found = namesFoundIn(process);
            }
            EXPECT_EQ(ptrace(PTRACE_CONT, process, nullptr, nullptr), 0);
            if (waitpid(process, &status, 0) != process)
            {
                break;
            }
        }
        EXPECT_TRUE(isSeen);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << _folder.read("output");
        return found;
    }

    // One that fits into a string object, and one that does not.
    static constexpr const char* texts[] = {"lamp at noon 7",
                                            "seven candles by the river, two lamps and a quiet old mule"};
    TemporaryFolder _folder;
    std::vector<Secret> _secrets;
};

}  // namespace

TEST_F(MemoryAtExit, HoldsNoPrivateKey)
{
    _folder.write("report", std::string(100000, 'r'));
    using Names = std::vector<std::string>;
    EXPECT_EQ(leftBy({"key", "-k", "private.pem"}, ""), Names());
    EXPECT_EQ(leftBy({"key", "-k", "private.pem", "--private"}, ""), Names());
    const std::string exponent = _folder.read("output");
    EXPECT_NE(exponent.find(_secrets[2].bytes), std::string::npos) << "the search is for what is printed";
    EXPECT_EQ(leftBy({"sign", "-k", "private.pem", "report"}, ""), Names());
    EXPECT_EQ(leftBy({"test", "-k", "private.pem", "report"}, ""), Names());
    // The stacks of threads are kept by the C library.
    _folder.write("second", "s");
    EXPECT_EQ(leftBy({"sign", "-f", "-j", "2", "-k", "private.pem", "report", "second"}, ""), Names());
    EXPECT_EQ(leftBy({"encrypt", "-p", "-k", "private.pem"}, "x"), Names());
}

TEST_F(MemoryAtExit, HoldsNoPrivateKeyWhileItTests)
{
    _folder.write("huge", "");
    ASSERT_EQ(truncate((_folder / "huge").c_str(), off_t{1} << 36), 0);
    tsCommand sign;
    sign._arguments = {COUNTERSIGN_PROGRAM, "sign", "-k", "private.pem", "report"};
    sign._folder = _folder.path();
    _folder.write("report", "contents");
    ASSERT_EQ(tsRun(sign)._exitStatus, 0);
    _folder.write("huge.sig", _folder.read("report.sig"));
    for (const char* pCommand : {"test", "sign"})
    {
        std::vector<std::string> found;
        bool isSeen = false;
        tsCommand work;
        work._arguments = {COUNTERSIGN_PROGRAM, pCommand, "-k", "private.pem", "huge"};
        if (std::string(pCommand) == "sign")
        {
            work._arguments.insert(work._arguments.begin() + 2, "--force");
        }
        work._folder = _folder.path();
        work._hasTerminal = true;
        work._type = [&](const std::string& printed, pid_t process)
        {
            if (isSeen || printed.find(" % of ") == std::string::npos)
            {
                return "";
            }
            isSeen = true;
            found = namesFoundIn(process);
            return "\x03";
        };
        tsRun(work);
        EXPECT_TRUE(isSeen);
        // The search finds the key where it is needed.
        EXPECT_EQ(found.empty(), std::string(pCommand) == "test") << pCommand;
    }
}

TEST_F(MemoryAtExit, HoldsNoText)
{
    using Names = std::vector<std::string>;
    for (const char* pText : texts)
    {
        EXPECT_EQ(leftBy({"encrypt", "-k", "public.pem"}, pText), Names());
        const std::string cipher = _folder.read("output");
        EXPECT_EQ(leftBy({"decrypt", "-k", "private.pem"}, cipher), Names());
        EXPECT_EQ(_folder.read("output"), pText);
    }
}
