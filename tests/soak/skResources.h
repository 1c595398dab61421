// SPDX-License-Identifier: Apache-2.0
// What a process has of the machine at a moment: memory, handles, threads, windows.
//
// Linux only. Main thread, with the toolkit running and nothing else going on: what is counted is meant to be at rest.
#ifndef SK_RESOURCES_H
#define SK_RESOURCES_H

#include <array>
#include <cstddef>
#include <string>

enum class skResource
{
    Heap,         // bytes that the allocator has given out
    Memory,       // bytes of the process that are no file's: resident or swapped
    Server,       // the same of the X server, which keeps windows, pictures and cursors
    Descriptors,  // open ones
    Threads,
    Children,  // processes that were started and not waited for
    Windows,   // of the toolkit, those inside others included
    XWindows   // on the screen, the window manager's included
};

constexpr std::size_t skAmountOfResources = 8;
constexpr std::size_t skAmountOfMemories = 3;  // the first ones: they may waver, the others may not

using skSample = std::array<double, skAmountOfResources>;

const char* skNameOf(skResource resource);

// Makes the allocator's figures those of all threads, and lets the allocators of the programs beside this one give back
// at once what is free. At the start of the program, before the display is there.
void skPrepareSampling();

skSample skTakeSample();

#endif
