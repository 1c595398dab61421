// SPDX-License-Identifier: Apache-2.0
// Any bytes as a signature file: a text has one spelling, and none but the one that the key has made is good.
#include <fcntl.h>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

#include <openssl/err.h>

#include "fuzzInput.h"
#include "host/signing/hoFileSigning.h"

namespace
{

// It guards nothing.
const char* const publicKey = "-----BEGIN PUBLIC KEY-----\n"
                              "MIGfMA0GCSqGSIb3DQEBAQUAA4GNADCBiQKBgQCwuxuy7UvAeHnz1nuovTnU6+fW\n"
                              "Jld0C3oQKGhc3bP4vGStyRdewN7+o5jQo8taVjxq7bVIXq+ubLekXcx2oVad0YHs\n"
                              "hO82kpzMjHDKgQg6ua5OYQ7bQpo90Yr4uKoXUaiHWHUM2hQ10coLRXp/scMBuUcP\n"
                              "uqN5WmPGBqro/XeLdQIDAQAB\n"
                              "-----END PUBLIC KEY-----\n";

// Of the eight bytes "document".
const std::string goodSignature =
    "000000782df57a809acfc9a377c57a3b085f5349584122d79dececb28d5e489322b772830207e760eadc972b76"
    "09341e94451723637ea8d6eee5bfd0a139747c491ceb8cc8e6c4a9a3bb76c7dd98c431b159b347552596b4b853"
    "aa361e81852f545685a0e62facd3d371206f92b2954e09117ea20b1aa39ae43afda2415315bd067e38ac\n"
    "countersignature: rsa-pss-sha256 32bbbf0e AXfL6RO9V+7X51cZNPPzn/T+gpFxNA4W1nz3C873ciRXiFId"
    "8TO75hLr55x8tvXHbSb5CAXbnDmwafBcp4+aChRKKaL5O8i1AptTWBET+dYU+aOOLs1y7FKD3LVK9qc8MbMFahzwHy"
    "WqgRpyjUgXnYpSLlJAHhilqFIq4O4mCm8=\n";

std::unique_ptr<const hoKey> loadKey()
{
    hoKeyFileFacts facts;
    std::unique_ptr<const hoKey> pKey =
        hoLoadKey(publicKey, static_cast<int>(std::char_traits<char>::length(publicKey)), nullptr, facts);
    FUZZ_CHECK(pKey != nullptr);
    return pKey;
}

gtString makeDocument()
{
    const int descriptor = memfd_create("fuzz", 0);
    FUZZ_CHECK(descriptor >= 0);
    FUZZ_CHECK(pwrite(descriptor, "document", 8, 0) == 8);
    return "/proc/self/fd/" + std::to_string(descriptor);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t size)
{
    static const std::unique_ptr<const hoKey> pKey = loadKey();
    static const gtString document = makeDocument();
    const std::string bytes(reinterpret_cast<const char*>(pBytes), size);

    const hoSignatureText signature = hoParseSignature(bytes);
    if (signature.isSignature())
    {
        std::string again = signature._digestLine.asStdString() + "\n";
        if (signature._form == hoSignatureForm::Countersigned)
        {
            again += hoCountersignatureLine(signature._fingerprint, signature._countersignature).asStdString();
        }
        FUZZ_CHECK(again == bytes);
    }
    else
    {
        FUZZ_CHECK(signature._digestLine.isEmpty() && signature._fingerprint.isEmpty() &&
                   signature._countersignature.empty() && signature._digits == 0);
    }

    const hoTestFacts facts = hoTestFile(document, {pKey.get()}, bytes, nullptr);
    FUZZ_CHECK(facts.isOk());
    FUZZ_CHECK((facts._verdict == hoVerdict::Good) == (bytes == goodSignature));
    FUZZ_CHECK((facts._verdict == hoVerdict::Weak) == (bytes == goodSignature.substr(0, 265)));
    FUZZ_CHECK(signature.isSignature() || facts._verdict == hoVerdict::NotASignature);
    FUZZ_CHECK(ERR_peek_error() == 0);
    return 0;
}
