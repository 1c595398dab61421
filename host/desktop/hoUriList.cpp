// SPDX-License-Identifier: Apache-2.0
#include "host/desktop/hoUriList.h"

#include <glib.h>

#include <memory>

#include <unistd.h>

namespace
{
struct Free
{
    void operator()(char* pText) const { g_free(pText); }
};
using Text = std::unique_ptr<char, Free>;

struct FreeTexts
{
    void operator()(char** pTexts) const { g_strfreev(pTexts); }
};
using Texts = std::unique_ptr<char*, FreeTexts>;
}  // namespace

gtString hoThisHost()
{
    char name[256] = "";
    return gethostname(name, sizeof name - 1) == 0 ? name : "";
}

gtString hoPathOfUri(const gtString& uri, const gtString& thisHost)
{
    char* pHost = nullptr;
    const Text path(g_filename_from_uri(uri.asCharArray(), &pHost, nullptr));
    const Text host(pHost);
    const bool isHere = host == nullptr || g_ascii_strcasecmp(host.get(), "localhost") == 0 ||
                        g_ascii_strcasecmp(host.get(), thisHost.asCharArray()) == 0;
    return path != nullptr && isHere ? gtString(path.get()) : gtString();
}

hoUriList hoReadUriList(const gtString& text, const gtString& thisHost)
{
    hoUriList list;
    const Texts entries(g_uri_list_extract_uris(text.asCharArray()));
    for (char** ppEntry = entries.get(); *ppEntry != nullptr; ++ppEntry)
    {
        const gtString path = hoPathOfUri(*ppEntry, thisHost);
        (path.isEmpty() ? list._refused : list._paths).push_back(path.isEmpty() ? gtString(*ppEntry) : path);
    }
    return list;
}
