#ifndef NUMBERS_H
#define NUMBERS_H

// Of two numbers that are not negative.
int greatestCommonDivisor(int a, int b);

// Hours are counted from 0.
bool isMorning(int hour);

// Whole ones.
int daysOf(int hours);
int hoursOf(int minutes);

// For the tests' own use: no source of the library makes anything of it.
inline bool isAfternoon(int hour)
{
    return hour > 12;
}

bool contains(const int* pNumbers, int amount, int wanted);

#endif
