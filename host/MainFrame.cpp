// SPDX-License-Identifier: Apache-2.0
#include "host/MainFrame.h"

#include "app/ApplicationShell.h"
#include "host/assertions/hoAssertionReport.h"
#include "host/assertions/hoInteractiveAssertionFailureHandler.h"
#include "host/documents/hoDocumentArguments.h"
#include "host/window/hoAssertionReportWindow.h"
#include "host/window/hoDisplayText.h"
#include "host/window/hoDocumentDropTarget.h"
#include "host/window/hoDocumentListCtrl.h"
#include "host/window/hoHelp.h"
#include "host/window/hoIcons.h"
#include "host/window/hoKeyLoading.h"
#include "host/window/hoNewKeyDialog.h"
#include "host/window/hoProgressDialog.h"
#include "host/window/hoTextDialog.h"
#include "host/window/hoTextsDialog.h"
#include "platform/baseTools/gtAssertionFailureHandlerRegistry.h"
#include "platform/baseTools/gtBytes.h"
#include "platform/osWrappers/osProcess.h"
#include "platform/toolkit/gtTextConversion.h"

#include <wx/filedlg.h>
#include <wx/infobar.h>
#include <wx/menu.h>
#include <wx/msgdlg.h>
#include <wx/panel.h>
#include <wx/settings.h>
#include <wx/simplebook.h>
#include <wx/sizer.h>
#include <wx/statbmp.h>
#include <wx/stattext.h>
#include <wx/statusbr.h>
#include <wx/stdpaths.h>
#include <wx/wupdlock.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace
{
enum
{
    ID_CLOSE_DOCUMENTS = wxID_HIGHEST + 1,
    ID_CLOSE_ALL_DOCUMENTS,
    ID_COPY_PATH,
    ID_CLEAR_RECENT,
    ID_LOAD_PRIVATE_KEY,
    ID_LOAD_PUBLIC_KEY,
    ID_NEW_KEY_PAIR,
    ID_TEXTS,
    ID_FORGET_KEYS,
    ID_SIGN,
    ID_SIGN_ALL,
    ID_TEST,
    ID_TEST_ALL,
    ID_ASSERTION_DIALOGS,
    ID_FAIL_ASSERTION,
    ID_ASSERTION_REPORT,
    ID_SHOW_DETAILS,
    ID_RECENT_FIRST,
    ID_RECENT_LAST = ID_RECENT_FIRST + static_cast<int>(hoRecentDocuments::mostDocuments) - 1
};

enum Page
{
    PAGE_EMPTY = 0,
    PAGE_LIST = 1
};

enum StatusField
{
    STATUS_TALK = 0,
    STATUS_KEYS = 1,
    STATUS_DOCUMENTS = 2,
    STATUS_FIELDS = 3
};

const wxSize defaultSize(900, 520);
const wxSize leastSize(520, 320);
const wxSize pictureSize(64, 64);
const std::size_t mostNameCharacters = 60;
const int progressInterval = 50;    // milliseconds between two looks at a work
const long patienceWithWork = 500;  // milliseconds until a progress dialog appears
const std::size_t mostRefusalsListed = 1000;

wxString quoted(const wxString& text)
{
    return wxUniChar(0x201C) + text + wxUniChar(0x201D);
}

bool isLostArgument(const gtString& argument)
{
    return !argument.isEmpty() && wxConvLocal.cMB2WC(argument.asCharArray()).length() == 0;
}

std::vector<gtString> applicationArguments()
{
    std::vector<gtString> arguments;
    const wxArrayString& texts = wxTheApp->argv.GetArguments();
    for (const wxString& text : texts)
    {
        arguments.push_back(gtBytesFromArgument(text));
    }
    const std::vector<gtString> ofProcess = hoProcessArguments();
    const bool isProgramName = !ofProcess.empty() && !arguments.empty() && arguments[0] == ofProcess[0];
    if (texts.size() == 1 && texts[0].StartsWith("/") && !isProgramName)
    {
        // Perhaps a document that arrived before the window: those are kept as path texts.
        return {gtPathBytesFromText(texts[0])};
    }
    return hoWithLostArguments(arguments, ofProcess, isLostArgument);
}

std::string programPath()
{
    return hoToBytes(gtPathBytesFromText(wxStandardPaths::Get().GetExecutablePath()));
}

// The documents among the application's arguments, those that arrived before the window included.
std::vector<gtString> argumentDocuments()
{
    if (wxTheApp == nullptr)
    {
        return {};
    }
    return hoDocumentArguments(applicationArguments(), hoToText(programPath()));
}

// The toolkit's numbers of a window's place, to the settings and back.
class PlaceWriter : public wxTopLevelWindow::GeometrySerializer
{
public:
    explicit PlaceWriter(hoSettings& settings) : _settings(settings) {}

    bool SaveField(const wxString& name, int value) const override
    {
        _settings.setNumber(("window." + name).ToStdString(), value);
        return true;
    }
    bool RestoreField(const wxString&, int*) override { return false; }

private:
    hoSettings& _settings;
};

class PlaceReader : public wxTopLevelWindow::GeometrySerializer
{
public:
    explicit PlaceReader(const hoSettings& settings) : _settings(settings) {}

    bool SaveField(const wxString&, int) const override { return false; }
    bool RestoreField(const wxString& name, int* pValue) override
    {
        const long none = -1000000;
        const long most = 100000;
        const long value = _settings.number(("window." + name).ToStdString(), none, -most, most);
        if (value == none)
        {
            return false;
        }
        *pValue = static_cast<int>(value);
        return true;
    }

private:
    const hoSettings& _settings;
};

wxPanel* makeEmptyPage(wxWindow* pParent)
{
    auto* pPage = new wxPanel(pParent);
    auto* pPicture = new wxStaticBitmap(pPage, wxID_ANY, hoApplicationPicture().GetBitmap(pPage->FromDIP(pictureSize)));
    auto* pLine = new wxStaticText(pPage, wxID_ANY, "Drop documents here, or choose File > Open (Ctrl+O).");
    pLine->SetName("emptyLine");
    pPage->SetBackgroundColour(wxSystemSettings::GetColour(wxSYS_COLOUR_LISTBOX));
    pLine->SetForegroundColour(wxSystemSettings::GetColour(wxSYS_COLOUR_LISTBOXTEXT));

    auto* pTop = new wxBoxSizer(wxVERTICAL);
    pTop->AddStretchSpacer(2);
    pTop->Add(pPicture, wxSizerFlags().CentreHorizontal());
    pTop->Add(pLine, wxSizerFlags().CentreHorizontal().TripleBorder());
    pTop->AddStretchSpacer(3);
    pPage->SetSizer(pTop);
    return pPage;
}
}  // namespace

