#pragma once

// Time zones by name.

namespace DataTypes {

// Shifts wall-clock microseconds of `fromZone` to wall-clock microseconds of `toZone`; null means
// UTC. The part below a millisecond is dropped. `out` is written in any case; returns false when a
// zone is unknown under exactly that name (another zone has then taken its place) or the result
// does not fit 64 bits (it is then the nearest that does).
bool toTimeZone(long micros, const char* fromZone, const char* toZone, long& out);

// Whether a zone is known under exactly this name; true for null and for the empty text.
bool isValidTimezone(const char* name);

}  // namespace DataTypes
