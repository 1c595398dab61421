// SPDX-License-Identifier: Apache-2.0
// Registers of 256 and 512 bits on processors that lack them, so that each form of the arithmetic runs on every x86-64:
// included in front of the module's source, which is compiled with MP_EMULATED. Only the machine code of the wide forms
// is left to be tried where the registers are.
#ifndef COUNTERSIGN_TESTS_EMULATED_VECTORS_H
#define COUNTERSIGN_TESTS_EMULATED_VECTORS_H

#include <immintrin.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#define MP_FOR_PROCESSORS_WITH(features)
// A fuzzer tries one processor after the other.
#if !defined(MP_PROCESSOR_HAS)
#define MP_PROCESSOR_HAS(feature) true
#endif

namespace emulated
{

constexpr size_t words = 8;

struct Register
{
    uint64_t word[words];
};

inline Register repeat(long long value)
{
    Register result;
    for (uint64_t& word : result.word)
    {
        word = static_cast<uint64_t>(value);
    }
    return result;
}

inline Register load(const void* pMemory)
{
    Register result;
    std::memcpy(&result, pMemory, sizeof(result));
    return result;
}

inline void store(void* pMemory, const Register& value)
{
    std::memcpy(pMemory, &value, sizeof(value));
}

inline Register add(Register sums, const Register& other)
{
    for (size_t i = 0; i < words; ++i)
    {
        sums.word[i] += other.word[i];
    }
    return sums;
}

// sums + the 52 bits from "first" on of the products of the low 52 bits of a and b.
template <unsigned first>
Register multiplyAdd(Register sums, const Register& a, const Register& b)
{
    __extension__ using DoubleWord = unsigned __int128;
    constexpr uint64_t mask = (uint64_t{1} << 52) - 1;
    for (size_t i = 0; i < words; ++i)
    {
        const DoubleWord product = DoubleWord{a.word[i] & mask} * (b.word[i] & mask);
        sums.word[i] += static_cast<uint64_t>(product >> first) & mask;
    }
    return sums;
}

}  // namespace emulated

// These names are reserved for the headers that are replaced.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
#define __m512i emulated::Register
#define _mm512_setzero_si512() emulated::repeat(0)
#define _mm512_set1_epi64 emulated::repeat
#define _mm512_loadu_si512 emulated::load
#define _mm512_storeu_si512 emulated::store
#define _mm512_add_epi64 emulated::add
#define _mm512_madd52lo_epu64 emulated::multiplyAdd<0>
#define _mm512_madd52hi_epu64 emulated::multiplyAdd<52>
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

#endif
