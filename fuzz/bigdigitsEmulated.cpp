// SPDX-License-Identifier: Apache-2.0
// Long numbers as other processors compute with them: the forms for registers of 256 and 512 bits and for limbs of 52
// bits, made of what every x86-64 has. clang builds some of them in no other way. The first byte says what the
// processor is to have.
#include <cstdint>
#include <string_view>

namespace
{

enum class Processor : std::uint8_t
{
    of128Bits,
    of256Bits,
    of512Bits,
    of52BitLimbs,
};

Processor processor = Processor::of128Bits;

bool processorHas(std::string_view feature)
{
    switch (processor)
    {
    case Processor::of128Bits:
        return false;
    case Processor::of256Bits:
        return feature == "avx2" || feature == "bmi2";
    case Processor::of512Bits:
        return feature != "avx512ifma";
    case Processor::of52BitLimbs:
        break;
    }
    return true;
}

}  // namespace

#define MP_EMULATED
#define MP_PROCESSOR_HAS processorHas
#include "../tests/bigdigits/emulatedVectors.h"
#include "bigdigits.cpp"  // NOLINT(bugprone-suspicious-include)

#include "longNumbers.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t size)
{
    FuzzInput input(pBytes, size);
    processor = static_cast<Processor>(input.byte() % 4);
    checkLongNumbers(input);
    return 0;
}
