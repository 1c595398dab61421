// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoKeyLoading.h"

#include "host/window/hoDisplayText.h"
#include "host/window/hoPassphraseDialog.h"
#include "host/window/hoSummary.h"

#include <algorithm>

namespace
{
class Asker : public hoIPassphraseSource
{
public:
    Asker(wxWindow* pParent, const wxString& question) : _pParent(pParent), _question(question) {}

    int getPassphrase(char* pBuffer, int size) override
    {
        hoPassphraseDialog dialog(_pParent, _question);
        if (dialog.ShowModal() != wxID_OK)
        {
            return -1;
        }
        const hoTypedSecret passphrase = dialog.passphrase();
        const std::size_t length = std::min(passphrase.text().size(), static_cast<std::size_t>(size));
        std::copy_n(passphrase.text().data(), length, pBuffer);
        return static_cast<int>(length);
    }

private:
    wxWindow* const _pParent;
    const wxString _question;
};
}  // namespace

hoLoadedKey hoLoadKeyAsking(wxWindow* pParent, const gtString& path, hoKeyFileFacts& facts)
{
    const wxString name = hoDisplayText(hoLastComponent(path), 60);
    wxString question = "Passphrase of " + name + ":";
    hoLoadedKey loaded;
    do
    {
        Asker asker(pParent, question);
        facts = hoKeyFileFacts();
        loaded._pKey = hoLoadKeyFile(path, &asker, facts);
        question = "Wrong passphrase. Passphrase of " + name + ":";
    } while (facts._problem == hoKeyFileProblem::WrongPassphrase);
    loaded._path = path;
    loaded._isOpenToOthers = facts._isPrivate && facts._isOpenToOthers;
    loaded._isFolderOpenToOthers = facts._isPrivate && facts._isFolderOpenToOthers;
    return loaded;
}
