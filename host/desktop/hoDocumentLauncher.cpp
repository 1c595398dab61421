// SPDX-License-Identifier: Apache-2.0
#include "host/desktop/hoDocumentLauncher.h"

#include "host/desktop/hoBusAddress.h"
#include "host/desktop/hoBusConnection.h"

#include <gio/gio.h>

#include <set>
#include <string>
#include <utility>

namespace
{
const char managerName[] = "org.freedesktop.FileManager1";
const char managerPath[] = "/org/freedesktop/FileManager1";
const char lookedAt[] = G_FILE_ATTRIBUTE_STANDARD_CONTENT_TYPE "," G_FILE_ATTRIBUTE_UNIX_MODE;
const guint32 mayBeRun = 0111;

// Types whose programs run them, whatever their permissions.
const char* const runningTypes[] = {
    "application/x-desktop",    "application/x-ms-dos-executable", "application/x-msdownload",
    "application/x-msi",        "application/x-ms-shortcut",       "application/vnd.microsoft.portable-executable",
    "application/java-archive", "application/x-java-archive",      "application/x-java-jnlp-file",
    "application/vnd.appimage", "application/x-iso9660-appimage"};

struct Unreference
{
    void operator()(gpointer pObject) const { g_object_unref(pObject); }
};
struct FreeError
{
    void operator()(GError* pError) const { g_error_free(pError); }
};
template <class T>
using Object = std::unique_ptr<T, Unreference>;
using Error = std::unique_ptr<GError, FreeError>;

Object<GFile> fileOf(const gtString& path)
{
    return Object<GFile>(g_file_new_for_path(path.asCharArray()));
}

std::string uriOf(const gtString& path)
{
    const Object<GFile> pFile = fileOf(path);
    char* const pUri = g_file_get_uri(pFile.get());
    std::string uri = pUri;
    g_free(pUri);
    return uri;
}

gtString folderOf(const gtString& path)
{
    const std::string_view bytes = path.asStringView();
    const std::size_t end = bytes.rfind('/');
    return end == std::string_view::npos || end == 0 ? gtString("/") : gtString(bytes.substr(0, end));
}

bool wouldRun(GFileInfo* pInfo)
{
    const char* const pType = g_file_info_get_attribute_string(pInfo, G_FILE_ATTRIBUTE_STANDARD_CONTENT_TYPE);
    if (pType == nullptr)
    {
        return false;
    }
    for (const char* pRunning : runningTypes)
    {
        if (g_content_type_is_a(pType, pRunning) != FALSE)
        {
            return true;
        }
    }
    return (g_file_info_get_attribute_uint32(pInfo, G_FILE_ATTRIBUTE_UNIX_MODE) & mayBeRun) != 0 &&
           g_content_type_can_be_executable(pType) != FALSE;
}
}  // namespace

// One request, from its beginning to what comes of it. Each step hands the object on to the next one.
class hoDocumentLauncher::Request
{
public:
    using Owner = std::unique_ptr<Request>;

    Request(std::shared_ptr<Callbacks> pCallbacks, std::vector<gtString> paths, GAppLaunchContext* pContext)
        : _pCallbacks(std::move(pCallbacks)), _paths(std::move(paths))
    {
        if (pContext != nullptr)
        {
            _pContext.reset(G_APP_LAUNCH_CONTEXT(g_object_ref(pContext)));
        }
    }

    static void open(Owner pRequest)
    {
        const Object<GFile> pFile = fileOf(pRequest->_paths.front());
        g_file_query_info_async(pFile.get(), lookedAt, G_FILE_QUERY_INFO_NONE, G_PRIORITY_DEFAULT, nullptr,
                                &Request::onInfo, pRequest.release());
    }

    static void show(Owner pRequest)
    {
        const gtString address = hoSessionBusAddress();
        if (address.isEmpty())
        {
            openFolders(std::move(pRequest));
            return;
        }
        g_dbus_connection_new_for_address(address.asCharArray(), hoBusConnectionFlags(), nullptr, nullptr,
                                          &Request::onConnected, pRequest.release());
    }

private:
    static void onInfo(GObject* pFile, GAsyncResult* pResult, gpointer pData)
    {
        Owner pRequest(static_cast<Request*>(pData));
        GError* pFound = nullptr;
        const Object<GFileInfo> pInfo(g_file_query_info_finish(G_FILE(pFile), pResult, &pFound));
        const Error pError(pFound);
        if (pInfo == nullptr)
        {
            pRequest->fail(pRequest->_paths.front(), *pError);
        }
        else if (wouldRun(pInfo.get()))
        {
            const std::shared_ptr<Callbacks> pCallbacks = pRequest->_pCallbacks;
            const gtString path = pRequest->_paths.front();
            show(std::move(pRequest));
            if (pCallbacks->_onProgram)
            {
                pCallbacks->_onProgram(path);
            }
        }
        else
        {
            launch(std::move(pRequest));
        }
    }

