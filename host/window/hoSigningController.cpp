// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoSigningController.h"

#include "host/signing/hoCountersignature.h"
#include "host/window/hoProgressDialog.h"
#include "host/window/hoTexts.h"
#include "platform/toolkit/gtMainThreadCall.h"
#include "platform/toolkit/gtTextConversion.h"

#include <wx/app.h>
#include <wx/msgdlg.h>

#include <system_error>
#include <utility>

namespace
{
const int patienceWithJob = 500;   // milliseconds until a progress dialog appears
const int pauseAfterShowing = 50;  // milliseconds: a job of many small documents must not keep the window from painting

bool isKnownToBeGood(const hoDocument& document)
{
    return document._verdict._state == hoDocumentState::Good || document._verdict._state == hoDocumentState::SignedByMe;
}
}  // namespace

hoSigningController::hoSigningController(wxWindow& parent, const hoKeyRing& keys, Callbacks callbacks)
    : _parent(parent),
      _keys(keys),
      _callbacks(std::move(callbacks)),
      _isChanged(false),
      _isAskingToQuit(false),
      _pProgressDialog(nullptr)
{
    _pause.Bind(wxEVT_TIMER,
                [this](wxTimerEvent&)
                {
                    if (_isChanged)
                    {
                        follow();
                    }
                });
    _patience.Bind(wxEVT_TIMER,
                   [this](wxTimerEvent&)
                   {
                       if (_pJob == nullptr || _pProgressDialog != nullptr)
                       {
                           return;
                       }
                       if (_callbacks._mayShowProgress && !_callbacks._mayShowProgress())
                       {
                           _patience.StartOnce();
                       }
                       else
                       {
                           _pProgressDialog = new hoProgressDialog(&_parent, *_pJob);
                           _pProgressDialog->Show();
                           showProgress();
                       }
                   });
}

hoSigningController::~hoSigningController() = default;

bool hoSigningController::canBegin(hoSigningJob::Kind kind) const
{
    return _pJob == nullptr && (kind == hoSigningJob::Kind::Sign ? _keys.canSign() : _keys.canTest());
}

void hoSigningController::begin(hoSigningJob::Kind kind, const std::vector<hoDocument>& documents)
{
    bool mayOverwrite = false;
    hoSignatureLines lines = hoSignatureLines::Both;
    std::vector<hoDocument> marked = documents;
    const bool isSigning = kind == hoSigningJob::Kind::Sign;
    if (!canBegin(kind) || (isSigning && (!askAboutSmallKey(lines) || !askAboutSignatures(marked, mayOverwrite))))
    {
        return;
    }
    _callbacks._onBegin();
    if (_pCall == nullptr)
    {
        _pCall = std::make_unique<gtMainThreadCall>([this] { onJobChange(); });
    }
    _outcomes.clear();
    _jobKeys = _keys;
    const int jobs = preferences()._jobs;
    try
    {
        _pJob = std::make_unique<hoSigningJob>(
            kind, marked, _keys, mayOverwrite, [pCall = _pCall.get()] { pCall->request(); }, lines,
            jobs > 0 ? static_cast<unsigned int>(jobs) : hoOrderedWork::amountOfProcessors());
    }
    catch (const std::system_error& error)
    {
        wxMessageDialog(&_parent,
                        hoFilledText(_("The work cannot be begun now: %s. Try again when fewer programs are running."),
                                     {gtTextFromBytes(error.code().message())}),
                        "Countersign", wxOK | wxICON_ERROR)
            .ShowModal();
        return;
    }
    _patience.StartOnce(patienceWithJob);
}

bool hoSigningController::askAboutSmallKey(hoSignatureLines& lines)
{
    const int bits = _keys._private._pKey->bits();
    if (hoCanCountersign(bits))
    {
        return true;
    }
    wxMessageDialog question(&_parent,
                             hoFilledText(_("A key of %s bits is too small to countersign."), {hoPlainNumber(bits)}),
                             "Countersign", wxYES_NO | wxNO_DEFAULT | wxICON_WARNING);
    question.SetExtendedMessage(
        hoFilledText(_("Keys of %s bits or more countersign. Without a countersignature a signature is weak: it holds "
                       "for some changed documents, too."),
                     {hoPlainNumber(hoLeastCountersigningBits)}));
    question.SetYesNoLabels(_("Sign &weakly"), _("&Do not sign"));
    lines = hoSignatureLines::DigestOnly;
    // Another job may have begun, or the key may have gone, while the question was up.
    return question.ShowModal() == wxID_YES && canBegin(hoSigningJob::Kind::Sign);
}

hoPreferences hoSigningController::preferences() const
{
    return _callbacks._preferences ? _callbacks._preferences() : hoPreferences();
}

