#pragma once

namespace KORVEX::Zel::DB {

// What every first-generation operation returns.
using ResultCode = unsigned int;

inline constexpr ResultCode kSuccess = 1;
inline constexpr ResultCode kFailure = 3;

}  // namespace KORVEX::Zel::DB
