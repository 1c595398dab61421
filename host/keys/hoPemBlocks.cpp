// SPDX-License-Identifier: Apache-2.0
#include "host/keys/hoPemBlocks.h"

#include <cstddef>
#include <new>

#include <openssl/err.h>
#include <openssl/pem.h>
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

// A block as libcrypto reads it. What is in it may be secret.
class ReadBlock
{
public:
    // Reads the first block in what is left. isRead() tells whether it could be read.
    explicit ReadBlock(BIO* pBio) : _isRead(PEM_read_bio_ex(pBio, &_pLabel, &_pHeader, &_pBytes, &_length, flags) == 1)
    {
    }
    ~ReadBlock()
    {
        OPENSSL_secure_free(_pLabel);
        OPENSSL_secure_free(_pHeader);
        OPENSSL_secure_clear_free(_pBytes, static_cast<std::size_t>(_length));
    }
    ReadBlock(const ReadBlock&) = delete;
    ReadBlock& operator=(const ReadBlock&) = delete;
    bool isRead() const { return _isRead; }
    std::string_view label() const { return _pLabel; }

private:
    static constexpr unsigned int flags = PEM_FLAG_SECURE | PEM_FLAG_EAY_COMPATIBLE;

    char* _pLabel = nullptr;
    char* _pHeader = nullptr;
    unsigned char* _pBytes = nullptr;
    long _length = 0;
    const bool _isRead;
};

// The label of a block that libcrypto has found and cannot read, for what is told about it; libcrypto keeps it.
std::string_view labelOfUnreadable(std::string_view text)
{
    std::size_t begin = text.find(beginOfPem);
    while (begin != std::string_view::npos && begin != 0 && text[begin - 1] != '\n')
    {
        begin = text.find(beginOfPem, begin + 1);
    }
    const std::string_view label = begin == std::string_view::npos ? text : text.substr(begin + beginOfPem.size());
    return label.substr(0, label.find("-----"));
}

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
    const hoBio bio(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())));
    if (bio == nullptr)
    {
        throw std::bad_alloc();
    }
    std::vector<hoPemBlock> blocks;
    std::size_t begin = 0;
    while (begin < text.size())
    {
        ERR_set_mark();
        const ReadBlock block(bio.get());
        const int reason = block.isRead() ? 0 : ERR_GET_REASON(ERR_peek_last_error());
        ERR_pop_to_mark();
        if (reason == ERR_R_MALLOC_FAILURE)
        {
            throw std::bad_alloc();
        }
        const auto end = static_cast<std::size_t>(BIO_tell(bio.get()));
        if (reason == PEM_R_NO_START_LINE || end <= begin)
        {
            break;
        }
        const std::string_view read = text.substr(begin, end - begin);
        blocks.push_back({std::string(block.isRead() ? block.label() : labelOfUnreadable(read)), read});
        begin = end;
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
