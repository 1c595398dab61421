// SPDX-License-Identifier: Apache-2.0
// The passphrase question on a terminal, under a parent that controls jobs as a shell does.
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cliTestSupport.h"
#include "host/keys/hoNewKeyPair.h"

using ::testing::HasSubstr;
using ::testing::Not;

namespace
{

constexpr int patienceInMilliseconds = 60000;
const char* const question = "Passphrase for locked.pem: ";

struct Pipe
{
    Pipe() { EXPECT_EQ(pipe2(_ends.data(), O_CLOEXEC), 0); }
    ~Pipe()
    {
        close(_ends[0]);
        close(_ends[1]);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    std::array<int, 2> _ends = {-1, -1};
};

// Whether a file was begun in the folder, also one that is gone again.
class NewFiles
{
public:
    explicit NewFiles(const std::string& folder) : _descriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
    {
        EXPECT_GE(inotify_add_watch(_descriptor, folder.c_str(), IN_CREATE), 0);
    }
    ~NewFiles() { close(_descriptor); }
    NewFiles(const NewFiles&) = delete;
    NewFiles& operator=(const NewFiles&) = delete;
    bool areThereAny() const
    {
        std::array<char, 4096> events = {};
        return read(_descriptor, events.data(), events.size()) > 0;
    }

private:
    const int _descriptor;
};

// What the parent tells: which process it started, and what waitpid said of it each time.
struct Report
{
    pid_t _process = 0;
    int _status = 0;
};

// The session's leader: runs the program in the terminal's foreground, tells when it stops or ends, and brings a
// stopped one back to the foreground for every byte that comes. Orphaned process groups cannot be stopped, so that it
// takes one.
[[noreturn]] void leadSession(int terminal, std::vector<char*> arguments, int reports, int commands)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    setsid();
    ioctl(terminal, TIOCSCTTY, 0);
    static_cast<void>(signal(SIGTTOU, SIG_IGN));
    static_cast<void>(signal(SIGHUP, SIG_IGN));
    const pid_t process = fork();
    if (process == 0)
    {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        setpgid(0, 0);
        tcsetpgrp(terminal, getpid());
        for (const int number : {SIGTTOU, SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGTSTP})
        {
            static_cast<void>(signal(number, SIG_DFL));
        }
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        {
            dup2(terminal, stream);
        }
        execv(arguments[0], arguments.data());
        _exit(127);
    }
    Report report = {process, 0};
    bool isOver = process < 0;
    while (!isOver)
    {
        waitpid(process, &report._status, WUNTRACED);
        tcsetpgrp(terminal, getpid());
        isOver = !WIFSTOPPED(report._status);
        char command = 0;
        if (write(reports, &report, sizeof(report)) != sizeof(report) || (!isOver && read(commands, &command, 1) != 1))
        {
            kill(process, SIGKILL);
            _exit(1);
        }
        if (!isOver)
        {
            tcsetpgrp(terminal, process);
            kill(-process, SIGCONT);
        }
    }
    _exit(0);
}

class Session
{
public:
    Session(const std::string& folder, std::vector<std::string> arguments)
    {
        _master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        EXPECT_TRUE(_master >= 0 && grantpt(_master) == 0 && unlockpt(_master) == 0);
        _terminal = open(ptsname(_master), O_RDWR | O_NOCTTY | O_CLOEXEC);
        arguments.insert(arguments.begin(), COUNTERSIGN_PROGRAM);
        std::vector<char*> pointers;
        pointers.reserve(arguments.size() + 1);
        for (std::string& argument : arguments)
        {
            pointers.push_back(argument.data());
        }
        pointers.push_back(nullptr);
        _leader = fork();
        if (_leader == 0)
        {
            if (chdir(folder.c_str()) != 0)
            {
                _exit(126);
            }
            leadSession(_terminal, pointers, _reports._ends[1], _commands._ends[0]);
        }
    }
    ~Session()
    {
        kill(_leader, SIGKILL);
        waitpid(_leader, nullptr, 0);
        close(_terminal);
        close(_master);
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // Reads what the terminal shows until the text stands there once more than it did.
    void waitFor(const std::string& text)
    {
        std::size_t found = std::string::npos;
        while ((found = _printed.find(text, _seen)) == std::string::npos && readSome())
        {
        }
        ASSERT_NE(found, std::string::npos) << _printed;
        _seen = found + text.size();
    }

    // Until the process in the foreground waits for what is typed.
    void waitUntilItReads() const
    {
        const std::string path = "/proc/" + std::to_string(tcgetpgrp(_master)) + "/stat";
        while (readFile(path).find(") S ") == std::string::npos)
        {
        }
    }

    void type(const std::string& text) const
    {
        EXPECT_EQ(write(_master, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }

    void signalForeground(int number) const { kill(tcgetpgrp(_master), number); }

    // What waitpid says when the program has stopped or ended.
    int waitForStatus()
    {
        Report report;
        pollfd waiting[2] = {{_reports._ends[0], POLLIN, 0}, {_master, POLLIN, 0}};
        while (poll(waiting, 2, patienceInMilliseconds) > 0)
        {
            if (waiting[1].revents != 0)
            {
                static_cast<void>(readSome());
            }
            else
            {
                EXPECT_EQ(read(_reports._ends[0], &report, sizeof(report)), static_cast<ssize_t>(sizeof(report)));
                return report._status;
            }
        }
        ADD_FAILURE() << "neither stopped nor ended:\n" << _printed;
        return -1;
    }

    void bringBack() const { EXPECT_EQ(write(_commands._ends[1], "", 1), 1); }

    bool isEchoing() const
    {
        struct termios settings = {};
        EXPECT_EQ(tcgetattr(_terminal, &settings), 0);
        return (settings.c_lflag & ECHO) != 0;
    }

    const std::string& printed() const { return _printed; }

private:
    bool readSome()
    {
        pollfd waiting = {_master, POLLIN, 0};
        std::array<char, 4096> buffer = {};
        const ssize_t amount =
            poll(&waiting, 1, patienceInMilliseconds) > 0 ? read(_master, buffer.data(), buffer.size()) : -1;
        if (amount > 0)
        {
            _printed.append(buffer.data(), static_cast<std::size_t>(amount));
        }
        return amount > 0;
    }

    Pipe _reports;
    Pipe _commands;
    int _master = -1;
    int _terminal = -1;
    pid_t _leader = -1;
    std::string _printed;
    std::size_t _seen = 0;
};

class Terminal : public ::testing::Test
{
protected:
    void SetUp() override { lockWith("sesame"); }

    // Makes locked.pem, which has this passphrase.
    void lockWith(const std::string& passphrase) const
    {
        static hoNewKeyPair* const pPair = []
        {
            auto* const pMade = new hoNewKeyPair(1024);
            while (!pMade->isFinished())
            {
            }
            return pMade;
        }();
        ASSERT_TRUE(pPair->isMade());
        ASSERT_TRUE(pPair->writePrivateKey(gtString(_folder / "locked.pem"), passphrase, true).isOk());
    }

    Session ask() const { return Session(_folder.path(), {"key", "--private", "--key", "locked.pem"}); }

    TemporaryFolder _folder;
};

}  // namespace

TEST_F(Terminal, ShowsAgainWhatIsTypedAfterThePassphrase)
{
    for (const char* pAnswer : {"sesame\n", "barley\n", "\n", "\x04"})
    {
        Session session = ask();
        session.waitFor(question);
        EXPECT_FALSE(session.isEchoing());
        session.type(pAnswer);
        const int status = session.waitForStatus();
        EXPECT_TRUE(WIFEXITED(status));
        EXPECT_EQ(WEXITSTATUS(status), pAnswer == std::string("sesame\n") ? 0 : 2) << session.printed();
        EXPECT_TRUE(session.isEchoing()) << pAnswer;
        EXPECT_THAT(session.printed(), Not(HasSubstr("sesame")));
    }
}

TEST_F(Terminal, ShowsAgainWhatIsTypedAfterAKeyThatEndsTheProgram)
{
    for (const auto& [key, number] : {std::pair<const char*, int>{"\x03", SIGINT}, {"\x1c", SIGQUIT}})
    {
        Session session = ask();
        session.waitFor(question);
        session.waitUntilItReads();
        session.type(std::string("sesa") + key);
        const int status = session.waitForStatus();
        ASSERT_TRUE(WIFSIGNALED(status)) << session.printed();
        EXPECT_EQ(WTERMSIG(status), number);
        EXPECT_TRUE(session.isEchoing()) << number;
        EXPECT_THAT(session.printed(), Not(HasSubstr("passphrase"))) << "there is nothing to complain of";
    }
}

TEST_F(Terminal, ShowsAgainWhatIsTypedAfterASignal)
{
    for (const int number : {SIGTERM, SIGHUP, SIGINT, SIGQUIT})
    {
        Session session = ask();
        session.waitFor(question);
        session.waitUntilItReads();
        session.signalForeground(number);
        const int status = session.waitForStatus();
        ASSERT_TRUE(WIFSIGNALED(status)) << session.printed();
        EXPECT_EQ(WTERMSIG(status), number);
        EXPECT_TRUE(session.isEchoing()) << number;
    }
}

TEST_F(Terminal, AsksAgainWhenItIsBackInTheForeground)
{
    Session session = ask();
    for (int i = 0; i < 3; ++i)
    {
        session.waitFor(question);
        session.waitUntilItReads();
        session.type("ses\x1a");
        const int status = session.waitForStatus();
        ASSERT_TRUE(WIFSTOPPED(status)) << session.printed();
        EXPECT_EQ(WSTOPSIG(status), SIGTSTP);
        EXPECT_TRUE(session.isEchoing()) << "the shell's own lines show";
        session.bringBack();
    }
    session.waitFor(question);
    EXPECT_FALSE(session.isEchoing());
    session.type("sesame\n");
    const int status = session.waitForStatus();
    ASSERT_TRUE(WIFEXITED(status)) << session.printed();
    EXPECT_EQ(WEXITSTATUS(status), 0) << session.printed();
    EXPECT_TRUE(session.isEchoing());
    EXPECT_THAT(session.printed(), Not(HasSubstr("ses")));
}

TEST_F(Terminal, AsksTwiceForANewPassphrase)
{
    struct Case
    {
        const char* _pFirst;
        const char* _pSecond;
        const char* _pSaid;
    };
    for (const Case& typed : {Case{"sesame\n", "sesame\n", "alice.pub.pem: public key"},
                              Case{"sesame\n", "barley\n", "the two passphrases differ"},
                              Case{"\n", nullptr, "the passphrase is empty; --no-passphrase"},
                              Case{"sesame\n", "\x03", nullptr}, Case{"\x03", nullptr, nullptr}})
    {
        const TemporaryFolder folder;
        Session session(folder.path(), {"keygen", "--bits", "512", "--output", "alice"});
        session.waitFor("New passphrase for alice.pem: ");
        session.waitUntilItReads();
        session.type(typed._pFirst);
        if (typed._pSecond != nullptr)
        {
            session.waitFor("again: ");
            session.waitUntilItReads();
            session.type(typed._pSecond);
        }
        const int status = session.waitForStatus();
        EXPECT_TRUE(session.isEchoing());
        EXPECT_THAT(session.printed(), Not(HasSubstr("sesame")));
        if (typed._pSaid == nullptr)
        {
            EXPECT_TRUE(WIFSIGNALED(status));
        }
        else
        {
            session.waitFor(typed._pSaid);
        }
        const bool isMade = WIFEXITED(status) && WEXITSTATUS(status) == 0;
        EXPECT_EQ(isMade, typed._pSecond != nullptr && std::string(typed._pFirst) == typed._pSecond);
        EXPECT_EQ(folder.names(),
                  isMade ? (std::vector<std::string>{"alice.pem", "alice.pub.pem"}) : std::vector<std::string>());
        if (isMade)
        {
            runOpenSSL(folder, {"pkey", "-in", "alice.pem", "-passin", "pass:sesame", "-noout"});
        }
    }
}

// The pair may be there before the signal is; then there are both halves of it. Otherwise no file is begun: what takes
// long has been given up.
TEST_F(Terminal, LeavesNoPieceOfAKeyWhenItIsInterrupted)
{
    int amountInterrupted = 0;
    int amountGivenUp = 0;
    for (int i = 0; i < 5; ++i)
    {
        const TemporaryFolder folder;
        const NewFiles newFiles(folder.path());
        Session session(folder.path(), {"keygen", "--bits", "4096"});
        for (const char* pQuestion : {"New passphrase for countersign-key.pem: ", "again: "})
        {
            session.waitFor(pQuestion);
            session.waitUntilItReads();
            session.type("sesame\n");
        }
        session.waitFor("\r\n");
        session.signalForeground(SIGINT);
        const int status = session.waitForStatus();
        const std::size_t amountOfFiles = folder.names().size();
        EXPECT_TRUE(amountOfFiles == 2 || (amountOfFiles == 0 && WIFSIGNALED(status))) << amountOfFiles;
        amountInterrupted += amountOfFiles == 0 ? 1 : 0;
        amountGivenUp += newFiles.areThereAny() ? 0 : 1;
    }
    EXPECT_GT(amountInterrupted, 0);
    EXPECT_GT(amountGivenUp, 0) << "the key was made to the end each time";
}

TEST_F(Terminal, TakesPassphrasesOfEveryLengthThatAKeyFileCanHave)
{
    for (const std::size_t length : {1U, 127U, 1023U, 1024U, 1025U, 2000U})
    {
        // libcrypto reads no longer ones back.
        const bool isTaken = length <= 1024;
        const std::string passphrase(length, 'p');
        lockWith(passphrase);
        Session session = ask();
        session.waitFor(question);
        session.type(passphrase + "\n");
        const int status = session.waitForStatus();
        ASSERT_TRUE(WIFEXITED(status)) << session.printed();
        EXPECT_EQ(WEXITSTATUS(status), isTaken ? 0 : 2) << length << session.printed();
        EXPECT_THAT(session.printed(), Not(HasSubstr("wrong passphrase"))) << length;
        if (!isTaken)
        {
            session.waitFor("locked.pem: the passphrase is too long");
        }
    }
}
