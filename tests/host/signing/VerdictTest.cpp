// SPDX-License-Identifier: Apache-2.0
// What is said of a document and any signature file beside it: a table of some hundred signature files, every byte of a
// good one changed, and the documents that an exclusive-or digest cannot tell apart.
#include "tests/host/NewKey.h"
#include "tests/support/TemporaryFolder.h"

#include "host/keys/hoKeyRing.h"
#include "host/messages/hoMessages.h"
#include "host/signing/hoFileDigests.h"
#include "host/signing/hoFileSigning.h"

#include <gtest/gtest.h>

#include <openssl/evp.h>
#include <openssl/rsa.h>

#include <functional>

namespace
{

// Longer than a run of the digest.
const std::string contents = "the document that was signed " + std::string(300, '.');

// One key, and signatures of it and of others. Made once.
struct Materials
{
    Materials()
    {
        document = folder.write("document", contents).c_str();
        other = folder.write("other", contents + "?").c_str();
        // The digest of a key of 1024 bits folds runs of 60 bytes: two runs change places, and zeros are added.
        std::string swapped = contents;
        std::swap_ranges(swapped.begin(), swapped.begin() + 60, swapped.begin() + 60);
        sameDigest = folder.write("same digest", swapped).c_str();
        good = sign(document, *pKey);
        weak = sign(document, *pKey, hoSignatureLines::DigestOnly);
        line = weak.substr(0, weak.size() - 1);
        secondLine = good.substr(weak.size());
    }

    static std::string sign(const gtString& path, const hoKey& key, hoSignatureLines lines = hoSignatureLines::Both)
    {
        gtString signature;
        const hoSigningFacts facts = hoSignFile(path, key, lines, nullptr, signature);
        if (!facts.isOk())
        {
            throw std::runtime_error("cannot sign: " + hoSigningReason(facts).asStdString());
        }
        return signature.asStdString();
    }

    hoTestFacts test(const std::string& signature) const { return test(document, signature); }
    hoTestFacts test(const gtString& path, const std::string& signature) const
    {
        return hoTestFile(path, {pKey.get()}, signature, nullptr);
    }

    TemporaryFolder folder;
    std::shared_ptr<const hoKey> pKey = newKey(1024);
    std::shared_ptr<const hoKey> pOtherKey = newKey(1024);
    std::shared_ptr<const hoKey> pLargeKey = newKey(2048);
    std::shared_ptr<const hoKey> pSmallKey = newKey(512);
    gtString document;
    gtString other;
    gtString sameDigest;
    std::string good;
    std::string weak;
    std::string line;        // the first, without its end
    std::string secondLine;  // with its end
};

const Materials& materials()
{
    static const Materials once;
    return once;
}

std::string fingerprint(const hoKey& key)
{
    return hoShortFingerprint(key).asStdString();
}

std::string replaced(std::string text, const std::string& what, const std::string& with)
{
    const std::size_t position = text.find(what);
    if (position == std::string::npos)
    {
        throw std::runtime_error("there is no " + what);
    }
    return text.replace(position, what.size(), with);
}

std::string upper(std::string text)
{
    for (char& character : text)
    {
        character = static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
    }
    return text;
}

std::string wrapped(const std::string& text, std::size_t width)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); i += width)
    {
        result += text.substr(i, width) + "\n";
    }
    return result;
}

// A countersignature of other kinds than the one that counts.
std::string otherCountersignature(const Materials& all, int padding, const EVP_MD* pHash, const EVP_MD* pMaskHash,
                                  int lengthOfSalt)
{
    EVP_MD_CTX* const pContext = EVP_MD_CTX_new();
    EVP_PKEY_CTX* pKeyContext = nullptr;
    std::vector<unsigned char> signature(128);
    std::size_t length = signature.size();
    const bool isMade =
        EVP_DigestSignInit(pContext, &pKeyContext, pHash, nullptr, all.pKey->libcryptoPrivateKey()) == 1 &&
        EVP_PKEY_CTX_set_rsa_padding(pKeyContext, padding) > 0 &&
        (padding != RSA_PKCS1_PSS_PADDING || (EVP_PKEY_CTX_set_rsa_mgf1_md(pKeyContext, pMaskHash) > 0 &&
                                              EVP_PKEY_CTX_set_rsa_pss_saltlen(pKeyContext, lengthOfSalt) > 0)) &&
        EVP_DigestSign(pContext, signature.data(), &length, reinterpret_cast<const unsigned char*>(contents.data()),
                       contents.size()) == 1;
    EVP_MD_CTX_free(pContext);
    if (!isMade)
    {
        throw std::runtime_error("libcrypto cannot sign so");
    }
    return all.weak + hoCountersignatureLine(hoShortFingerprint(*all.pKey), signature).asStdString();
}

