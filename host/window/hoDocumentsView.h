// SPDX-License-Identifier: Apache-2.0
// The opened documents as the main window shows them: a line of help while there are none, else their list. Owns the
// list of documents, follows their folders, and opens, selects, sorts and closes them.
//
// What happens is reported by the callbacks, which are called at once. _onChange may come several times in one event,
// and does not come from showOutcomes, whose caller knows; so the rest of the window is shown when the event is dealt
// with. The native list is made for the first document. Main thread only.
#ifndef COUNTERSIGN_HO_DOCUMENTS_VIEW_H
#define COUNTERSIGN_HO_DOCUMENTS_VIEW_H

#include "host/documents/hoDocumentList.h"
#include "host/signing/hoSigningJob.h"
#include "host/window/hoFolderWatcher.h"

#include <wx/simplebook.h>

#include <functional>
#include <vector>

class hoDocumentListCtrl;
class wxContextMenuEvent;
class wxKeyEvent;

class hoDocumentsView : public wxSimplebook
{
public:
    struct Callbacks
    {
        std::function<void(const gtString& path, const osFileResult& result)> _onRefused;  // it could not be opened
        std::function<void(const hoDocument& document)> _onOpened;  // also if it was open already
        std::function<void()> _onChange;                            // documents, their states, or what is selected
        // What was found of a document no longer holds, or documents are closed. May be empty.
        std::function<void()> _onOutdated = {};
        // A menu is about to come up. May be empty.
        std::function<void()> _onMenu = {};
    };

    hoDocumentsView(wxWindow* pParent, Callbacks callbacks);

    const hoDocumentList& documents() const { return _documents; }

    // Asks for documents; folder: where the dialog begins. None when the user cancels.
    std::vector<gtString> chooseDocuments(const gtString& folder);
    // Opens the document, or the one that a signature file belongs to, and gives its position, or
    // hoDocumentList::nowhere. Selects nothing.
    std::size_t open(const gtString& path);
    // Opens a document that somebody waits for: it is selected by the next showChanges().
    void openAskedFor(const gtString& path);
    // Opens these and selects them and no others.
    void openAndSelect(const std::vector<gtString>& paths);
    // Selects these rows and no others, and gives them the keyboard; without any everything stays as it is.
    void select(const std::vector<std::size_t>& rows);
    void selectAll();

    std::size_t amountSelected() const;
    // Copies the paths of the selected documents to the clipboard, one a line, and gives their number; 0 if that
    // failed.
    std::size_t copySelectedPaths() const;
    // The selected documents, or all if they are asked for, after a look at their files.
    std::vector<hoDocument> documentsToProcess(bool areAllWanted);

    void closeSelected();
    void closeAll();

    // Looks at all documents again, and watches the folders that they are in.
    void refreshDocuments();

    // What signing or testing has found.
    void showOutcomes(const std::vector<hoSigningOutcome>& outcomes);
    // Drops all that was found. canTest: whether a key is loaded now that could find anything.
    void forgetStates(bool canTest);

    // Shows the list if there are documents, else the line of help; selects what was asked for, and watches the folders
    // of the present documents. To be called when an event that brought changes is dealt with.
    void showChanges();

    // Of the list's columns but the last. Widths can be set before there is a list; empty when there is none.
    void setColumnWidths(const std::vector<int>& widths);
    std::vector<int> columnWidths() const;

private:
    hoDocumentListCtrl& list();
    void bindList();
    void onClosed();
    void watchFolders();
    std::vector<gtString> selectedPaths() const;
    void selectPaths(const std::vector<gtString>& absolutePaths);
    void OnKeyDown(wxKeyEvent& event);
    void OnContextMenu(wxContextMenuEvent& event);
    void sort(hoDocumentList::Column column, bool isAscending);
    void sortAgain();
    std::vector<std::size_t> rowsOf(const std::vector<gtString>& absolutePaths) const;
    void popUpMenu(const wxPoint& where);

    const Callbacks _callbacks;
    hoDocumentList _documents;
    hoFolderWatcher _watcher;
    hoDocumentListCtrl* _pList;  // null until it is needed
    std::vector<int> _columnWidths;
    std::vector<gtString> _askedFor;  // absolute paths that are to be selected
    bool _canTest;
    bool _isSorted;  // else the rows are in the order in which they came
    hoDocumentList::Column _sortedColumn;
    bool _isAscending;
};

#endif
