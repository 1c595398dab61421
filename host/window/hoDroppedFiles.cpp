// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoDroppedFiles.h"

#include "host/documents/hoOpenedPaths.h"
#include "host/keys/hoKeyFile.h"
#include "host/window/hoTexts.h"

#include <wx/msgdlg.h>

namespace
{

bool askToOpen(wxWindow& parent, std::size_t amount)
{
    wxMessageDialog question(&parent, hoCounted("Open %s document?", "Open %s documents?", amount), "Countersign",
                             wxOK | wxCANCEL | wxICON_QUESTION);
    question.SetExtendedMessage(_("They are in the folders that were dropped, and in the folders inside."));
    question.SetOKCancelLabels(_("&Open"), _("&Cancel"));
    return question.ShowModal() == wxID_OK;
}

}  // namespace

hoDroppedFiles hoTakeDroppedFiles(wxWindow& parent, const hoUriList& list)
{
    hoDroppedFiles files;
    std::vector<gtString> paths;
    for (const gtString& path : list._paths)
    {
        (hoIsKeyFile(path) ? files._keys : paths).push_back(path);
    }
    files._documents = hoDocumentsMeant(paths);
    const bool areManyFromFolders =
        files._documents.size() > hoMostDroppedUnasked && files._documents.size() > paths.size();
    if (areManyFromFolders && !askToOpen(parent, files._documents.size()))
    {
        files._documents.clear();
    }
    files._documents.insert(files._documents.end(), list._refused.begin(), list._refused.end());
    return files;
}
