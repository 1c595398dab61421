// SPDX-License-Identifier: Apache-2.0
// The multiple-precision module beside OpenSSL, GMP, libtommath and a plain transcription of its own algorithms.
// Names are <operation>/<size>/<who>; "ours" is the module. With --count-instructions=REGEX the operations whose
// names the regular expression finds are not measured: what they take in instructions is printed.
#include "plain.h"

#include "tests/support/instructions.h"

#include <benchmark/benchmark.h>
#include <gmp.h>
#include <openssl/bn.h>
#include <tommath.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <random>
#include <regex>
#include <string>
#include <thread>
#include <vector>

namespace
{

using Digits = std::vector<mpDigit>;

Digits randomDigits(uint32_t n, unsigned seed)
{
    std::mt19937 engine(seed * 1000 + n);
    Digits result(n);
    for (mpDigit& digit : result)
    {
        digit = static_cast<mpDigit>(engine());
    }
    return result;
}

// A base, a full exponent, an odd modulus with its top bit set; each peer in its own form.
struct Operands
{
    explicit Operands(uint32_t count)
        : n(count),
          x(randomDigits(n, 1)),
          e(randomDigits(n, 2)),
          m(randomDigits(n, 3)),
          y(n),
          wide(2 * n),
          q(2 * n),
          r(2 * n)
    {
        x[n - 1] >>= 1;
        e[n - 1] |= 0x80000000U;
        m[n - 1] |= 0x80000000U;
        m[0] |= 1;
        mpMultiply(wide.data(), x.data(), e.data(), n);
        const Digits* numbers[] = {&x, &e, &m, &wide};
        for (int i = 0; i < 4; ++i)
        {
            mpz_init(gmp[i]);
            mpz_import(gmp[i], numbers[i]->size(), -1, sizeof(mpDigit), 0, 0, numbers[i]->data());
            bn[i] = BN_lebin2bn(reinterpret_cast<const unsigned char*>(numbers[i]->data()),
                                static_cast<int>(numbers[i]->size() * sizeof(mpDigit)), nullptr);
            check(mp_init(&tom[i]) == MP_OKAY);
            check(mp_unpack(&tom[i], numbers[i]->size(), MP_LSB_FIRST, sizeof(mpDigit), MP_NATIVE_ENDIAN, 0,
                            numbers[i]->data()) == MP_OKAY);
        }
        mpz_init(gmpResult);
        mpz_init(gmpOther);
        check(mp_init(&tomResult) == MP_OKAY && mp_init(&tomOther) == MP_OKAY);
    }
    Operands(const Operands&) = delete;
    Operands& operator=(const Operands&) = delete;
    ~Operands()
    {
        for (int i = 0; i < 4; ++i)
        {
            mpz_clear(gmp[i]);
            BN_free(bn[i]);
            mp_clear(&tom[i]);
        }
        mpz_clear(gmpResult);
        mpz_clear(gmpOther);
        mp_clear(&tomResult);
        mp_clear(&tomOther);
        BN_free(bnResult);
        BN_CTX_free(context);
    }

    static void check(bool isTrue)
    {
        if (!isTrue)
        {
            std::abort();
        }
    }

    void useExponent(uint64_t exponent)
    {
        e.assign(n, 0);
        e[0] = static_cast<mpDigit>(exponent);
        e[1] = static_cast<mpDigit>(exponent >> 32);
        mpz_import(gmp[1], 1, -1, sizeof exponent, 0, 0, &exponent);
        BN_set_word(bn[1], exponent);
        mp_set_u64(&tom[1], exponent);
    }

    // What the peer has found must be what the module has found.
    void compareWithGmp(const Digits& ours)
    {
        mpz_t value;
        mpz_init(value);
        mpz_import(value, ours.size(), -1, sizeof(mpDigit), 0, 0, ours.data());
        check(mpz_cmp(value, gmpResult) == 0);
        mpz_clear(value);
    }