struct Sample
{
    std::string name;
    hoVerdict verdict;
    hoSignatureForm form;
    std::function<std::string(const Materials&)> make;
};

void PrintTo(const Sample& sample, std::ostream* pStream)
{
    *pStream << sample.name;
}

using Form = hoSignatureForm;
using Verdict = hoVerdict;

void addSignaturesOfKeys(std::vector<Sample>& samples)
{
    const auto add = [&](const char* pName, Verdict verdict, Form form,
                         std::function<std::string(const Materials&)> make) {
        samples.push_back({pName, verdict, form, std::move(make)});
    };
    add("BothLines", Verdict::Good, Form::Countersigned, [](const Materials& all) { return all.good; });
    add("BothLinesMadeAgain", Verdict::Good, Form::Countersigned,
        [](const Materials& all) { return all.sign(all.document, *all.pKey); });
    add("SecondLineByLibcrypto", Verdict::Good, Form::Countersigned,
        [](const Materials& all)
        { return otherCountersignature(all, RSA_PKCS1_PSS_PADDING, EVP_sha256(), EVP_sha256(), 32); });
    add("FirstLineAlone", Verdict::Weak, Form::DigestOnly, [](const Materials& all) { return all.weak; });
    add("OfAnotherDocument", Verdict::Bad, Form::Countersigned,
        [](const Materials& all) { return all.sign(all.other, *all.pKey); });
    add("FirstLineOfAnotherDocument", Verdict::Bad, Form::DigestOnly,
        [](const Materials& all) { return all.sign(all.other, *all.pKey, hoSignatureLines::DigestOnly); });
    add("OfADocumentOfTheSameDigest", Verdict::Bad, Form::Countersigned,
        [](const Materials& all) { return all.sign(all.sameDigest, *all.pKey); });
    add("FirstLineOfADocumentOfTheSameDigest", Verdict::Weak, Form::DigestOnly,
        [](const Materials& all) { return all.sign(all.sameDigest, *all.pKey, hoSignatureLines::DigestOnly); });
    add("SecondLineOfAnotherDocument", Verdict::Bad, Form::Countersigned,
        [](const Materials& all) { return all.weak + all.sign(all.other, *all.pKey).substr(all.weak.size()); });
    add("FirstLineOfAnotherDocumentWithOurSecond", Verdict::Bad, Form::Countersigned,
        [](const Materials& all)
        { return all.sign(all.other, *all.pKey, hoSignatureLines::DigestOnly) + all.secondLine; });
    add("OfAnotherKey", Verdict::AnotherKey, Form::Countersigned,
        [](const Materials& all) { return all.sign(all.document, *all.pOtherKey); });
    add("FirstLineOfAnotherKey", Verdict::AnotherKey, Form::DigestOnly,
        [](const Materials& all) { return all.sign(all.document, *all.pOtherKey, hoSignatureLines::DigestOnly); });
    add("SecondLineOfAnotherKey", Verdict::AnotherKey, Form::Countersigned,
        [](const Materials& all) { return all.weak + all.sign(all.document, *all.pOtherKey).substr(all.weak.size()); });
    add("FirstLineOfAnotherKeyWithOurSecond", Verdict::AnotherKey, Form::Countersigned,
        [](const Materials& all)
        { return all.sign(all.document, *all.pOtherKey, hoSignatureLines::DigestOnly) + all.secondLine; });
    add("OfALargerKey", Verdict::AnotherKey, Form::Countersigned,
        [](const Materials& all) { return all.sign(all.document, *all.pLargeKey); });
    add("FirstLineOfALargerKey", Verdict::NotASignature, Form::DigestOnly,
        [](const Materials& all) { return all.sign(all.document, *all.pLargeKey, hoSignatureLines::DigestOnly); });
    add("FirstLineOfASmallerKey", Verdict::NotASignature, Form::DigestOnly,
        [](const Materials& all) { return all.sign(all.document, *all.pSmallKey, hoSignatureLines::DigestOnly); });
    add("OfALargerKeyWithOurFingerprint", Verdict::NotASignature, Form::Countersigned,
        [](const Materials& all) {
            return replaced(all.sign(all.document, *all.pLargeKey), fingerprint(*all.pLargeKey),
                            fingerprint(*all.pKey));
        });
    add("OfAnotherKeyWithOurFingerprint", Verdict::AnotherKey, Form::Countersigned,
        [](const Materials& all) {
            return replaced(all.sign(all.document, *all.pOtherKey), fingerprint(*all.pOtherKey),
                            fingerprint(*all.pKey));
        });
    add("FirstLineOfZeros", Verdict::AnotherKey, Form::DigestOnly,
        [](const Materials&) { return "00000078" + std::string(256, '0') + "\n"; });
    add("FirstLineOfOne", Verdict::AnotherKey, Form::DigestOnly,
        [](const Materials&) { return "0000007800000001" + std::string(248, '0') + "\n"; });
    add("FirstLineAboveTheModulus", Verdict::AnotherKey, Form::DigestOnly,
        [](const Materials&) { return "00000078" + std::string(256, 'f') + "\n"; });
}

