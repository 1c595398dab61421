// SPDX-License-Identifier: Apache-2.0
#include "host/signing/hoInspection.h"

#include <new>
#include <utility>

namespace
{
// The least key that hoReadDigests takes, where there is no other: SHA-256 does not depend on it.
const int bitsOfNoKey = hoSmallestSigningKeyBits;
const char textOfNoKey[] = "ffffffffffffffffffffffffffffffff";
const unsigned int exponentOfNoKey = 65537;
}  // namespace

class hoInspection::Reading : public hoIProgress
{
public:
    explicit Reading(hoInspection& inspection) : _inspection(inspection) {}

    bool onProgress(unsigned long long bytesDone, unsigned long long bytesInAll) override
    {
        _inspection._bytesDone = bytesDone;
        _inspection._bytesInAll = bytesInAll;
        _inspection._onChange();
        return !_inspection._isCancelled;
    }

private:
    hoInspection& _inspection;
};

hoInspection::hoInspection(const gtString& path, std::shared_ptr<const hoKey> pKey, std::function<void()> onChange)
    : _path(path),
      _pKey(pKey != nullptr && pKey->bits() >= hoSmallestSigningKeyBits ? std::move(pKey) : nullptr),
      _onChange(std::move(onChange)),
      _isCancelled(false),
      _isFinished(false),
      _bytesDone(0),
      _bytesInAll(0),
      _work(
          1, 1, 1, [this](std::size_t) { perform(); },
          [this]
          {
              _isFinished = true;
              _onChange();
          })
{
}

hoInspection::~hoInspection()
{
    cancel();
}

void hoInspection::perform()
{
    try
    {
        readSignature();
        crRSAEncryptionKey noKey;
        if (_pKey == nullptr && !noKey.setKeyFromStringAndFermatPrime(bitsOfNoKey, textOfNoKey, exponentOfNoKey))
        {
            throw std::bad_alloc();
        }
        Reading reading(*this);
        const crRSAEncryptionKey& key = _pKey != nullptr ? _pKey->publicKey() : noKey;
        _facts._reading = hoReadDigests(hoDocumentSource(_path), key, true, &reading, _facts._digests);
        if (_pKey == nullptr)
        {
            _facts._digests._digestText.makeEmpty();
        }
    }
    catch (const std::bad_alloc&)
    {
        _facts._reading = hoSigningProblem::NoMemory;
    }
}

void hoInspection::readSignature()
{
    const gtString path = hoSignaturePath(_path);
    _facts._isSigned = osReadFileFacts(path, _facts._signatureFile)._problem != osFileProblem::NotThere;
    if (_facts._isSigned)
    {
        gtString bytes;
        _facts._signatureReading = hoReadSignatureFile(path, bytes);
        _facts._signature = hoParseSignature(bytes.asStringView());
    }
}
