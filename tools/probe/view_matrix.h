// What a matrix of the host tells about its convention. Pure functions, any thread.
#pragma once

#include "toolkit/pro_toolkit.h"

namespace probe {

enum class Convention {
    row,      // the shift is the fourth row, the fourth column is 0 0 0 1
    column,   // the other way round
    unknown,  // there is no shift, or neither line is 0 0 0 1
};
Convention conventionOf(const ProMatrix& matrix);
const char* conventionName(Convention convention);

bool isFinite(const ProMatrix& matrix);

// The length of the first three rows when they are of one length and at right angles, otherwise 0.
double scaleOf(const ProMatrix& matrix);

// The upper left block with rows of length 1, and of its inverse, in the upper left block of `out`; the rest of `out`
// is that of no shift. False when that is not finite.
bool unitRows(const ProMatrix& matrix, ProMatrix& out);
bool unitRowsOfInverse(const ProMatrix& matrix, ProMatrix& out);

// The largest difference of two numbers in the same place.
double distance(const ProMatrix& a, const ProMatrix& b);

}  // namespace probe