void addCountersignatures(std::vector<Sample>& samples)
{
    const auto add = [&](const char* pName, Verdict verdict, Form form,
                         std::function<std::string(const Materials&)> make) {
        samples.push_back({pName, verdict, form, std::move(make)});
    };
    const auto ofKind = [&](const char* pName, int padding, const EVP_MD* pHash, const EVP_MD* pMaskHash, int salt)
    {
        add(pName, Verdict::Bad, Form::Countersigned,
            [=](const Materials& all) { return otherCountersignature(all, padding, pHash, pMaskHash, salt); });
    };
    ofKind("WithoutSalt", RSA_PKCS1_PSS_PADDING, EVP_sha256(), EVP_sha256(), 0);
    ofKind("WithAShortSalt", RSA_PKCS1_PSS_PADDING, EVP_sha256(), EVP_sha256(), 20);
    ofKind("WithALongSalt", RSA_PKCS1_PSS_PADDING, EVP_sha256(), EVP_sha256(), 62);
    ofKind("WithSha1", RSA_PKCS1_PSS_PADDING, EVP_sha1(), EVP_sha1(), 32);
    ofKind("WithSha512", RSA_PKCS1_PSS_PADDING, EVP_sha512(), EVP_sha512(), 32);
    ofKind("WithAnotherMask", RSA_PKCS1_PSS_PADDING, EVP_sha256(), EVP_sha1(), 32);
    ofKind("WithTheOlderPadding", RSA_PKCS1_PADDING, EVP_sha256(), nullptr, 0);

    const auto line =
        [&](const char* pName, Verdict verdict, Form form, const std::function<std::string(const Materials&)>& make)
    { add(pName, verdict, form, [=](const Materials& all) { return all.weak + make(all); }); };
    const auto changed = [&](const char* pName, const char* pWhat, const char* pWith, Form form)
    {
        line(pName, Verdict::NotASignature, form,
             [=](const Materials& all) { return replaced(all.secondLine, pWhat, pWith); });
    };
    const Form other = Form::OtherCountersignature;
    changed("OfAnotherAlgorithm", "sha256", "sha512", other);
    changed("OfAnUnknownAlgorithm", "rsa-pss-sha256", "ed25519", other);
    changed("WithoutAlgorithm", "rsa-pss-sha256 ", "", other);
    changed("InUpperCase", "rsa-pss-sha256", "RSA-PSS-SHA256", other);
    changed("WithTwoBlanksBehindTheColon", ": ", ":  ", other);
    changed("WithATab", ": ", ":\t", other);
    changed("WithoutBlankBehindTheColon", ": ", ":", other);
    changed("WithAnotherWord", "countersignature", "counter-signature", Form::TrailingBytes);
    changed("WithACapitalWord", "countersignature", "Countersignature", Form::TrailingBytes);
    changed("WithABlankInFront", "countersignature", " countersignature", Form::TrailingBytes);
    changed("WithACarriageReturn", "\n", "\r\n", other);
    changed("WithABlankBehind", "\n", " \n", other);
    line("WithoutBase64", Verdict::NotASignature, other,
         [](const Materials& all) { return "countersignature: rsa-pss-sha256 " + fingerprint(*all.pKey) + " \n"; });
    line("WithoutFingerprint", Verdict::NotASignature, other,
         [](const Materials& all) { return replaced(all.secondLine, fingerprint(*all.pKey) + " ", ""); });
    line("WithACapitalFingerprint", Verdict::NotASignature, other,
         [](const Materials& all) { return replaced(all.secondLine, fingerprint(*all.pKey), "ABCDEF01"); });
    line("WithALongFingerprint", Verdict::NotASignature, other,
         [](const Materials& all)
         { return replaced(all.secondLine, fingerprint(*all.pKey), fingerprint(*all.pKey) + "0"); });
    line("WithAShortFingerprint", Verdict::NotASignature, other,
         [](const Materials& all)
         { return replaced(all.secondLine, fingerprint(*all.pKey), fingerprint(*all.pKey).substr(1)); });
    line("WithAnotherFingerprint", Verdict::AnotherKey, Form::Countersigned,
         [](const Materials& all)
         { return replaced(all.secondLine, fingerprint(*all.pKey), fingerprint(*all.pOtherKey)); });
    const auto bytes = [&](const char* pName, Verdict verdict, std::size_t amount)
    {
        line(pName, verdict, Form::Countersigned,
             [=](const Materials& all)
             {
                 return hoCountersignatureLine(hoShortFingerprint(*all.pKey), std::vector<unsigned char>(amount, 'x'))
                     .asStdString();
             });
    };
    bytes("OfAsManyBytes", Verdict::Bad, 128);
    bytes("OfOneByteLess", Verdict::NotASignature, 127);
    bytes("OfOneByteMore", Verdict::NotASignature, 129);
    bytes("OfOneByte", Verdict::NotASignature, 1);
    bytes("OfALargerKeysBytes", Verdict::NotASignature, 256);
    line("OfTooManyBytes", Verdict::NotASignature, other,
         [](const Materials& all) {
             return hoCountersignatureLine(hoShortFingerprint(*all.pKey), std::vector<unsigned char>(5000, 'x'))
                 .asStdString();
         });
    // 128 bytes end in one sign of padding, and the character before it has two bits to spare.
    line("WithSpareBitsSet", Verdict::NotASignature, other,
         [](const Materials& all)
         {
             std::string text = all.secondLine;
             char& last = text[text.size() - 3];
             const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
             last = alphabet[alphabet.find(last) + 1];
             return text;
         });
    changed("WithoutPadding", "=\n", "\n", other);
    changed("WithTooMuchPadding", "=\n", "==\n", other);
    line("OfTheOtherAlphabet", Verdict::NotASignature, other,
         [](const Materials& all) { return all.secondLine.substr(0, 50) + "-_" + all.secondLine.substr(52); });
    line("WithABlankInside", Verdict::NotASignature, other,
         [](const Materials& all) { return all.secondLine.substr(0, 60) + " " + all.secondLine.substr(61); });
    line("Broken", Verdict::NotASignature, other,
         [](const Materials& all) { return all.secondLine.substr(0, 80) + "\n" + all.secondLine.substr(80); });
    line("WithoutEnd", Verdict::NotASignature, Form::Truncated,
         [](const Materials& all) { return all.secondLine.substr(0, all.secondLine.size() - 1); });
    line("OfOneCharacter", Verdict::NotASignature, Form::Truncated, [](const Materials&) { return "c"; });
    line("Twice", Verdict::NotASignature, Form::TrailingBytes,
         [](const Materials& all) { return all.secondLine + all.secondLine; });
    line("BehindAnEmptyLine", Verdict::NotASignature, Form::TrailingBytes,
         [](const Materials& all) { return "\n" + all.secondLine; });
}

