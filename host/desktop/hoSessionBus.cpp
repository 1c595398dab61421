// SPDX-License-Identifier: Apache-2.0
#include "host/desktop/hoSessionBus.h"

#include "host/desktop/hoBusAddress.h"
#include "host/desktop/hoBusConnection.h"
#include "host/desktop/hoUriList.h"

#include <gio/gio.h>

#include <cstdlib>
#include <string>
#include <utility>

namespace
{
// A later start asks the first one to take its documents within so long, and waits a little longer for the answer: what
// it then opens itself is not opened by a first one that has been busy meanwhile.
const gint64 ACCEPTANCE_MICROSECONDS = 5000000;
const int ANSWER_TIMEOUT_MILLISECONDS = 6500;

// In the request's platform data.
const char ACTIVATION_KEY[] = "activation-token";
const char STARTUP_KEY[] = "desktop-startup-id";
// By the system's monotonic clock, in microseconds.
const char DEADLINE_KEY[] = "countersign-deadline";
const char TOO_LATE_ERROR[] = "org.countersign.Countersign.TooLate";

const char INTERFACE_NAME[] = "org.freedesktop.Application";

const char INTROSPECTION[] = "<node>"
                             "<interface name='org.freedesktop.Application'>"
                             "<method name='Activate'><arg type='a{sv}' name='platform_data' direction='in'/></method>"
                             "<method name='Open'>"
                             "<arg type='as' name='uris' direction='in'/>"
                             "<arg type='a{sv}' name='platform_data' direction='in'/>"
                             "</method>"
                             "<method name='ActivateAction'>"
                             "<arg type='s' name='action_name' direction='in'/>"
                             "<arg type='av' name='parameter' direction='in'/>"
                             "<arg type='a{sv}' name='platform_data' direction='in'/>"
                             "</method>"
                             "</interface>"
                             "</node>";

struct Unreference
{
    void operator()(gpointer pObject) const { g_object_unref(pObject); }
};
struct Free
{
    void operator()(gpointer pMemory) const { g_free(pMemory); }
};
using Text = std::unique_ptr<char, Free>;

gtString pathOrUri(const char* pUri)
{
    const gtString path = hoPathOfUri(pUri, hoThisHost());
    return path.isEmpty() ? gtString(pUri) : path;
}

gtString uriOfPath(const gtString& path)
{
    // Makes a relative path absolute and keeps every byte of it, valid text or not.
    const std::unique_ptr<GFile, Unreference> file(g_file_new_for_path(path.asCharArray()));
    const Text uri(g_file_get_uri(file.get()));
    return uri.get();
}

// What the desktop said about the start, so that the window that answers may come to the front.
GVariant* platformData(const gtString& startupId)
{
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("a{sv}"));
    const auto add = [&builder](const char* pValue, const char* pKey)
    {
        if (pValue != nullptr && g_utf8_validate(pValue, -1, nullptr) != FALSE)
        {
            g_variant_builder_add(&builder, "{sv}", pKey, g_variant_new_string(pValue));
        }
    };
    add(std::getenv("XDG_ACTIVATION_TOKEN"), ACTIVATION_KEY);
    add(startupId.isEmpty() ? std::getenv("DESKTOP_STARTUP_ID") : startupId.asCharArray(), STARTUP_KEY);
    g_variant_builder_add(&builder, "{sv}", DEADLINE_KEY,
                          g_variant_new_int64(g_get_monotonic_time() + ACCEPTANCE_MICROSECONDS));
    return g_variant_builder_end(&builder);
}

// Whether a later start has given up waiting for this request. Strangers set no deadline.
bool isTooLate(GVariant* pArguments)
{
    // The last argument of every method.
    GVariant* pData = g_variant_get_child_value(pArguments, g_variant_n_children(pArguments) - 1);
    gint64 deadline = 0;
    const bool isLimited = g_variant_lookup(pData, DEADLINE_KEY, "x", &deadline) != FALSE;
    g_variant_unref(pData);
    return isLimited && g_get_monotonic_time() > deadline;
}

// Empty where the request says nothing of it.
gtString startupIdOf(GVariant* pArguments)
{
    GVariant* pData = g_variant_get_child_value(pArguments, g_variant_n_children(pArguments) - 1);
    const gchar* pId = "";
    if (g_variant_lookup(pData, ACTIVATION_KEY, "&s", &pId) == FALSE)
    {
        g_variant_lookup(pData, STARTUP_KEY, "&s", &pId);
    }
    gtString id(pId);
    g_variant_unref(pData);
    return id;
}
}  // namespace

const char* const hoSessionBus::NAME = "org.countersign.Countersign";
const char* const hoSessionBus::OBJECT_PATH = "/org/countersign/Countersign";

class hoSessionBus::Connection
{
public:
    Connection() = default;
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    ~Connection()
    {
        if (_registration != 0)
        {
            g_dbus_connection_unregister_object(_pBus.get(), _registration);
        }
        if (_pBus)
        {
            // The bus takes the name back with the connection.
            g_dbus_connection_close_sync(_pBus.get(), nullptr, nullptr);
        }
    }

    bool open()
    {
        const gtString address = hoSessionBusAddress();
        if (address.isEmpty())
        {
            return false;
        }
        _pBus.reset(g_dbus_connection_new_for_address_sync(address.asCharArray(), hoBusConnectionFlags(), nullptr,
                                                           nullptr, nullptr));
        return _pBus != nullptr;
    }