bool hoSigningController::askAboutSignatures(std::vector<hoDocument>& documents, bool& mayOverwrite)
{
    const hoSignedDocuments wanted = preferences()._signedDocuments;
    if (wanted == hoSignedDocuments::KeepAll)
    {
        return true;
    }
    std::vector<hoDocument> alreadySigned;
    for (hoDocument& document : documents)
    {
        if (hoCheckSignaturePath(hoSignaturePath(document._path), false)._problem != hoSignatureFileProblem::Exists)
        {
            continue;
        }
        document._isSignatureKept = wanted == hoSignedDocuments::KeepGood && isKnownToBeGood(document);
        if (!document._isSignatureKept)
        {
            alreadySigned.push_back(document);
        }
    }
    if (alreadySigned.empty())
    {
        return true;
    }
    const bool areOthersThere = alreadySigned.size() < documents.size();
    // A signature that is replaced is lost, and with it what it tells of its document.
    wxMessageDialog question(&_parent, hoReplacementQuestion(alreadySigned), "Countersign",
                             (areOthersThere ? wxYES_NO | wxCANCEL : wxOK | wxCANCEL) | wxCANCEL_DEFAULT |
                                 wxICON_WARNING);
    question.SetExtendedMessage(_("The new signature is written over what is in the .sig file, which is lost."));
    if (areOthersThere)
    {
        question.SetYesNoCancelLabels(_("&Replace"), _("&Keep, sign the others"), _("&Cancel"));
    }
    else
    {
        question.SetOKCancelLabels(_("&Replace"), _("&Cancel"));
    }
    const int answer = question.ShowModal();
    mayOverwrite = answer == wxID_YES || answer == wxID_OK;
    // Another job may have begun while the question was up.
    return (mayOverwrite || answer == wxID_NO) && canBegin(hoSigningJob::Kind::Sign);
}

bool hoSigningController::askToQuit()
{
    // A second request while the first is being decided changes nothing.
    if (std::exchange(_isAskingToQuit, true))
    {
        return false;
    }
    wxMessageDialog question(&_parent, _("Documents are being signed or tested. Quit all the same?"), "Countersign",
                             wxOK | wxCANCEL | wxCANCEL_DEFAULT | wxICON_WARNING);
    question.SetExtendedMessage(_("The signatures that are finished stay. The other documents are left as they are."));
    question.SetOKCancelLabels(_("&Quit"), _("&Go on"));
    const bool isWanted = question.ShowModal() == wxID_OK;
    _isAskingToQuit = false;
    return isWanted;
}

void hoSigningController::stop()
{
    _patience.Stop();
    _pause.Stop();
    closeProgressDialog();
    _pJob.reset();
    _jobKeys = hoKeyRing();
    _outcomes.clear();
}

void hoSigningController::onJobChange()
{
    _isChanged = true;
    if (!_pause.IsRunning())
    {
        follow();
    }
}

void hoSigningController::follow()
{
    _isChanged = false;
    if (_pJob == nullptr)
    {
        return;
    }
    _pause.StartOnce(pauseAfterShowing);
    // Asked before the outcomes are taken, so that none of a finished job is left behind.
    const bool isFinished = _pJob->isFinished();
    const std::vector<hoSigningOutcome> outcomes = _pJob->takeOutcomes();
    _outcomes.insert(_outcomes.end(), outcomes.begin(), outcomes.end());
    if (!outcomes.empty() && hoIsSameRing(_jobKeys, _keys))
    {
        _callbacks._onOutcomes(outcomes);
    }
    if (isFinished)
    {
        end();
    }
    else if (_pProgressDialog != nullptr)
    {
        showProgress();
    }
}

void hoSigningController::end()
{
    const hoSummary summary = hoSummaryOf(_pJob->kind(), _outcomes, _pJob->isCancelled());
    const bool isUnseen = _pProgressDialog != nullptr && !wxTheApp->IsActive();
    stop();
    _callbacks._onEnd(summary);
    if (isUnseen && _callbacks._onUnseenEnd)
    {
        _callbacks._onUnseenEnd(summary);
    }
}

void hoSigningController::showProgress()
{
    _pProgressDialog->showProgress();
    if (_callbacks._onProgress)
    {
        _callbacks._onProgress(hoDonePart(_pJob->progress()));
    }
}

void hoSigningController::closeProgressDialog()
{
    if (_pProgressDialog != nullptr)
    {
        _pProgressDialog->Destroy();
        _pProgressDialog = nullptr;
        if (_callbacks._onProgressEnd)
        {
            _callbacks._onProgressEnd();
        }
    }
}