void addSpoiltOnes(std::vector<Sample>& samples)
{
    const auto add = [&](const char* pName, Form form, std::function<std::string(const Materials&)> make) {
        samples.push_back({pName, Verdict::NotASignature, form, std::move(make)});
    };
    add("Empty", Form::Empty, [](const Materials&) { return ""; });
    add("AnEmptyLine", Form::OtherLength, [](const Materials&) { return "\n"; });
    add("ABlank", Form::OtherCharacters, [](const Materials&) { return " "; });
    add("ANul", Form::OtherCharacters, [](const Materials&) { return std::string(1, '\0'); });
    add("OneCharacter", Form::Truncated, [](const Materials&) { return "0"; });
    add("ALengthAlone", Form::OtherLength, [](const Materials&) { return "00000078\n"; });
    add("ZeroLength", Form::OtherLength, [](const Materials&) { return "00000000\n"; });
    add("AHostileLength", Form::OtherLength, [](const Materials&) { return "7735940000000000\n"; });
    add("NoEnd", Form::Truncated, [](const Materials& all) { return all.line; });
    add("OneCharacterLess", Form::OtherLength,
        [](const Materials& all) { return all.line.substr(0, all.line.size() - 1) + "\n"; });
    add("OneCharacterMore", Form::OtherLength, [](const Materials& all) { return all.line + "0\n"; });
    add("OneDigitLess", Form::OtherLength,
        [](const Materials& all) { return all.line.substr(0, all.line.size() - 8) + "\n"; });
    // The digest of a key of an odd amount of digits has as many as that of a key of one less.
    add("OneDigitMore", Form::DigestOnly, [](const Materials& all) { return all.line + "00000000\n"; });
    add("TwoDigitsMore", Form::OtherLength,
        [](const Materials& all) { return all.line + std::string(16, '0') + "\n"; });
    add("AnotherLengthField", Form::OtherLength,
        [](const Materials& all) { return "00000077" + all.line.substr(8) + "\n"; });
    add("AZeroLengthField", Form::OtherLength,
        [](const Materials& all) { return "00000000" + all.line.substr(8) + "\n"; });
    add("CapitalDigits", Form::OtherCharacters,
        [](const Materials& all) { return all.line.substr(0, 8) + upper(all.line.substr(8, 255)) + "F\n"; });
    add("ASignInTheDigits", Form::OtherCharacters,
        [](const Materials& all) { return all.line.substr(0, 8) + "+" + all.line.substr(9) + "\n"; });
    add("APrefixInTheDigits", Form::OtherCharacters,
        [](const Materials& all) { return all.line.substr(0, 8) + "0x" + all.line.substr(10) + "\n"; });
    add("ANulInTheDigits", Form::OtherCharacters,
        [](const Materials& all)
        { return all.line.substr(0, 100) + std::string(1, '\0') + all.line.substr(101) + "\n"; });
    add("ABlankInFront", Form::OtherCharacters, [](const Materials& all) { return " " + all.good; });
    add("AnEmptyLineInFront", Form::OtherLength, [](const Materials& all) { return "\n" + all.good; });
    add("ABlankBehindTheLine", Form::OtherCharacters, [](const Materials& all) { return all.line + " \n"; });
    add("AnEmptyLineBehind", Form::TrailingBytes, [](const Materials& all) { return all.good + "\n"; });
    add("AnEmptyLineBehindTheFirst", Form::TrailingBytes, [](const Materials& all) { return all.weak + "\n"; });
    add("ABlankBehind", Form::TrailingBytes, [](const Materials& all) { return all.good + " "; });
    add("ANulBehind", Form::TrailingBytes, [](const Materials& all) { return all.good + std::string(1, '\0'); });
    add("TextBehind", Form::TrailingBytes, [](const Materials& all) { return all.good + "signed by me\n"; });
    add("TextBehindTheFirst", Form::TrailingBytes, [](const Materials& all) { return all.weak + "signed by me\n"; });
    add("TheFirstLineTwice", Form::TrailingBytes, [](const Materials& all) { return all.weak + all.weak; });
    add("AllOfItTwice", Form::TrailingBytes, [](const Materials& all) { return all.good + all.good; });
    add("TheLinesTheOtherWayRound", Form::OtherCharacters,
        [](const Materials& all) { return all.secondLine + all.weak; });
    add("TheSecondLineAlone", Form::OtherCharacters, [](const Materials& all) { return all.secondLine; });
    add("CarriageReturns", Form::OtherLineEnds,
        [](const Materials& all) { return replaced(replaced(all.good, "\nc", "\r\nc"), "=\n", "=\r\n"); });
    add("ACarriageReturnInTheFirstLine", Form::OtherLineEnds, [](const Materials& all) { return all.line + "\r\n"; });
    add("CarriageReturnsAlone", Form::OtherLineEnds, [](const Materials& all) { return all.line + "\r"; });
    add("WrappedAt64", Form::Wrapped, [](const Materials& all) { return wrapped(all.line, 64); });
    add("WrappedAt76", Form::Wrapped, [](const Materials& all) { return wrapped(all.line, 76); });
    add("WrappedWithSecondLine", Form::Wrapped,
        [](const Materials& all) { return wrapped(all.line, 72) + all.secondLine; });
    add("AByteOrderMark", Form::ByteOrderMark, [](const Materials& all) { return "\xEF\xBB\xBF" + all.good; });
    add("Utf16", Form::ByteOrderMark,
        [](const Materials& all)
        {
            std::string text = "\xFF\xFE";
            for (const char character : all.good)
            {
                text += character;
                text += '\0';
            }
            return text;
        });
    add("TooLarge", Form::TooLarge, [](const Materials&) { return std::string(2 * 1024 * 1024, '0'); });
    add("LargerThanAnyKey", Form::OtherLength,
        [](const Materials&) { return "00000800" + std::string(513UL * 8, '0') + "\n"; });
    add("OfAKeyTooSmallForAnything", Form::OtherLength,
        [](const Materials&) { return "00000000" + std::string(24, '0') + "\n"; });
}

