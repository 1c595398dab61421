// SPDX-License-Identifier: Apache-2.0
// A digit array between two guards. It starts with rubbish in it, so that what a function forgets to write shows, and
// complains when something was written outside of it.
#ifndef COUNTERSIGN_TESTS_DIGITS_H
#define COUNTERSIGN_TESTS_DIGITS_H

#include "Natural.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <vector>

class Digits
{
public:
    static constexpr mpDigit rubbish = 0xA5C3F00DU;

    explicit Digits(size_t n) : _all(n + 2 * guard, rubbish) {}
    explicit Digits(const std::vector<mpDigit>& values) : Digits(values.size())
    {
        for (size_t i = 0; i < values.size(); ++i)
        {
            _all[guard + i] = values[i];
        }
    }
    Digits(const Natural& value, size_t n) : Digits(value.digits(n)) {}
    Digits(std::initializer_list<mpDigit> values) : Digits(std::vector<mpDigit>(values)) {}
    Digits(const Digits&) = default;
    Digits& operator=(const Digits&) = delete;
    ~Digits()
    {
        for (size_t i = 0; i < guard; ++i)
        {
            EXPECT_EQ(_all[i], rubbish) << "written in front of the array";
            EXPECT_EQ(_all[_all.size() - 1 - i], rubbish) << "written behind the array";
        }
    }

    // Passed like the array it stands for.
    operator mpDigit*() { return _all.data() + guard; }
    operator const mpDigit*() const { return _all.data() + guard; }
    uint32_t size() const { return static_cast<uint32_t>(_all.size() - 2 * guard); }
    Natural value() const { return Natural(_all.data() + guard, size()); }
    std::vector<mpDigit> vector() const { return {_all.begin() + guard, _all.end() - guard}; }
    bool isUntouched() const { return vector() == std::vector<mpDigit>(size(), rubbish); }

private:
    static constexpr int guard = 4;

    std::vector<mpDigit> _all;
};

#endif
