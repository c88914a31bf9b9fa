#pragma once

// Conversions between cells, packed values and text. None of them logs or throws. Packed values
// need not be aligned.

#include <cstddef>
#include <cstdint>

#include "datatypes/data_value.h"

namespace DataTypes {

// The message of every function below that finds its output buffer too short.
extern const char* const kOutputBufferOverflow;

// Writes the text of a packed value: at most outSize bytes, always terminated, cut when it is
// longer. `swap` reads numbers with their bytes reversed (decimals excepted), `withZone` adds "+00"
// to dates and times. Writes nothing for strings, binaries, codes without a value and a null
// `packed`.
// Kept: the limit is not reduced for the sign of negative money, so up to outSize + 1 bytes are
// written; give it one byte to spare.
void convertToString(const unsigned int& type, bool swap, bool withZone, unsigned char* packed,
                     char* out, std::size_t outSize);

// The same for a cell; writes nothing for a null one.
void convertToString(const unsigned int& type, bool swap, bool withZone, DataValue& cell, char* out,
                     std::size_t outSize);

// The text of a double as convertToString writes it, under the settings of setDecimalSize.
void convertDoubleToString(double value, char* out, std::size_t outSize);

// Reads a text as a value of `type` and writes its packed form. A null date format means
// g_date_format, a null timestamp format the date format, a null bigdatetime format the timestamp
// format, a null time format g_time_format; the format "%s" reads seconds since the epoch. Returns
// the number of bytes written, or -1 with `message` pointing at a fixed text.
int convertFromStringAndPack(const unsigned int& type, bool swap, const char* text,
                             unsigned char* out, std::size_t outSize, const char*& message,
                             const char* dateFormat, const char* timestampFormat,
                             const char* bigdatetimeFormat, const char* timeFormat);

// Reads a text into a cell, which is not null afterwards. The payload's unused bytes are zero.
// Strings and binaries are allocated with malloc, and one that the cell held before is freed unless
// the cell was null. Returns false with `message` set; the cell is unchanged then.
// Kept: hexadecimal text with more than one white-space character is refused here.
bool convertFromString(const unsigned int& type, const char* text, DataValue& cell,
                       const char*& message, const char* dateFormat, const char* timestampFormat,
                       const char* bigdatetimeFormat, const char* timeFormat);

// Packs the value of a text without swapping bytes. Returns the bytes written, or 0 with `message`
// set.
int packAndAppendValue(unsigned char* out, std::size_t outSize, const char* text,
                       const unsigned int& type, const char* dateFormat,
                       const char* timestampFormat, const char* bigdatetimeFormat,
                       const char* timeFormat, const char*& message);

// Reads a packed value into a cell. Strings and binaries point into the packed bytes. A null
// `packed` makes the cell null and touches nothing else. A decimal takes scale and precision from
// the type code when that carries a precision.
void unpackValue(TypeEnum type, unsigned char* packed, DataValue& cell);
void unpackValue(const unsigned int& type, unsigned char* packed, DataValue& cell);

// The length of a packed binary value in bytes, without the four of the length; 0 for null.
std::uint32_t getLengthFromPackedBinary(const unsigned char* packed);

// The text of a packed value in storage from malloc that the caller frees: as convertToString
// writes it, strings as they are, binaries in hexadecimal. Null for a null `packed`, for codes
// without a value and when memory runs out.
char* unpackToNewString(const unsigned int& type, unsigned char* packed);

}  // namespace DataTypes
