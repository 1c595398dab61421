// SPDX-License-Identifier: Apache-2.0
// What can be done with the selected documents outside of the program, and what is known of one: the commands
// ID_VIEW_DOCUMENTS, ID_SHOW_IN_FOLDER and ID_PROPERTIES of the main window. Main thread only.
#ifndef COUNTERSIGN_HO_DOCUMENT_COMMANDS_H
#define COUNTERSIGN_HO_DOCUMENT_COMMANDS_H

#include "host/desktop/hoDocumentLauncher.h"
#include "host/keys/hoKeyRing.h"
#include "host/signing/hoDocument.h"

#include <functional>
#include <vector>

class wxFrame;
class wxString;

class hoDocumentCommands
{
public:
    struct Callbacks
    {
        std::function<std::vector<hoDocument>()> _selected;
        std::function<void(const wxString& text)> _onNotice;
    };

    // From now on the commands of this frame do what they say. The frame goes together with this object; the keys must
    // outlive it.
    hoDocumentCommands(wxFrame& frame, const hoKeyRing& keys, Callbacks callbacks);
    hoDocumentCommands(const hoDocumentCommands&) = delete;
    hoDocumentCommands& operator=(const hoDocumentCommands&) = delete;

private:
    void view();
    void showInFolder();
    void showProperties();
    void addFailure(const hoDocumentLauncher::Failure& failure);
    void showFailures();

    wxFrame& _frame;
    const hoKeyRing& _keys;
    const Callbacks _callbacks;
    std::vector<hoDocumentLauncher::Failure> _failures;  // that were not told yet
    bool _isTelling;
    hoDocumentLauncher _launcher;
};

#endif