void addOtherPrograms(std::vector<Sample>& samples)
{
    const auto add = [&](const char* pName, Form form, const std::string& text) {
        samples.push_back({pName, Verdict::NotASignature, form, [=](const Materials&) { return text; }});
    };
    add("Minisign", Form::Minisign,
        "untrusted comment: signature from a secret key\nRUQ=\ntrusted comment: timestamp:1\tfile:document\nAAAA\n");
    add("MinisignWithoutComment", Form::Minisign, "untrusted comment: \nRWQ=\ntrusted comment: \nAAAA\n");
    add("Signify", Form::Signify, "untrusted comment: verify with base.pub\nRWQ=\n");
    add("OpenPgpArmour", Form::OpenPgp, "-----BEGIN PGP SIGNATURE-----\n\niQ==\n-----END PGP SIGNATURE-----\n");
    add("OpenPgpMessage", Form::OpenPgp, "-----BEGIN PGP SIGNED MESSAGE-----\nHash: SHA256\n\ntext\n");
    add("OpenPgpPacketOfOneLengthByte", Form::OpenPgp, std::string("\x88\x75\x04\x00\x16", 5));
    add("OpenPgpPacketOfTwoLengthBytes", Form::OpenPgp, std::string("\x89\x01\x33\x04\x00\x01", 6));
    add("OpenPgpPacketOfTheNewFormat", Form::OpenPgp, std::string("\xC2\x75\x04\x00\x16", 5));
    add("Ssh", Form::Ssh, "-----BEGIN SSH SIGNATURE-----\nU1NIU0lH\n-----END SSH SIGNATURE-----\n");
    add("Certificate", Form::OtherPem, "-----BEGIN CERTIFICATE-----\nMIIB\n-----END CERTIFICATE-----\n");
    add("CryptographicMessage", Form::OtherPem, "-----BEGIN CMS-----\nMIIB\n-----END CMS-----\n");
    add("PublicKey", Form::OtherPem, "-----BEGIN PUBLIC KEY-----\nMIIB\n-----END PUBLIC KEY-----\n");
    add("Checksums", Form::OtherCharacters, std::string(64, 'a') + "  document\n");
    add("AChecksum", Form::OtherLength, std::string(64, 'a') + "\n");
    add("BareBytes", Form::OtherCharacters, std::string(128, '\x90'));
    add("ATarFile", Form::OtherCharacters, "document" + std::string(504, '\0'));
    add("Prose", Form::OtherCharacters, "Signed, sealed, delivered.\n");
}

