// SPDX-License-Identifier: Apache-2.0
// The keys that are loaded, and the dialogs around them: load, make, forget, warn. Main thread only.
#ifndef COUNTERSIGN_HO_KEY_CONTROLLER_H
#define COUNTERSIGN_HO_KEY_CONTROLLER_H

#include "host/documents/hoSettings.h"
#include "host/keys/hoKeyRing.h"
#include "host/window/hoSummary.h"

#include <functional>

class wxEvtHandler;
class wxWindow;

class hoKeyController
{
public:
    // Which half of a key file is to be loaded: the private one if there is one, or always one of them.
    enum class Half
    {
        Any,
        Private,
        Public
    };

    struct Callbacks
    {
        std::function<void()> _onChange;                           // of the keys
        std::function<void(const hoSummary& warning)> _onWarning;  // about a private key that has just been loaded
        std::function<void(const wxString& text)> _onNotice;
        std::function<void(const gtString& path)> _onLoaded = {};  // from this file; may be empty
    };

    // The parent of the dialogs and the settings must outlive this object. The settings keep the folder of the last
    // key.
    hoKeyController(wxWindow& parent, hoSettings& settings, Callbacks callbacks);
    hoKeyController(const hoKeyController&) = delete;
    hoKeyController& operator=(const hoKeyController&) = delete;

    // From now on the commands of the Key menu do what they say, but for the recent keys. The handler goes with this
    // object.
    void bindCommands(wxEvtHandler& handler);

    const hoKeyRing& keys() const { return _keys; }
    void setKeys(const hoKeyRing& keys);

    // Asks for a file, or for several with public keys, and loads what is in it.
    void chooseKey(Half half);
    // Loads a key, and asks for its passphrase. Says in a message what is wrong with it. A private key takes the place
    // of the one before; a public one comes to the others.
    void loadKey(const gtString& path, Half half);
    // Makes a new pair and loads its private key.
    void makeKeyPair();

private:
    wxWindow& _parent;
    hoSettings& _settings;
    const Callbacks _callbacks;
    hoKeyRing _keys;
};

#endif
