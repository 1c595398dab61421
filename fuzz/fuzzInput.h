// SPDX-License-Identifier: Apache-2.0
// What the fuzzers share: taking values from the input, and ending with a message when something is not as it must be.
#ifndef COUNTERSIGN_FUZZ_INPUT_H
#define COUNTERSIGN_FUZZ_INPUT_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

// The condition holds, or the fuzzer has found something.
#define FUZZ_CHECK(condition)                                                                                          \
    do                                                                                                                 \
    {                                                                                                                  \
        if (!(condition))                                                                                              \
        {                                                                                                              \
            static_cast<void>(std::fprintf(stderr, "%s:%d: not so: %s\n", __FILE__, __LINE__, #condition));            \
            std::abort();                                                                                              \
        }                                                                                                              \
    } while (false)

// Takes values from the front of the input; zeros when there is nothing left.
class FuzzInput
{
public:
    FuzzInput(const std::uint8_t* pBytes, std::size_t size) : _pBytes(pBytes), _left(size) {}

    bool isEmpty() const { return _left == 0; }

    std::uint8_t byte()
    {
        if (_left == 0)
        {
            return 0;
        }
        --_left;
        return *_pBytes++;
    }

    std::uint32_t word()
    {
        std::uint32_t result = 0;
        for (int i = 0; i < 4; ++i)
        {
            result = (result << 8) | byte();
        }
        return result;
    }

    // So many bytes, or all that are left.
    std::string bytes(std::size_t amount)
    {
        const std::size_t taken = amount < _left ? amount : _left;
        std::string result(reinterpret_cast<const char*>(_pBytes), taken);
        _pBytes += taken;
        _left -= taken;
        return result;
    }

    std::string rest() { return bytes(_left); }

    // Up to the next separator, which is taken and not given, or to the end.
    std::string upTo(char separator)
    {
        std::string result;
        while (_left > 0)
        {
            const char character = static_cast<char>(byte());
            if (character == separator)
            {
                break;
            }
            result += character;
        }
        return result;
    }

private:
    const std::uint8_t* _pBytes;
    std::size_t _left;
};

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t size);

#endif
