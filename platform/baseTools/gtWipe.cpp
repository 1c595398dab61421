// SPDX-License-Identifier: Apache-2.0
#include "platform/baseTools/gtWipe.h"

#include <cstring>

#include "platform/baseTools/gtString.h"

void gtWipe(void* pBytes, std::size_t amountOfBytes)
{
    if (pBytes == nullptr)
    {
        return;
    }
    // Through a pointer that the compiler must read: it cannot know what is called and drop it.
    static void* (*const volatile pSet)(void*, int, std::size_t) = std::memset;
    pSet(pBytes, 0, amountOfBytes);
}

void gtWipe(gtString& text)
{
    // The text is not constant; it only hands out its characters as if it were.
    gtWipe(const_cast<char*>(text.asCharArray()), static_cast<std::size_t>(text.length()));
    text.makeEmpty();
}
