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

// Nobody asks for parts of size 0, which the compiler sees when it optimises more than a little.
static int wholeParts(int amount, int size)
{
    if (size == 0)
    {
        return 0;
    }
    return amount / size;
}

int daysOf(int hours)
{
    return wholeParts(hours, 24);
}

int hoursOf(int minutes)
{
    return wholeParts(minutes, 60);
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
