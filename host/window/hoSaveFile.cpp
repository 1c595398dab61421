// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoSaveFile.h"

#include "host/messages/hoMessages.h"
#include "host/window/hoDisplayText.h"
#include "host/window/hoSummary.h"
#include "host/window/hoTexts.h"
#include "platform/osWrappers/osAtomicFile.h"
#include "platform/toolkit/gtTextConversion.h"

#include <wx/filedlg.h>
#include <wx/msgdlg.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace
{
const std::size_t mostNameCharacters = 60;

// Links lead to the same file as the path itself.
bool isOneOf(const gtString& path, const std::vector<gtString>& files)
{
    return std::any_of(files.begin(), files.end(),
                       [&path](const gtString& file)
                       {
                           std::error_code error;
                           return std::filesystem::equivalent(path.asStringView(), file.asStringView(), error);
                       });
}

// What was in the way; empty when all is written.
wxString write(const gtString& path, const hoSaveFileQuestion& question, const gtString& text)
{
    if (isOneOf(path, question._filesOfKeys))
    {
        return _("it is the file of a loaded key");
    }
    const osWritingResult result = osWriteFileAtomically(path, text.asStringView(), true, question._rights);
    return result.isOk() ? wxString() : gtTextFromBytes(hoWritingReason(result));
}
}  // namespace

void hoSaveFile(wxWindow& parent, const hoSaveFileQuestion& question, const gtString& text)
{
    wxFileDialog dialog(&parent, question._title, wxString(), question._name, question._types,
                        wxFD_SAVE | wxFD_OVERWRITE_PROMPT);
    if (dialog.ShowModal() != wxID_OK)
    {
        return;
    }
    const gtString path = gtPathBytesFromText(dialog.GetPath());
    const wxString reason = write(path, question, text);
    if (!reason.empty())
    {
        const wxString name = hoQuotedText(hoDisplayText(hoLastComponent(path), mostNameCharacters));
        wxMessageDialog(&parent, hoFilledText(question._failure, {name, reason}), "Countersign", wxOK | wxICON_ERROR)
            .ShowModal();
    }
}
