// SPDX-License-Identifier: Apache-2.0
#include "host/desktop/hoTaskbarProgress.h"

#include "host/desktop/hoBusAddress.h"
#include "host/desktop/hoBusConnection.h"

#include <algorithm>

namespace
{
// The path only tells one entry of a sender from another.
const char objectPath[] = "/org/countersign/Countersign/LauncherEntry";
const char interfaceName[] = "com.canonical.Unity.LauncherEntry";
const char entry[] = "application://org.countersign.Countersign.desktop";
const double hundred = 100;

void closeBus(GObject* pBus, GAsyncResult* pResult, gpointer)
{
    g_dbus_connection_flush_finish(G_DBUS_CONNECTION(pBus), pResult, nullptr);
    g_dbus_connection_close(G_DBUS_CONNECTION(pBus), nullptr, nullptr, nullptr);
}
}  // namespace

// One connection for one piece of work. It keeps itself until the bus has answered.
class hoTaskbarProgress::Connection : public std::enable_shared_from_this<Connection>
{
public:
    void open()
    {
        const gtString address = hoSessionBusAddress();
        if (!address.isEmpty())
        {
            g_dbus_connection_new_for_address(
                address.asCharArray(), hoBusConnectionFlags(), nullptr, nullptr, &Connection::onConnected,
                std::make_unique<std::shared_ptr<Connection>>(shared_from_this()).release());
        }
    }

    void show(int percent)
    {
        _percent = percent;
        emit(true);
    }

    void end()
    {
        _isOver = true;
        if (_pBus != nullptr)
        {
            emit(false);
            // It is kept until it is flushed.
            g_dbus_connection_flush(_pBus, nullptr, &closeBus, nullptr);
            g_object_unref(_pBus);
            _pBus = nullptr;
        }
    }

private:
    static void onConnected(GObject*, GAsyncResult* pResult, gpointer pData)
    {
        const std::unique_ptr<std::shared_ptr<Connection>> pOwner(static_cast<std::shared_ptr<Connection>*>(pData));
        Connection& self = **pOwner;
        self._pBus = g_dbus_connection_new_for_address_finish(pResult, nullptr);
        if (self._pBus == nullptr)
        {
            return;
        }
        if (self._isOver)
        {
            // Nothing has been shown.
            g_dbus_connection_close(self._pBus, nullptr, nullptr, nullptr);
            g_object_unref(self._pBus);
            self._pBus = nullptr;
            return;
        }
        self.emit(true);
    }

    void emit(bool isVisible) const
    {
        if (_pBus == nullptr)
        {
            return;
        }
        GVariantBuilder properties;
        g_variant_builder_init(&properties, G_VARIANT_TYPE("a{sv}"));
        g_variant_builder_add(&properties, "{sv}", "progress", g_variant_new_double(_percent / hundred));
        g_variant_builder_add(&properties, "{sv}", "progress-visible", g_variant_new_boolean(isVisible ? TRUE : FALSE));
        g_dbus_connection_emit_signal(_pBus, nullptr, objectPath, interfaceName, "Update",
                                      g_variant_new("(sa{sv})", entry, &properties), nullptr);
    }

    GDBusConnection* _pBus = nullptr;
    int _percent = 0;
    bool _isOver = false;
};

hoTaskbarProgress::hoTaskbarProgress() : _percent(0) {}

hoTaskbarProgress::~hoTaskbarProgress()
{
    end();
}

void hoTaskbarProgress::show(double part)
{
    const int percent = static_cast<int>(std::clamp(part, 0.0, 1.0) * hundred);
    if (_pConnection == nullptr)
    {
        _pConnection = std::make_shared<Connection>();
        _pConnection->show(percent);
        _pConnection->open();
    }
    else if (percent != _percent)
    {
        _pConnection->show(percent);
    }
    _percent = percent;
}

void hoTaskbarProgress::end()
{
    if (_pConnection != nullptr)
    {
        _pConnection->end();
        _pConnection.reset();
    }
}
