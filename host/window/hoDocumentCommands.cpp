// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoDocumentCommands.h"

#include "host/window/hoBindCommand.h"
#include "host/window/hoCommands.h"
#include "host/window/hoDisplayText.h"
#include "host/window/hoLaunchContext.h"
#include "host/window/hoPropertiesDialog.h"
#include "host/window/hoSummary.h"
#include "host/window/hoTexts.h"
#include "platform/toolkit/gtTextConversion.h"

#include <wx/frame.h>
#include <wx/msgdlg.h>

#include <utility>

namespace
{
const std::size_t mostNameCharacters = 60;
const std::size_t mostUnasked = 10;  // documents that are opened without a question

wxString nameOf(const gtString& path)
{
    return hoQuotedText(hoDisplayText(hoLastComponent(path), mostNameCharacters));
}

wxString failureText(const hoDocumentLauncher::Failure& failure)
{
    switch (failure._problem)
    {
    case hoDocumentLauncher::Problem::Missing:
        return hoFilledText(_("Cannot open %s: there is no such file."), {nameOf(failure._path)});
    case hoDocumentLauncher::Problem::NoProgram:
        return hoFilledText(_("Cannot open %s: the desktop has no program for it."), {nameOf(failure._path)});
    case hoDocumentLauncher::Problem::Refused:
        break;
    }
    return hoFilledText(_("Cannot open %s: %s."), {nameOf(failure._path), hoDisplayText(failure._reason)});
}
}  // namespace

hoDocumentCommands::hoDocumentCommands(wxFrame& frame, const hoKeyRing& keys, Callbacks callbacks)
    : _frame(frame),
      _keys(keys),
      _callbacks(std::move(callbacks)),
      _isTelling(false),
      _launcher(
          {[this](const hoDocumentLauncher::Failure& failure) { addFailure(failure); }, [this](const gtString& path)
           { _callbacks._onNotice(hoFilledText(_("%s is a program; its folder is shown instead"), {nameOf(path)})); }})
{
    hoBindCommand(frame, ID_VIEW_DOCUMENTS, [this] { view(); });
    hoBindCommand(frame, ID_SHOW_IN_FOLDER, [this] { showInFolder(); });
    hoBindCommand(frame, ID_PROPERTIES, [this] { showProperties(); });
}

void hoDocumentCommands::view()
{
    const std::vector<hoDocument> documents = _callbacks._selected();
    if (documents.size() > mostUnasked)
    {
        wxMessageDialog question(
            &_frame,
            hoCounted("Open %s document in its program?", "Open %s documents in their programs?", documents.size()),
            "Countersign", wxOK | wxCANCEL | wxCANCEL_DEFAULT | wxICON_QUESTION);
        question.SetOKCancelLabels(_("&Open all"), _("&Cancel"));
        if (question.ShowModal() != wxID_OK)
        {
            return;
        }
    }
    const hoLaunchContext context;
    for (const hoDocument& document : documents)
    {
        _launcher.open(document._path, context.get());
    }
}

void hoDocumentCommands::showInFolder()
{
    std::vector<gtString> paths;
    for (const hoDocument& document : _callbacks._selected())
    {
        paths.push_back(document._path);
    }
    _launcher.showInFolder(paths, hoLaunchContext().get());
}

void hoDocumentCommands::showProperties()
{
    const std::vector<hoDocument> documents = _callbacks._selected();
    if (documents.size() == 1)
    {
        hoPropertiesDialog(&_frame, documents.front(), _keys).ShowModal();
    }
}

void hoDocumentCommands::addFailure(const hoDocumentLauncher::Failure& failure)
{
    // Never from inside GLib's callback: the message runs a loop of its own.
    _failures.push_back(failure);
    _frame.CallAfter([this] { showFailures(); });
}

void hoDocumentCommands::showFailures()
{
    if (std::exchange(_isTelling, true))
    {
        return;
    }
    while (!_failures.empty())
    {
        const std::vector<hoDocumentLauncher::Failure> failures = std::exchange(_failures, {});
        wxMessageDialog message(&_frame, failureText(failures.front()), "Countersign", wxOK | wxICON_ERROR);
        if (failures.size() > 1)
        {
            message.SetExtendedMessage(hoCounted("%s other document could not be opened, either.",
                                                 "%s other documents could not be opened, either.",
                                                 failures.size() - 1));
        }
        message.ShowModal();
    }
    _isTelling = false;
}
