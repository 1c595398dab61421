// SPDX-License-Identifier: Apache-2.0
// Several keys that are loaded at once.
#include "tests/host/NewKey.h"

#include "host/keys/hoHexText.h"
#include "host/keys/hoKeyRing.h"
#include "host/keys/hoPublicKey.h"

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{
using testing::ElementsAre;

class KeyRing : public testing::Test
{
protected:
    static hoLoadedKey key(const char* pPath, const std::shared_ptr<const hoKey>& pKey = newKey(512))
    {
        hoLoadedKey loaded;
        loaded._pKey = pKey;
        loaded._path = pPath;
        return loaded;
    }

    std::vector<std::string> paths() const
    {
        std::vector<std::string> paths;
        for (const hoLoadedKey& loaded : _keys.keys())
        {
            paths.push_back(loaded._path.asStdString());
        }
        return paths;
    }

    std::vector<std::string> names() const
    {
        std::vector<std::string> names;
        for (const hoTestingKey& tested : _keys.testingKeys())
        {
            names.push_back(tested._name.asStdString());
        }
        return names;
    }

    hoKeyRing _keys;
};
}  // namespace

TEST_F(KeyRing, HasEachPublicKeyOnce)
{
    const hoLoadedKey lab = key("/a/lab.pem");
    _keys.addPublic(lab);
    _keys.addPublic(key("/a/office.pem"));
    EXPECT_THAT(paths(), ElementsAre("/a/lab.pem", "/a/office.pem"));
    _keys.addPublic(key("/b/copy.pem", lab._pKey));
    EXPECT_THAT(paths(), ElementsAre("/a/office.pem", "/b/copy.pem"));
    const hoLoadedKey renewed = key("/a/office.pem");
    _keys.addPublic(renewed);
    EXPECT_THAT(paths(), ElementsAre("/b/copy.pem", "/a/office.pem"));
    EXPECT_EQ(_keys._publics[1]._pKey, renewed._pKey);
}

TEST_F(KeyRing, ForgetsOneKeyByItsNumber)
{
    _keys.addPublic(key("/lab.pem"));
    _keys.addPublic(key("/office.pem"));
    _keys._private = key("/mine.pem");
    EXPECT_THAT(paths(), ElementsAre("/mine.pem", "/lab.pem", "/office.pem"));
    EXPECT_TRUE(_keys.isPrivate(0));
    EXPECT_FALSE(_keys.isPrivate(1));
    _keys.forget(3);
    _keys.forget(1);
    EXPECT_THAT(paths(), ElementsAre("/mine.pem", "/office.pem"));
    _keys.forget(0);
    EXPECT_THAT(paths(), ElementsAre("/office.pem"));
    EXPECT_FALSE(_keys.isPrivate(0));
    EXPECT_FALSE(_keys.canSign());
    _keys.forget(0);
    EXPECT_FALSE(_keys.canTest());
    _keys.forget(0);
}

TEST_F(KeyRing, NamesTheKeysThatTest)
{
    EXPECT_THAT(names(), ElementsAre());
    _keys._private = key("/mine.pem");
    EXPECT_THAT(names(), ElementsAre("mine.pem"));
    _keys.addPublic(key("/keys/lab.pem"));
    EXPECT_THAT(names(), ElementsAre("lab.pem", "mine.pem"));
    _keys.addPublic(key("/mine.pub.pem", _keys._private._pKey));
    EXPECT_THAT(names(), ElementsAre("mine.pub.pem", "lab.pem")) << "the partner of the private key is there already";
    _keys.addPublic(key("/other/lab.pem"));
    EXPECT_THAT(names(),
                ElementsAre("lab.pem " + hoShortFingerprint(*_keys._publics[2]._pKey).asStdString(), "mine.pub.pem",
                            "lab.pem " + hoShortFingerprint(*_keys._publics[0]._pKey).asStdString()));
}

TEST_F(KeyRing, TellsAnotherRing)
{
    _keys._private = key("/mine.pem");
    hoKeyRing other = _keys;
    EXPECT_TRUE(hoIsSameRing(_keys, other));
    other.addPublic(key("/lab.pem"));
    EXPECT_FALSE(hoIsSameRing(_keys, other));
    _keys = other;
    EXPECT_TRUE(hoIsSameRing(_keys, other));
    other._private = key("/mine.pem");
    EXPECT_FALSE(hoIsSameRing(_keys, other));
    other = _keys;
    other.addPublic(key("/lab.pem"));
    EXPECT_FALSE(hoIsSameRing(_keys, other)) << "its file holds another key by now";
}

// The same numbers, loaded twice: what was found with one was not found with the other.
TEST_F(KeyRing, IsAnotherWithAnEqualKey)
{
    const std::string text = newKeyText(512);
    const auto load = [&text]
    {
        hoKeyFileFacts facts;
        return std::shared_ptr<const hoKey>(hoLoadKey(text.data(), static_cast<int>(text.size()), nullptr, facts));
    };
    _keys.addPublic(key("/lab.pem", load()));
    hoKeyRing other;
    other.addPublic(key("/lab.pem", load()));
    ASSERT_TRUE(hoIsSamePair(*_keys._publics[0]._pKey, *other._publics[0]._pKey));
    EXPECT_FALSE(hoIsSameRing(_keys, other));
    other._publics[0]._pKey = _keys._publics[0]._pKey;
    EXPECT_TRUE(hoIsSameRing(_keys, other));
}

TEST(PublicHalf, HasNothingOfThePrivateOne)
{
    const auto pKey = newKey(512);
    const auto pHalf = pKey->publicHalf();
    EXPECT_FALSE(pHalf->hasPrivateKey());
    EXPECT_EQ(pHalf->libcryptoPrivateKey(), nullptr);
    EXPECT_NE(pHalf->libcryptoPublicKey(), nullptr);
    EXPECT_EQ(pHalf->bits(), 512);
    EXPECT_TRUE(hoIsSamePair(*pKey, *pHalf));
}

TEST(PublicHalf, HasTheFingerprintOfItsDer)
{
    const auto pKey = newKey(512);
    unsigned char* pDer = nullptr;
    const int length = i2d_PUBKEY(pKey->libcryptoPublicKey(), &pDer);
    ASSERT_GT(length, 0);
    unsigned char digest[EVP_MAX_MD_SIZE] = {};
    ASSERT_EQ(EVP_Digest(pDer, static_cast<std::size_t>(length), digest, nullptr, EVP_sha256(), nullptr), 1);
    OPENSSL_free(pDer);
    EXPECT_EQ(hoFingerprint(*pKey), hoHexText(digest, 32));
    EXPECT_EQ(hoFingerprint(*pKey->publicHalf()), hoFingerprint(*pKey));
}

TEST_F(KeyRing, HasShortFingerprintsOfTheText)
{
    const auto pKey = newKey(512);
    const crRSAEncryptionKey& half = pKey->publicKey();
    const gtString text = hoFixedWidthText(half.productDigits(), half.amountOfProductDigits());
    ASSERT_EQ(text.length(), 128);
    unsigned char digest[EVP_MAX_MD_SIZE] = {};
    ASSERT_EQ(EVP_Digest(text.asCharArray(), 128, digest, nullptr, EVP_sha256(), nullptr), 1);
    EXPECT_EQ(hoShortFingerprint(*pKey), hoHexText(digest, 4));
}