MainFrame::MainFrame()
    : wxFrame(nullptr, wxID_ANY, "Countersign", wxDefaultPosition, defaultSize),
      _isHandedOver(false),
      _watcher([this] { refreshDocuments(); }),
      _areChangesPending(false),
      _isRecentChanged(false),
      _isFrontWanted(false),
      _canRemember(true),
      _pAssertionReport(std::make_shared<hoAssertionReport>()),
      _pProgressDialog(nullptr),
      _pReportWindow(nullptr),
      _pRecentMenu(nullptr),
      _pMessageBar(nullptr),
      _pPages(nullptr),
      _pList(nullptr)
{
    // Private keys and passphrases will be in memory.
    osWriteNoCoreFiles();
    _isHandedOver = handOverArguments();
    if (_isHandedOver)
    {
        CallAfter([this] { Destroy(); });
        return;
    }
    SetIcons(hoApplicationIcons());

    makeMenus();
    _pPages = new wxSimplebook(this);
    _pPages->AddPage(makeEmptyPage(_pPages), "empty");
    CreateStatusBar(STATUS_FIELDS);
    const int statusWidths[STATUS_FIELDS] = {-4, -5, -4};
    SetStatusWidths(STATUS_FIELDS, statusWidths);
    SetDropTarget(new hoDocumentDropTarget(*this, [this](const hoUriList& list) { openDropped(list); }));

    loadSettings();
    for (std::size_t oldest = _settings.texts("recent").size(); oldest > 0; --oldest)
    {
        _recent.add(hoToText(_settings.texts("recent")[oldest - 1]));
    }
    fillRecentMenu();
    showStatus();

    bindEvents();

    auto* pTop = new wxBoxSizer(wxVERTICAL);
    pTop->Add(_pPages, wxSizerFlags(1).Expand());
    SetSizer(pTop);
    _pPages->SetMinSize(wxSize(1, 1));
    SetMinSize(FromDIP(leastSize));
    restorePlace();
    _pPages->SetFocus();

    _pEndSignals = std::make_unique<hoEndSignals>(
        [this](int signal)
        {
            tidyUp();
            hoEndSignals::endBy(signal);
        });
    _pDisplayLoss = std::make_unique<hoDisplayLoss>([this] { _pWork.reset(); });
    CallAfter(&MainFrame::openArguments);
}

MainFrame::~MainFrame()
{
    setAssertionDialogs(false);
}

void MainFrame::openFilePath(const gtString& path, bool isAskedFor)
{
    const std::size_t row = openQuietly(path);
    if (isAskedFor)
    {
        _isFrontWanted = true;
        if (row != hoDocumentList::nowhere)
        {
            _askedFor.push_back(_documents[row]._path);
        }
    }
}

wxString MainFrame::refusalMessage() const
{
    if (_refusals.empty())
    {
        return wxString();
    }
    if (_refusals.size() > 1)
    {
        return hoNumberText(_refusals.size()) + " documents could not be opened.";
    }
    const auto& [path, problem] = _refusals.front();
    return "Cannot open " + quoted(hoDisplayText(hoLastComponent(path), mostNameCharacters)) + ": " +
           hoFileProblemText(problem) + ".";
}

void MainFrame::setAssertionDialogs(bool areOn)
{
    if (areOn == hasAssertionDialogs())
    {
        return;
    }
    ahDialogBasedAssertionFailureHandler* pSilentHandler = silentHandler();
    if (areOn)
    {
        _pInteractiveHandler =
            std::make_shared<hoInteractiveAssertionFailureHandler>(osGetCurrentThreadId(), _pAssertionReport);
        gtRegisterAssertionFailureHandler(_pInteractiveHandler.get());
        gtUnRegisterAssertionFailureHandler(pSilentHandler);
    }
    else
    {
        // Null once the application has let its handler go; then there is nothing to put back.
        gtRegisterAssertionFailureHandler(pSilentHandler);
        gtUnRegisterAssertionFailureHandler(_pInteractiveHandler.get());
        _pInteractiveHandler.reset();
    }
}

