// SPDX-License-Identifier: Apache-2.0
// A session bus of the test's own, and on it an object that writes down what it is called with. As long as it is there
// the environment holds its address.
#ifndef COUNTERSIGN_TESTS_RECORDING_BUS_H
#define COUNTERSIGN_TESTS_RECORDING_BUS_H

#include "host/desktop/hoBusConnection.h"

#include <gio/gio.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <string>
#include <thread>
#include <vector>

inline void runMainContextUntil(const std::function<bool()>& condition)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(5);
    while (!condition())
    {
        ASSERT_LT(std::chrono::steady_clock::now(), end);
        if (g_main_context_iteration(nullptr, FALSE) == FALSE)
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
}

class RecordingBus
{
public:
    // interface: its description in XML. answer: what every method of it returns, as the text of a GVariant.
    RecordingBus(const std::string& path, const std::string& interface, const std::string& answer)
        : _pBus(g_test_dbus_new(G_TEST_DBUS_NONE)), _answer(answer)
    {
        keepDisplay([this] { g_test_dbus_up(_pBus); });
        _pService = g_dbus_connection_new_for_address_sync(g_test_dbus_get_bus_address(_pBus), hoBusConnectionFlags(),
                                                           nullptr, nullptr, nullptr);
        _pNode = g_dbus_node_info_new_for_xml(("<node>" + interface + "</node>").c_str(), nullptr);
        g_dbus_connection_register_object(_pService, path.c_str(), _pNode->interfaces[0], &_table, this, nullptr,
                                          nullptr);
    }
    ~RecordingBus()
    {
        if (_name != 0)
        {
            g_bus_unown_name(_name);
        }
        g_dbus_connection_close_sync(_pService, nullptr, nullptr);
        g_object_unref(_pService);
        g_dbus_node_info_unref(_pNode);
        keepDisplay([this] { g_test_dbus_down(_pBus); });
        g_object_unref(_pBus);
    }
    RecordingBus(const RecordingBus&) = delete;
    RecordingBus& operator=(const RecordingBus&) = delete;

    const char* address() const { return g_test_dbus_get_bus_address(_pBus); }

    // From now on the object is reached by this name.
    void takeName(const char* pName)
    {
        _name = g_bus_own_name_on_connection(_pService, pName, G_BUS_NAME_OWNER_FLAGS_NONE, nullptr, nullptr, nullptr,
                                             nullptr);
    }

    // The methods with their arguments, as GVariant prints them.
    const std::string& calls() const { return _calls; }

protected:
    GDBusConnection* service() const { return _pService; }

private:
    // GLib's bus takes the display away, which windows need.
    static void keepDisplay(const std::function<void()>& action)
    {
        const char* const pDisplay = std::getenv("DISPLAY");
        const std::string display = pDisplay == nullptr ? "" : pDisplay;
        action();
        if (!display.empty())
        {
            setenv("DISPLAY", display.c_str(), 1);
        }
    }

    static void onCall(GDBusConnection*, const char*, const char*, const char*, const char* pMethod,
                       GVariant* pArguments, GDBusMethodInvocation* pCall, void* pBus)
    {
        RecordingBus& bus = *static_cast<RecordingBus*>(pBus);
        char* const pText = g_variant_print(pArguments, FALSE);
        bus._calls += std::string(pMethod) + pText;
        g_free(pText);
        g_dbus_method_invocation_return_value(pCall, g_variant_new_parsed(bus._answer.c_str()));
    }

    GTestDBus* const _pBus;
    GDBusConnection* _pService = nullptr;
    GDBusNodeInfo* _pNode = nullptr;
    const GDBusInterfaceVTable _table = {&onCall, nullptr, nullptr, {nullptr}};
    guint _name = 0;
    const std::string _answer;
    std::string _calls;
};

// What a sender tells of its launcher's entry, as a task bar hears it.
class TaskbarBus : public RecordingBus
{
public:
    TaskbarBus() : RecordingBus("/unused", "<interface name='org.example.Unused'/>", "()")
    {
        g_dbus_connection_signal_subscribe(service(), nullptr, "com.canonical.Unity.LauncherEntry", "Update", nullptr,
                                           nullptr, G_DBUS_SIGNAL_FLAGS_NONE, &onSignal, this, nullptr);
        // The bus has the subscription before anything that is sent from now on.
        GVariant* const pAnswer = g_dbus_connection_call_sync(
            service(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId", nullptr,
            nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
        g_variant_unref(pAnswer);
    }

    // The arguments, as GVariant prints them.
    const std::vector<std::string>& updates() const { return _updates; }

private:
    static void onSignal(GDBusConnection*, const char*, const char*, const char*, const char*, GVariant* pArguments,
                         void* pBus)
    {
        char* const pText = g_variant_print(pArguments, FALSE);
        static_cast<TaskbarBus*>(pBus)->_updates.emplace_back(pText);
        g_free(pText);
    }

    std::vector<std::string> _updates;
};

// The one that shows notifications.
class NotificationsBus : public RecordingBus
{
public:
    NotificationsBus()
        : RecordingBus("/org/freedesktop/Notifications",
                       "<interface name='org.freedesktop.Notifications'><method name='Notify'>"
                       "<arg type='s' direction='in'/><arg type='u' direction='in'/><arg type='s' direction='in'/>"
                       "<arg type='s' direction='in'/><arg type='s' direction='in'/><arg type='as' direction='in'/>"
                       "<arg type='a{sv}' direction='in'/><arg type='i' direction='in'/>"
                       "<arg type='u' direction='out'/></method></interface>",
                       "(uint32 1,)")
    {
        takeName("org.freedesktop.Notifications");
    }
};

#endif
