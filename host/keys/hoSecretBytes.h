// SPDX-License-Identifier: Apache-2.0
#ifndef COUNTERSIGN_HO_SECRET_BYTES_H
#define COUNTERSIGN_HO_SECRET_BYTES_H

#include <cstddef>
#include <memory>
#include <new>

#include <openssl/crypto.h>

// Bytes that are overwritten at the end. bytes() is null without memory.
class hoSecretBytes
{
public:
    explicit hoSecretBytes(std::size_t size) : _size(size), _pBytes(new (std::nothrow) char[size]) {}
    ~hoSecretBytes()
    {
        if (_pBytes != nullptr)
        {
            OPENSSL_cleanse(_pBytes.get(), _size);
        }
    }
    hoSecretBytes(const hoSecretBytes&) = delete;
    hoSecretBytes& operator=(const hoSecretBytes&) = delete;
    char* bytes() { return _pBytes.get(); }
    std::size_t size() const { return _size; }

private:
    std::size_t _size;
    std::unique_ptr<char[]> _pBytes;
};

#endif
