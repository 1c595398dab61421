// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoDocumentsView.h"

#include "host/documents/hoOpenedPaths.h"
#include "host/window/hoClipboard.h"
#include "host/window/hoCommands.h"
#include "host/window/hoDocumentListCtrl.h"
#include "host/window/hoIcons.h"
#include "host/window/hoMenuBar.h"
#include "host/window/hoSummary.h"
#include "host/window/hoTexts.h"
#include "platform/toolkit/gtTextConversion.h"

#include <wx/button.h>
#include <wx/filedlg.h>
#include <wx/panel.h>
#include <wx/settings.h>
#include <wx/sizer.h>
#include <wx/statbmp.h>
#include <wx/stattext.h>
#include <wx/wupdlock.h>

#include <algorithm>
#include <numeric>
#include <utility>

namespace
{
enum Page
{
    PAGE_EMPTY = 0,
    PAGE_LIST = 1
};

const wxSize pictureSize(64, 64);

wxPanel* makeEmptyPage(wxWindow* pParent)
{
    auto* pPage = new wxPanel(pParent);
    auto* pPicture = new wxStaticBitmap(pPage, wxID_ANY, hoApplicationPicture().GetBitmap(pPage->FromDIP(pictureSize)));
    struct Step
    {
        const char* _text;
        int _command;
        const char* _button;
    };
    const Step steps[] = {
        {wxTRANSLATE("1.  Load a key: a private one to sign, a public one to test."), ID_LOAD_PRIVATE_KEY,
         wxTRANSLATE("Load &private key...")},
        {"", ID_LOAD_PUBLIC_KEY, wxTRANSLATE("Load p&ublic keys...")},
        {"", ID_NEW_KEY_PAIR, wxTRANSLATE("&New key pair...")},
        {wxTRANSLATE("2.  Drop documents here, or choose File > Open (Ctrl+O)."), wxID_OPEN,
         wxTRANSLATE("&Open documents...")},
        {wxTRANSLATE("3.  Sign them (Ctrl+S), or test their signatures (Ctrl+T)."), wxID_NONE, nullptr},
    };
    pPage->SetBackgroundColour(wxSystemSettings::GetColour(wxSYS_COLOUR_LISTBOX));
    auto* pSteps = new wxFlexGridSizer(2, pPage->FromDIP(wxSize(24, 6)));
    for (const Step& step : steps)
    {
        auto* pText = new wxStaticText(pPage, wxID_ANY, *step._text == 0 ? wxString() : wxGetTranslation(step._text));
        pText->SetForegroundColour(wxSystemSettings::GetColour(wxSYS_COLOUR_LISTBOXTEXT));
        pSteps->Add(pText, wxSizerFlags().CentreVertical());
        if (step._command == wxID_OPEN)
        {
            pText->SetName("emptyLine");
        }
        if (step._button == nullptr)
        {
            continue;
        }
        auto* pButton = new wxButton(pPage, step._command, wxGetTranslation(step._button));
        // What the menu's entry does.
        pButton->Bind(wxEVT_BUTTON, [pPage, command = step._command](wxCommandEvent&)
                      { pPage->GetEventHandler()->QueueEvent(new wxCommandEvent(wxEVT_MENU, command)); });
        pSteps->Add(pButton, wxSizerFlags().Expand());
    }

    auto* pTop = new wxBoxSizer(wxVERTICAL);
    pTop->AddStretchSpacer(2);
    pTop->Add(pPicture, wxSizerFlags().CentreHorizontal());
    pTop->Add(pSteps, wxSizerFlags().CentreHorizontal().TripleBorder());
    pTop->AddStretchSpacer(3);
    pPage->SetSizer(pTop);
    return pPage;
}
}  // namespace

hoDocumentsView::hoDocumentsView(wxWindow* pParent, Callbacks callbacks)
    : wxSimplebook(pParent),
      _callbacks(std::move(callbacks)),
      _watcher([this] { refreshDocuments(); }),
      _pList(nullptr),
      _canTest(false),
      _isSorted(false),
      _sortedColumn(hoDocumentList::Column::Name),
      _isAscending(true)
{
    AddPage(makeEmptyPage(this), "empty");
    SetMinSize(wxSize(1, 1));
}

std::vector<gtString> hoDocumentsView::chooseDocuments(const gtString& folder)
{
    std::vector<gtString> paths;
    wxFileDialog dialog(this, _("Open documents"), gtPathTextFromBytes(folder), wxString(),
                        wxFileSelectorDefaultWildcardStr, wxFD_OPEN | wxFD_MULTIPLE);
    if (dialog.ShowModal() == wxID_OK)
    {
        wxArrayString pathTexts;
        dialog.GetPaths(pathTexts);
        for (const wxString& pathText : pathTexts)
        {
            paths.push_back(gtPathBytesFromText(pathText));
        }
    }
    return paths;
}

