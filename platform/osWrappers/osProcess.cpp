// SPDX-License-Identifier: Apache-2.0
#include "platform/osWrappers/osProcess.h"

#include "platform/osWrappers/osWriteAll.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

#if defined(__APPLE__)
#include <crt_externs.h>
#include <mach-o/dyld.h>
#include <pthread.h>
#include <sys/sysctl.h>
#else
#include <sys/prctl.h>
#include <sys/syscall.h>
#endif

namespace
{
// The forks between systems.

#if defined(__APPLE__)
constexpr char desktopsOpener[] = "open";
#else
constexpr char desktopsOpener[] = "xdg-open";
#endif

unsigned int systemThreadId()
{
#if defined(__APPLE__)
    std::uint64_t id = 0;
    static_cast<void>(::pthread_threadid_np(nullptr, &id));
    return static_cast<unsigned int>(id);
#else
    return static_cast<unsigned int>(::syscall(SYS_gettid));
#endif
}

char** processEnvironment()
{
#if defined(__APPLE__)
    return *_NSGetEnviron();
#else
    return environ;
#endif
}

// The running program's own file, empty if the system does not tell.
std::string programPath()
{
    char path[PATH_MAX] = {};
#if defined(__APPLE__)
    std::uint32_t size = sizeof path;
    return _NSGetExecutablePath(path, &size) == 0 ? path : std::string();
#else
    const ssize_t length = ::readlink("/proc/self/exe", path, sizeof path - 1);
    return length > 0 ? std::string(path, static_cast<std::size_t>(length)) : std::string();
#endif
}

void forbidTracing()
{
#if !defined(__APPLE__)
    static_cast<void>(::prctl(PR_SET_DUMPABLE, 0));
#endif
}

void closeDescriptorsFrom(int first)
{
#if defined(SYS_close_range)
    if (::syscall(SYS_close_range, static_cast<unsigned int>(first), UINT_MAX, 0U) == 0)
    {
        return;
    }
#endif
    // Without a limit it is -1.
    const unsigned long limit = std::min(static_cast<unsigned long>(::sysconf(_SC_OPEN_MAX)), 65536UL);
    for (int descriptor = first; descriptor < static_cast<int>(limit); ++descriptor)
    {
        static_cast<void>(::close(descriptor));
    }
}

// Whether another process traces this one.
bool isTraced()
{
#if defined(__APPLE__)
    struct kinfo_proc facts = {};
    std::size_t size = sizeof facts;
    int name[] = {CTL_KERN, KERN_PROC, KERN_PROC_PID, ::getpid()};
    return ::sysctl(name, 4, &facts, &size, nullptr, 0) == 0 && (facts.kp_proc.p_flag & P_TRACED) != 0;
#else
    // Without memory, which may have run out: this is asked when something has gone wrong.
    char text[4096];
    const int file = ::open("/proc/self/status", O_RDONLY | O_CLOEXEC);
    const ssize_t length = file < 0 ? 0 : ::read(file, text, sizeof text - 1);
    if (file >= 0)
    {
        static_cast<void>(::close(file));
    }
    text[std::max<ssize_t>(length, 0)] = '\0';
    const char* const pTracer = std::strstr(text, "\nTracerPid:");
    return pTracer != nullptr && std::strtol(pTracer + std::strlen("\nTracerPid:"), nullptr, 10) != 0;
#endif
}

void raiseTrap()
{
#if defined(__x86_64__) || defined(__i386__)
    // The instruction itself: the debugger shows the caller at once, not the inside of the system's library.
    __asm__ volatile("int3");
#else
    static_cast<void>(std::raise(SIGTRAP));
#endif
}

// What an editor needs to go to a line; one that cannot do it is reached through the desktop's default if at all.
struct Editor
{
    const char* pProgram;
    const char* pOption;  // comes before the file, with the line at its end or not; null if there is none
    bool isLineBehindFile;
};

constexpr Editor knownEditors[] = {
    {"code", "--goto", true}, {"codium", "--goto", true},  {"subl", nullptr, true},      {"kate", "--line=", false},
    {"gedit", "+", false},    {"geany", "--line=", false}, {"kwrite", "--line=", false}, {"mousepad", "--line=", false},
    {"pluma", "+", false},    {"xed", "+", false},         {"gvim", "+", false},         {"emacs", "+", false},
};

std::vector<std::string> lineArguments(const Editor& editor, const std::string& file, const std::string& line)
{
    if (!editor.isLineBehindFile)
    {
        return {editor.pOption + line, file};
    }
    std::vector<std::string> arguments;
    if (editor.pOption != nullptr)
    {
        arguments.emplace_back(editor.pOption);
    }
    arguments.push_back(file + ":" + line);
    return arguments;
}

// A program with its arguments, ready for execve.
struct Command
{
    explicit Command(std::vector<std::string> programAndArguments) : strings(std::move(programAndArguments))
    {
        for (std::string& string : strings)
        {
            pointers.push_back(string.data());
        }
        pointers.push_back(nullptr);
    }
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;
    Command(Command&&) noexcept = default;  // the strings stay where they are
    Command& operator=(Command&&) noexcept = default;
    ~Command() = default;

