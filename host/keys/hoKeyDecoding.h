// SPDX-License-Identifier: Apache-2.0
// Keys from PEM or DER by libcrypto's decoders.
#ifndef COUNTERSIGN_HO_KEY_DECODING_H
#define COUNTERSIGN_HO_KEY_DECODING_H

#include <string_view>

#include <openssl/crypto.h>

#include "host/keys/hoKeyFile.h"
#include "host/keys/hoLibcryptoObjects.h"

// One question a file. Whoever asks again gets the same answer.
struct hoPassphraseQuestion
{
    hoPassphraseQuestion() = default;
    ~hoPassphraseQuestion() { OPENSSL_cleanse(_answer, sizeof(_answer)); }
    hoPassphraseQuestion(const hoPassphraseQuestion&) = delete;
    hoPassphraseQuestion& operator=(const hoPassphraseQuestion&) = delete;

    hoIPassphraseSource* _pSource = nullptr;
    bool _isAsked = false;
    bool _isAnswered = false;
    bool _isTooLong = false;
    int _length = 0;
    char _answer[hoLongestPassphrase] = {};
};

// pForm: "PEM" or "DER". pType: of the key; null for any. Null, and libcrypto's errors say why, if there is none.
hoLibcryptoKey hoDecodeKey(std::string_view bytes, const char* pForm, const char* pType,
                           hoPassphraseQuestion& question);

// The public key of a certificate; null if it is none.
hoLibcryptoKey hoDecodeCertificate(std::string_view bytes, bool isPem);

// Why a key was not decoded. Empties libcrypto's list of errors.
hoKeyFileProblem hoDecodingProblem(const hoPassphraseQuestion& question);

#endif