std::size_t hoDocumentsView::open(const gtString& path)
{
    const hoDocumentList::Opening opening = _documents.open(hoDocumentMeant(path));
    if (!opening._result.isOk())
    {
        _callbacks._onRefused(path, opening._result);
    }
    else
    {
        if (opening._isNew)
        {
            // New documents come last, so the rows are no longer in the order of a column.
            list().removeSortIndicator();
            _isSorted = false;
        }
        list().showNew();
        list().showChanged({opening._position});
        _callbacks._onOpened(_documents[opening._position]);
    }
    _callbacks._onChange();
    return opening._position;
}

void hoDocumentsView::openAskedFor(const gtString& path)
{
    const std::size_t row = open(path);
    if (row != hoDocumentList::nowhere)
    {
        _askedFor.push_back(_documents[row]._path);
    }
}

void hoDocumentsView::openAndSelect(const std::vector<gtString>& paths)
{
    std::vector<std::size_t> rows;
    {
        const wxWindowUpdateLocker noPainting(this);
        for (const gtString& path : paths)
        {
            const std::size_t row = open(path);
            if (row != hoDocumentList::nowhere)
            {
                rows.push_back(row);
            }
        }
    }
    select(rows);
}

void hoDocumentsView::select(const std::vector<std::size_t>& rows)
{
    if (!rows.empty())
    {
        list();
        ChangeSelection(PAGE_LIST);
        list().select(rows);
        list().SetFocus();
    }
}

void hoDocumentsView::selectPaths(const std::vector<gtString>& absolutePaths)
{
    select(rowsOf(absolutePaths));
}

std::vector<std::size_t> hoDocumentsView::rowsOf(const std::vector<gtString>& absolutePaths) const
{
    std::vector<std::size_t> rows;
    for (const gtString& path : absolutePaths)
    {
        const std::size_t row = _documents.positionOf(path);
        if (row != hoDocumentList::nowhere)
        {
            rows.push_back(row);
        }
    }
    return rows;
}

void hoDocumentsView::selectAll()
{
    if (_pList != nullptr)
    {
        _pList->SetFocus();
        _pList->selectAllRows();
    }
}

std::size_t hoDocumentsView::amountSelected() const
{
    return _pList == nullptr ? 0 : _pList->amountSelected();
}

std::vector<gtString> hoDocumentsView::selectedPaths() const
{
    std::vector<gtString> paths;
    if (_pList != nullptr)
    {
        for (const std::size_t row : _pList->selected())
        {
            paths.push_back(_documents[row]._path);
        }
    }
    return paths;
}

std::size_t hoDocumentsView::copySelectedPaths() const
{
    const std::vector<gtString> paths = selectedPaths();
    wxString text;
    for (const gtString& path : paths)
    {
        text += (text.empty() ? "" : "\n") + gtTextFromBytes(path);
    }
    return !paths.empty() && hoCopyText(text) ? paths.size() : 0;
}

std::vector<hoDocument> hoDocumentsView::documentsToProcess(bool areAllWanted)
{
    std::vector<std::size_t> rows;
    if (!areAllWanted && _pList != nullptr)
    {
        rows = _pList->selected();
    }
    const std::size_t amount = areAllWanted ? _documents.size() : rows.size();
    std::vector<hoDocument> documents;
    documents.reserve(amount);
    for (std::size_t i = 0; i < amount; ++i)
    {
        const std::size_t position = areAllWanted ? i : rows[i];
        _documents.refresh(position);
        documents.push_back(_documents[position]);
    }
    return documents;
}

void hoDocumentsView::closeSelected()
{
    const std::vector<std::size_t> rows = _pList == nullptr ? std::vector<std::size_t>() : _pList->selected();
    if (rows.empty())
    {
        return;
    }
    _documents.close(rows);
    list().showClosed(rows);
    // The row that takes the place of the closed one is selected, so that a key pressed again closes the next.
    list().select(_documents.isEmpty() ? std::vector<std::size_t>()
                                       : std::vector<std::size_t>{std::min(rows.front(), _documents.size() - 1)});
    onClosed();
}

void hoDocumentsView::closeAll()
{
    std::vector<std::size_t> rows(_documents.size());
    std::iota(rows.begin(), rows.end(), std::size_t(0));
    _documents.closeAll();
    list().showClosed(rows);
    onClosed();
}

void hoDocumentsView::onClosed()
{
    // A result counts documents that are no longer there.
    if (_callbacks._onOutdated)
    {
        _callbacks._onOutdated();
    }
    _callbacks._onChange();
}

void hoDocumentsView::refreshDocuments()
{
    std::vector<gtString> changed;
    bool isOutdated = false;
    for (std::size_t position = 0; position < _documents.size(); ++position)
    {
        const hoDocumentState before = _documents[position]._verdict._state;
        if (_documents.refresh(position))
        {
            changed.push_back(_documents[position]._path);
        }
        isOutdated = _documents[position]._verdict._state != before || isOutdated;
    }
    if (isOutdated && _callbacks._onOutdated)
    {
        _callbacks._onOutdated();
    }
    if (!changed.empty())
    {
        sortAgain();
        list().showChanged(rowsOf(changed));
        _callbacks._onChange();
    }
    watchFolders();
}

