#pragma once

// Long division on base-65536 digits, least significant digit first, offered to the server.

#include "host/export.h"

namespace DataTypes {

// Divides unsigned 128-bit numbers. Returns false for a divisor of 0; nothing has changed then.
ZEL_EXPORT bool longdivmod128(unsigned long long a_high, unsigned long long a_low,
                              unsigned long long b_high, unsigned long long b_low,
                              unsigned long long& q_high, unsigned long long& q_low,
                              unsigned long long& r_high, unsigned long long& r_low);

// Divides `a` by `b`. The lengths count digits; leading zero digits are allowed and not stored in
// the results. `q` has room for a_len - b_len + 1 digits (none when that is negative), `r` for the
// shorter of both numbers; neither may overlap an operand. Returns false for a divisor without a
// digit other than 0, and when memory runs out; nothing has changed then.
ZEL_EXPORT bool longdivmod(const unsigned short* a, unsigned a_len, const unsigned short* b,
                           unsigned b_len, unsigned short* q, unsigned& q_len, unsigned short* r,
                           unsigned& r_len);

// Multiplies `a` by one digit. `out` has room for a_len + 1 digits and may be `a` itself; out_len
// becomes a_len, or one more when the product has a further digit.
ZEL_EXPORT void mul1(const unsigned short* a, unsigned a_len, unsigned short m, unsigned short* out,
                     unsigned& out_len);

// Divides `a` by one digit from the most significant digit down. The first q_len digits of the
// quotient are stored; `q` may be `a` itself. A divisor of 0 changes nothing.
ZEL_EXPORT void divmod1(const unsigned short* a, unsigned a_len, unsigned short d,
                        unsigned short* q, unsigned q_len, unsigned short& remainder);

}  // namespace DataTypes