void MainFrame::makeMenus()
{
    auto* pFile = new wxMenu;
    pFile->Append(wxID_OPEN, "&Open...\tCtrl+O", "Open documents, several at once");
    _pRecentMenu = new wxMenu;
    pFile->AppendSubMenu(_pRecentMenu, "Open &recent", "Open a document that was open before");
    pFile->AppendSeparator();
    pFile->Append(ID_CLOSE_DOCUMENTS, "&Close\tCtrl+W", "Take the selected documents out of the list; the files stay");
    pFile->Append(ID_CLOSE_ALL_DOCUMENTS, "Close &all\tCtrl+Shift+W",
                  "Take all documents out of the list; the files stay");
    pFile->AppendSeparator();
    pFile->Append(wxID_EXIT, "&Quit\tCtrl+Q", "Close the window and end the application");

    auto* pEdit = new wxMenu;
    pEdit->Append(ID_COPY_PATH, "&Copy path\tCtrl+C", "Copy the paths of the selected documents, one a line");
    pEdit->Append(wxID_SELECTALL, "Select &all\tCtrl+A", "Select all documents");

    auto* pKey = new wxMenu;
    pKey->Append(ID_LOAD_PRIVATE_KEY, "Load p&rivate key...\tCtrl+K", "Load the key that signs, from a PEM file");
    pKey->Append(ID_LOAD_PUBLIC_KEY, "Load p&ublic key...\tCtrl+Shift+K",
                 "Load the key that tests somebody's signatures, from a PEM file");
    pKey->AppendSeparator();
    pKey->Append(ID_NEW_KEY_PAIR, "&New key pair...", "Make a private key and its public partner");
    pKey->Append(ID_TEXTS, "&Texts...\tCtrl+E", "Encrypt and decrypt short texts with the loaded keys");
    pKey->AppendSeparator();
    pKey->Append(ID_FORGET_KEYS, "&Forget keys", "Take the loaded keys out of memory; their files stay");

    auto* pSignature = new wxMenu;
    pSignature->Append(ID_SIGN, "&Sign\tCtrl+S", "Sign the selected documents, or all if none is selected");
    pSignature->Append(ID_TEST, "&Test\tCtrl+T", "Test the signatures of the selected documents, or all");
    pSignature->AppendSeparator();
    pSignature->Append(ID_SIGN_ALL, "Sign &all\tCtrl+Shift+S", "Sign all documents");
    pSignature->Append(ID_TEST_ALL, "Test a&ll\tCtrl+Shift+T", "Test the signatures of all documents");

    auto* pDeveloper = new wxMenu;
    pDeveloper->AppendCheckItem(ID_ASSERTION_DIALOGS, "&Assertion dialogs",
                                "Show a dialog for each failed assertion instead of staying silent");
    pDeveloper->Append(ID_FAIL_ASSERTION, "&Fail an assertion", "Fail one assertion, to see what happens then");
    pDeveloper->AppendSeparator();
    pDeveloper->Append(ID_ASSERTION_REPORT, "Assertion &report...",
                       "Show where assertions have failed while there were dialogs for them");

    auto* pHelp = new wxMenu;
    pHelp->Append(wxID_HELP, "&Manual\tF1", "Open the manual in the desktop's program for it");
    pHelp->Append(wxID_ABOUT, "&About Countersign", "What this application is, and what it is not");

    auto* pBar = new wxMenuBar;
    pBar->Append(pFile, "&File");
    pBar->Append(pEdit, "&Edit");
    pBar->Append(pKey, "&Key");
    pBar->Append(pSignature, "&Signature");
    pBar->Append(pDeveloper, "&Developer");
    pBar->Append(pHelp, "&Help");
    SetMenuBar(pBar);
}

