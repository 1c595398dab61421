// SPDX-License-Identifier: Apache-2.0
#include "host/desktop/hoNotification.h"

#include "host/desktop/hoBusAddress.h"
#include "host/desktop/hoBusConnection.h"

#include <gio/gio.h>

#include <memory>

namespace
{
const char serviceName[] = "org.freedesktop.Notifications";
const char servicePath[] = "/org/freedesktop/Notifications";
const char applicationName[] = "Countersign";
const char applicationId[] = "org.countersign.Countersign";
const gint32 usualTime = -1;  // until it goes: as the desktop likes

void onShown(GObject* pBus, GAsyncResult* pResult, gpointer)
{
    GVariant* const pAnswer = g_dbus_connection_call_finish(G_DBUS_CONNECTION(pBus), pResult, nullptr);
    if (pAnswer != nullptr)
    {
        g_variant_unref(pAnswer);
    }
    g_dbus_connection_close(G_DBUS_CONNECTION(pBus), nullptr, nullptr, nullptr);
}

void onConnected(GObject*, GAsyncResult* pResult, gpointer pData)
{
    const std::unique_ptr<const gtString> pLine(static_cast<const gtString*>(pData));
    GDBusConnection* const pBus = g_dbus_connection_new_for_address_finish(pResult, nullptr);
    if (pBus == nullptr)
    {
        return;
    }
    GVariantBuilder actions;
    g_variant_builder_init(&actions, G_VARIANT_TYPE("as"));
    GVariantBuilder hints;
    g_variant_builder_init(&hints, G_VARIANT_TYPE("a{sv}"));
    g_variant_builder_add(&hints, "{sv}", "desktop-entry", g_variant_new_string(applicationId));
    // The summary is the one text in which nothing is markup.
    GVariant* const pArguments = g_variant_new("(susssasa{sv}i)", applicationName, 0U, applicationId,
                                               pLine->asCharArray(), "", &actions, &hints, usualTime);
    g_dbus_connection_call(pBus, serviceName, servicePath, serviceName, "Notify", pArguments, nullptr,
                           G_DBUS_CALL_FLAGS_NONE, -1, nullptr, &onShown, nullptr);
    // The call keeps the connection.
    g_object_unref(pBus);
}
}  // namespace

void hoNotify(const gtString& line)
{
    const gtString address = hoSessionBusAddress();
    if (address.isEmpty() || g_utf8_validate(line.asCharArray(), -1, nullptr) == FALSE)
    {
        return;
    }
    g_dbus_connection_new_for_address(address.asCharArray(), hoBusConnectionFlags(), nullptr, nullptr, &onConnected,
                                      std::make_unique<gtString>(line).release());
}
