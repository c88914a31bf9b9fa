#pragma once

// The contests of the value library. Each prints its figures and returns whether all of their
// targets were met.

bool timestampContests();
bool pictureContests();
bool doubleContests();
bool decimalContests();
bool moneyContests();
bool integerContests();
bool hexContests();

// Counts differences between our text of that many random doubles and printf's; an exit code.
int countDifferences(long count);