void MainFrame::bindEvents()
{
    Bind(wxEVT_MENU, &MainFrame::OnOpen, this, wxID_OPEN);
    Bind(wxEVT_MENU, &MainFrame::OnRecent, this, ID_RECENT_FIRST, ID_RECENT_LAST);
    Bind(wxEVT_MENU, &MainFrame::OnClearRecent, this, ID_CLEAR_RECENT);
    Bind(wxEVT_MENU, &MainFrame::OnCloseDocuments, this, ID_CLOSE_DOCUMENTS);
    Bind(wxEVT_MENU, &MainFrame::OnCloseAllDocuments, this, ID_CLOSE_ALL_DOCUMENTS);
    Bind(
        wxEVT_MENU, [this](wxCommandEvent&) { Close(); }, wxID_EXIT);
    Bind(wxEVT_MENU, &MainFrame::OnCopyPath, this, ID_COPY_PATH);
    Bind(wxEVT_MENU, &MainFrame::OnSelectAll, this, wxID_SELECTALL);
    Bind(
        wxEVT_MENU, [this](wxCommandEvent& event) { setAssertionDialogs(event.IsChecked()); }, ID_ASSERTION_DIALOGS);
    Bind(wxEVT_MENU, &MainFrame::OnFailAssertion, this, ID_FAIL_ASSERTION);
    Bind(wxEVT_MENU, &MainFrame::OnAssertionReport, this, ID_ASSERTION_REPORT);
    Bind(
        wxEVT_MENU, [this](wxCommandEvent&) { hoShowManual(this, programPath()); }, wxID_HELP);
    Bind(
        wxEVT_MENU, [this](wxCommandEvent&) { hoShowAbout(this); }, wxID_ABOUT);

    Bind(
        wxEVT_MENU, [this](wxCommandEvent&) { chooseKey(true); }, ID_LOAD_PRIVATE_KEY);
    Bind(
        wxEVT_MENU, [this](wxCommandEvent&) { chooseKey(false); }, ID_LOAD_PUBLIC_KEY);
    Bind(wxEVT_MENU, &MainFrame::OnNewKeyPair, this, ID_NEW_KEY_PAIR);
    Bind(
        wxEVT_MENU, [this](wxCommandEvent&) { hoTextsDialog(this, _keys).ShowModal(); }, ID_TEXTS);
    Bind(
        wxEVT_MENU, [this](wxCommandEvent&) { setKeys(hoKeyRing()); }, ID_FORGET_KEYS);
    Bind(
        wxEVT_MENU, [this](wxCommandEvent&) { startWork(hoDocumentWork::Kind::Sign, list().selected()); }, ID_SIGN);
    Bind(
        wxEVT_MENU, [this](wxCommandEvent&) { startWork(hoDocumentWork::Kind::Test, list().selected()); }, ID_TEST);
    Bind(
        wxEVT_MENU, [this](wxCommandEvent&) { startWork(hoDocumentWork::Kind::Sign, {}); }, ID_SIGN_ALL);
    Bind(
        wxEVT_MENU, [this](wxCommandEvent&) { startWork(hoDocumentWork::Kind::Test, {}); }, ID_TEST_ALL);
    _workTimer.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { followWork(); });

    // Where no watch reaches, as on another machine's file system.
    Bind(wxEVT_ACTIVATE,
         [this](wxActivateEvent& event)
         {
             if (event.GetActive())
             {
                 CallAfter(&MainFrame::refreshDocuments);
             }
             event.Skip();
         });

    const auto whenSelected = [this](wxUpdateUIEvent& event)
    { event.Enable(_pList != nullptr && _pList->GetSelectedItemCount() > 0); };
    const auto whenAny = [this](wxUpdateUIEvent& event) { event.Enable(!_documents.isEmpty()); };
    const auto whenSignable = [this](wxUpdateUIEvent& event)
    { event.Enable(!_documents.isEmpty() && _keys.canSign() && _pWork == nullptr); };
    const auto whenTestable = [this](wxUpdateUIEvent& event)
    { event.Enable(!_documents.isEmpty() && _keys.canTest() && _pWork == nullptr); };
    Bind(wxEVT_UPDATE_UI, whenSignable, ID_SIGN);
    Bind(wxEVT_UPDATE_UI, whenSignable, ID_SIGN_ALL);
    Bind(wxEVT_UPDATE_UI, whenTestable, ID_TEST);
    Bind(wxEVT_UPDATE_UI, whenTestable, ID_TEST_ALL);
    Bind(
        wxEVT_UPDATE_UI, [this](wxUpdateUIEvent& event) { event.Enable(_keys.canTest()); }, ID_FORGET_KEYS);
    Bind(wxEVT_UPDATE_UI, whenSelected, ID_CLOSE_DOCUMENTS);
    Bind(wxEVT_UPDATE_UI, whenSelected, ID_COPY_PATH);
    Bind(wxEVT_UPDATE_UI, whenAny, ID_CLOSE_ALL_DOCUMENTS);
    Bind(wxEVT_UPDATE_UI, whenAny, wxID_SELECTALL);
    Bind(
        wxEVT_UPDATE_UI, [this](wxUpdateUIEvent& event) { event.Check(hasAssertionDialogs()); }, ID_ASSERTION_DIALOGS);

    Bind(wxEVT_CLOSE_WINDOW, &MainFrame::OnClose, this);
}

hoDocumentListCtrl& MainFrame::list()
{
    if (_pList == nullptr)
    {
        _pList = new hoDocumentListCtrl(_pPages, _documents);
        _pPages->AddPage(_pList, "documents");
        // The rows scroll: the window may be narrower than all columns together.
        _pList->SetMinSize(wxSize(1, 1));
        _pList->setCanTest(_keys.canTest());

        std::vector<int> widths;
        for (std::size_t column = 1; column <= _pList->columnWidths().size(); ++column)
        {
            widths.push_back(static_cast<int>(_settings.number("column." + std::to_string(column), 0, 0, 10000)));
        }
        _pList->setColumnWidths(widths);

        _pList->Bind(wxEVT_LIST_COL_CLICK, &MainFrame::OnColumnClick, this);
        _pList->Bind(wxEVT_LIST_ITEM_SELECTED, [this](wxListEvent&) { showChangesSoon(); });
        _pList->Bind(wxEVT_LIST_ITEM_DESELECTED, [this](wxListEvent&) { showChangesSoon(); });
        _pList->Bind(wxEVT_LIST_KEY_DOWN,
                     [this](wxListEvent& event)
                     {
                         if (event.GetKeyCode() == WXK_DELETE || event.GetKeyCode() == WXK_NUMPAD_DELETE)
                         {
                             QueueEvent(new wxCommandEvent(wxEVT_MENU, ID_CLOSE_DOCUMENTS));
                         }
                         event.Skip();
                     });
        _pList->Bind(wxEVT_CONTEXT_MENU, &MainFrame::OnContextMenu, this);
    }
    return *_pList;
}

wxInfoBar& MainFrame::messageBar()
{
    if (_pMessageBar == nullptr)
    {
        _pMessageBar = new wxInfoBar(this);
        _pMessageBar->AddButton(ID_SHOW_DETAILS, "Details...");
        _pMessageBar->AddButton(wxID_CLOSE, "Dismiss");
        _pMessageBar->Bind(wxEVT_BUTTON, &MainFrame::OnShowDetails, this, ID_SHOW_DETAILS);
        _pMessageBar->Bind(
            wxEVT_BUTTON,
            [this](wxCommandEvent&)
            {
                clearMessage();
                showMessage();
            },
            wxID_CLOSE);
        GetSizer()->Insert(0, _pMessageBar, wxSizerFlags().Expand());
        // It is reached before the documents by the keyboard, too, as it stands above them.
        _pMessageBar->MoveBeforeInTabOrder(_pPages);
    }
    return *_pMessageBar;
}

