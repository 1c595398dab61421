// SPDX-License-Identifier: Apache-2.0
// One block of a cipher text, raised to a key's exponent: what the string encryptor does not show of it.
//
// The encryptor begins each block with a marker. A block of another key, or a damaged one, opens to a marker by chance
// once in 256 times.
#ifndef COUNTERSIGN_HO_OPENED_BLOCK_H
#define COUNTERSIGN_HO_OPENED_BLOCK_H

#include <string_view>
#include <vector>

class crRSAEncryptionKey;

class hoOpenedBlock
{
public:
    // The first byte of a block, and what stands behind its text up to the block's end.
    static constexpr char marker = 0x01;
    static constexpr char filler = 'd';

    // cipherDigits: eight hexadecimal characters for each digit of the key, the lowest digit first, as behind a cipher
    // text's length. Throws std::bad_alloc.
    hoOpenedBlock(const crRSAEncryptionKey& key, std::string_view cipherDigits);
    // Overwrites the bytes.
    ~hoOpenedBlock();
    hoOpenedBlock(const hoOpenedBlock&) = delete;
    hoOpenedBlock& operator=(const hoOpenedBlock&) = delete;

    // False for characters of another amount, and for a number that is not below the key's modulus, which no key gives.
    // There are no bytes then.
    bool isOpen() const { return !_bytes.empty(); }

    bool hasMarker() const;

    // All bytes behind the marker, the filler included.
    std::string_view text() const;

private:
    std::vector<char> _bytes;
};

#endif
