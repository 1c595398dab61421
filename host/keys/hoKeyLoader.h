// SPDX-License-Identifier: Apache-2.0
// Loads a key file on a thread of its own. The checks of a large key take a good part of a second, and can be ended. A
// hostile file can make the derivation of its encryption's key take hours, which libcrypto does not let anybody end.
#ifndef COUNTERSIGN_HO_KEY_LOADER_H
#define COUNTERSIGN_HO_KEY_LOADER_H

#include "host/keys/hoKeyFile.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string_view>
#include <thread>

#pragma GCC visibility push(default)

// All functions are for the thread that made the object.
class hoKeyLoader
{
public:
    enum class State
    {
        Busy,
        PassphraseWanted,  // the loading goes on after answerPassphrase or refusePassphrase
        Finished
    };

    // Begins at once. onChange: called on the thread inside whenever the state is no longer Busy; it may neither throw
    // nor use this object. Throws std::system_error where the system gives no thread, and std::bad_alloc.
    hoKeyLoader(const gtString& path, hoKeyNeed need, std::function<void()> onChange);
    // Returns at once. A loading that is not finished is given up: onChange is called no more. Its thread has ended;
    // only while the file is read, or libcrypto derives a key from the passphrase, it goes on to the end of that, and
    // forgets the key. The program can end before.
    ~hoKeyLoader();
    hoKeyLoader(const hoKeyLoader&) = delete;
    hoKeyLoader& operator=(const hoKeyLoader&) = delete;

    // The state, as soon as it is not Busy, or Busy after that time.
    State waitFor(std::chrono::milliseconds time) const;

    // Only in the state PassphraseWanted. One of more than hoLongestPassphrase bytes is PassphraseTooLong.
    void answerPassphrase(std::string_view passphrase);
    void refusePassphrase();

    // Only in the state Finished, and once: what hoLoadKeyFile gives.
    std::unique_ptr<const hoKey> takeKey(hoKeyFileFacts& facts);

private:
    class Loading;

    std::shared_ptr<Loading> _pLoading;  // the thread's, too
    std::thread _thread;
};

#pragma GCC visibility pop

#endif