void MainFrame::OnOpen(wxCommandEvent&)
{
    wxFileDialog dialog(this, "Open documents", gtPathTextFromBytes(hoToText(_settings.text("folder"))), wxString(),
                        wxFileSelectorDefaultWildcardStr, wxFD_OPEN | wxFD_MULTIPLE);
    if (dialog.ShowModal() != wxID_OK)
    {
        return;
    }
    wxArrayString pathTexts;
    dialog.GetPaths(pathTexts);
    std::vector<gtString> paths;
    for (const wxString& pathText : pathTexts)
    {
        paths.push_back(gtPathBytesFromText(pathText));
    }
    clearMessage();
    openAskedFor(paths);
}

void MainFrame::OnRecent(wxCommandEvent& event)
{
    const std::size_t number = static_cast<std::size_t>(event.GetId() - ID_RECENT_FIRST);
    if (number < _recent.paths().size())
    {
        clearMessage();
        const gtString path = _recent.paths()[number];
        openAskedFor({path});
    }
}

void MainFrame::OnClearRecent(wxCommandEvent&)
{
    _recent.clear();
    _isRecentChanged = true;
    showChangesSoon();
}

void MainFrame::OnCloseDocuments(wxCommandEvent&)
{
    const std::vector<std::size_t> rows = list().selected();
    if (rows.empty())
    {
        return;
    }
    _documents.close(rows);
    list().showChanges();
    // What follows takes the place of what went, so that a key pressed again closes the next.
    list().select(_documents.isEmpty() ? std::vector<std::size_t>()
                                       : std::vector<std::size_t>{std::min(rows.front(), _documents.size() - 1)});
    showChangesSoon();
}

void MainFrame::OnCloseAllDocuments(wxCommandEvent&)
{
    _documents.closeAll();
    list().showChanges();
    showChangesSoon();
}

void MainFrame::OnCopyPath(wxCommandEvent&)
{
    wxString paths;
    const std::vector<std::size_t> rows = list().selected();
    for (const std::size_t row : rows)
    {
        paths += (paths.empty() ? "" : "\n") + gtTextFromBytes(_documents[row]._path);
    }
    if (!rows.empty() && hoCopyText(paths))
    {
        SetStatusText(hoAmountText(rows.size(), "path copied", "paths copied"), STATUS_TALK);
    }
}

void MainFrame::OnSelectAll(wxCommandEvent&)
{
    list().SetFocus();
    list().selectAll();
}

void MainFrame::OnFailAssertion(wxCommandEvent&)
{
    if (!hasAssertionDialogs())
    {
        SetStatusText("An assertion failed, and its handler stayed silent", STATUS_TALK);
    }
    gtTriggerAssertonFailureHandler("OnFailAssertion", __FILE__, __LINE__,
                                    "Assertion failure (this one was asked for in the Developer menu)");
}

void MainFrame::OnAssertionReport(wxCommandEvent&)
{
    if (_pReportWindow == nullptr)
    {
        _pReportWindow = new hoAssertionReportWindow(this, _pAssertionReport);
    }
    _pReportWindow->Show();
    _pReportWindow->Raise();
}

void MainFrame::OnShowDetails(wxCommandEvent&)
{
    if (_refusals.empty())
    {
        const hoWorkSummary& shown = _message._line.empty() ? _keyWarning : _message;
        hoTextDialog(this, "Details", shown._line, shown._details).ShowModal();
    }
    else
    {
        wxString text;
        const std::size_t listed = std::min(_refusals.size(), mostRefusalsListed);
        for (std::size_t i = 0; i < listed; ++i)
        {
            text += hoDisplayText(_refusals[i].first) + "\n    " + hoFileProblemText(_refusals[i].second) + "\n";
        }
        if (listed < _refusals.size())
        {
            text += "and " + hoNumberText(_refusals.size() - listed) + " more\n";
        }
        const wxString heading =
            hoAmountText(_refusals.size(), "document could not be opened:", "documents could not be opened:");
        hoTextDialog(this, "Documents that could not be opened", heading, text).ShowModal();
    }
    clearMessage();
    showMessage();
}

void MainFrame::OnColumnClick(wxListEvent& event)
{
    const int column = event.GetColumn();
    if (column < 0)
    {
        return;
    }
    std::vector<gtString> selectedPaths;
    for (const std::size_t row : list().selected())
    {
        selectedPaths.push_back(_documents[row]._path);
    }
    const bool isAscending = list().GetUpdatedAscendingSortIndicator(column);
    _documents.sort(hoDocumentListCtrl::columnAt(column), isAscending);
    list().ShowSortIndicator(column, isAscending);
    list().showChanges();

    std::vector<std::size_t> rows;
    rows.reserve(selectedPaths.size());
    for (const gtString& path : selectedPaths)
    {
        rows.push_back(_documents.positionOf(path));
    }
    std::sort(rows.begin(), rows.end());
    list().select(rows);
}

void MainFrame::OnContextMenu(wxContextMenuEvent&)
{
    wxMenu menu;
    menu.Append(ID_SIGN, "&Sign");
    menu.Append(ID_TEST, "&Test");
    menu.AppendSeparator();
    menu.Append(ID_COPY_PATH, "&Copy path");
    menu.Append(ID_CLOSE_DOCUMENTS, "C&lose");
    list().PopupMenu(&menu);
}

void MainFrame::OnClose(wxCloseEvent& event)
{
    tidyUp();
    event.Skip();
}