    // The first path, a file's or a folder's.
    static void launch(Owner pRequest)
    {
        const std::string uri = uriOf(pRequest->_paths.front());
        GAppLaunchContext* const pContext = pRequest->_pContext.get();
        g_app_info_launch_default_for_uri_async(uri.c_str(), pContext, nullptr, &Request::onLaunched,
                                                pRequest.release());
    }

    static void onLaunched(GObject*, GAsyncResult* pResult, gpointer pData)
    {
        const Owner pRequest(static_cast<Request*>(pData));
        GError* pFound = nullptr;
        if (g_app_info_launch_default_for_uri_finish(pResult, &pFound) == FALSE)
        {
            const Error pError(pFound);
            pRequest->fail(pRequest->_paths.front(), *pError);
        }
    }

    static void onConnected(GObject*, GAsyncResult* pResult, gpointer pData)
    {
        Owner pRequest(static_cast<Request*>(pData));
        const Object<GDBusConnection> pBus(g_dbus_connection_new_for_address_finish(pResult, nullptr));
        if (pBus == nullptr)
        {
            openFolders(std::move(pRequest));
            return;
        }
        GVariantBuilder uris;
        g_variant_builder_init(&uris, G_VARIANT_TYPE("as"));
        for (const gtString& path : pRequest->_paths)
        {
            g_variant_builder_add(&uris, "s", uriOf(path).c_str());
        }
        // The call keeps the connection.
        g_dbus_connection_call(pBus.get(), managerName, managerPath, managerName, "ShowItems",
                               g_variant_new("(ass)", &uris, ""), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
                               &Request::onShown, pRequest.release());
    }

    static void onShown(GObject* pBus, GAsyncResult* pResult, gpointer pData)
    {
        Owner pRequest(static_cast<Request*>(pData));
        GVariant* const pAnswer = g_dbus_connection_call_finish(G_DBUS_CONNECTION(pBus), pResult, nullptr);
        g_dbus_connection_close(G_DBUS_CONNECTION(pBus), nullptr, nullptr, nullptr);
        if (pAnswer == nullptr)
        {
            openFolders(std::move(pRequest));
            return;
        }
        g_variant_unref(pAnswer);
    }

    static void openFolders(Owner pRequest)
    {
        std::set<gtString> folders;
        for (const gtString& path : pRequest->_paths)
        {
            folders.insert(folderOf(path));
        }
        for (const gtString& folder : folders)
        {
            launch(std::make_unique<Request>(pRequest->_pCallbacks, std::vector<gtString>{folder},
                                             pRequest->_pContext.get()));
        }
    }

    void fail(const gtString& path, const GError& error) const
    {
        Failure failure;
        failure._path = path;
        failure._reason = error.message;
        if (error.domain == G_IO_ERROR && error.code == G_IO_ERROR_NOT_FOUND)
        {
            failure._problem = Problem::Missing;
        }
        else if (error.domain == G_IO_ERROR && error.code == G_IO_ERROR_NOT_SUPPORTED)
        {
            failure._problem = Problem::NoProgram;
        }
        if (_pCallbacks->_onFailure)
        {
            _pCallbacks->_onFailure(failure);
        }
    }

    const std::shared_ptr<Callbacks> _pCallbacks;
    const std::vector<gtString> _paths;  // not empty
    Object<GAppLaunchContext> _pContext;
};

hoDocumentLauncher::hoDocumentLauncher(Callbacks callbacks)
    : _pCallbacks(std::make_shared<Callbacks>(std::move(callbacks)))
{
}

hoDocumentLauncher::~hoDocumentLauncher()
{
    *_pCallbacks = Callbacks();
}

void hoDocumentLauncher::open(const gtString& path, _GAppLaunchContext* pContext)
{
    Request::open(std::make_unique<Request>(_pCallbacks, std::vector<gtString>{path}, pContext));
}

void hoDocumentLauncher::showInFolder(const std::vector<gtString>& paths, _GAppLaunchContext* pContext)
{
    if (!paths.empty())
    {
        Request::show(std::make_unique<Request>(_pCallbacks, paths, pContext));
    }
}
