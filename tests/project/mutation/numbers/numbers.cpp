#include "numbers/numbers.h"

bool isMorning(int hour)
{
    return hour < 12;
}

// Without it, nothing fails but the address sanitizer, which finds the leak.
void dispose(const int* pNumber)
{
    delete pNumber;
}

// Nobody asks for it, and an empty value is the same program.
Season firstSeason()
{
    return Season::Winter;
}

Season lastSeason()
{
    return Season::Summer;
}

static int difference(int a, int b = 0)
{
    return a - b;
}

// Nobody asks for a difference from anything but 0.
int differenceOf(int a, int b)
{
    return difference(a, b);
}

bool areDifferent(int a, int b)
{
    return difference(a, b) != 0;
}

static void add(int& number)
{
    number++;
}

void addTwice(int& number)
{
    add(number);
    add(number);
}

// Nobody looks at the number afterwards.
void addUnseen(int& number)
{
    add(number);
}

// Without its end, it hangs.
void clear(int& number)
{
    for (;;)
    {
        number = 0;
        break;
    }
}
