// SPDX-License-Identifier: Apache-2.0
// How the bytes of a channel are treated.
#ifndef OS_CHANNEL_H
#define OS_CHANNEL_H

#pragma GCC visibility push(default)

class osChannel
{
public:
    enum osChannelType : int
    {
        OS_BINARY_CHANNEL = 0  // as they are
    };
};

#pragma GCC visibility pop

#endif
