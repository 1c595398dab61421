// SPDX-License-Identifier: Apache-2.0
#include "host/keys/hoLibcryptoMemory.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include <openssl/crypto.h>

namespace
{

// Memory for libcrypto has its size in front.
constexpr std::size_t sizeOfHeader = alignof(std::max_align_t);
static_assert(sizeOfHeader >= sizeof(std::size_t), "the header holds a size");

extern "C" void* hoAllocateForLibcrypto(std::size_t size, const char* /*pFile*/, int /*line*/)
{
    auto* pBlock = size > SIZE_MAX - sizeOfHeader ? nullptr : static_cast<char*>(std::malloc(size + sizeOfHeader));
    if (pBlock == nullptr)
    {
        return nullptr;
    }
    std::memcpy(pBlock, &size, sizeof(size));
    return pBlock + sizeOfHeader;
}

extern "C" void hoFreeForLibcrypto(void* pMemory, const char* /*pFile*/, int /*line*/)
{
    if (pMemory != nullptr)
    {
        char* pBlock = static_cast<char*>(pMemory) - sizeOfHeader;
        std::size_t size = 0;
        std::memcpy(&size, pBlock, sizeof(size));
        OPENSSL_cleanse(pMemory, size);
        std::free(pBlock);
    }
}

extern "C" void* hoReallocateForLibcrypto(void* pMemory, std::size_t size, const char* pFile, int line)
{
    if (pMemory == nullptr)
    {
        return hoAllocateForLibcrypto(size, pFile, line);
    }
    if (size == 0)
    {
        hoFreeForLibcrypto(pMemory, pFile, line);
        return nullptr;
    }
    void* pNewMemory = hoAllocateForLibcrypto(size, pFile, line);
    if (pNewMemory != nullptr)
    {
        std::size_t oldSize = 0;
        std::memcpy(&oldSize, static_cast<char*>(pMemory) - sizeOfHeader, sizeof(oldSize));
        std::memcpy(pNewMemory, pMemory, std::min(size, oldSize));
        hoFreeForLibcrypto(pMemory, pFile, line);
    }
    return pNewMemory;
}

bool isTaken = false;

// libcrypto takes this only before its first allocation, and does not guard it against other threads. Before main there
// is one thread, and this number comes before all that the compiler makes for objects with constructors.
__attribute__((constructor(101))) void setAllocatorOfLibcrypto()
{
    isTaken = CRYPTO_set_mem_functions(hoAllocateForLibcrypto, hoReallocateForLibcrypto, hoFreeForLibcrypto) == 1;
    // The end of the program must not take libcrypto away from a loading that was given up (hoKeyLoader).
    OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr);
}

}  // namespace

bool hoIsLibcryptoMemoryWiped()
{
    return isTaken;
}