    uint32_t n;
    Digits x, e, m, y, wide, q, r;
    mpz_t gmp[4], gmpResult, gmpOther;
    BIGNUM* bn[4];
    BIGNUM* bnResult = BN_new();
    BN_CTX* context = BN_CTX_new();
    mp_int tom[4], tomResult, tomOther;
};

struct Operation
{
    std::string _name;
    std::function<void()> _run;
};

std::vector<Operation>& operations()
{
    static std::vector<Operation> all;
    return all;
}

// The time that counts is the processor's, which other programs disturb less; with more than one thread, the clock's.
benchmark::internal::Benchmark* add(const std::string& name, const std::function<void()>& operation)
{
    operations().push_back({name, operation});
    return benchmark::RegisterBenchmark(name.c_str(),
                                        [operation](benchmark::State& state)
                                        {
                                            for (auto _ : state)
                                            {
                                                operation();
                                            }
                                        });
}

using Shared = std::shared_ptr<Operands>;

enum class Exponent
{
    Full,
    Of64Bits,  // long enough for the steps to outweigh what stands around them, short enough to be stepped through
    F4
};

void addModExp(uint32_t bits, Exponent exponent)
{
    const Shared a = std::make_shared<Operands>(bits / 32);
    std::string kind = "full exponent";
    if (exponent == Exponent::F4)
    {
        kind = "exponent 65537";
        a->useExponent(65537);
    }
    else if (exponent == Exponent::Of64Bits)
    {
        kind = "exponent of 64 bits";
        a->useExponent(0xB5C0FBCFEC4D3B2FU);
    }
    const std::string name = "mpModExp, " + kind + "/" + std::to_string(bits) + " bits/";
    mpModExp(a->y.data(), a->x.data(), a->e.data(), a->m.data(), a->n);
    mpz_powm(a->gmpResult, a->gmp[0], a->gmp[1], a->gmp[2]);
    a->compareWithGmp(a->y);
    add(name + "ours", [a] { mpModExp(a->y.data(), a->x.data(), a->e.data(), a->m.data(), a->n); });
    add(name + "plain", [a] { plain::modExp(a->y.data(), a->x.data(), a->e.data(), a->m.data(), a->n); });
    add(name + "OpenSSL", [a] { BN_mod_exp(a->bnResult, a->bn[0], a->bn[1], a->bn[2], a->context); });
    add(name + "GMP", [a] { mpz_powm(a->gmpResult, a->gmp[0], a->gmp[1], a->gmp[2]); });
    add(name + "libtommath",
        [a] { Operands::check(mp_exptmod(&a->tom[0], &a->tom[1], &a->tom[2], &a->tomResult) == MP_OKAY); });
}

void addBasics(uint32_t n)
{
    const Shared a = std::make_shared<Operands>(n);
    const std::string size = "/" + std::to_string(n) + " digits/";
    add("mpMultiply" + size + "ours", [a] { mpMultiply(a->q.data(), a->x.data(), a->m.data(), a->n); });
    add("mpMultiply" + size + "plain", [a] { plain::multiply(a->q.data(), a->x.data(), a->m.data(), a->n); });
    add("mpMultiply" + size + "GMP", [a] { mpz_mul(a->gmpResult, a->gmp[0], a->gmp[2]); });
    add("mpSquare" + size + "ours", [a] { mpSquare(a->q.data(), a->x.data(), a->n); });
    add("mpSquare" + size + "plain", [a] { plain::square(a->q.data(), a->x.data(), a->n); });
    add("mpSquare" + size + "mpMultiply", [a] { mpMultiply(a->q.data(), a->x.data(), a->x.data(), a->n); });
    add("mpSquare" + size + "GMP", [a] { mpz_mul(a->gmpResult, a->gmp[0], a->gmp[0]); });
    add("mpDivide" + size + "ours",
        [a] { mpDivide(a->q.data(), a->r.data(), a->wide.data(), 2 * a->n, a->m.data(), a->n); });
    add("mpDivide" + size + "plain",
        [a] { plain::divide(a->q.data(), a->r.data(), a->wide.data(), 2 * a->n, a->m.data(), a->n); });
    add("mpDivide" + size + "GMP", [a] { mpz_tdiv_qr(a->gmpResult, a->gmpOther, a->gmp[3], a->gmp[2]); });
    if (n > 256)
    {
        return;
    }
    add("mpModInv" + size + "ours", [a] { mpModInv(a->y.data(), a->x.data(), a->m.data(), a->n); });
    add("mpModInv" + size + "GMP", [a] { mpz_invert(a->gmpResult, a->gmp[0], a->gmp[2]); });
    add("mpGcd" + size + "ours", [a] { mpGcd(a->y.data(), a->x.data(), a->m.data(), a->n); });
    add("mpGcd" + size + "GMP", [a] { mpz_gcd(a->gmpResult, a->gmp[0], a->gmp[2]); });
}

// A Mersenne prime, which all rounds have to be gone through for.
void addIsPrime(uint32_t exponent)
{
    const uint32_t n = exponent / 32 + 1;
    const Shared a = std::make_shared<Operands>(n);
    a->x.assign(n, 0xFFFFFFFFU);
    mpModPowerOf2(a->x.data(), n, exponent);
    mpz_import(a->gmp[0], n, -1, sizeof(mpDigit), 0, 0, a->x.data());
    const std::string name = "mpIsPrime, 10 rounds/2^" + std::to_string(exponent) + " - 1/";
    add(name + "ours", [a] { Operands::check(mpIsPrime(a->x.data(), a->n, 10) == 1); });
    // 24 rounds of the peer's own stand in front of those that are asked for.
    add(name + "GMP", [a] { Operands::check(mpz_probab_prime_p(a->gmp[0], 34) != 0); });
}

void addText(uint32_t characters, int base)
{
    const std::string name = std::string(base == 10 ? "decimal" : "hexadecimal");
    const std::string size = "/" + std::to_string(characters) + " characters/";
    auto text = std::make_shared<std::string>();
    std::mt19937 engine(characters);
    for (uint32_t i = 0; i < characters; ++i)
    {
        *text += "0123456789abcdef"[engine() % static_cast<unsigned>(base)];
    }
    (*text)[0] = '7';
    const Shared a = std::make_shared<Operands>(characters / (base == 10 ? 9 : 8) + 1);
    const auto read = base == 10 ? mpConvFromDecimal : mpConvFromHex;
    const auto write = base == 10 ? mpConvToDecimal : mpConvToHex;
    // Blanks make room for the top octet.
    *text = "   " + *text;
    read(a->x.data(), a->n, text->c_str());
    auto room = std::make_shared<std::vector<char>>(characters + 4);
    write(a->x.data(), a->n, room->data(), characters + 4);
    Operands::check(text->substr(3) == room->data());
    mpz_set_str(a->gmp[0], text->c_str(), base);
    add("reading " + name + size + "ours", [a, text, read] { read(a->x.data(), a->n, text->c_str()); });
    add("reading " + name + size + "GMP", [a, text, base] { mpz_set_str(a->gmp[0], text->c_str(), base); });
    add("writing " + name + size + "ours",
        [a, room, write] { write(a->x.data(), a->n, room->data(), static_cast<uint32_t>(room->size())); });
    add("writing " + name + size + "GMP", [a, room, base] { mpz_get_str(room->data(), base, a->gmp[0]); });
}

// The same work on one thread and on two, with shared operands.
void addThreads()
{
    const Shared a = std::make_shared<Operands>(64);
    const auto work = [a]
    {
        Digits y(a->n);
        for (int i = 0; i < 4; ++i)
        {
            mpModExp(y.data(), a->x.data(), a->e.data(), a->m.data(), a->n);
        }
    };
    add("eight times mpModExp of 2048 bits/two threads/ours",
        [work]
        {
            std::thread other(work);
            work();
            other.join();
        })
        ->UseRealTime();
    add("eight times mpModExp of 2048 bits/two threads/one thread",
        [work]
        {
            work();
            work();
        })
        ->UseRealTime();
}

void countInstructions(const std::string& names)
{
    const std::regex wanted(names);
    for (const Operation& operation : operations())
    {
        if (std::regex_search(operation._name, wanted))
        {
            const long instructions = tsInstructionsOf(operation._run);
            Operands::check(instructions > 0);
            std::printf("%s %ld\n", operation._name.c_str(), instructions);
            Operands::check(std::fflush(stdout) == 0);
        }
    }
}
}  // namespace

int main(int argc, char** argv)  // NOLINT(bugprone-exception-escape): a wrong regular expression ends the program
{
    const std::string countOption = "--count-instructions=";
    const bool isCounting = argc == 2 && std::string(argv[1]).compare(0, countOption.size(), countOption) == 0;
    std::vector<Exponent> exponents{Exponent::Full, Exponent::F4};
    if (isCounting)
    {
        exponents.push_back(Exponent::Of64Bits);
    }
    for (const Exponent exponent : exponents)
    {
        for (const uint32_t bits : {512U, 1024U, 2048U, 4096U, 8192U})
        {
            addModExp(bits, exponent);
        }
    }
    for (const uint32_t n : {1U, 4U, 8U, 16U, 32U, 64U, 128U, 256U, 1024U, 10000U})
    {
        addBasics(n);
    }
    for (const uint32_t exponent : {521U, 1279U, 2203U})
    {
        addIsPrime(exponent);
    }
    for (const uint32_t characters : {100U, 1000U, 10000U, 100000U})
    {
        addText(characters, 10);
        addText(characters, 16);
    }
    addThreads();
    if (isCounting)
    {
        countInstructions(std::string(argv[1]).substr(countOption.size()));
        return 0;
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
    {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
