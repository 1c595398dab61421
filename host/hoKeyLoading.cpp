#include "host/hoKeyLoading.h"

#include "host/hoDisplayText.h"
#include "host/hoSigningWords.h"

#include <wx/textdlg.h>

#include <algorithm>
#include <cstring>
#include <string>

#include <openssl/crypto.h>

namespace
{
class Asker : public hoIPassphraseSource
{
public:
    Asker(wxWindow* pParent, const wxString& question) : _pParent(pParent), _question(question) {}

    int getPassphrase(char* pBuffer, int size) override
    {
        wxPasswordEntryDialog dialog(_pParent, _question, "Passphrase");
        if (dialog.ShowModal() != wxID_OK)
        {
            return -1;
        }
        std::string passphrase = dialog.GetValue().utf8_string();
        const int length = std::min(static_cast<int>(passphrase.size()), size);
        std::memcpy(pBuffer, passphrase.data(), static_cast<std::size_t>(length));
        OPENSSL_cleanse(passphrase.data(), passphrase.size());
        return length;
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
        question = "That was another passphrase. Passphrase of " + name + ":";
    } while (facts._problem == hoKeyFileProblem::WrongPassphrase);
    loaded._path = path;
    loaded._isOpenToOthers = facts._isPrivate && facts._isOpenToOthers;
    return loaded;
}
