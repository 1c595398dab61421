#include "numbers/numbers.h"

#include <utility>

int greatestCommonDivisor(int a, int b)
{
    if (a < b)
    {
        std::swap(a, b);
    }
    while (b != 0)
    {
        const int rest = a % b;
        a = b;
        b = rest;
    }
    return a;
}

bool isMorning(int hour)
{
    return hour < 12;
}

bool contains(const int* pNumbers, int amount, int wanted)
{
    for (int i = 0; i < amount; i++)
    {
        if (pNumbers[i] == wanted)
        {
            return true;
        }
    }
    return false;
}
