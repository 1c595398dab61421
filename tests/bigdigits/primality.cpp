// SPDX-License-Identifier: Apache-2.0
// Random numbers and primality.
#include "Digits.h"
#include "RandomNumbers.h"
#include "watching.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <sys/time.h>

namespace
{

using watching::Generator;

int32_t isPrime(const Natural& value, uint32_t rounds = 10)
{
    const Digits w(value, (value.bits() + 31) / 32 + 1);
    return mpIsPrime(w, w.size(), rounds);
}

int32_t passesRabinMiller(const Natural& value, uint32_t rounds)
{
    const Digits w(value, (value.bits() + 31) / 32 + 1);
    return mpRabinMiller(w, w.size(), rounds);
}

// ---- Random numbers

TEST(RandBetween, WithoutARangeAsksForNothing)
{
    const Generator generator;
    EXPECT_EQ(spRandBetween(5, 5), 5U);
    EXPECT_EQ(spRandBetween(5, 4), 5U);
    EXPECT_EQ(spRandBetween(0xFFFFFFFFU, 0), 0xFFFFFFFFU);
    EXPECT_EQ(generator.callsOfRand(), 0U);
    EXPECT_TRUE(generator.seeds().empty());
}

TEST(RandBetween, TakesTheLowByteOfFourCallsLowestFirst)
{
    const Generator generator({0x7FFFFF11, 0x22, 0x12345633, 0x44});
    EXPECT_EQ(spRandBetween(0, 0xFFFFFFFFU), 0x44332211U);
    EXPECT_EQ(generator.callsOfRand(), 4U);
}

TEST(RandBetween, MasksAndTriesAgain)
{
    // 10 to 15: a range of 5, so three bits; 7 and 6 are out of it, 5 is not.
    const Generator generator({0xFF, 0, 0, 0, 0x06, 1, 2, 3, 0xF5, 0xFF, 0xFF, 0xFF});
    EXPECT_EQ(spRandBetween(10, 15), 15U);
    EXPECT_EQ(generator.callsOfRand(), 12U);
}

TEST(RandBetween, MasksWithAllBitsFromBit31On)
{
    const Generator generator({0, 0, 0, 0x81, 0, 0, 0, 0x80});
    EXPECT_EQ(spRandBetween(1, 0x80000001U), 0x80000001U) << "0x81000000 is above the range";
    EXPECT_EQ(generator.callsOfRand(), 8U);
}

TEST(RandBetween, StaysInItsRangeAndReachesAllOfIt)
{
    for (const uint32_t range : {1U, 2U, 3U, 5U, 8U, 9U})
    {
        std::vector<bool> seen(range + 1);
        for (int i = 0; i < 1000; ++i)
        {
            const uint32_t value = spRandBetween(100, 100 + range);
            ASSERT_GE(value, 100U);
            ASSERT_LE(value, 100 + range);
            seen[value - 100] = true;
        }
        EXPECT_EQ(seen, std::vector<bool>(range + 1, true));
    }
}

// The first call in the process decides, so each process gets this test to itself by ctest; in one process together
// with others it holds as well, since only this one uses the function.
TEST(SimpleRand, SeedsOnlyTheFirstTime)
{
    Generator generator({}, 1234567);
    // That one seeds for itself.
    EXPECT_EQ(passesRabinMiller(Natural(1009), 0), 1);
    generator.tellTime(7654321);
    EXPECT_EQ(spSimpleRand(9, 9), 9U);
    EXPECT_EQ(generator.seeds(), (std::vector<unsigned int>{1234567, 7654321}));
    EXPECT_EQ(generator.callsOfRand(), 0U);
    for (int i = 0; i < 100; ++i)
    {
        const uint32_t value = spSimpleRand(3, 7);
        EXPECT_GE(value, 3U);
        EXPECT_LE(value, 7U);
    }
    EXPECT_EQ(generator.seeds().size(), 2U);
    EXPECT_GE(generator.callsOfRand(), 400U);
}

// ---- Rabin-Miller

TEST(RabinMiller, OfZeroAndOneDrawsNoWitness)
{
    const Generator generator;
    for (const unsigned long value : {0UL, 1UL})
    {
        EXPECT_EQ(passesRabinMiller(Natural(value), 10), 0);
    }
    EXPECT_EQ(generator.callsOfRand(), 0U);
    EXPECT_TRUE(generator.seeds().empty());
}

TEST(RabinMiller, Of25FindsItComposite)
{
    EXPECT_EQ(passesRabinMiller(Natural(25), 10), 0);
}

TEST(RabinMiller, OfThreeTakesTheWitnessTwo)
{
    const Generator generator;
    EXPECT_EQ(passesRabinMiller(Natural(3), 5), 1);
    EXPECT_EQ(generator.callsOfRand(), 0U) << "2 is the only witness below 3";
}

// No witness is below 2, and none but 2 is drawn.
TEST(RabinMillerDeathTest, OfTwoNeverEnds)
{
    EXPECT_EXIT(
        {
            itimerval soon = {};
            soon.it_value.tv_usec = 200000;
            setitimer(ITIMER_VIRTUAL, &soon, nullptr);
            passesRabinMiller(Natural(2), 1);
            std::_Exit(0);
        },
        testing::KilledBySignal(SIGVTALRM), "^$");
}

TEST(RabinMiller, SeedsOnEveryCall)
{
    Generator generator({}, 1111);
    passesRabinMiller(Natural(1009), 1);
    passesRabinMiller(Natural(1009), 1);
    generator.tellTime(2222);
    passesRabinMiller(Natural(1009), 1);
    EXPECT_EQ(generator.seeds(), (std::vector<unsigned int>{1111, 1111, 2222}));
}

TEST(RabinMiller, DrawsTheSameWitnessesWithinASecond)
{
    // 2047 is a strong pseudoprime to base 2 and to some others: whether one round finds it out depends on the second.
    for (long second = 1000; second < 1050; ++second)
    {
        const Generator generator({}, second);
        const int32_t first = passesRabinMiller(Natural(2047), 1);
        EXPECT_EQ(passesRabinMiller(Natural(2047), 1), first);
    }
}

// The answers become the witness: lower bound 2 plus the word.
int32_t withWitness(const Natural& value, mpDigit witness, uint32_t rounds = 1)
{
    const mpDigit word = witness - 2;
    const Generator generator({static_cast<int>(word & 0xFF), static_cast<int>(word >> 8 & 0xFF),
                               static_cast<int>(word >> 16 & 0xFF), static_cast<int>(word >> 24)});
    const int32_t result = passesRabinMiller(value, rounds);
    EXPECT_EQ(generator.callsOfRand(), 4U);
    return result;
}

TEST(RabinMiller, IsTakenInByStrongPseudoprimesToTheirBase)
{
    // Published: the smallest strong pseudoprimes to base 2, and one to the bases 2, 3, 5 and 7.
    for (const unsigned long liar : {2047UL, 3277UL, 4033UL, 4681UL, 8321UL, 15841UL, 29341UL})
    {
        EXPECT_EQ(withWitness(Natural(liar), 2), 1) << liar;
    }
    EXPECT_EQ(withWitness(Natural(2047), 3), 0);
    for (const mpDigit witness : {2U, 3U, 5U, 7U})
    {
        EXPECT_EQ(withWitness(Natural(3215031751UL), witness), 1);
    }
    EXPECT_EQ(withWitness(Natural(3215031751UL), 11), 0);
    // Fermat pseudoprimes to base 2 that are no strong ones.
    for (const unsigned long composite : {341UL, 561UL, 645UL, 1105UL, 1387UL})
    {
        EXPECT_EQ(withWitness(Natural(composite), 2), 0) << composite;
    }
}

TEST(RabinMiller, EndsWithMinusOneOnAnyOfItsSquarings)
{
    // 65537 - 1 = 2^16: 3 reaches -1 with the last squaring that is made, 2 long before it.
    EXPECT_EQ(withWitness(Natural(65537), 3), 1);
    EXPECT_EQ(withWitness(Natural(65537), 2), 1);
    EXPECT_EQ(withWitness(Natural(65537), 4), 1);
    // 1 at once.
    EXPECT_EQ(withWitness(Natural(7), 2), 1);
}

TEST(RabinMiller, LooksForNothingButOneAndMinusOneOnTheWay)
{
    // 6^2 is 2 modulo 17, and the square of 2 in turn is 4, that of 4 is -1.
    EXPECT_EQ(withWitness(Natural(17), 6), 1);
}

TEST(RabinMiller, WitnessesOfOneDigitNumbersEndBelowThem)
{
    // For 11 the bound is 9: 2 plus a word of up to 7.
    const Generator generator({0x0F, 0, 0, 0});
    EXPECT_EQ(passesRabinMiller(Natural(11), 1), 1);
    EXPECT_EQ(generator.callsOfRand(), 4U);
}

TEST(RabinMiller, WitnessesAreBelowANumberWithZerosAtItsTop)
{
    // 65537 has a bound of 65535, for which 16 bits of the word are taken.
    const Generator generator({0x34, 0x12, 0xFF, 0xFF});
    EXPECT_EQ(passesRabinMiller(Natural(65537), 1), 1);
    EXPECT_EQ(generator.callsOfRand(), 4U);
}

TEST(RabinMiller, WitnessesOfLongNumbersAreOneDigit)
{
    const Natural mersenne = Natural::powerOfTwo(61) - Natural(1);
    // The largest word but one gives the largest witness; the ones above are drawn again.
    const Generator generator({0xFF, 0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFD, 0xFF, 0xFF, 0xFF});
    EXPECT_EQ(passesRabinMiller(mersenne, 1), 1);
    EXPECT_EQ(generator.callsOfRand(), 12U);
}

TEST(RabinMiller, WithoutRoundsEverythingPasses)
{
    EXPECT_EQ(passesRabinMiller(Natural(25), 0), 1);
    EXPECT_EQ(passesRabinMiller(Natural(9), 0), 1);
    EXPECT_EQ(isPrime(Natural(1013UL * 1019UL), 0), 1);
    EXPECT_EQ(isPrime(Natural(1001), 0), 0);
}

// ---- Primes

TEST(IsPrime, UpTo997IsExactBut2IsNone)
{
    for (unsigned long i = 0; i <= 997; ++i)
    {
        const Generator generator;
        EXPECT_EQ(isPrime(Natural(i)), i != 2 && Natural(i).isPrime() ? 1 : 0) << i;
        EXPECT_EQ(generator.callsOfRand(), 0U) << i;
    }
}

TEST(IsPrime, WorkedValues)
{
    EXPECT_EQ(isPrime(Natural(2)), 0);
    EXPECT_EQ(isPrime(Natural(3)), 1);
    EXPECT_EQ(isPrime(Natural(5)), 1);
    EXPECT_EQ(isPrime(Natural(997)), 1);
    EXPECT_EQ(isPrime(Natural(9)), 0);
    EXPECT_EQ(isPrime(Natural(1)), 0);
    EXPECT_EQ(isPrime(Natural(0UL)), 0);
    EXPECT_EQ(isPrime(Natural(561)), 0);
    EXPECT_EQ(isPrime(Natural::powerOfTwo(61) - Natural(1)), 1);
}

TEST(IsPrime, NeedsNoDigitMoreThanTheNumberHas)
{
    // The largest prime of one digit at the end.
    for (const mpDigit prime : {3U, 997U, 1009U, 65537U, 4294967291U})
    {
        EXPECT_EQ(mpIsPrime(&prime, 1, 5), 1) << prime;
    }
    for (const mpDigit other : {0U, 1U, 2U, 9U, 1003U, 1018081U, 4294967293U})
    {
        EXPECT_EQ(mpIsPrime(&other, 1, 5), 0) << other;
    }
}

TEST(IsPrime, WithoutDigitsNothingIs)
{
    const mpDigit three = 3;
    EXPECT_EQ(mpIsPrime(&three, 0, 5), 0) << "the digit is not one of the number's";
}

TEST(IsPrime, AboveTheTableRunsRabinMiller)
{
    const Generator generator;
    EXPECT_EQ(isPrime(Natural(1009), 3), 1);
    EXPECT_EQ(generator.seeds().size(), 1U);
    EXPECT_GE(generator.callsOfRand(), 12U);
}

TEST(IsPrime, TrialDivisionSettlesSmallFactors)
{
    const Generator generator;
    EXPECT_EQ(isPrime(Natural(1003)), 0);
    EXPECT_EQ(isPrime(Natural(997UL * 1009UL)), 0);
    EXPECT_EQ(isPrime(Natural(3) * (Natural::powerOfTwo(127) - Natural(1))), 0);
    EXPECT_EQ(generator.callsOfRand(), 0U);
    EXPECT_TRUE(generator.seeds().empty());
}

TEST(IsPrime, FromAThousandToTenThousandAgreesWithGmp)
{
    for (unsigned long i = 999; i < 10000; i += 2)
    {
        EXPECT_EQ(isPrime(Natural(i), 10), Natural(i).isPrime() ? 1 : 0) << i;
    }
}

TEST(IsPrime, OfMersenneNumbers)
{
    // The exponents of the published Mersenne primes among the primes up to 607.
    const std::vector<unsigned> known{3, 5, 7, 13, 17, 19, 31, 61, 89, 107, 127, 521, 607};
    for (unsigned exponent = 3; exponent <= 607; exponent += 2)
    {
        if (Natural(exponent).isPrime())
        {
            const bool expected = std::find(known.begin(), known.end(), exponent) != known.end();
            EXPECT_EQ(isPrime(Natural::powerOfTwo(exponent) - Natural(1), 2), expected ? 1 : 0) << exponent;
        }
    }
}

TEST(IsPrime, OfPublishedPrimes)
{
    for (const char* text : {
             "18446744073709551557",                                // 2^64 - 59
             "340282366920938463463374607431768211297",             // 2^128 - 159
             "37975227936943673922808872755445627854565536638199",  // of RSA-100
             "40094690950920881030683735292761468389214899724061",
             "57896044618658097711785492504343953926634992332820282019728792003956564819949",  // 2^255 - 19
         })
    {
        EXPECT_EQ(isPrime(Natural(text), 5), 1) << text;
        EXPECT_EQ(isPrime(Natural(text) + Natural(1)), 0) << text;
    }
    EXPECT_EQ(isPrime(Natural("152260502792253336053561837813263742971806811496138068865790849458012296325895289765400"
                              "0350692006139")),
              0)
        << "RSA-100";
    // Fermat numbers: the fifth is not prime, though it has no factor below 641, nor the seventh.
    EXPECT_EQ(isPrime(Natural::powerOfTwo(16) + Natural(1)), 1);
    EXPECT_EQ(isPrime(Natural::powerOfTwo(32) + Natural(1)), 0);
    EXPECT_EQ(isPrime(Natural::powerOfTwo(128) + Natural(1)), 0);
}

TEST(IsPrime, OfCarmichaelNumbers)
{
    for (const unsigned long number : {561UL, 1105UL, 1729UL, 2465UL, 2821UL, 6601UL, 8911UL, 10585UL, 15841UL, 29341UL,
                                       41041UL, 46657UL, 52633UL, 62745UL, 63973UL, 75361UL, 101101UL, 825265UL})
    {
        EXPECT_EQ(isPrime(Natural(number)), 0) << number;
        EXPECT_EQ(passesRabinMiller(Natural(number), 20), 0) << number;
    }
    // (6k+1)(12k+1)(18k+1) with three primes is one; here with primes that trial division does not reach.
    int found = 0;
    for (unsigned long k = 170; found < 10; ++k)
    {
        const Natural p(6 * k + 1);
        const Natural q(12 * k + 1);
        const Natural r(18 * k + 1);
        if (p.isPrime() && q.isPrime() && r.isPrime())
        {
            EXPECT_EQ(isPrime(p * q * r, 20), 0) << k;
            ++found;
        }
    }
}

TEST(IsPrime, OfRandomNumbersAgreesWithGmp)
{
    RandomNumbers random;
    SCOPED_TRACE(random.trace());
    const uint32_t count = casesToRun(3000);
    for (uint32_t i = 0; i < count && !HasFailure(); ++i)
    {
        Natural value(random.number(random.between(1, 4)));
        // 10 rounds let a composite pass once in a million at worst, and among random ones far more rarely.
        EXPECT_EQ(isPrime(value, 10), value != Natural(2) && value.isPrime() ? 1 : 0) << value;
    }
}

}  // namespace
