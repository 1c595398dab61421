// SPDX-License-Identifier: Apache-2.0
#include "host/desktop/hoBusAddress.h"

#include <gio/gio.h>

#include <cstdlib>

gtString hoSessionBusAddress()
{
    const char* const pAddress = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    if (pAddress != nullptr && *pAddress != '\0')
    {
        return pAddress;
    }
    gtString address;
    char* const pSocket = g_build_filename(g_get_user_runtime_dir(), "bus", nullptr);
    if (g_file_test(pSocket, G_FILE_TEST_EXISTS))
    {
        char* const pEscaped = g_dbus_address_escape_value(pSocket);
        address.append("unix:path=").append(pEscaped);
        g_free(pEscaped);
    }
    g_free(pSocket);
    return address;
}
