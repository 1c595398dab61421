// SPDX-License-Identifier: Apache-2.0
// Signs and tests documents for the main window: asks what is to be asked, runs the job, shows its progress, and sums
// up what came of it. One job at a time. Main thread only.
#ifndef COUNTERSIGN_HO_SIGNING_CONTROLLER_H
#define COUNTERSIGN_HO_SIGNING_CONTROLLER_H

#include "host/documents/hoPreferences.h"
#include "host/keys/hoKeyRing.h"
#include "host/signing/hoSigningJob.h"
#include "host/window/hoSummary.h"

#include <wx/timer.h>

#include <functional>
#include <memory>
#include <vector>

class gtMainThreadCall;
class hoProgressDialog;
class wxWindow;

class hoSigningController
{
public:
    struct Callbacks
    {
        std::function<void()> _onBegin;
        // What has been found since the last call, as long as the keys are the ones that the job began with.
        std::function<void(const std::vector<hoSigningOutcome>& outcomes)> _onOutcomes;
        std::function<void(const hoSummary& summary)> _onEnd;  // also of a job that was cancelled
        // Whether the window of the progress may appear now, and with it take the keyboard; empty: it may.
        std::function<bool()> _mayShowProgress = {};
        // After _onEnd, of a job that took long enough to show its progress, when no window of the program is in front.
        std::function<void(const hoSummary& summary)> _onUnseenEnd = {};
        // How far a job is that takes long enough to show its progress, from 0 to 1; and that it no longer runs. The
        // second comes before _onEnd, and alone where the job is given up.
        std::function<void(double part)> _onProgress = {};
        std::function<void()> _onProgressEnd = {};
        // Empty: nothing has been chosen.
        std::function<hoPreferences()> _preferences = {};
    };

    // The parent of the dialogs must outlive this object, and so must the keys, which may change at any time.
    hoSigningController(wxWindow& parent, const hoKeyRing& keys, Callbacks callbacks);
    // Gives up the job, without a callback.
    ~hoSigningController();
    hoSigningController(const hoSigningController&) = delete;
    hoSigningController& operator=(const hoSigningController&) = delete;

    bool isAtWork() const { return _pJob != nullptr; }
    bool canBegin(hoSigningJob::Kind kind) const;

    // Asks whether signatures that are there are to be replaced, unless the preferences say so, and begins. Nothing
    // happens if canBegin is false, or if the user cancels. Where the system gives no thread a message says so: after
    // _onBegin, and no _onEnd comes.
    void begin(hoSigningJob::Kind kind, const std::vector<hoDocument>& documents);

    // Whether the window is to be closed though a job runs: asks, above the parent. A second call while the question is
    // up gives false.
    bool askToQuit();
    bool isAskingToQuit() const { return _isAskingToQuit; }

    // Gives up the job, without a callback. When this returns nothing is written any more.
    void stop();
    // The same where the toolkit can no longer be used. Leaves the object fit for nothing but this.
    void abandon() { _pJob.reset(); }

private:
    // Whether to go on, and whether signatures are to be replaced; those that are kept all the same are marked.
    bool askAboutSignatures(std::vector<hoDocument>& documents, bool& mayOverwrite);
    hoPreferences preferences() const;
    // Whether to go on with a private key that is too small to countersign.
    bool askAboutSmallKey(hoSignatureLines& lines);
    void onJobChange();
    void follow();
    void end();
    void showProgress();
    void closeProgressDialog();

    wxWindow& _parent;
    const hoKeyRing& _keys;
    const Callbacks _callbacks;
    hoKeyRing _jobKeys;                       // that the job began with
    std::vector<hoSigningOutcome> _outcomes;  // so far
    wxTimer _patience;                        // until a progress dialog appears
    wxTimer _pause;                           // while it runs changes are only noted
    bool _isChanged;
    bool _isAskingToQuit;
    hoProgressDialog* _pProgressDialog;        // null while there is none
    std::unique_ptr<gtMainThreadCall> _pCall;  // from the first job on
    // The last member: its thread uses _pCall.
    std::unique_ptr<hoSigningJob> _pJob;  // null when nothing is being signed or tested
};

#endif
