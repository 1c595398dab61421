// SPDX-License-Identifier: Apache-2.0
// RSA keys from files: private or public, PKCS#1 or PKCS#8, encrypted or not, and certificates, in PEM or DER, as
// openssl writes them. A PEM file may hold other things and several keys; each begins on a line of its own.
//
// What loads can be used: public numbers are checked for what would send texts in the clear, and private ones for what
// libcrypto's own check looks at. Only tests for primes, which take minutes above hoMostCheckedBits, end there.
//
// Results are facts; the wording is up to the command line and the window. Nothing here prints, waits (a named pipe is
// refused) or touches a file other than by reading it. Without memory the loaders say NoMemory, and the other functions
// throw std::bad_alloc; nothing else is thrown but what a passphrase source throws. What held a private number or a
// passphrase is overwritten with zeros before it is given back, by libcrypto, too (see hoLibcryptoMemory.h). Calls may
// run on any threads.
#ifndef COUNTERSIGN_HO_KEY_FILE_H
#define COUNTERSIGN_HO_KEY_FILE_H

#include <functional>
#include <memory>

#include "crypto/crRSAEncryptionKey.h"
#include "platform/baseTools/gtString.h"
#include "platform/osWrappers/osResult.h"

// libcrypto's EVP_PKEY.
struct evp_pkey_st;

#pragma GCC visibility push(default)

enum class hoKeyFileProblem
{
    None,
    CannotBeRead,   // the system refused; its error number is told
    IsFolder,       // a folder
    NotRegular,     // a named pipe, a device, a socket
    TooLarge,       // more than hoLargestKeyFile bytes: no key
    NoKey,          // no key in it
    OpenSshFormat,  // a key in the format that ssh-keygen writes by default
    SshPublicKey,   // a public key for SSH, in one line or in the format of RFC 4716
    PuttyFormat,    // a key in PuTTY's format
    OpenPgpKey,     // a key for OpenPGP
    CertificateRequest,
    Pkcs12,                  // a PKCS#12 file, which holds keys and certificates under one passphrase
    Utf16,                   // text of two bytes a character
    NotRsa,                  // a key of another kind
    RsaPss,                  // an RSA key that is marked for RSASSA-PSS alone
    PassphraseNeeded,        // it is encrypted, and no passphrase was given
    WrongPassphrase,         // it is encrypted, and does not come out with the passphrase that was given
    PassphraseTooLong,       // more than hoLongestPassphrase bytes were given; no key file takes them
    EncryptionNotSupported,  // it is encrypted in a way that libcrypto does not have (any more)
    Damaged,                 // its numbers cannot be read, or the private half does not fit the public one
    Unsafe,            // with these numbers nothing is kept secret: an even one, an exponent below 3, a prime modulus
    SizeNotSupported,  // RSA, but with a modulus whose size is no multiple of 32 bits or above hoLargestKeyBits
    Cancelled,         // the caller's function said so
    NoMemory
};

constexpr long hoLargestKeyFile = 1024 * 1024;
constexpr int hoLongestPassphrase = 1024;
constexpr int hoLargestKeyBits = 16384;
constexpr int hoMostCheckedBits = 4096;

// Which key of a file with several ones.
enum class hoKeyNeed
{
    Any,    // the first private one, or else the first public one
    Public  // the first public one or certificate, or else the public half of the first private one
};

struct hoKeyFileFacts : osResult<hoKeyFileProblem>
{
    int _bits = 0;                 // the modulus, as soon as it is known, also when its size is not supported
    bool _isPrivate = false;       // the file has both halves
    bool _isEncrypted = false;     // a passphrase was asked for
    bool _isOpenToOthers = false;  // others than the owner may read or change the file

    // Others may put another file in its place: somebody else (but for root) owns the folder that it was named in, or
    // everybody may write to that, or a group that is not this process's own; and it is no folder like /tmp, in which
    // everybody keeps to what is theirs.
    bool _isFolderOpenToOthers = false;

    // What libcrypto has read was overwritten; false if something in the program used libcrypto before main.
    bool _isLibcryptoMemoryWiped = true;
};

// Where passphrases come from.
class hoIPassphraseSource
{
public:
    virtual ~hoIPassphraseSource();

    // Puts a passphrase of at most size bytes into the buffer, without a terminator, and returns its length; -1 when
    // there is none, and more than size when it has more bytes than that. The buffer is overwritten afterwards. Called
    // at most once a file.
    virtual int getPassphrase(char* pBuffer, int size) = 0;
};

// One key file's keys. The object may be used by any number of threads once it is loaded.
class hoKey
{
public:
    int bits() const { return _bits; }
    bool hasPrivateKey() const { return _pPrivateKey != nullptr; }

    // The modulus with the public exponent. Every file has it, also one with a private key.
    const crRSAEncryptionKey& publicKey() const { return *_pPublicKey; }

    // The modulus with the private exponent; only if hasPrivateKey().
    const crRSAEncryptionKey& privateKey() const { return *_pPrivateKey; }

    // What the file was made for: the private key if it has one, else the public one.
    const crRSAEncryptionKey& ownKey() const { return hasPrivateKey() ? *_pPrivateKey : *_pPublicKey; }

    // The halves as libcrypto has them. The private one has both, and is null unless hasPrivateKey().
    evp_pkey_st* libcryptoPublicKey() const { return _pLibcryptoPublicKey.get(); }
    evp_pkey_st* libcryptoPrivateKey() const { return _pLibcryptoPrivateKey.get(); }

    // The same without a private key, for those who do not need it: nothing secret stays when this one goes away.
    std::unique_ptr<const hoKey> publicHalf() const;

private:
    friend class hoKeyMaker;

    int _bits = 0;
    std::shared_ptr<const crRSAEncryptionKey> _pPublicKey;
    std::unique_ptr<crRSAEncryptionKey> _pPrivateKey;
    std::shared_ptr<evp_pkey_st> _pLibcryptoPublicKey;
    std::shared_ptr<evp_pkey_st> _pLibcryptoPrivateKey;
};

// Whether the loading goes on; false ends it as Cancelled. May be empty, and may not throw.
using hoGoesOn = std::function<bool()>;

// Loads the key of the file that is needed; RSA keys go before others. The key is there when the problem is None, and
// null otherwise. Without a source, encrypted files need a passphrase that nobody gives. goesOn is asked all the while
// that the numbers are checked, and not before: nothing ends libcrypto's derivation of a key from a passphrase.
std::unique_ptr<const hoKey> hoLoadKeyFile(const gtString& path, hoIPassphraseSource* pSource, hoKeyFileFacts& facts,
                                           hoKeyNeed need = hoKeyNeed::Any, const hoGoesOn& goesOn = hoGoesOn());

// The same from bytes that the caller has read (and overwrites). What the facts say of the file and its folder
// (_isOpenToOthers, _isFolderOpenToOthers) stays as the caller has set it.
std::unique_ptr<const hoKey> hoLoadKey(const char* pBytes, int amountOfBytes, hoIPassphraseSource* pSource,
                                       hoKeyFileFacts& facts, hoKeyNeed need = hoKeyNeed::Any,
                                       const hoGoesOn& goesOn = hoGoesOn());

// Whether the file reads as a PEM file of keys: it can be read, is no larger than hoLargestKeyFile, begins with a PEM
// block (blanks and empty lines before it do not count), and holds one with a key. Whether that key can be loaded is
// not looked at.
bool hoIsKeyFile(const gtString& path);

// A number of the key as text, eight characters a digit, the highest digit first.
gtString hoFixedWidthText(const unsigned int* pDigits, int amountOfDigits);

#pragma GCC visibility pop

#endif
