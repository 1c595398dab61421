#ifndef NUMBERS_H
#define NUMBERS_H

enum class Season
{
    Winter,
    Summer
};

bool isMorning(int hour);
void dispose(const int* pNumber);
Season firstSeason();
Season lastSeason();
int differenceOf(int a, int b);
bool areDifferent(int a, int b);
void addTwice(int& number);
void addUnseen(int& number);
void clear(int& number);

#endif