void MainFrame::tidyUp()
{
    // What would come from now on would be opened in a window that goes away.
    _sessionBus.leave();
    // The work ends here, and not among the remains of the window.
    _workTimer.Stop();
    if (_pProgressDialog != nullptr)
    {
        _pProgressDialog->Destroy();
        _pProgressDialog = nullptr;
    }
    _pWork.reset();
    remember();
}

bool MainFrame::Show(bool isShown)
{
    return !_isHandedOver && wxFrame::Show(isShown);
}

// True when the application is running already and has taken the documents. The functions handed over here are called
// from the event loop, when the shell knows its window.
bool MainFrame::handOverArguments()
{
    std::vector<std::string> paths;
    for (const gtString& path : argumentDocuments())
    {
        paths.push_back(hoToBytes(path));
    }
    const auto onOpen = [](const std::vector<std::string>& requested)
    {
        for (const std::string& path : requested)
        {
            wxGetApp().MacOpenFile(gtPathTextFromBytes(hoToText(path)));
        }
    };
    return _sessionBus.start(paths, onOpen, [this] { comeToFront(); }) == hoSessionBus::Outcome::HANDED_OVER;
}

void MainFrame::openArguments()
{
    const std::vector<gtString> documents = argumentDocuments();
    if (!documents.empty())
    {
        openAskedFor(documents);
    }
}

void MainFrame::openAskedFor(const std::vector<gtString>& paths)
{
    std::vector<std::size_t> rows;
    {
        const wxWindowUpdateLocker noPainting(_pPages);
        for (const gtString& path : paths)
        {
            const std::size_t row = openQuietly(path);
            if (row != hoDocumentList::nowhere)
            {
                rows.push_back(row);
            }
        }
    }
    select(rows);
}

void MainFrame::select(const std::vector<std::size_t>& rows)
{
    if (!rows.empty())
    {
        _pPages->ChangeSelection(PAGE_LIST);
        list().select(rows);
        list().SetFocus();
    }
}

void MainFrame::showWhatWasAskedFor()
{
    std::vector<std::size_t> rows;
    for (const gtString& path : std::exchange(_askedFor, {}))
    {
        const std::size_t row = _documents.positionOf(path);
        if (row != hoDocumentList::nowhere)
        {
            rows.push_back(row);
        }
    }
    select(rows);
    if (std::exchange(_isFrontWanted, false))
    {
        comeToFront();
    }
}

void MainFrame::refreshDocuments()
{
    bool isChanged = false;
    for (std::size_t position = 0; position < _documents.size(); ++position)
    {
        isChanged = _documents.refresh(position) || isChanged;
    }
    if (isChanged)
    {
        list().showChanges();
        showChangesSoon();
    }
    watchFolders();
}

void MainFrame::watchFolders()
{
    std::set<std::string> folders;
    for (std::size_t position = 0; position < _documents.size(); ++position)
    {
        folders.insert(hoToBytes(_documents[position].folder()));
    }
    _watcher.watch(folders);
}

// A PEM file that is dropped is a key, everything else a document.
void MainFrame::openDropped(const hoUriList& list)
{
    clearMessage();
    std::vector<gtString> documents;
    std::vector<gtString> keys;
    for (const gtString& path : list._paths)
    {
        const std::string bytes = hoToBytes(path);
        const bool isKey = bytes.size() > 4 && bytes.compare(bytes.size() - 4, 4, ".pem") == 0;
        (isKey ? keys : documents).push_back(path);
    }
    documents.insert(documents.end(), list._refused.begin(), list._refused.end());
    openAskedFor(documents);
    for (const gtString& path : keys)
    {
        loadKey(path, KeyWish::Any);
    }
}

void MainFrame::chooseKey(bool isPrivate)
{
    wxFileDialog dialog(this, isPrivate ? "Load a private key" : "Load a public key",
                        gtPathTextFromBytes(hoToText(_settings.text("keyFolder"))), wxString(),
                        "PEM files (*.pem)|*.pem;*.PEM|All files|*", wxFD_OPEN | wxFD_FILE_MUST_EXIST);
    if (dialog.ShowModal() == wxID_OK)
    {
        loadKey(gtPathBytesFromText(dialog.GetPath()), isPrivate ? KeyWish::Private : KeyWish::Public);
    }
}

void MainFrame::OnNewKeyPair(wxCommandEvent&)
{
    std::error_code error;
    const std::string folder = std::filesystem::current_path(error).string() + "/";
    hoNewKeyDialog dialog(this, hoToText(_settings.text("keyFolder", folder)));
    if (dialog.ShowModal() == wxID_OK)
    {
        SetStatusText("New key pair: " + hoDisplayText(dialog.privateKeyPath()), STATUS_TALK);
        loadKey(dialog.privateKeyPath(), KeyWish::Private);
    }
}

void MainFrame::loadKey(const gtString& path, KeyWish wish)
{
    hoKeyFileFacts facts;
    hoLoadedKey loaded = hoLoadKeyAsking(this, path, facts);
    if (loaded._pKey == nullptr)
    {
        if (facts._problem != hoKeyFileProblem::PassphraseNeeded)
        {
            wxMessageDialog(this, hoKeyProblemText(path, facts), "Countersign", wxOK | wxICON_ERROR).ShowModal();
        }
        return;
    }
    if (wish == KeyWish::Private && !loaded._pKey->hasPrivateKey())
    {
        const wxString name = quoted(hoDisplayText(hoLastComponent(path), mostNameCharacters));
        wxMessageDialog(this, name + " holds a public key, which cannot sign. Load it as a public key to test with it.",
                        "Countersign", wxOK | wxICON_ERROR)
            .ShowModal();
        return;
    }
    const std::string bytes = hoToBytes(path);
    _settings.setText("keyFolder", bytes.substr(0, bytes.rfind('/') + 1));
    hoKeyRing keys = _keys;
    const bool isPrivate = wish == KeyWish::Private || (wish == KeyWish::Any && loaded._pKey->hasPrivateKey());
    if (!isPrivate)
    {
        // Whatever else the file holds.
        loaded._pKey = loaded._pKey->publicHalf();
    }
    (isPrivate ? keys._private : keys._public) = loaded;
    setKeys(keys);
    const hoWorkSummary warning = isPrivate ? hoKeyWarning(loaded) : hoWorkSummary();
    if (!warning._line.empty())
    {
        // In place of a work's outcome, which was found with another key.
        clearMessage();
        _keyWarning = warning;
        showChangesSoon();
    }
}

