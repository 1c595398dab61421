// SPDX-License-Identifier: Apache-2.0
// Where the session bus is looked for.
#include "tests/support/TemporaryFolder.h"

#include "host/desktop/hoBusAddress.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <iostream>

#include <sys/socket.h>
#include <sys/un.h>

namespace
{
bool isAddress(const std::string& wanted)
{
    const gtString found = hoSessionBusAddress();
    if (found.asStdString() != wanted)
    {
        std::cerr << "found: " << found << "\nwanted: " << wanted << '\n';
    }
    return found.asStdString() == wanted;
}

bool makeSocket(const std::string& path)
{
    struct sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    const int socketOfBus = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    return ::bind(socketOfBus, reinterpret_cast<const struct sockaddr*>(&address), sizeof address) == 0;
}

bool isFoundInTheRuntimeFolder()
{
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.path("a b"));
    setenv("XDG_RUNTIME_DIR", folder.path("a b").c_str(), 1);
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
    const bool isNone = isAddress("");
    const std::string wanted = "unix:path=" + folder.path("a%20b/bus");
    const bool isMade = makeSocket(folder.path("a b/bus"));
    const bool isFound = isAddress(wanted);
    setenv("DBUS_SESSION_BUS_ADDRESS", "", 1);
    const bool isFoundAgain = isAddress(wanted);
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/that/one", 1);
    return isAddress("unix:path=/that/one") && isNone && isMade && isFound && isFoundAgain;
}
}  // namespace

// GLib asks for the runtime folder once, so this is a process of its own.
TEST(BusAddressDeathTest, IsThatOfTheSocketInTheRuntimeFolder)
{
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_EXIT(std::exit(isFoundInTheRuntimeFolder() ? 0 : 1), testing::ExitedWithCode(0), "");
}
