// SPDX-License-Identifier: Apache-2.0
#include "host/keys/hoKeyDecoding.h"

#include <cstddef>
#include <cstring>
#include <memory>

#include <openssl/decoder.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/proverr.h>
#include <openssl/x509.h>

namespace
{

static_assert(hoLongestPassphrase == PEM_BUFSIZE, "libcrypto has room for no more");

using Decoder = std::unique_ptr<OSSL_DECODER_CTX, hoReleaser<OSSL_DECODER_CTX, OSSL_DECODER_CTX_free>>;
using Certificate = std::unique_ptr<X509, hoReleaser<X509, X509_free>>;

extern "C" int hoAnswerPassphraseQuestion(char* pBuffer, int size, int /*isForWriting*/, void* pQuestionAsVoid)
{
    auto* pQuestion = static_cast<hoPassphraseQuestion*>(pQuestionAsVoid);
    if (!pQuestion->_isAsked && pQuestion->_pSource != nullptr)
    {
        pQuestion->_length = pQuestion->_pSource->getPassphrase(pQuestion->_answer, hoLongestPassphrase);
        pQuestion->_isTooLong = pQuestion->_length > hoLongestPassphrase;
        pQuestion->_isAnswered = pQuestion->_length >= 0 && !pQuestion->_isTooLong;
    }
    pQuestion->_isAsked = true;
    if (!pQuestion->_isAnswered || pQuestion->_length > size)
    {
        return -1;
    }
    std::memcpy(pBuffer, pQuestion->_answer, static_cast<std::size_t>(pQuestion->_length));
    return pQuestion->_length;
}

}  // namespace

hoLibcryptoKey hoDecodeKey(std::string_view bytes, const char* pForm, const char* pType, hoPassphraseQuestion& question)
{
    EVP_PKEY* pKey = nullptr;
    const Decoder decoder(OSSL_DECODER_CTX_new_for_pkey(&pKey, pForm, nullptr, pType, 0, nullptr, nullptr));
    const auto* pBytes = reinterpret_cast<const unsigned char*>(bytes.data());
    std::size_t amountOfBytes = bytes.size();
    if (decoder != nullptr &&
        OSSL_DECODER_CTX_set_pem_password_cb(decoder.get(), hoAnswerPassphraseQuestion, &question) == 1)
    {
        OSSL_DECODER_from_data(decoder.get(), &pBytes, &amountOfBytes);
    }
    return hoLibcryptoKey(pKey);
}

hoLibcryptoKey hoDecodeCertificate(std::string_view bytes, bool isPem)
{
    const hoBio bio(BIO_new_mem_buf(bytes.data(), static_cast<int>(bytes.size())));
    const Certificate certificate(bio == nullptr ? nullptr
                                  : isPem        ? PEM_read_bio_X509_AUX(bio.get(), nullptr, nullptr, nullptr)
                                                 : d2i_X509_bio(bio.get(), nullptr));
    return hoLibcryptoKey(certificate == nullptr ? nullptr : X509_get_pubkey(certificate.get()));
}

hoKeyFileProblem hoDecodingProblem(const hoPassphraseQuestion& question)
{
    bool isMemory = false;
    bool isWrong = false;
    bool isUnsupported = false;
    for (unsigned long error = ERR_get_error(); error != 0; error = ERR_get_error())
    {
        const int library = ERR_GET_LIB(error);
        const int reason = ERR_GET_REASON(error);
        isMemory = isMemory || reason == ERR_R_MALLOC_FAILURE;
        isWrong = isWrong || (library == ERR_LIB_EVP && reason == EVP_R_BAD_DECRYPT) ||
                  (library == ERR_LIB_PROV && reason == PROV_R_BAD_DECRYPT);
        isUnsupported =
            isUnsupported ||
            (library == ERR_LIB_EVP && (reason == ERR_R_UNSUPPORTED || reason == EVP_R_UNKNOWN_PBE_ALGORITHM ||
                                        reason == EVP_R_UNSUPPORTED_ALGORITHM || reason == EVP_R_UNSUPPORTED_PRF ||
                                        reason == EVP_R_UNSUPPORTED_CIPHER)) ||
            (library == ERR_LIB_PEM && reason == PEM_R_UNSUPPORTED_ENCRYPTION);
    }
    if (isMemory)
    {
        return hoKeyFileProblem::NoMemory;
    }
    if (!question._isAsked)
    {
        return isUnsupported ? hoKeyFileProblem::EncryptionNotSupported : hoKeyFileProblem::Damaged;
    }
    if (question._isTooLong)
    {
        return hoKeyFileProblem::PassphraseTooLong;
    }
    if (!question._isAnswered)
    {
        return hoKeyFileProblem::PassphraseNeeded;
    }
    return isUnsupported && !isWrong ? hoKeyFileProblem::EncryptionNotSupported : hoKeyFileProblem::WrongPassphrase;
}
