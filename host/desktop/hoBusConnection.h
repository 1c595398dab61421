// SPDX-License-Identifier: Apache-2.0
// How a connection to the session bus is made.
#ifndef COUNTERSIGN_HO_BUS_CONNECTION_H
#define COUNTERSIGN_HO_BUS_CONNECTION_H

#include <gio/gio.h>

// For an address as hoSessionBusAddress gives it.
inline GDBusConnectionFlags hoBusConnectionFlags()
{
    const int flags = G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION;
    return static_cast<GDBusConnectionFlags>(flags);
}

#endif