std::vector<Sample> allSamples()
{
    std::vector<Sample> samples;
    addSignaturesOfKeys(samples);
    addCountersignatures(samples);
    addSpoiltOnes(samples);
    addOtherPrograms(samples);
    return samples;
}

class Verdicts : public testing::TestWithParam<Sample>
{
};

}  // namespace

TEST_P(Verdicts, AreThoseOfTheTable)
{
    const Sample& sample = GetParam();
    const std::string signature = sample.make(materials());
    const hoTestFacts facts = materials().test(signature);
    EXPECT_EQ(static_cast<int>(facts._verdict), static_cast<int>(sample.verdict))
        << hoVerdictText(facts._verdict).asCharArray() << ": " << hoVerdictReason(facts).asCharArray();
    EXPECT_EQ(static_cast<int>(facts._form), static_cast<int>(sample.form))
        << hoSignatureFormReason(facts._form).asCharArray();
    EXPECT_EQ(hoVerdictReason(facts).isEmpty(), sample.verdict == hoVerdict::Good);
    // It is overwritten only if it is one of ours by its form.
    const std::string path = materials().folder.write("beside", signature);
    const bool isOurs = sample.form == Form::DigestOnly || sample.form == Form::Countersigned;
    EXPECT_EQ(hoCheckSignaturePath(path.c_str(), true)._problem,
              isOurs ? hoSignatureFileProblem::None : hoSignatureFileProblem::NotOurs);
}