    std::vector<std::string> strings;
    std::vector<char*> pointers;
};

// The folders of PATH. A relative one is left out: what the current directory holds is not to be run by accident.
std::vector<std::string> programFolders()
{
    const char* pPath = std::getenv("PATH");
    std::string_view path = pPath == nullptr ? "/usr/local/bin:/usr/bin:/bin" : pPath;
    std::vector<std::string> folders;
    while (!path.empty())
    {
        const std::string_view folder = path.substr(0, path.find(':'));
        if (!folder.empty() && folder.front() == '/')
        {
            folders.emplace_back(folder);
        }
        path.remove_prefix(std::min(path.size(), folder.size() + 1));
    }
    return folders;
}

// Some distributions install editors that need a terminal under the same name as the graphical ones, as a link to a
// program that says so.
bool isWithoutWindow(const std::string& program)
{
    char target[PATH_MAX];
    if (::realpath(program.c_str(), target) == nullptr)
    {
        return false;
    }
    constexpr std::string_view mark = "-nox";
    const std::string_view name(target);
    return name.substr(std::max(name.size(), mark.size()) - mark.size()) == mark;
}

// The full path of an executable file, or the empty text.
std::string findProgram(const std::vector<std::string>& folders, const char* pProgram)
{
    for (const std::string& folder : folders)
    {
        std::string candidate = folder + "/" + pProgram;
        struct stat status;
        if (::stat(candidate.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
            ::access(candidate.c_str(), X_OK) == 0 && !isWithoutWindow(candidate))
        {
            return candidate;
        }
    }
    return std::string();
}

struct SourceFolders
{
    std::mutex mutex;  // guards the other
    std::vector<std::string> folders;
};

SourceFolders& sourceFolders()
{
    // Never destroyed: static objects may add folders as long as the process ends.
    static auto* const pFolders = new SourceFolders;
    return *pFolders;
}

// The folder of the program's own file and all above it, from there to the root: programs are mostly built somewhere
// inside their sources.
std::vector<std::string> foldersOfProgram()
{
    std::vector<std::string> folders;
    std::string folder = programPath();
    while (folder.find('/') != std::string::npos)
    {
        folder.erase(folder.rfind('/'));
        folders.push_back(folder);
    }
    return folders;
}

bool exists(const std::string& path)
{
    struct stat status;
    return ::stat(path.c_str(), &status) == 0;
}

// Compilers write a source file's path as they were given it. A relative one that leads nowhere from the current folder
// is looked for where sources may be; found nowhere, it stays as it is.
std::string foundPath(const std::string& path)
{
    if (path.front() == '/' || exists(path))
    {
        return path;
    }
    std::vector<std::string> folders;
    {
        SourceFolders& known = sourceFolders();
        const std::lock_guard<std::mutex> lock(known.mutex);
        folders = known.folders;
    }
    const std::vector<std::string> ofProgram = foldersOfProgram();
    folders.insert(folders.end(), ofProgram.begin(), ofProgram.end());
    for (const std::string& folder : folders)
    {
        std::string candidate = folder;
        candidate.append("/").append(path);
        if (exists(candidate))
        {
            return candidate;
        }
    }
    return path;
}

// A relative path that begins with a sign of an option, or with what reads as an address's scheme, becomes plainly a
// path.
std::string plainPath(const osFilePath& filePath)
{
    const std::string path = foundPath({filePath.asCharArray(), static_cast<std::size_t>(filePath.length())});
    const bool isLikeOption = path.front() == '-' || path.front() == '+';
    const bool isLikeAddress = path.find(':') < path.find('/');
    return (isLikeOption || isLikeAddress) ? "./" + path : path;
}

// What can open the file, the best first.
std::vector<Command> openingCommands(const std::string& file, int lineNumber)
{
    const std::vector<std::string> folders = programFolders();
    std::vector<Command> commands;
    for (const Editor& editor : knownEditors)
    {
        std::string program = findProgram(folders, editor.pProgram);
        if (program.empty())
        {
            continue;
        }
        std::vector<std::string> strings = {file};
        if (lineNumber > 0)
        {
            strings = lineArguments(editor, file, std::to_string(lineNumber));
        }
        strings.insert(strings.begin(), std::move(program));
        commands.emplace_back(std::move(strings));
    }

    std::string opener = findProgram(folders, desktopsOpener);
    if (!opener.empty())
    {
        commands.emplace_back(std::vector<std::string>{std::move(opener), file});
    }
    return commands;
}

std::string failureLine(const osFilePath& filePath, int lineNumber, const char* pReason)
{
    std::string line = "Cannot open \"";
    for (int i = 0; i < filePath.length(); ++i)
    {
        const unsigned char c = static_cast<unsigned char>(filePath.asCharArray()[i]);
        line += (c < ' ' || c == 127) ? ' ' : filePath.asCharArray()[i];
    }
    return line + "\" at line " + std::to_string(lineNumber) + ": " + pReason + "\n";
}

void writeToStderr(const std::string& text)
{
    // If standard error is gone there is nobody left to tell.
    static_cast<void>(osWriteAll(STDERR_FILENO, text));
}

// What follows runs in child processes of a program that may have many threads: only functions that are safe in signal
// handlers, and nothing that allocates.

void resetSignals()
{
    for (int number = SIGHUP; number != NSIG; ++number)
    {
        static_cast<void>(std::signal(number, SIG_DFL));
    }
    sigset_t none;
    static_cast<void>(sigemptyset(&none));
    static_cast<void>(::sigprocmask(SIG_SETMASK, &none, nullptr));
}

// Returns if no command could be started.
void becomeEditor(const std::vector<Command>& commands, const std::string& allFailedLine)
{
    static_cast<void>(::setsid());

    // Standard error is kept aside, to tell that no program could be started; the descriptor closes when one is. It
    // must not land on 0 to 2 if one of these is closed.
    constexpr int keptStderr = 3;
    constexpr int firstOther = 4;
    const bool hasStderr = ::dup2(STDERR_FILENO, keptStderr) == keptStderr;
    closeDescriptorsFrom(hasStderr ? firstOther : keptStderr);
    const int null = ::open("/dev/null", O_RDWR);
    for (int descriptor = STDIN_FILENO; null >= 0 && descriptor <= STDERR_FILENO; ++descriptor)
    {
        static_cast<void>(::dup2(null, descriptor));
    }
    if (null > keptStderr)
    {
        static_cast<void>(::close(null));
    }
    static_cast<void>(::fcntl(keptStderr, F_SETFD, FD_CLOEXEC));
    resetSignals();

    for (const Command& command : commands)
    {
        static_cast<void>(::execve(command.pointers[0], command.pointers.data(), processEnvironment()));
    }
    static_cast<void>(osWriteAll(keptStderr, allFailedLine));
}

// Blocks all signals of the thread while it lives, so that none of the program's handlers runs in a child.
class AllSignalsBlocked
{
public:
    AllSignalsBlocked()
    {
        sigset_t all;
        static_cast<void>(sigfillset(&all));
        static_cast<void>(::pthread_sigmask(SIG_SETMASK, &all, &_before));
    }
    AllSignalsBlocked(const AllSignalsBlocked&) = delete;
    AllSignalsBlocked& operator=(const AllSignalsBlocked&) = delete;
    ~AllSignalsBlocked() { static_cast<void>(::pthread_sigmask(SIG_SETMASK, &_before, nullptr)); }

private:
    sigset_t _before;
};

// Starts the first command that can be started, as nobody's child: the process between, whose child it is, ends at once
// and is collected here. Returns false if there could be no process.
bool startDetached(const std::vector<Command>& commands, const std::string& allFailedLine)
{
    const AllSignalsBlocked allSignalsBlocked;
    const pid_t between = ::fork();
    if (between == 0)
    {
        const pid_t editor = ::fork();
        if (editor == 0)
        {
            becomeEditor(commands, allFailedLine);
        }
        ::_exit(static_cast<int>(editor == -1));
    }
    if (between == -1)
    {
        return false;
    }

    // It stays 0 if the program ignores SIGCHLD, or collects every child itself.
    int status = 0;
    pid_t collected = -1;
    do
    {
        collected = ::waitpid(between, &status, 0);
    } while (collected == -1 && errno == EINTR);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}
}  // namespace

unsigned int osGetCurrentThreadId()
{
    return systemThreadId();
}

void osOpenFileInSourceCodeEditor(const osFilePath& filePath, int lineNumber)
{
    if (filePath.isEmpty() || std::strlen(filePath.asCharArray()) != static_cast<std::size_t>(filePath.length()))
    {
        writeToStderr(failureLine(filePath, lineNumber, "no file can have this name"));
        return;
    }

    const std::vector<Command> commands = openingCommands(plainPath(filePath), lineNumber);
    if (commands.empty())
    {
        writeToStderr(failureLine(filePath, lineNumber,
                                  "no graphical editor that is known here, and no desktop default, is installed"));
        return;
    }
    const std::string allFailedLine = failureLine(filePath, lineNumber, "no editor could be started");
    if (!startDetached(commands, allFailedLine))
    {
        writeToStderr(failureLine(filePath, lineNumber, "the system could not start another process"));
    }
}

void osAddSourceCodeFolder(const osFilePath& folder)
{
    SourceFolders& known = sourceFolders();
    const std::lock_guard<std::mutex> lock(known.mutex);
    known.folders.emplace_back(folder.asCharArray(), static_cast<std::size_t>(folder.length()));
}

bool osIsDebuggerAttached()
{
    return isTraced();
}

void osThrowBreakpointException()
{
    raiseTrap();
}

void osWriteNoCoreFiles()
{
    // One byte is too little for any file; and where Linux hands core files to a program, it passes over a limit of 0
    // but takes 1 for what it is.
    constexpr rlim_t tooLittle = 1;
    struct rlimit limit = {};
    static_cast<void>(::getrlimit(RLIMIT_CORE, &limit));
    limit.rlim_cur = tooLittle;
    // Refused where the administrator's limit is lower.
    if (::setrlimit(RLIMIT_CORE, &limit) != 0)
    {
        forbidTracing();
    }
}

bool osOpenClosedStandardStreams()
{
    constexpr int directions[] = {O_WRONLY, O_RDONLY, O_WRONLY};
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor)
    {
        if (::fcntl(descriptor, F_GETFD) >= 0)
        {
            continue;
        }
        // The lowest free number is this one: those below it are there.
        int opened = -1;
        do
        {
            opened = ::open("/dev/null", directions[descriptor]);
        } while (opened < 0 && errno == EINTR);
        if (opened < 0)
        {
            return false;
        }
    }
    return true;
}