void MainFrame::setKeys(const hoKeyRing& keys)
{
    _keys = keys;
    _keyWarning = hoWorkSummary();
    // What another key has found means nothing under this one.
    _documents.forgetStates();
    if (_pList != nullptr)
    {
        _pList->setCanTest(_keys.canTest());
        _pList->showChanges();
    }
    showChangesSoon();
}

void MainFrame::startWork(hoDocumentWork::Kind kind, const std::vector<std::size_t>& rows)
{
    const bool isSigning = kind == hoDocumentWork::Kind::Sign;
    if (_pWork != nullptr || (isSigning ? !_keys.canSign() : !_keys.canTest()))
    {
        return;
    }
    std::vector<hoDocument> documents;
    std::size_t alreadySigned = 0;
    const std::size_t amount = rows.empty() ? _documents.size() : rows.size();
    documents.reserve(amount);
    for (std::size_t i = 0; i < amount; ++i)
    {
        const std::size_t position = rows.empty() ? i : rows[i];
        _documents.refresh(position);
        documents.push_back(_documents[position]);
        const hoSignatureFileFacts signature = hoCheckSignaturePath(hoSignaturePath(documents.back()._path), false);
        alreadySigned += signature._problem == hoSignatureFileProblem::Exists ? 1 : 0;
    }

    bool mayOverwrite = false;
    if (isSigning && alreadySigned > 0)
    {
        wxMessageDialog question(
            this,
            hoAmountText(alreadySigned, "document has a signature already.", "documents have signatures already."),
            "Countersign", wxYES_NO | wxCANCEL | wxICON_QUESTION);
        question.SetExtendedMessage("Signing again replaces what is in the .sig file beside the document.");
        question.SetYesNoCancelLabels("&Replace", "&Keep", "&Cancel");
        const int answer = question.ShowModal();
        if (answer == wxID_CANCEL)
        {
            return;
        }
        mayOverwrite = answer == wxID_YES;
    }

    clearMessage();
    showMessage();
    _outcomes.clear();
    try
    {
        _pWork = std::make_unique<hoDocumentWork>(
            kind, documents, hoDocumentWork::Keys{_keys._private._pKey, _keys._public._pKey}, mayOverwrite);
    }
    catch (const std::system_error& error)
    {
        wxMessageDialog(this,
                        "The work cannot be begun now: " + wxString::FromUTF8(error.code().message()) +
                            ". Try again when fewer programs are running.",
                        "Countersign", wxOK | wxICON_ERROR)
            .ShowModal();
        return;
    }
    _workKeys = _keys;
    _workTime.Start();
    _workTimer.Start(progressInterval);
}

void MainFrame::followWork()
{
    if (_pWork == nullptr)
    {
        return;
    }
    // Asked first: what is found until then is in the outcomes.
    const bool isFinished = _pWork->isFinished();
    const std::vector<hoWorkOutcome> outcomes = _pWork->takeOutcomes();
    const bool areKeysTheSame =
        _workKeys._private._pKey == _keys._private._pKey && _workKeys._public._pKey == _keys._public._pKey;
    for (const hoWorkOutcome& outcome : outcomes)
    {
        if (areKeysTheSame)
        {
            _documents.setStamp(outcome._path, outcome._stamp);
        }
        _outcomes.push_back(outcome);
    }
    if (!outcomes.empty())
    {
        list().showChanges();
    }
    if (isFinished)
    {
        endWork();
    }
    else if (_pProgressDialog != nullptr)
    {
        _pProgressDialog->showProgress();
    }
    else if (_workTime.Time() >= patienceWithWork)
    {
        _pProgressDialog = new hoProgressDialog(this, *_pWork);
        _pProgressDialog->Show();
    }
}

void MainFrame::endWork()
{
    _workTimer.Stop();
    if (_pProgressDialog != nullptr)
    {
        _pProgressDialog->Destroy();
        _pProgressDialog = nullptr;
    }
    _message = hoSummaryOf(_pWork->kind(), _outcomes, _pWork->isCancelled());
    _pWork.reset();
    _workKeys = hoKeyRing();
    _outcomes.clear();
    showChangesSoon();
}

std::size_t MainFrame::openQuietly(const gtString& path)
{
    const hoDocumentList::Opening opening = _documents.open(path);
    if (opening._problem != osFileProblem::None)
    {
        _refusals.emplace_back(path, opening._problem);
        _isRecentChanged = _recent.remove(path) || _isRecentChanged;
    }
    else
    {
        const hoDocument& document = _documents[opening._position];
        _recent.add(document._path);
        _isRecentChanged = true;
        _settings.setText("folder", hoToBytes(document.folder()));
        if (opening._isNew)
        {
            // The order in which the rows were is not the order of a column any more.
            list().RemoveSortIndicator();
        }
        list().showChanges();
    }
    showChangesSoon();
    return opening._position;
}