    // The object must be there before the name is, since requests may come the moment after.
    bool serve(OpenFunction onOpen, ActivateFunction onActivate, StartupIdFunction onStartupId)
    {
        _onStartupId = std::move(onStartupId);
        _onOpen = std::move(onOpen);
        _onActivate = std::move(onActivate);
        GDBusNodeInfo* pNode = g_dbus_node_info_new_for_xml(INTROSPECTION, nullptr);
        if (pNode == nullptr)
        {
            return false;
        }
        static const GDBusInterfaceVTable table = {&Connection::onMethodCall, nullptr, nullptr, {nullptr}};
        _registration = g_dbus_connection_register_object(_pBus.get(), OBJECT_PATH, pNode->interfaces[0], &table, this,
                                                          nullptr, nullptr);
        g_dbus_node_info_unref(pNode);
        return _registration != 0;
    }

    // True when the name is ours now; "taken" says that somebody else has it.
    bool claimName(bool& taken)
    {
        const guint32 doNotQueue = 4;
        const guint32 primaryOwner = 1;
        const guint32 exists = 3;
        GVariant* pAnswer = g_dbus_connection_call_sync(
            _pBus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
            g_variant_new("(su)", NAME, doNotQueue), G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE,
            ANSWER_TIMEOUT_MILLISECONDS, nullptr, nullptr);
        guint32 answer = 0;
        if (pAnswer != nullptr)
        {
            g_variant_get(pAnswer, "(u)", &answer);
            g_variant_unref(pAnswer);
        }
        taken = answer == exists;
        return answer == primaryOwner;
    }

    // False when the owner is gone or does not answer in time; "isSlow" tells the second.
    bool handOver(const std::vector<gtString>& paths, const gtString& startupId, bool& isSlow)
    {
        GVariant* pArguments = nullptr;
        if (paths.empty())
        {
            pArguments = g_variant_new("(@a{sv})", platformData(startupId));
        }
        else
        {
            GVariantBuilder uris;
            g_variant_builder_init(&uris, G_VARIANT_TYPE("as"));
            for (const gtString& path : paths)
            {
                g_variant_builder_add(&uris, "s", uriOfPath(path).asCharArray());
            }
            pArguments = g_variant_new("(as@a{sv})", &uris, platformData(startupId));
        }
        GError* pError = nullptr;
        GVariant* pAnswer = g_dbus_connection_call_sync(
            _pBus.get(), NAME, OBJECT_PATH, INTERFACE_NAME, paths.empty() ? "Activate" : "Open", pArguments, nullptr,
            G_DBUS_CALL_FLAGS_NO_AUTO_START, ANSWER_TIMEOUT_MILLISECONDS, nullptr, &pError);
        if (pAnswer == nullptr)
        {
            isSlow = g_error_matches(pError, G_IO_ERROR, G_IO_ERROR_TIMED_OUT) != FALSE;
            g_error_free(pError);
            return false;
        }
        g_variant_unref(pAnswer);
        return true;
    }

private:
    static void onMethodCall(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* pMethod,
                             GVariant* pArguments, GDBusMethodInvocation* pInvocation, gpointer pUserData)
    {
        if (isTooLate(pArguments))
        {
            g_dbus_method_invocation_return_dbus_error(pInvocation, TOO_LATE_ERROR, "nobody waits for this any more");
            return;
        }
        Connection* pSelf = static_cast<Connection*>(pUserData);
        const std::string method = pMethod;
        std::vector<gtString> paths;
        if (method == "Open")
        {
            GVariantIter* pUris = nullptr;
            g_variant_get(pArguments, "(asa{sv})", &pUris, nullptr);
            const gchar* pUri = nullptr;
            while (g_variant_iter_next(pUris, "&s", &pUri) != FALSE)
            {
                paths.push_back(pathOrUri(pUri));
            }
            g_variant_iter_free(pUris);
        }
        const gtString startupId = startupIdOf(pArguments);
        g_dbus_method_invocation_return_value(pInvocation, nullptr);
        if (pSelf->_onStartupId && !startupId.isEmpty())
        {
            pSelf->_onStartupId(startupId);
        }

        // Copies, since the function called may end this connection.
        if (!paths.empty())
        {
            const OpenFunction open = pSelf->_onOpen;
            open(paths);
        }
        else
        {
            const ActivateFunction activate = pSelf->_onActivate;
            activate();
        }
    }

    std::unique_ptr<GDBusConnection, Unreference> _pBus;
    guint _registration = 0;
    StartupIdFunction _onStartupId;
    OpenFunction _onOpen;
    ActivateFunction _onActivate;
};

hoSessionBus::hoSessionBus() = default;
hoSessionBus::~hoSessionBus() = default;

void hoSessionBus::leave()
{
    _pConnection.reset();
}

hoSessionBus::Outcome hoSessionBus::start(const std::vector<gtString>& paths, OpenFunction onOpen,
                                          ActivateFunction onActivate)
{
    _pConnection = std::make_unique<Connection>();
    if (!_pConnection->open() || !_pConnection->serve(std::move(onOpen), std::move(onActivate), _onStartupId))
    {
        _pConnection.reset();
        return Outcome::NoBus;
    }
    // The owner may end between the two questions; then the name is free at the second one.
    bool isSlow = false;
    for (int attempt = 0; attempt < 2 && !isSlow; ++attempt)
    {
        bool taken = false;
        if (_pConnection->claimName(taken))
        {
            return Outcome::First;
        }
        if (taken && _pConnection->handOver(paths, _startupId, isSlow))
        {
            _pConnection.reset();
            return Outcome::HandedOver;
        }
    }
    _pConnection.reset();
    return Outcome::NoBus;
}
