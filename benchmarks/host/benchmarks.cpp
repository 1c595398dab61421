// SPDX-License-Identifier: Apache-2.0
// The start of the main window beside a bare frame of the same toolkit: from the exec to the mapped window, and what
// the processor has done by then and until the program rests. Needs a display of its own (scripts/with-display.sh).
//
//   benchmark_host APPLICATION BAREFRAME [BENCHMARK-OPTION...]
#include <benchmark/benchmark.h>

#include <X11/Xlib.h>
#include <linux/perf_event.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

namespace
{

using Clock = std::chrono::steady_clock;

[[noreturn]] void fail(const char* what)
{
    static_cast<void>(std::fprintf(stderr, "benchmark_host: %s: %s\n", what, std::strerror(errno)));
    std::exit(1);
}

void check(bool isTrue, const char* what)
{
    if (!isTrue)
    {
        fail(what);
    }
}

struct Start
{
    double secondsToWindow;
    double processorSeconds;
    // Nothing where the processor's counters cannot be read.
    double instructions;
};

// Counts the instructions of a process and its threads, outside of the system, from its exec on.
int countInstructions(pid_t process)
{
    perf_event_attr attributes{};
    attributes.type = PERF_TYPE_HARDWARE;
    attributes.size = sizeof(attributes);
    attributes.config = PERF_COUNT_HW_INSTRUCTIONS;
    attributes.exclude_kernel = 1;
    attributes.exclude_hv = 1;
    attributes.inherit = 1;
    attributes.disabled = 1;
    attributes.enable_on_exec = 1;
    return static_cast<int>(syscall(SYS_perf_event_open, &attributes, process, -1, -1, PERF_FLAG_FD_CLOEXEC));
}

class WatchedScreen
{
public:
    WatchedScreen() : _pDisplay(XOpenDisplay(nullptr))
    {
        check(_pDisplay != nullptr, "opening the display");
        // A window may be gone by the time it is looked at.
        XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
        XSelectInput(_pDisplay, DefaultRootWindow(_pDisplay), SubstructureNotifyMask);
        XSync(_pDisplay, True);
    }
    WatchedScreen(const WatchedScreen&) = delete;
    WatchedScreen& operator=(const WatchedScreen&) = delete;
    ~WatchedScreen() { XCloseDisplay(_pDisplay); }

    // What the window manager has put around a window is mapped when the window is.
    void waitForWindow()
    {
        const auto deadline = Clock::now() + std::chrono::seconds(60);
        for (;;)
        {
            while (XPending(_pDisplay) > 0)
            {
                XEvent event;
                XNextEvent(_pDisplay, &event);
                if ((event.type == MapNotify && isShown(event.xmap.window)) ||
                    (event.type == ConfigureNotify && isShown(event.xconfigure.window)))
                {
                    return;
                }
            }
            pollfd waiting{ConnectionNumber(_pDisplay), POLLIN, 0};
            check(Clock::now() < deadline && poll(&waiting, 1, 1000) >= 0, "waiting for the window");
        }
    }
    void forget() { XSync(_pDisplay, True); }

private:
    // Not before it has got its size.
    bool isShown(Window window)
    {
        XWindowAttributes attributes;
        return XGetWindowAttributes(_pDisplay, window, &attributes) != 0 && attributes.map_state == IsViewable &&
               attributes.width > 100 && attributes.height > 100;
    }

    Display* _pDisplay;
};

double processorSeconds(clockid_t clock)
{
    timespec time{};
    check(clock_gettime(clock, &time) == 0, "reading the processor time");
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

Start start(WatchedScreen& screen, const std::vector<std::string>& command)
{
    screen.forget();
    int gate[2];
    check(pipe(gate) == 0, "making a pipe");
    const pid_t child = fork();
    check(child >= 0, "fork");
    if (child == 0)
    {
        char go = 0;
        if (read(gate[0], &go, 1) == 1)
        {
            close(gate[0]);
            close(gate[1]);
            std::vector<char*> arguments;
            arguments.reserve(command.size() + 1);
            for (const std::string& argument : command)
            {
                arguments.push_back(const_cast<char*>(argument.c_str()));
            }
            arguments.push_back(nullptr);
            execvp(arguments[0], arguments.data());
        }
        _exit(127);
    }
    const int counter = countInstructions(child);
    clockid_t clock{};
    check(clock_getcpuclockid(child, &clock) == 0, "finding the processor time");

    const auto begin = Clock::now();
    check(write(gate[1], "!", 1) == 1, "starting the program");
    close(gate[0]);
    close(gate[1]);
    screen.waitForWindow();
    Start result{std::chrono::duration<double>(Clock::now() - begin).count(), 0, 0};

    // It rests when it has not used the processor for a while.
    for (int quiet = 0; quiet < 4;)
    {
        const double before = result.processorSeconds;
        usleep(50000);
        result.processorSeconds = processorSeconds(clock);
        quiet = result.processorSeconds - before < 0.001 ? quiet + 1 : 0;
    }
    uint64_t instructions = 0;
    if (counter >= 0 && read(counter, &instructions, sizeof(instructions)) == sizeof(instructions))
    {
        result.instructions = static_cast<double>(instructions);
    }
    if (counter >= 0)
    {
        close(counter);
    }
    kill(child, SIGKILL);
    check(waitpid(child, nullptr, 0) == child, "waiting for the program's end");
    return result;
}

struct Program
{
    const char* who;
    std::vector<std::string> command;
};

void add(const std::string& operation, const Program& program, double Start::*pFigure, double scale)
{
    benchmark::RegisterBenchmark((operation + "/" + program.who).c_str(),
                                 [program, pFigure, scale](benchmark::State& state)
                                 {
                                     WatchedScreen screen;
                                     for (auto _ : state)
                                     {
                                         state.SetIterationTime(start(screen, program.command).*pFigure * scale);
                                     }
                                 })
        ->UseManualTime()
        ->Iterations(10);
}

}  // namespace

int main(int argc, char** argv)
{
    check(argc >= 3, "benchmark_host APPLICATION BAREFRAME [BENCHMARK-OPTION...]");
    const Program programs[] = {
        {"ours", {argv[1]}},
        {"frame with menu and status bar", {argv[2]}},
        {"bare frame", {argv[2], "empty"}},
    };
    argv[2] = argv[0];
    argv += 2;
    argc -= 2;

    bool areInstructionsCounted = true;
    {
        // The files are in the cache before anything is measured.
        WatchedScreen screen;
        for (const Program& program : programs)
        {
            areInstructionsCounted = start(screen, program.command).instructions > 0 && areInstructionsCounted;
        }
    }
    for (const Program& program : programs)
    {
        add("start of the main window/until it is shown", program, &Start::secondsToWindow, 1);
        add("start of the main window/processor time until it rests", program, &Start::processorSeconds, 1);
        if (areInstructionsCounted)
        {
            // A nanosecond stands for an instruction.
            add("start of the main window/instructions until it rests", program, &Start::instructions, 1e-9);
        }
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
    {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
