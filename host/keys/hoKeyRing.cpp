// SPDX-License-Identifier: Apache-2.0
#include "host/keys/hoKeyRing.h"

#include <openssl/evp.h>

#include <algorithm>
#include <new>

#include "host/keys/hoHexText.h"

namespace
{
gtString fileName(const gtString& path)
{
    const std::string_view bytes = path.asStringView();
    // Without a separator, from the beginning: the largest position and one are 0.
    const std::string_view name = bytes.substr(bytes.rfind('/') + 1);
    return name.empty() ? path : gtString(name);
}
}  // namespace

void hoKeyRing::addPublic(const hoLoadedKey& key)
{
    std::vector<hoLoadedKey> publics;
    for (const hoLoadedKey& other : _publics)
    {
        if (other._path != key._path && !hoIsSamePair(*other._pKey, *key._pKey))
        {
            publics.push_back(other);
        }
    }
    publics.push_back(key);
    _publics.swap(publics);
}

std::vector<hoLoadedKey> hoKeyRing::keys() const
{
    std::vector<hoLoadedKey> all;
    if (canSign())
    {
        all.push_back(_private);
    }
    all.insert(all.end(), _publics.begin(), _publics.end());
    return all;
}

void hoKeyRing::forget(std::size_t number)
{
    if (isPrivate(number))
    {
        _private = hoLoadedKey();
        return;
    }
    const std::size_t position = number - (canSign() ? 1 : 0);
    if (position < _publics.size())
    {
        _publics.erase(_publics.begin() + static_cast<std::ptrdiff_t>(position));
    }
}

std::vector<hoTestingKey> hoKeyRing::testingKeys() const
{
    std::vector<hoTestingKey> testing;
    for (auto key = _publics.rbegin(); key != _publics.rend(); ++key)
    {
        testing.push_back({key->_pKey, fileName(key->_path)});
    }
    const auto isPartner = [this](const hoLoadedKey& key) { return hoIsSamePair(*key._pKey, *_private._pKey); };
    if (canSign() && std::none_of(_publics.begin(), _publics.end(), isPartner))
    {
        testing.push_back({_private._pKey, fileName(_private._path)});
    }
    std::vector<gtString> names;
    for (const hoTestingKey& key : testing)
    {
        const bool isUnique =
            std::count_if(testing.begin(), testing.end(),
                          [&key](const hoTestingKey& other) { return other._name == key._name; }) == 1;
        names.push_back(isUnique ? key._name : gtString(key._name).append(' ').append(hoShortFingerprint(*key._pKey)));
    }
    for (std::size_t i = 0; i < names.size(); ++i)
    {
        testing[i]._name = names[i];
    }
    return testing;
}

bool hoIsSamePair(const hoKey& left, const hoKey& right)
{
    const int digits = left.publicKey().amountOfProductDigits();
    return digits == right.publicKey().amountOfProductDigits() &&
           std::equal(left.publicKey().productDigits(), left.publicKey().productDigits() + digits,
                      right.publicKey().productDigits());
}

bool hoIsSameRing(const hoKeyRing& left, const hoKeyRing& right)
{
    return left._private._pKey == right._private._pKey &&
           std::equal(left._publics.begin(), left._publics.end(), right._publics.begin(), right._publics.end(),
                      [](const hoLoadedKey& one, const hoLoadedKey& other) { return one._pKey == other._pKey; });
}

gtString hoShortFingerprint(const hoKey& key)
{
    const crRSAEncryptionKey& half = key.publicKey();
    const gtString text = hoFixedWidthText(half.productDigits(), half.amountOfProductDigits());
    unsigned char digest[EVP_MAX_MD_SIZE] = {};
    unsigned int length = 0;
    if (EVP_Digest(text.asCharArray(), static_cast<std::size_t>(text.length()), digest, &length, EVP_sha256(),
                   nullptr) != 1)
    {
        throw std::bad_alloc();
    }
    const std::size_t shownBytes = 4;
    return hoHexText(digest, shownBytes);
}
