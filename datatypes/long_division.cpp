#include "datatypes/long_division.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>

namespace DataTypes {
namespace {

using Digit = unsigned short;

constexpr unsigned kBase = 65536;
constexpr unsigned kDigitsOf128 = 8;

unsigned trimmed(const Digit* digits, unsigned length) {
  while (length > 0 && digits[length - 1] == 0) --length;
  return length;
}

// Both operands, multiplied so that the divisor's top digit is at least half the base.
class Scratch {
 public:
  explicit Scratch(std::size_t count)
      : heap_(count > kInline ? new(std::nothrow) Digit[count] : nullptr),
        digits_(count > kInline ? heap_ : inline_) {}
  ~Scratch() { delete[] heap_; }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  Digit* get() { return digits_; }

 private:
  static constexpr std::size_t kInline = 64;
  Digit inline_[kInline];
  Digit* heap_;
  Digit* digits_;
};

// The quotient digit of the top of `rest` by `divisor`: estimated from the top digits, then
// corrected downward with the second ones. It can still be one too high.
unsigned estimateDigit(const Digit* restTop, const Digit* divisorTop) {
  const std::uint32_t top = restTop[0] * kBase + restTop[-1];
  std::uint64_t estimate = restTop[0] == divisorTop[0] ? kBase : top / divisorTop[0];
  while (true) {
    const std::uint64_t rest = top - estimate * divisorTop[0];
    if (rest >= kBase || estimate * divisorTop[-1] <= rest * kBase + restTop[-2]) break;
    --estimate;
  }
  return static_cast<unsigned>(estimate);
}

// rest -= divisor x digit; returns whether it borrowed beyond the top.
bool subtractProduct(Digit* rest, const Digit* divisor, unsigned length, unsigned digit) {
  std::uint64_t carry = 0;
  std::int64_t borrow = 0;
  for (unsigned i = 0; i <= length; ++i) {
    const std::uint64_t product = (i < length ? std::uint64_t{divisor[i]} * digit : 0) + carry;
    carry = product / kBase;
    const std::int64_t difference = rest[i] - static_cast<std::int64_t>(product % kBase) - borrow;
    rest[i] = static_cast<Digit>(difference & 0xFFFF);
    borrow = difference < 0 ? 1 : 0;
  }
  return borrow != 0;
}

void addBack(Digit* rest, const Digit* divisor, unsigned length) {
  unsigned carry = 0;
  for (unsigned i = 0; i <= length; ++i) {
    const unsigned sum = rest[i] + (i < length ? divisor[i] : 0U) + carry;
    rest[i] = static_cast<Digit>(sum & 0xFFFF);
    carry = sum / kBase;
  }
}

void split(unsigned long long high, unsigned long long low, Digit* digits) {
  for (unsigned i = 0; i < kDigitsOf128; ++i)
    digits[i] = static_cast<Digit>((i < 4 ? low : high) >> (i % 4 * 16));
}

void join(const Digit* digits, unsigned length, unsigned long long& high, unsigned long long& low) {
  high = 0;
  low = 0;
  for (unsigned i = 0; i < length; ++i)
    (i < 4 ? low : high) |= static_cast<unsigned long long>(digits[i]) << (i % 4 * 16);
}

}  // namespace

void mul1(const unsigned short* a, unsigned a_len, unsigned short m, unsigned short* out,
          unsigned& out_len) {
  std::uint32_t carry = 0;
  for (unsigned i = 0; i < a_len; ++i) {
    const std::uint32_t product = std::uint32_t{a[i]} * m + carry;
    out[i] = static_cast<Digit>(product % kBase);
    carry = product / kBase;
  }
  out_len = a_len;
  if (carry != 0) out[out_len++] = static_cast<Digit>(carry);
}

void divmod1(const unsigned short* a, unsigned a_len, unsigned short d, unsigned short* q,
             unsigned q_len, unsigned short& remainder) {
  if (d == 0) return;
  std::uint32_t rest = 0;
  for (unsigned i = a_len; i-- > 0;) {
    const std::uint32_t value = rest * kBase + a[i];
    if (i < q_len) q[i] = static_cast<Digit>(value / d);
    rest = value % d;
  }
  remainder = static_cast<Digit>(rest);
}

bool longdivmod(const unsigned short* a, unsigned a_len, const unsigned short* b, unsigned b_len,
                unsigned short* q, unsigned& q_len, unsigned short* r, unsigned& r_len) {
  a_len = trimmed(a, a_len);
  b_len = trimmed(b, b_len);
  if (b_len == 0) return false;
  if (a_len < b_len || (a_len == b_len && a[a_len - 1] < b[b_len - 1])) {
    std::copy_n(a, a_len, r);
    q_len = 0;
    r_len = a_len;
    return true;
  }
  if (b_len == 1) {
    q_len = a_len;
    divmod1(a, a_len, b[0], q, q_len, r[0]);
    q_len = trimmed(q, q_len);
    r_len = trimmed(r, 1);
    return true;
  }

  Scratch scratch(std::size_t{a_len} + b_len + 1);
  Digit* rest = scratch.get();
  if (rest == nullptr) return false;
  Digit* divisor = rest + a_len + 1;
  const auto factor = static_cast<Digit>(kBase / (b[b_len - 1] + 1U));
  unsigned restLength = 0;
  unsigned divisorLength = 0;
  mul1(a, a_len, factor, rest, restLength);
  if (restLength == a_len) rest[restLength] = 0;
  mul1(b, b_len, factor, divisor, divisorLength);

  const unsigned places = a_len - b_len + 1;
  for (unsigned place = places; place-- > 0;) {
    unsigned digit = estimateDigit(rest + place + b_len, divisor + b_len - 1);
    if (subtractProduct(rest + place, divisor, b_len, digit)) {
      addBack(rest + place, divisor, b_len);
      --digit;
    }
    q[place] = static_cast<Digit>(digit);
  }
  q_len = trimmed(q, places);
  Digit none = 0;
  divmod1(rest, b_len, factor, r, b_len, none);
  r_len = trimmed(r, b_len);
  return true;
}

bool longdivmod128(unsigned long long a_high, unsigned long long a_low, unsigned long long b_high,
                   unsigned long long b_low, unsigned long long& q_high, unsigned long long& q_low,
                   unsigned long long& r_high, unsigned long long& r_low) {
  Digit dividend[kDigitsOf128];
  Digit divisor[kDigitsOf128];
  Digit quotient[kDigitsOf128];
  Digit rest[kDigitsOf128];
  unsigned quotientLength = 0;
  unsigned restLength = 0;
  split(a_high, a_low, dividend);
  split(b_high, b_low, divisor);
  if (!longdivmod(dividend, trimmed(dividend, kDigitsOf128), divisor,
                  trimmed(divisor, kDigitsOf128), quotient, quotientLength, rest, restLength))
    return false;
  join(quotient, quotientLength, q_high, q_low);
  join(rest, restLength, r_high, r_low);
  return true;
}

}  // namespace DataTypes