void hoDocumentsView::watchFolders()
{
    std::set<gtString> folders;
    for (std::size_t position = 0; position < _documents.size(); ++position)
    {
        folders.insert(_documents[position].folder());
    }
    _watcher.watch(folders);
}

void hoDocumentsView::showOutcomes(const std::vector<hoSigningOutcome>& outcomes)
{
    wxString longest;
    gtString lastKey;
    std::vector<gtString> paths;
    paths.reserve(outcomes.size());
    for (const hoSigningOutcome& outcome : outcomes)
    {
        _documents.setVerdict(outcome._path, outcome._verdict);
        paths.push_back(outcome._path);
        if (outcome._verdict._keyName != lastKey)
        {
            lastKey = outcome._verdict._keyName;
            const wxString words = hoVerdictWords(outcome._verdict, _canTest);
            longest = words.length() > longest.length() ? words : longest;
        }
    }
    sortAgain();
    list().makeRoomForState(longest);
    list().showChanged(rowsOf(paths));
}

void hoDocumentsView::forgetStates(bool canTest)
{
    _canTest = canTest;
    _documents.forgetStates();
    if (_pList != nullptr)
    {
        sortAgain();
        _pList->showStates(canTest);
    }
    _callbacks._onChange();
}

void hoDocumentsView::showChanges()
{
    const int page = _documents.isEmpty() ? PAGE_EMPTY : PAGE_LIST;
    if (GetSelection() != page)
    {
        if (page == PAGE_LIST)
        {
            list();
        }
        ChangeSelection(static_cast<std::size_t>(page));
    }
    selectPaths(std::exchange(_askedFor, {}));
    watchFolders();
}

void hoDocumentsView::setColumnWidths(const std::vector<int>& widths)
{
    _columnWidths = widths;
    if (_pList != nullptr)
    {
        _pList->setColumnWidths(widths);
    }
}

std::vector<int> hoDocumentsView::columnWidths() const
{
    return _pList == nullptr ? std::vector<int>() : _pList->columnWidths();
}

hoDocumentListCtrl& hoDocumentsView::list()
{
    if (_pList == nullptr)
    {
        _pList = new hoDocumentListCtrl(this, _documents,
                                        {[this] { _callbacks._onChange(); },
                                         [this](hoDocumentList::Column column, bool isAscending)
                                         { sort(column, isAscending); }});
        AddPage(_pList, "documents");
        // The rows scroll: the window may be narrower than all columns together.
        _pList->SetMinSize(wxSize(1, 1));
        _pList->showStates(_canTest);
        _pList->setColumnWidths(_columnWidths);
        bindList();
    }
    return *_pList;
}

void hoDocumentsView::bindList()
{
    // By Return or a double click.
    _pList->Bind(wxEVT_DATAVIEW_ITEM_ACTIVATED, [this](wxDataViewEvent&)
                 { GetParent()->GetEventHandler()->QueueEvent(new wxCommandEvent(wxEVT_MENU, ID_VIEW_DOCUMENTS)); });
    _pList->Bind(wxEVT_KEY_DOWN, &hoDocumentsView::OnKeyDown, this);
    _pList->Bind(wxEVT_CONTEXT_MENU, &hoDocumentsView::OnContextMenu, this);
    _pList->Bind(wxEVT_DATAVIEW_ITEM_CONTEXT_MENU, [this](wxDataViewEvent&) { popUpMenu(wxDefaultPosition); });
}

void hoDocumentsView::OnKeyDown(wxKeyEvent& event)
{
    if (event.GetKeyCode() == WXK_SPACE && !event.HasAnyModifiers() && !event.ShiftDown())
    {
        // The list's own meaning of it is that of Return.
        list().toggleCurrent();
        return;
    }
    if (event.GetKeyCode() == WXK_DELETE || event.GetKeyCode() == WXK_NUMPAD_DELETE)
    {
        GetParent()->GetEventHandler()->QueueEvent(new wxCommandEvent(wxEVT_MENU, ID_CLOSE_DOCUMENTS));
    }
    event.Skip();
}

void hoDocumentsView::OnContextMenu(wxContextMenuEvent& event)
{
    if (event.GetPosition() != wxDefaultPosition)
    {
        // By the mouse: the list selects the row first, and calls by an event of its own.
        event.Skip();
        return;
    }
    const std::size_t row = list().current();
    const wxRect place = row == hoDocumentList::nowhere ? wxRect() : list().placeOf(row);
    popUpMenu(place.IsEmpty() ? wxDefaultPosition : place.GetBottomLeft());
}

void hoDocumentsView::popUpMenu(const wxPoint& where)
{
    wxMenu menu;
    hoFillContextMenu(menu);
    if (_callbacks._onMenu)
    {
        _callbacks._onMenu();
    }
    list().PopupMenu(&menu, where);
}

void hoDocumentsView::sort(hoDocumentList::Column column, bool isAscending)
{
    _isSorted = true;
    _sortedColumn = column;
    _isAscending = isAscending;
    sortAgain();
}

void hoDocumentsView::sortAgain()
{
    if (_isSorted)
    {
        list().showOrder(_documents.sort(_sortedColumn, _isAscending));
    }
}
