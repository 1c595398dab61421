// SPDX-License-Identifier: Apache-2.0
#include "host/MainFrame.h"

#include "host/desktop/hoApplicationArguments.h"
#include "host/desktop/hoNotification.h"
#include "host/window/hoBindCommand.h"
#include "host/window/hoCatalogues.h"
#include "host/window/hoCommands.h"
#include "host/window/hoDisplayText.h"
#include "host/window/hoDocumentDropTarget.h"
#include "host/window/hoDropFrame.h"
#include "host/window/hoDroppedFiles.h"
#include "host/window/hoGreyCommands.h"
#include "host/window/hoHelp.h"
#include "host/window/hoIcons.h"
#include "host/window/hoMenuBar.h"
#include "host/window/hoPreferencesDialog.h"
#include "host/window/hoStatusBar.h"
#include "host/window/hoTexts.h"
#include "platform/osWrappers/osProcess.h"
#include "platform/toolkit/gtApplicationId.h"
#include "platform/toolkit/gtComeToFront.h"
#include "platform/toolkit/gtTextConversion.h"
#include "platform/toolkit/gtTextDirection.h"
#include "platform/toolkit/gtTextSize.h"

#include <wx/sizer.h>

#include <utility>

namespace
{
const wxSize usualClientSize(900, 450);
const wxSize leastSize(520, 320);
const std::size_t mostKeyNameCharacters = 40;
}  // namespace

MainFrame::MainFrame()
    : _pMenuBar(nullptr),
      _pView(nullptr),
      _pStatusBar(nullptr),
      _messageBar(*this),
      // It is read before there is a status bar.
      _memory([this](const wxString& text) { CallAfter([this, text] { _pStatusBar->showNotice(text); }); }),
      _keys(*this, _memory.settings(),
            {[this] { onKeysChanged(); }, [this](const hoSummary& warning) { onKeyWarning(warning); },
             [this](const wxString& text) { _pStatusBar->showNotice(text); },
             [this](const gtString& path)
             {
                 _memory.noteKey(path);
                 rememberSoon();
             }}),
      _signing(*this, _keys.keys(),
               {[this] { _messageBar.dismiss(); },
                [this](const std::vector<hoSigningOutcome>& outcomes) { _pView->showOutcomes(outcomes); },
                [this](const hoSummary& summary)
                {
                    _messageBar.setResult(summary);
                    showChangesSoon();
                },
                [this] { return !_assertions.isDeciding(); },
                [](const hoSummary& summary) { hoNotify(gtBytesFromText(summary._line)); },
                [this](double part) { _taskbarProgress.show(part); }, [this] { _taskbarProgress.end(); },
                [this] { return _memory.preferences(); }}),
      _assertions(*this, {[this](const wxString& text) { _pStatusBar->showNotice(text); },
                          [this]
                          {
                              _signing.stop();
                              _memory.save(*this, _pView->columnWidths());
                          }}),
      _documentCommands(*this, _keys.keys(),
                        {[this] { return _pView->documentsToProcess(false); },
                         [this](const wxString& text) { _pStatusBar->showNotice(text); }}),
      _toolBar(*this, _memory.settings(), [this](int command) { return whyGrey(command); }),
      _areChangesPending(false),
      _isRecentChanged(false),
      _isFrontWanted(false)
{
    // Private keys and passphrases will be in memory.
    osWriteNoCoreFiles();
    hoUseLanguageOfUser(hoApplicationPath());
    if (_instance.handOver(hoApplicationDocuments(), [this] { gtComeToFront(*this); }))
    {
        // The shell shows every window that it makes; the toolkit would complain about one that was never created.
        wxDisableAsserts();
        CallAfter([this] { Destroy(); });
        return;
    }
    makeWindow();
    bindCommands();
    bindEvents();

    _pEndSignals = std::make_unique<hoEndSignals>(
        [this](int signal)
        {
            endAllJobs();
            hoEndSignals::endBy(signal);
        });
    _pDisplayLoss = std::make_unique<hoDisplayLoss>([this] { _signing.abandon(); });
    CallAfter([this] { _toolBar.showIfWanted(); });
    CallAfter([this] { offerRecentKey(); });
    CallAfter([this] { _pView->openAndSelect(hoApplicationDocuments()); });
}

void MainFrame::openFilePath(const gtString& path, bool isAskedFor)
{
    if (_pView != nullptr && isAskedFor)
    {
        _isFrontWanted = true;
        _pView->openAskedFor(path);
    }
    else if (_pView != nullptr)
    {
        _pView->open(path);
    }
}

