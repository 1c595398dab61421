#ifndef NUMBERS_H
#define NUMBERS_H

// Of two numbers that are not negative.
int greatestCommonDivisor(int a, int b);

// Hours are counted from 0.
bool isMorning(int hour);

bool contains(const int* pNumbers, int amount, int wanted);

#endif
