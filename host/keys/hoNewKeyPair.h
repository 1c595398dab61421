// SPDX-License-Identifier: Apache-2.0
// Makes RSA key pairs with libcrypto and writes them to PEM files.
//
// Nothing here prints, and nothing throws but the constructor. What held a private number or a passphrase is
// overwritten before it is given back.
#ifndef COUNTERSIGN_HO_NEW_KEY_PAIR_H
#define COUNTERSIGN_HO_NEW_KEY_PAIR_H

#include "platform/baseTools/gtString.h"
#include "platform/osWrappers/osAtomicFile.h"

#include <atomic>
#include <functional>
#include <memory>
#include <string_view>
#include <thread>

#pragma GCC visibility push(default)

constexpr int hoLeastNewKeyBits = 512;
constexpr int hoUsualNewKeyBits = 2048;
constexpr int hoMostNewKeyBits = 4096;
constexpr int hoStepOfNewKeyBits = 32;

constexpr bool hoIsNewKeySize(int bits)
{
    return bits >= hoLeastNewKeyBits && bits <= hoMostNewKeyBits && bits % hoStepOfNewKeyBits == 0;
}

// The key pair is made on a thread of its own; all functions are for the thread that made the object.
class hoNewKeyPair
{
public:
    // Begins at once. hoIsNewKeySize(bits) must hold. Throws std::system_error where the system gives no thread, and
    // std::bad_alloc. onFinished: called on the thread inside when isFinished has become true; it may not throw.
    explicit hoNewKeyPair(int bits, std::function<void()> onFinished = nullptr);
    // Cancels, waits for the thread, and forgets the key.
    ~hoNewKeyPair();
    hoNewKeyPair(const hoNewKeyPair&) = delete;
    hoNewKeyPair& operator=(const hoNewKeyPair&) = delete;

    void cancel() { _isCancelled = true; }
    bool isFinished() const { return _isFinished; }
    // Once it is finished: whether there is a key.
    bool isMade() const { return _isFinished && _pKey != nullptr; }

    // Writes the private key (PKCS#8; encrypted by AES-256 in CBC mode if the passphrase is not empty), readable and
    // writable by its owner alone, or the public one, with rights 644. Both write as osWriteFileAtomically does. Too
    // little memory is CannotBeWritten with ENOMEM. isMade() must be true.
    osWritingResult writePrivateKey(const gtString& path, std::string_view passphrase, bool mayOverwrite) const;
    osWritingResult writePublicKey(const gtString& path, bool mayOverwrite) const;

private:
    struct Deleter
    {
        void operator()(void* pKey) const;
    };

    void run();

    const int _bits;
    const std::function<void()> _onFinished;
    std::unique_ptr<void, Deleter> _pKey;  // libcrypto's; the thread's until it is finished
    std::atomic<bool> _isCancelled;
    std::atomic<bool> _isFinished;
    std::thread _thread;  // the last member: it uses the others
};

#pragma GCC visibility pop

#endif
