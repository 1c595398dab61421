// SPDX-License-Identifier: Apache-2.0
// A prepared Blowfish key: the schedule that libcrypto computes of a secret of 16 bytes, computed once and owned here.
//
// Whoever has data to encrypt hands the record to libcrypto's Blowfish operations (BF_encrypt, BF_cbc_encrypt and so
// on); which mode is right, the key does not know. The record is overwritten with zeros before it is given back.
// After construction it is only read from, so one object serves any number of threads.
#ifndef COUNTERSIGN_CRYPTO_CRBLOWFISHENCRYPTIONKEY_H
#define COUNTERSIGN_CRYPTO_CRBLOWFISHENCRYPTIONKEY_H

#pragma GCC visibility push(default)

// libcrypto's BF_KEY, from <openssl/blowfish.h>.
struct bf_key_st;

class crBlowfishEncryptionKey
{
public:
    // Takes exactly 16 bytes from pKeyBytes, which must not be null; zero bytes are as good as others, and no
    // terminator is looked for.
    explicit crBlowfishEncryptionKey(unsigned char const* pKeyBytes);
    ~crBlowfishEncryptionKey();

    crBlowfishEncryptionKey(const crBlowfishEncryptionKey&) = delete;
    crBlowfishEncryptionKey& operator=(const crBlowfishEncryptionKey&) = delete;

    // The prepared record, the object's own. Null when there was no memory for it; nothing can be encrypted then.
    const bf_key_st* keyRecord() const { return _pKeyRecord; }

private:
    bf_key_st* _pKeyRecord;
};

#pragma GCC visibility pop

#endif