INSTANTIATE_TEST_SUITE_P(All, Verdicts, testing::ValuesIn(allSamples()),
                         [](const testing::TestParamInfo<Sample>& sample) { return sample.param.name; });

TEST(Countersignatures, TellDocumentsOfOneDigestApart)
{
    const Materials& all = materials();
    const std::string empty = all.folder.write("empty", "");
    const std::string zeros = all.folder.write("zeros", "");
    std::filesystem::resize_file(zeros, 100UL * 1000 * 1000);
    const std::string signature = Materials::sign(empty.c_str(), *all.pKey);
    EXPECT_EQ(all.test(empty.c_str(), signature)._verdict, hoVerdict::Good);
    EXPECT_EQ(all.test(zeros.c_str(), signature)._verdict, hoVerdict::Bad);
    EXPECT_EQ(all.test(all.sameDigest, all.good)._verdict, hoVerdict::Bad);
    // By their first lines alone all of these hold.
    const std::string weak = Materials::sign(empty.c_str(), *all.pKey, hoSignatureLines::DigestOnly);
    EXPECT_EQ(all.test(zeros.c_str(), weak)._verdict, hoVerdict::Weak);
    EXPECT_EQ(all.test(all.sameDigest, all.weak)._verdict, hoVerdict::Weak);

    // A zero tail that was cut off, or padded, and a run of bytes that is there twice.
    const std::string image = all.folder.write("image", contents + std::string(600, '\0'));
    const std::string signatureOfImage = Materials::sign(image.c_str(), *all.pKey);
    for (const std::string& other : {contents, contents + std::string(660, '\0'),
                                     contents + std::string(600, '\0') + std::string(60, 'x') + std::string(60, 'x')})
    {
        const std::string path = all.folder.write("image", other);
        EXPECT_EQ(all.test(path.c_str(), signatureOfImage)._verdict, hoVerdict::Bad);
    }
}

