// SPDX-License-Identifier: Apache-2.0
#include "host/keys/hoPemBlocks.h"

#include <cstddef>

#include <openssl/pkcs12.h>
#include <openssl/x509.h>

#include "host/keys/hoLibcryptoObjects.h"
#include "platform/baseTools/gtStartsWith.h"

namespace
{

using Request = std::unique_ptr<X509_REQ, hoReleaser<X509_REQ, X509_REQ_free>>;
using Pkcs12 = std::unique_ptr<PKCS12, hoReleaser<PKCS12, PKCS12_free>>;

constexpr std::string_view beginOfPem = "-----BEGIN ";
constexpr std::string_view blanks = " \t\r\n";

}  // namespace

bool hoPemBlock::isPrivateKey() const
{
    return gtEndsWith(_label, "PRIVATE KEY");
}

bool hoPemBlock::isPublicKey() const
{
    return gtEndsWith(_label, "PUBLIC KEY");
}

bool hoPemBlock::isCertificate() const
{
    return gtEndsWith(_label, "CERTIFICATE");
}

std::vector<hoPemBlock> hoFindPemBlocks(std::string_view text)
{
    constexpr std::string_view dashes = "-----";
    std::vector<hoPemBlock> blocks;
    for (std::size_t begin = text.find(beginOfPem); begin != std::string_view::npos;
         begin = text.find(beginOfPem, begin + 1))
    {
        if (begin != 0 && text[begin - 1] != '\n' && text[begin - 1] != '\r')
        {
            continue;
        }
        const std::string_view rest = text.substr(begin);
        const std::string_view label = rest.substr(beginOfPem.size(), rest.find('\n') - beginOfPem.size());
        const std::size_t end = rest.find(beginOfPem, beginOfPem.size());
        blocks.push_back({label.substr(0, label.find(dashes)), rest.substr(0, end)});
    }
    return blocks;
}

bool hoBeginsWithPem(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(blanks);
    return first != std::string_view::npos && gtStartsWith(text.substr(first), beginOfPem);
}

hoKeyFileProblem hoProblemOfOther(std::string_view bytes, const std::vector<hoPemBlock>& blocks)
{
    using namespace std::string_view_literals;
    const std::size_t first = bytes.find_first_not_of(blanks);
    const std::string_view begin = bytes.substr(first == std::string_view::npos ? 0 : first);
    if (gtStartsWith(bytes, "\xFF\xFE") || gtStartsWith(bytes, "\xFE\xFF") || gtStartsWith(bytes, "-\0-\0"sv) ||
        gtStartsWith(bytes, "\0-\0-"sv))
    {
        return hoKeyFileProblem::Utf16;
    }
    if (gtStartsWith(begin, "ssh-") || gtStartsWith(begin, "ecdsa-sha2-") ||
        gtStartsWith(begin, "---- BEGIN SSH2 PUBLIC KEY"))
    {
        return hoKeyFileProblem::SshPublicKey;
    }
    if (gtStartsWith(begin, "PuTTY-User-Key-File-"))
    {
        return hoKeyFileProblem::PuttyFormat;
    }
    for (const hoPemBlock& block : blocks)
    {
        if (gtEndsWith(block._label, "CERTIFICATE REQUEST"))
        {
            return hoKeyFileProblem::CertificateRequest;
        }
        if (gtStartsWith(block._label, "PGP ") && gtEndsWith(block._label, "KEY BLOCK"))
        {
            return hoKeyFileProblem::OpenPgpKey;
        }
    }
    const hoBio bio(BIO_new_mem_buf(bytes.data(), static_cast<int>(bytes.size())));
    if (bio == nullptr)
    {
        return hoKeyFileProblem::NoMemory;
    }
    if (const Pkcs12 pkcs12(d2i_PKCS12_bio(bio.get(), nullptr)); pkcs12 != nullptr)
    {
        return hoKeyFileProblem::Pkcs12;
    }
    const hoBio again(BIO_new_mem_buf(bytes.data(), static_cast<int>(bytes.size())));
    const Request request(again == nullptr ? nullptr : d2i_X509_REQ_bio(again.get(), nullptr));
    return request != nullptr ? hoKeyFileProblem::CertificateRequest : hoKeyFileProblem::NoKey;
}