void MainFrame::comeToFront()
{
    if (IsIconized())
    {
        Iconize(false);
    }
    Show();
    Raise();
}

void MainFrame::showChangesSoon()
{
    if (!_areChangesPending)
    {
        _areChangesPending = true;
        CallAfter(&MainFrame::showChangesNow);
    }
}

void MainFrame::showChangesNow()
{
    _areChangesPending = false;
    const int page = _documents.isEmpty() ? PAGE_EMPTY : PAGE_LIST;
    if (_pPages->GetSelection() != page)
    {
        if (page == PAGE_LIST)
        {
            list();
        }
        _pPages->ChangeSelection(static_cast<std::size_t>(page));
    }
    showWhatWasAskedFor();
    showStatus();
    showMessage();
    watchFolders();
    if (_isRecentChanged)
    {
        _isRecentChanged = false;
        fillRecentMenu();
        remember();
    }
}

void MainFrame::showMessage()
{
    const wxString refusals = refusalMessage();
    if (!refusals.empty())
    {
        messageBar().ShowMessage(refusals, wxICON_ERROR);
    }
    else if (!_message._line.empty())
    {
        messageBar().ShowMessage(_message._line, _message._isAllWell ? wxICON_INFORMATION : wxICON_WARNING);
    }
    else if (!_keyWarning._line.empty())
    {
        messageBar().ShowMessage(_keyWarning._line, wxICON_WARNING);
    }
    else if (_pMessageBar != nullptr && _pMessageBar->IsShown())
    {
        _pMessageBar->Dismiss();
    }
}

void MainFrame::clearMessage()
{
    _refusals.clear();
    _message = hoWorkSummary();
    _keyWarning = hoWorkSummary();
}

void MainFrame::showStatus()
{
    wxString text = "No documents";
    if (!_documents.isEmpty())
    {
        const std::size_t selected = static_cast<std::size_t>(list().GetSelectedItemCount());
        text = hoAmountText(_documents.size(), "document", "documents") + ", " + hoSizeText(_documents.totalSize());
        if (selected > 0)
        {
            text += ", " + hoNumberText(selected) + " selected";
        }
    }
    SetStatusText(text, STATUS_DOCUMENTS);

    const wxString privateKey = hoKeyText(_keys._private, true);
    const wxString publicKey = hoKeyText(_keys._public, false);
    const bool areBoth = !privateKey.empty() && !publicKey.empty();
    const wxString keys = privateKey + (areBoth ? "; " : "") + publicKey;
    SetStatusText(keys.empty() ? wxString("No key") : keys, STATUS_KEYS);
}

void MainFrame::fillRecentMenu()
{
    while (_pRecentMenu->GetMenuItemCount() > 0)
    {
        _pRecentMenu->Destroy(_pRecentMenu->FindItemByPosition(0));
    }
    if (_recent.paths().empty())
    {
        _pRecentMenu->Append(ID_CLEAR_RECENT, "None yet")->Enable(false);
        return;
    }
    int number = 0;
    for (const gtString& path : _recent.paths())
    {
        const wxString label = hoDisplayText(path, 2 * mostNameCharacters);
        const wxString mnemonic = number < 9 ? wxString::Format("&%d  ", number + 1) : wxString("1&0  ");
        _pRecentMenu->Append(ID_RECENT_FIRST + number, mnemonic + wxControl::EscapeMnemonics(label));
        ++number;
    }
    _pRecentMenu->AppendSeparator();
    _pRecentMenu->Append(ID_CLEAR_RECENT, "&Clear this list", "Forget which documents were open before");
}

void MainFrame::loadSettings()
{
    const std::string path = hoUserSettingsPath();
    std::error_code error;
    _canRemember = _settings.load(path) || !std::filesystem::exists(path, error);
    if (!_canRemember)
    {
        SetStatusText("What was remembered cannot be read and stays as it is: " + hoDisplayText(path.c_str()),
                      STATUS_TALK);
    }
}

void MainFrame::restorePlace()
{
    const wxSize made = GetSize();
    PlaceReader reader(_settings);
    if (!RestoreToGeometry(reader))
    {
        SetSize(FromDIP(defaultSize));
    }
    else if (GetSize() == made)
    {
        // The size that the window was made with has no room for its frame, and setting the same once more is nothing to
        // the toolkit.
        SetSize(made + wxSize(1, 1));
        SetSize(made);
    }
}

void MainFrame::remember()
{
    std::vector<std::string> paths;
    for (const gtString& path : _recent.paths())
    {
        paths.push_back(hoToBytes(path));
    }
    _settings.setTexts("recent", paths);
    if (_pList != nullptr)
    {
        int column = 0;
        for (const int width : _pList->columnWidths())
        {
            _settings.setNumber("column." + std::to_string(++column), width);
        }
    }
    // In its first moments on the screen it may be smaller than it ever is for the user.
    const bool hasItsSize = GetSize().x >= GetMinSize().x && GetSize().y >= GetMinSize().y;
    if (IsShown() && !IsIconized() && hasItsSize)
    {
        SaveGeometry(PlaceWriter(_settings));
    }
    const std::string file = hoUserSettingsPath();
    if (!file.empty() && _canRemember && !_settings.save(file))
    {
        SetStatusText("What to remember could not be written to " + hoDisplayText(file.c_str()), STATUS_TALK);
    }
}

ahDialogBasedAssertionFailureHandler* MainFrame::silentHandler()
{
    const auto* pShell = dynamic_cast<ApplicationShell*>(wxTheApp);
    return pShell == nullptr ? nullptr : pShell->assertionFailureHandler();
}