TEST(Countersignatures, AreNotTakenFromSmallKeys)
{
    const Materials& all = materials();
    const std::string weak = Materials::sign(all.document, *all.pSmallKey, hoSignatureLines::DigestOnly);
    const std::string line =
        hoCountersignatureLine(hoShortFingerprint(*all.pSmallKey), std::vector<unsigned char>(64, 'x')).asStdString();
    EXPECT_EQ(hoTestFile(all.document, {all.pSmallKey.get()}, weak, nullptr)._verdict, hoVerdict::Weak);
    EXPECT_EQ(hoTestFile(all.document, {all.pSmallKey.get()}, weak + line, nullptr)._verdict, hoVerdict::NotASignature);
}

// Every byte with each of its bits changed, taken away, and put in a second time.
TEST(Countersignatures, LoseTheirGoodVerdictWithAnyByte)
{
    const Materials& all = materials();
    const auto expectNotGood = [&](const std::string& signature, std::size_t position)
    {
        const hoVerdict verdict = all.test(signature)._verdict;
        EXPECT_TRUE(verdict == hoVerdict::Bad || verdict == hoVerdict::AnotherKey ||
                    verdict == hoVerdict::NotASignature)
            << position << ": " << hoVerdictText(verdict).asCharArray() << "\n"
            << signature;
    };
    for (std::size_t i = 0; i < all.good.size(); ++i)
    {
        for (int bit = 0; bit < 8; ++bit)
        {
            std::string changed = all.good;
            changed[i] = static_cast<char>(changed[i] ^ (1 << bit));
            expectNotGood(changed, i);
        }
        std::string shorter = all.good;
        expectNotGood(shorter.erase(i, 1), i);
        std::string longer = all.good;
        expectNotGood(longer.insert(i, 1, longer[i]), i);
        if (i != all.weak.size())
        {
            expectNotGood(all.good.substr(0, i), i);
        }
    }
}

// Not the last one's: a key of another size knows less of it.
TEST(NearestKey, GivesTheVerdict)
{
    const Materials& all = materials();
    const std::string signature = all.sign(all.document, *all.pOtherKey, hoSignatureLines::DigestOnly);
    const std::vector<std::vector<const hoKey*>> orders = {{all.pKey.get(), all.pLargeKey.get()},
                                                           {all.pLargeKey.get(), all.pKey.get()}};
    for (std::size_t order = 0; order < orders.size(); ++order)
    {
        const hoTestFacts facts = hoTestFile(all.document, orders[order], signature, nullptr);
        EXPECT_EQ(facts._verdict, hoVerdict::AnotherKey) << order;
        EXPECT_EQ(facts._key, order);
        EXPECT_EQ(facts._keyBits, 1024);
        EXPECT_EQ(facts._amountOfKeys, 2U);
    }
}

TEST(SignatureText, OfNoSignatureIsEmpty)
{
    const Materials& all = materials();
    EXPECT_EQ(hoParseSignature(all.good)._digits, 32);
    for (const std::string& spoilt :
         {all.weak + "countersignature: of another kind\n", all.good + "more", all.good.substr(0, all.good.size() - 1)})
    {
        const hoSignatureText text = hoParseSignature(spoilt);
        EXPECT_FALSE(text.isSignature());
        EXPECT_TRUE(text._digestLine.isEmpty()) << spoilt;
        EXPECT_EQ(text._digits, 0);
        EXPECT_TRUE(text._fingerprint.isEmpty());
        EXPECT_TRUE(text._countersignature.empty());
    }
}

TEST(TinyKeys, TestNothing)
{
    const Materials& all = materials();
    const auto pTiny = tinyKey();
    ASSERT_NE(pTiny, nullptr);
    const hoTestFacts facts = hoTestFile(all.document, {pTiny.get()}, all.good, nullptr);
    EXPECT_EQ(facts._problem, hoSigningProblem::KeyTooSmall);
    EXPECT_EQ(facts._verdict, hoVerdict::NotTested);
    // They keep no other key away.
    EXPECT_EQ(hoTestFile(all.document, {pTiny.get(), all.pKey.get()}, all.good, nullptr)._verdict, hoVerdict::Good);
}