void MainFrame::makeWindow()
{
    _memory.load();
    gtSetApplicationId(hoSessionBus::NAME);
    gtSetTextSize(_memory.preferences()._textPoints);
    Create(nullptr, wxID_ANY, "Countersign", wxDefaultPosition, usualClientSize);
    gtTakeDirection(*this);
    SetIcons(hoApplicationIcons());
    _pMenuBar = new hoMenuBar;
    SetMenuBar(_pMenuBar);
    auto* pDropFrame = new hoDropFrame(this);
    _pView = new hoDocumentsView(pDropFrame,
                                 {[this](const gtString& path, const osFileResult& result)
                                  {
                                      _messageBar.addRefusal(path, result);
                                      _isRecentChanged = _memory.recentDocuments().remove(path) || _isRecentChanged;
                                  },
                                  [this](const hoDocument& document)
                                  {
                                      _memory.noteDocument(document._path);
                                      _isRecentChanged = true;
                                      _memory.settings().setText("folder", document.folder());
                                  },
                                  [this] { showChangesSoon(); }, [this] { _messageBar.setResult(hoSummary()); },
                                  [this] { _pStatusBar->showReason(whyGrey(ID_SIGN)); }});
    pDropFrame->setContents(_pView);
    _pStatusBar = new hoStatusBar(this);
    SetStatusBar(_pStatusBar);
    SetDropTarget(new hoDocumentDropTarget(
        *this, [this](const hoUriList& list) { openDropped(list); },
        [pDropFrame](bool isOver) { pDropFrame->showBorder(isOver); }));

    _pMenuBar->showRecentPaths(_memory.recentDocuments().paths(), _memory.recentKeys().paths());
    _pView->setColumnWidths(_memory.columnWidths());
    _pStatusBar->showKeys(keys());
    _pStatusBar->showDocuments(documents(), 0);

    auto* pTop = new wxBoxSizer(wxVERTICAL);
    pTop->Add(pDropFrame, wxSizerFlags(1).Expand());
    SetSizer(pTop);
    SetMinSize(FromDIP(leastSize));
    _memory.restorePlace(*this, FromDIP(usualClientSize));
    _memory.follow(*this);
    _pView->SetFocus();
}

void MainFrame::bindCommands()
{
    using Kind = hoSigningJob::Kind;
    const auto on = [this](int id, const auto& action) { hoBindCommand(*this, id, action); };

    on(wxID_OPEN, [this] { openNow(_pView->chooseDocuments(_memory.settings().text("folder"))); });
    on(ID_CLOSE_DOCUMENTS, [this] { _pView->closeSelected(); });
    on(ID_CLOSE_ALL_DOCUMENTS, [this] { _pView->closeAll(); });
    on(wxID_EXIT, [this] { Close(); });
    on(ID_COPY_PATH, [this] { _pStatusBar->showNotice(hoCopiedText(_pView->copySelectedPaths())); });
    on(wxID_SELECTALL, [this] { _pView->selectAll(); });
    on(wxID_PREFERENCES, [this] { choosePreferences(); });

    _keys.bindCommands(*this);
    on(ID_SIGN, [this] { _signing.begin(Kind::Sign, _pView->documentsToProcess(false)); });
    on(ID_TEST, [this] { _signing.begin(Kind::Test, _pView->documentsToProcess(false)); });
    on(ID_SIGN_ALL, [this] { _signing.begin(Kind::Sign, _pView->documentsToProcess(true)); });
    on(ID_TEST_ALL, [this] { _signing.begin(Kind::Test, _pView->documentsToProcess(true)); });

    Bind(
        wxEVT_MENU, [this](wxCommandEvent& event) { setAssertionDialogs(event.IsChecked()); }, ID_ASSERTION_DIALOGS);
    on(ID_FAIL_ASSERTION, [this] { _assertions.failAssertion(); });
    on(ID_ASSERTION_REPORT, [this] { _assertions.showReport(); });
    on(wxID_HELP, [this] { hoShowManual(this, hoApplicationPath()); });
    on(wxID_ABOUT, [this] { hoShowAbout(this); });

    hoMenuBar::followRecentPaths(
        *this, _memory.recentDocuments(), ID_RECENT_FIRST, ID_CLEAR_RECENT,
        [this](const gtString& path) { openNow({path}); }, [this] { rememberSoon(); });
    hoMenuBar::followRecentPaths(
        *this, _memory.recentKeys(), ID_RECENT_KEY_FIRST, ID_CLEAR_RECENT_KEYS,
        [this](const gtString& path) { _keys.loadKey(path, hoKeyController::Half::Any); }, [this] { rememberSoon(); });
}

