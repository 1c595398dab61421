// SPDX-License-Identifier: Apache-2.0
#include "platform/osWrappers/osWriteAll.h"

#include <cerrno>
#include <unistd.h>

int osWriteAll(int descriptor, std::string_view bytes, bool (*isToStop)()) noexcept
{
    while (!bytes.empty())
    {
        const ssize_t amount = ::write(descriptor, bytes.data(), bytes.size());
        if (amount > 0)
        {
            bytes.remove_prefix(static_cast<std::size_t>(amount));
        }
        else if (amount == 0)
        {
            return EIO;
        }
        else if (errno != EINTR || (isToStop != nullptr && isToStop()))
        {
            return errno;
        }
    }
    return 0;
}
