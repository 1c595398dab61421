// SPDX-License-Identifier: Apache-2.0
#include "plain.h"

namespace plain
{

namespace
{

constexpr mpDigit allOnes = 0xFFFFFFFFU;

void spMultiply(mpDigit p[2], mpDigit x, mpDigit y)
{
    const mpDigit x0 = x & 0xFFFFU;
    const mpDigit x1 = x >> 16;
    const mpDigit y0 = y & 0xFFFFU;
    const mpDigit y1 = y >> 16;
    p[0] = x0 * y0;
    p[1] = x1 * y1;
    const mpDigit cross = x0 * y1;
    const mpDigit middle = cross + x1 * y0;
    if (middle < cross)
    {
        p[1] += 0x10000U;
    }
    const mpDigit shifted = middle << 16;
    p[1] += middle >> 16;
    p[0] += shifted;
    if (p[0] < shifted)
    {
        ++p[1];
    }
}

void spMultSub(mpDigit& high, mpDigit& low, mpDigit qhat, mpDigit v1, mpDigit v0)
{
    const mpDigit upper = qhat * v1;
    const mpDigit p = qhat * v0 + (upper << 16);
    low -= p;
    if (low > allOnes - p)
    {
        --high;
    }
    high -= upper >> 16;
}

mpDigit spDivideStep(mpDigit& low, mpDigit next, mpDigit v, mpDigit v1, mpDigit v0)
{
    mpDigit qhat = low / v1;
    mpDigit rhat = low - qhat * v1;
    if (qhat == 0x10000U || qhat * v0 > (rhat << 16 | next))
    {
        --qhat;
        rhat += v1;
        if (rhat < 0x10000U && qhat * v0 > (rhat << 16 | next))
        {
            --qhat;
        }
    }
    mpDigit high = low >> 16;
    low = low << 16 | next;
    spMultSub(high, low, qhat, v1, v0);
    if (high >> 16 != 0)
    {
        --qhat;
        low += v;
    }
    return qhat;
}

mpDigit spDivide(mpDigit& q, mpDigit& r, const mpDigit u[2], mpDigit v)
{
    const mpDigit v1 = v >> 16;
    const mpDigit v0 = v & 0xFFFFU;
    const mpDigit u3 = u[1] >> 16;
    const mpDigit u2 = u[1] & 0xFFFFU;
    mpDigit overflow = u3 < v1 ? 0 : 1;
    if (overflow > 0 && v0 > ((u3 - v1) << 16 | u2))
    {
        --overflow;
    }
    mpDigit high = 0;
    mpDigit low = u[1];
    if (overflow > 0)
    {
        spMultSub(high, low, overflow, v1, v0);
        if (high >> 16 != 0)
        {
            --overflow;
            low += v;
        }
    }
    q = spDivideStep(low, u[0] >> 16, v, v1, v0) << 16;
    q |= spDivideStep(low, u[0] & 0xFFFFU, v, v1, v0) & 0xFFFFU;
    r = low;
    return overflow;
}

bool qhatTooBig(mpDigit qhat, mpDigit rhat, mpDigit vNext, mpDigit uNext)
{
    mpDigit t[2];
    spMultiply(t, qhat, vNext);
    if (t[1] < rhat)
    {
        return false;
    }
    return t[1] > rhat || t[0] > uNext;
}

mpDigit multiplySubtract(mpDigit w[], const mpDigit v[], mpDigit q, uint32_t n)
{
    mpDigit borrow = 0;
    for (uint32_t i = 0; i < n; ++i)
    {
        mpDigit t[2];
        spMultiply(t, q, v[i]);
        w[i] -= borrow;
        borrow = w[i] > allOnes - borrow ? 1 : 0;
        w[i] -= t[0];
        if (w[i] > allOnes - t[0])
        {
            ++borrow;
        }
        borrow += t[1];
    }
    return borrow;
}

}  // namespace

void multiply(mpDigit w[], const mpDigit u[], const mpDigit v[], uint32_t n)
{
    mpSetZero(w, 2 * n);
    for (uint32_t j = 0; j < n; ++j)
    {
        if (v[j] == 0)
        {
            w[j + n] = 0;
            continue;
        }
        mpDigit k = 0;
        for (uint32_t i = 0; i < n; ++i)
        {
            mpDigit t[2];
            spMultiply(t, u[i], v[j]);
            t[0] += k;
            if (t[0] < k)
            {
                ++t[1];
            }
            t[0] += w[i + j];
            if (t[0] < w[i + j])
            {
                ++t[1];
            }
            w[i + j] = t[0];
            k = t[1];
        }
        w[j + n] = k;
    }
}

void square(mpDigit w[], const mpDigit x[], uint32_t n)
{
    mpSetZero(w, 2 * n);
    for (uint32_t i = 0; i < n; ++i)
    {
        mpDigit t[2];
        spMultiply(t, x[i], x[i]);
        t[0] += w[2 * i];
        if (t[0] < w[2 * i])
        {
            ++t[1];
        }
        w[2 * i] = t[0];
        // What is carried has a bit more than a digit: a product is added twice.
        mpDigit k = t[1];
        mpDigit kBit = 0;
        for (uint32_t j = i + 1; j < n; ++j)
        {
            spMultiply(t, x[i], x[j]);
            mpDigit bit = t[1] >> 31;
            t[1] = t[1] << 1 | t[0] >> 31;
            t[0] <<= 1;
            t[0] += k;
            mpDigit carry = t[0] < k ? 1 : 0;
            t[0] += w[i + j];
            if (t[0] < w[i + j])
            {
                ++carry;
            }
            t[1] += carry;
            if (t[1] < carry)
            {
                ++bit;
            }
            t[1] += kBit;
            if (t[1] < kBit)
            {
                ++bit;
            }
            w[i + j] = t[0];
            k = t[1];
            kBit = bit;
        }
        for (uint32_t j = i + n; j < 2 * n && (k != 0 || kBit != 0); ++j)
        {
            w[j] += k;
            k = kBit + (w[j] < k ? 1 : 0);
            kBit = 0;
        }
    }
}

void divide(mpDigit q[], mpDigit r[], const mpDigit u[], uint32_t udigits, mpDigit v[], uint32_t vdigits)
{
    mpSetZero(q, udigits);
    mpSetZero(r, udigits);
    const uint32_t n = mpSizeof(v, vdigits);
    const uint32_t size = mpSizeof(u, udigits);
    // The benchmarks divide long numbers by long ones; everything else is left to the module.
    if (n < 2 || size <= n)
    {
        mpDivide(q, r, u, udigits, v, vdigits);
        return;
    }
    const uint32_t m = size - n;
    uint32_t shift = 0;
    for (mpDigit mask = 0x80000000U; (v[n - 1] & mask) == 0; mask >>= 1)
    {
        ++shift;
    }
    mpShiftLeft(v, v, shift, n);
    mpDigit top = mpShiftLeft(r, u, shift, n + m);
    for (uint32_t j = m + 1; j-- > 0;)
    {
        const mpDigit t[2] = {r[j + n - 1], top};
        mpDigit qhat = 0;
        mpDigit rhat = 0;
        bool isTested = true;
        if (spDivide(qhat, rhat, t, v[n - 1]) != 0)
        {
            qhat = allOnes;
            rhat = r[j + n - 1] + v[n - 1];
            isTested = rhat >= v[n - 1];
        }
        if (isTested && qhat != 0 && qhatTooBig(qhat, rhat, v[n - 2], r[j + n - 2]))
        {
            --qhat;
            rhat += v[n - 1];
            if (rhat >= v[n - 1] && qhatTooBig(qhat, rhat, v[n - 2], r[j + n - 2]))
            {
                --qhat;
            }
        }
        if (qhat != 0)
        {
            top -= multiplySubtract(r + j, v, qhat, n);
        }
        q[j] = qhat;
        if (top != 0)
        {
            --q[j];
            mpAdd(r + j, r + j, v, n);
        }
        top = r[j + n - 1];
    }
    mpSetZero(r + n, m);
    mpShiftRight(r, r, shift, n);
    mpShiftRight(v, v, shift, n);
}

void modExp(mpDigit y[], const mpDigit x[], const mpDigit e[], const mpDigit m[], uint32_t n)
{
    mpDigit* product = mpAlloc(2 * n);
    mpDigit* remainder = mpAlloc(2 * n);
    mpDigit* quotient = mpAlloc(2 * n);
    mpDigit* modulus = mpAlloc(n);
    mpDigit* value = mpAlloc(n);
    mpSetEqual(modulus, m, n);
    mpSetEqual(value, x, n);
    for (uint32_t bit = mpBitLength(e, n) - 1; bit-- > 0;)
    {
        square(product, value, n);
        divide(quotient, remainder, product, 2 * n, modulus, n);
        mpSetEqual(value, remainder, n);
        if ((e[bit / 32] >> bit % 32 & 1) != 0)
        {
            multiply(product, value, x, n);
            divide(quotient, remainder, product, 2 * n, modulus, n);
            mpSetEqual(value, remainder, n);
        }
    }
    mpSetEqual(y, value, n);
    mpFree(&product);
    mpFree(&remainder);
    mpFree(&quotient);
    mpFree(&modulus);
    mpFree(&value);
}

}  // namespace plain