void MainFrame::bindEvents()
{
    using Kind = hoSigningJob::Kind;
    hoMenuBar::followConditions(
        *this, {[this] { return !documents().isEmpty(); }, [this] { return _pView->amountSelected() > 0; },
                [this] { return _pView->amountSelected() == 1; }, [this] { return keys().canTest(); },
                [this] { return !documents().isEmpty() && _signing.canBegin(Kind::Sign); },
                [this] { return !documents().isEmpty() && _signing.canBegin(Kind::Test); },
                [this] { return hasAssertionDialogs(); }});
    hoExplainGreyCommands(
        *this, [this](int command) { return whyGrey(command); },
        [this](const wxString& reason) { _pStatusBar->showReason(reason); });
    // For folders that cannot be watched, such as those of another machine.
    Bind(wxEVT_ACTIVATE,
         [this](wxActivateEvent& event)
         {
             if (event.GetActive())
             {
                 CallAfter([this] { _pView->refreshDocuments(); });
             }
             event.Skip();
         });
    Bind(wxEVT_CLOSE_WINDOW,
         [this](wxCloseEvent& event)
         {
             if (event.CanVeto() && isAtWork() && !_signing.askToQuit())
             {
                 event.Veto();
                 return;
             }
             endAllJobs();
             event.Skip();
         });
}

void MainFrame::openNow(const std::vector<gtString>& paths)
{
    if (!paths.empty())
    {
        _messageBar.clear();
        _pView->openAndSelect(paths);
    }
}

void MainFrame::openDropped(const hoUriList& list)
{
    _messageBar.clear();
    const hoDroppedFiles files = hoTakeDroppedFiles(*this, list);
    _pView->openAndSelect(files._documents);
    for (const gtString& path : files._keys)
    {
        _keys.loadKey(path, hoKeyController::Half::Any);
    }
}

void MainFrame::onKeysChanged()
{
    _messageBar.setKeyWarning(hoSummary());
    _messageBar.setResult(hoSummary());
    _messageBar.setOffer(wxString());
    _pView->forgetStates(keys().canTest());
    // The event may be the menu's own.
    CallAfter([this] { _pMenuBar->showKeys(keys()); });
}

void MainFrame::onKeyWarning(const hoSummary& warning)
{
    // It takes the place of a result, which was found with another key.
    _messageBar.clear();
    _messageBar.setKeyWarning(warning);
    showChangesSoon();
}

void MainFrame::offerRecentKey()
{
    const std::vector<gtString>& recent = _memory.recentKeys().paths();
    osFileFacts facts;
    if (!_memory.preferences()._isKeyOffered || keys().canTest() || recent.empty() ||
        !osReadFileFacts(recent.front(), facts).isOk())
    {
        return;
    }
    // A copy: what is loaded moves to the front of the list.
    const gtString path = recent.front();
    const wxString name = hoDisplayText(hoLastComponent(path), mostKeyNameCharacters);
    _messageBar.setOffer(hoFilledText(_("No key is loaded. The last one was %s."), {hoQuotedText(name)}),
                         hoFilledText(_("Load %s"), {name}),
                         [this, path] { _keys.loadKey(path, hoKeyController::Half::Any); });
    _messageBar.show();
}

void MainFrame::choosePreferences()
{
    hoPreferencesDialog dialog(this, _memory.preferences());
    if (dialog.ShowModal() != wxID_OK)
    {
        return;
    }
    _memory.setPreferences(dialog.preferences());
    if (!dialog.preferences()._isKeyOffered || !dialog.preferences()._areRecentRemembered)
    {
        _messageBar.setOffer(wxString());
    }
    rememberSoon();
}

wxString MainFrame::whyGrey(int command) const
{
    return hoWhyGrey(command, documents(), _pView->amountSelected(), keys(), isAtWork());
}

void MainFrame::rememberSoon()
{
    _isRecentChanged = true;
    showChangesSoon();
}

void MainFrame::showChangesSoon()
{
    if (!std::exchange(_areChangesPending, true))
    {
        CallAfter(&MainFrame::showChangesNow);
    }
}

void MainFrame::showChangesNow()
{
    _areChangesPending = false;
    _pView->showChanges();
    if (std::exchange(_isFrontWanted, false))
    {
        gtComeToFront(*this);
    }
    _pStatusBar->endReason();
    _pStatusBar->showDocuments(documents(), _pView->amountSelected());
    _pStatusBar->showKeys(keys());
    _messageBar.show();
    if (std::exchange(_isRecentChanged, false))
    {
        _pMenuBar->showRecentPaths(_memory.recentDocuments().paths(), _memory.recentKeys().paths());
        _memory.save(*this, _pView->columnWidths());
    }
}

void MainFrame::endAllJobs()
{
    // What comes from now on would be opened in a window that goes away.
    _instance.leave();
    _signing.stop();
    _memory.save(*this, _pView->columnWidths());
}
