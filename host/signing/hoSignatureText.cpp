// SPDX-License-Identifier: Apache-2.0
#include "host/signing/hoSignatureText.h"

#include "crypto/crDigits.h"
#include "host/keys/hoKeyFile.h"
#include "host/signing/hoBase64.h"
#include "host/signing/hoSignatureFile.h"
#include "platform/baseTools/gtStartsWith.h"

#include <openssl/evp.h>

#include <algorithm>

namespace
{

constexpr std::string_view lowerCaseHex = "0123456789abcdef";
constexpr std::string_view beginOfCountersignature = "countersignature: rsa-pss-sha256 ";
constexpr std::size_t lengthOfFingerprint = 8;
constexpr std::size_t lengthOfDigit = crCharactersPerDigit;
// The key of the fewest digits whose digest is not empty.
constexpr std::size_t leastDigits = 4;
constexpr std::size_t mostDigits = hoLargestKeyBits / 32;
constexpr std::size_t mostBytesOfCountersignature = hoLargestKeyBits / 8;

bool isHex(std::string_view text)
{
    return text.find_first_not_of(lowerCaseHex) == std::string_view::npos;
}

// Digits of the key whose signature a line of this length is; 0 if it is none's.
std::size_t digitsOfLine(std::size_t length)
{
    const std::size_t digits = length / lengthOfDigit - (length < lengthOfDigit ? 0 : 1);
    const bool isWhole = length % lengthOfDigit == 0 && length > lengthOfDigit;
    return isWhole && digits >= leastDigits && digits <= mostDigits ? digits : 0;
}

// What the first eight characters must say: the length of the digest's text.
unsigned int lengthOfDigestText(std::size_t digits)
{
    return static_cast<unsigned int>((digits / 2 - 1) * lengthOfDigit);
}

bool isOpenPgpPacket(std::string_view bytes)
{
    // A packet of tag 2 in the old format, or in the new one, and a version behind its length.
    const auto byte = [bytes](std::size_t i) { return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U; };
    const auto isVersion = [](unsigned int version) { return version >= 3 && version <= 6; };
    return (byte(0) == 0x88 && isVersion(byte(2))) || (byte(0) == 0x89 && isVersion(byte(3))) ||
           (byte(0) == 0xC2 && (isVersion(byte(2)) || isVersion(byte(3))));
}

// The kind of what is no signature of this program's: another program's, if it is known; otherwise the given one.
hoSignatureForm formOfOther(std::string_view bytes, hoSignatureForm otherwise)
{
    const auto begin = [bytes](std::string_view text) { return gtStartsWith(bytes, text); };
    if (begin("\xEF\xBB\xBF") || begin("\xFF\xFE") || begin("\xFE\xFF"))
    {
        return hoSignatureForm::ByteOrderMark;
    }
    if (begin("untrusted comment:"))
    {
        return bytes.find("\ntrusted comment:") == std::string_view::npos ? hoSignatureForm::Signify
                                                                          : hoSignatureForm::Minisign;
    }
    if (begin("-----BEGIN PGP ") || isOpenPgpPacket(bytes))
    {
        return hoSignatureForm::OpenPgp;
    }
    if (begin("-----BEGIN SSH ") || begin("SSHSIG"))
    {
        return hoSignatureForm::Ssh;
    }
    return begin("-----BEGIN ") ? hoSignatureForm::OtherPem : otherwise;
}

std::string_view viewOf(const std::vector<unsigned char>& bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// False for what the encoder does not write.
bool decodeBase64(std::string_view text, std::vector<unsigned char>& bytes)
{
    if (text.empty() || text.size() % 4 != 0 || text.size() > (mostBytesOfCountersignature + 2) / 3 * 4)
    {
        return false;
    }
    bytes.resize(text.size() / 4 * 3);
    if (EVP_DecodeBlock(bytes.data(), reinterpret_cast<const unsigned char*>(text.data()),
                        static_cast<int>(text.size())) < 0)
    {
        return false;
    }
    // The decoder counts the padding as bytes.
    const std::size_t padding = text[text.size() - 2] == '=' ? 2 : (text.back() == '=' ? 1 : 0);
    bytes.resize(bytes.size() - padding);
    // It also takes blanks around the text, and bits that are set behind the last byte.
    return hoBase64(viewOf(bytes)).asStringView() == text;
}

bool parseCountersignature(std::string_view line, hoSignatureText& signature)
{
    if (!gtStartsWith(line, beginOfCountersignature))
    {
        return false;
    }
    const std::string_view rest = line.substr(beginOfCountersignature.size());
    if (rest.size() <= lengthOfFingerprint || rest[lengthOfFingerprint] != ' ' ||
        !isHex(rest.substr(0, lengthOfFingerprint)))
    {
        return false;
    }
    signature._fingerprint = rest.substr(0, lengthOfFingerprint);
    return decodeBase64(rest.substr(lengthOfFingerprint + 1), signature._countersignature);
}

hoSignatureForm formOfFirstLine(std::string_view line, std::string_view rest)
{
    if (!isHex(line))
    {
        return hoSignatureForm::OtherCharacters;
    }
    const std::size_t digits = digitsOfLine(line.size());
    if (digits != 0 && crReadDigit(line.data()) == lengthOfDigestText(digits))
    {
        return hoSignatureForm::DigestOnly;
    }
    const std::string_view secondLine = rest.substr(0, rest.find('\n'));
    return !line.empty() && !secondLine.empty() && isHex(secondLine) ? hoSignatureForm::Wrapped
                                                                     : hoSignatureForm::OtherLength;
}

hoSignatureForm parse(std::string_view bytes, hoSignatureText& signature)
{
    if (bytes.empty())
    {
        return hoSignatureForm::Empty;
    }
    if (bytes.size() > static_cast<std::size_t>(hoLargestSignatureFile))
    {
        return formOfOther(bytes, hoSignatureForm::TooLarge);
    }
    const std::size_t end = bytes.find('\n');
    const std::string_view line = bytes.substr(0, end);
    if (!line.empty() && line.back() == '\r' && isHex(line.substr(0, line.size() - 1)))
    {
        return hoSignatureForm::OtherLineEnds;
    }
    const std::string_view rest = end == std::string_view::npos ? std::string_view() : bytes.substr(end + 1);
    const hoSignatureForm form = formOfFirstLine(line, rest);
    if (end == std::string_view::npos && form != hoSignatureForm::OtherCharacters)
    {
        return hoSignatureForm::Truncated;
    }
    if (form != hoSignatureForm::DigestOnly)
    {
        return formOfOther(bytes, form);
    }
    signature._digestLine = line;
    signature._digits = static_cast<int>(digitsOfLine(line.size()));
    if (rest.empty())
    {
        return hoSignatureForm::DigestOnly;
    }

    const std::size_t secondEnd = rest.find('\n');
    const bool isBegun = gtStartsWith(beginOfCountersignature, rest.substr(0, beginOfCountersignature.size())) ||
                         gtStartsWith(rest, beginOfCountersignature);
    if (secondEnd == std::string_view::npos)
    {
        return isBegun ? hoSignatureForm::Truncated : hoSignatureForm::TrailingBytes;
    }
    if (!parseCountersignature(rest.substr(0, secondEnd), signature))
    {
        return gtStartsWith(rest, "countersignature:") ? hoSignatureForm::OtherCountersignature
                                                       : hoSignatureForm::TrailingBytes;
    }
    return secondEnd + 1 == rest.size() ? hoSignatureForm::Countersigned : hoSignatureForm::TrailingBytes;
}

}  // namespace

hoSignatureText hoParseSignature(std::string_view bytes)
{
    hoSignatureText signature;
    signature._form = parse(bytes, signature);
    if (!signature.isSignature())
    {
        const hoSignatureForm form = signature._form;
        signature = hoSignatureText();
        signature._form = form;
    }
    return signature;
}

gtString hoCountersignatureLine(const gtString& fingerprint, const std::vector<unsigned char>& countersignature)
{
    return gtString(beginOfCountersignature)
        .append(fingerprint)
        .append(' ')
        .append(hoBase64(viewOf(countersignature)))
        .append('\n');
}
