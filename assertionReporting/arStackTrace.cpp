// SPDX-License-Identifier: Apache-2.0
#include "assertionReporting/arStackTrace.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cxxabi.h>
#include <dlfcn.h>
#include <memory>
#include <new>
#include <string>

#if defined(AR_HAS_BACKTRACE)
#include <backtrace.h>
#endif

namespace
{

struct Frame
{
    std::string function;
    std::string place;
};

#if defined(AR_HAS_BACKTRACE)

void overlook(void* /*pData*/, const char* /*message*/, int /*error*/) {}

backtrace_state* state()
{
    const int isForThreads = 1;
    static backtrace_state* const pState = backtrace_create_state(nullptr, isForThreads, &overlook, nullptr);
    return pState;
}

int addAddress(void* pData, std::uintptr_t address)
{
    auto& stack = *static_cast<std::vector<std::uintptr_t>*>(pData);
    if (address == UINTPTR_MAX)
    {
        // Behind the outermost call.
        return 0;
    }
    if (stack.size() == stack.capacity())
    {
        return 1;
    }
    stack.push_back(address);
    return 0;
}

// No exception may pass through the library, which is C.
template <class Function>
void withoutException(Function function)
{
    try
    {
        function();
    }
    catch (const std::bad_alloc&)
    {
        // The frame has fewer words then.
    }
}

// Called once for each function that was inlined there, the innermost first.
int addPlaces(void* pData, std::uintptr_t /*address*/, const char* file, int line, const char* function)
{
    auto& frames = *static_cast<std::vector<Frame>*>(pData);
    if (file != nullptr || function != nullptr)
    {
        withoutException(
            [&]
            {
                frames.push_back({function == nullptr ? std::string() : function,
                                  file == nullptr ? std::string() : std::string(file) + ":" + std::to_string(line)});
            });
    }
    return 0;
}

void setName(void* pData, std::uintptr_t /*address*/, const char* name, std::uintptr_t /*value*/,
             std::uintptr_t /*size*/)
{
    if (name != nullptr)
    {
        withoutException([&] { *static_cast<std::string*>(pData) = name; });
    }
}

std::vector<Frame> framesOf(std::uintptr_t address)
{
    std::vector<Frame> frames;
    if (state() == nullptr)
    {
        return frames;
    }
    static_cast<void>(backtrace_pcinfo(state(), address, &addPlaces, &overlook, &frames));
    if (frames.empty())
    {
        frames.emplace_back();
    }
    // The linker's name tells the arguments, too.
    std::string name;
    static_cast<void>(backtrace_syminfo(state(), address, &setName, &overlook, &name));
    if (!name.empty())
    {
        frames.back().function = name;
    }
    return frames;
}

#else

std::vector<Frame> framesOf(std::uintptr_t /*address*/)
{
    return {};
}

#endif

std::string readableName(const std::string& name)
{
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> pText(abi::__cxa_demangle(name.c_str(), nullptr, nullptr, &status),
                                                       &std::free);
    return pText == nullptr ? name : pText.get();
}

std::string hexadecimal(std::uintptr_t value)
{
    char text[2 + 2 * sizeof(value) + 1];
    static_cast<void>(std::snprintf(text, sizeof text, "0x%zx", static_cast<std::size_t>(value)));
    return text;
}

// "library+0x12ab", as tools want it, or the bare address.
std::string moduleAndOffset(std::uintptr_t address)
{
    Dl_info info = {};
    // The system's function takes a pointer. NOLINTNEXTLINE(performance-no-int-to-ptr)
    if (dladdr(reinterpret_cast<const void*>(address), &info) == 0 || info.dli_fname == nullptr)
    {
        return hexadecimal(address);
    }
    const char* const pSlash = std::strrchr(info.dli_fname, '/');
    return std::string(pSlash == nullptr ? info.dli_fname : pSlash + 1) + "+" +
           hexadecimal(address - reinterpret_cast<std::uintptr_t>(info.dli_fbase));
}

std::string lineOf(const Frame& frame, std::uintptr_t address)
{
    const std::string place = frame.place.empty() ? moduleAndOffset(address) : frame.place;
    return frame.function.empty() ? place : readableName(frame.function) + " at " + place;
}

// Through these every failure goes on its way to the handlers.
bool isOfReporting(const std::string& function)
{
    return function.find("gtTriggerAssertonFailureHandler") != std::string::npos ||
           function.find("gtReportFailedAssertion") != std::string::npos;
}

}  // namespace

// Not inlined, so that the one frame that is skipped is this function's.
__attribute__((noinline)) std::vector<std::uintptr_t> arStackOfThisThread() noexcept
{
    std::vector<std::uintptr_t> stack;
#if defined(AR_HAS_BACKTRACE)
    try
    {
        stack.reserve(arMostFrames);
    }
    catch (const std::bad_alloc&)
    {
        return stack;
    }
    const int skipped = 1;
    if (state() != nullptr)
    {
        static_cast<void>(backtrace_simple(state(), skipped, &addAddress, &overlook, &stack));
    }
#endif
    return stack;
}

bool arHasStacks()
{
#if defined(AR_HAS_BACKTRACE)
    return true;
#else
    return false;
#endif
}

std::vector<gtString> arStackLines(const std::vector<std::uintptr_t>& stack)
{
    std::vector<gtString> lines;
    for (const std::uintptr_t address : stack)
    {
        std::vector<Frame> frames = framesOf(address);
        if (frames.empty())
        {
            frames.emplace_back();
        }
        for (const Frame& frame : frames)
        {
            if (isOfReporting(frame.function))
            {
                // All up to here is the kit's own.
                lines.clear();
            }
            else
            {
                lines.push_back(lineOf(frame, address));
            }
        }
    }
    return lines;
}
