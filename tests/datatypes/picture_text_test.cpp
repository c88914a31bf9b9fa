#include "datatypes/picture_text.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <ctime>

#include "datatypes/time_format_parser.h"
#include "scoped_time_zone.h"

namespace {

// What the clock shows, in seconds; 0 is the system's.
std::time_t setClock = 0;

}  // namespace

// Found before the C library's: short years are read by the current one.
extern "C" std::time_t time(std::time_t* out) noexcept {
  std::timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  const std::time_t shown = setClock != 0 ? setClock : now.tv_sec;
  if (out != nullptr) *out = shown;
  return shown;
}

namespace DataTypes {
namespace {

constexpr long kTime = 1262401445678;     // 2010-01-02 03:04:05.678, a Saturday
constexpr long kEvening = 1281819845006;  // 2010-08-14 21:04:05.006, a Saturday

std::string timestamp(long value, const char* picture, const char* zone = nullptr) {
  std::string out = "former";
  TimestampToString(value, picture, zone, out);
  return out;
}

TEST(PicturePrint, Tokens) {
  const struct {
    long value;
    const char *picture, *text;
  } rows[] = {
      {kTime, "YYYY-MM-DD\"T\"HH24:MI:SS", "2010-01-02T03:04:05"},
      {kTime, "yyyy/yyy/yy/y", "2010/010/10/0"},
      {kTime, "Q MM DD DDD D W WW", "1 01 02 002 7 1 01"},
      {kEvening, "Q MM DD DDD D W WW", "3 08 14 226 7 2 33"},
      {kEvening, "FMMM DD HH HH24 WW DDDFM MM", "8 14 9 21 33 226 08"},
      {kTime, "Month|MONTH|month|monTH", "  January|  JANUARY|  january|  January"},
      {kTime, "FMMonth|MONTH|month", "January|JANUARY|january"},
      {kEvening, "MON|Mon|mon|RM|Rm|rm", "AUG|Aug|aug|VIII|Viii|viii"},
      {kEvening, "DAY|Day|day|DY|Dy|dy", "SATURDAY|Saturday|saturday|SAT|Sat|sat"},
      {kTime, "AM PM am pm Am pM", "AM AM am am Am Am"},
      {kEvening, "AM|am|Pm", "PM|pm|Pm"},
      {0, "HH12 HH HH24", "12 12 00"},
      {43200000, "HH12 AM", "12 PM"},
      {kEvening, "HH12:MI:SS SSSSS", "09:04:05 75845"},
      {kTime, "FF FF1 FF2 FF3 FF6 FF7 FF9", "678000 6 67 678 678000 6780000 678000000"},
      {kTime, "FF4 FF5 FF8", "6780 67800 67800000"},
      {kTime, "FMFF FF1 FF2 FF9", "678 6 67 678"},
      {0, "FMFF FF3", "0 0"},
      {kEvening, "FF3 FMFF3", "006 006"},
      {kTime, "MS FF", "1262401445678 678"},
      {kTime, "SE", "1262401445"},
      {kTime, "MIC", "1262401445678000"},
      {1, "MIC FMMIC", "0000000000001000 1000"},
      {-1500, "FF", "-500000"},
      {-1500, "SE MS MIC FF FF3", "-1 -1500 -000000001500000 -500 -500"},
      {-1500, "YYYY-MM-DD HH24:MI:SS", "1969-12-31 23:59:59"},
      {kTime, "\"YYYY \"\"\"YYYY", "YYYY 2010"},
      {kTime, "", ""},
      // what the table does not complete
      {kTime, "A P F T H R M S", "A P F T H R M S"},
      {kTime, "DA DAX", "7A 7AX"},
      {kEvening, "HH1 HH2x HHx", "091 092x 09x"},
      {kTime, "MINUTE SECON MONT MO", "04NUTE 1262401445CON JANT MO"},
      {kTime, "SSS SSSS YYYYY", "05S 0505 20100"},
      {kTime, "FF0 FFX", "6780000 678000X"},
      {kTime, "TZ B,", "TZ B,"},
      {-62135596800000 - 86400000, "YYYY YY", "0000 00"},
      {253402300800000, "YYYY YYY", "10000 000"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(timestamp(row.value, row.picture), row.text) << row.picture;
}

TEST(PicturePrint, Refused) {
  for (const char* picture : {"RR", "RRRR", "DAYS", "HOURS", "MINUTES", "SECONDS", "\"open", "Y\""})
    EXPECT_EQ(timestamp(kTime, picture), "") << picture;
  EXPECT_EQ(timestamp(kTime, "YYYY", "Mars/Phobos"), "");
  EXPECT_EQ(timestamp(kTime, nullptr), "");
  std::string out = "former";
  DateToString(LONG_MAX, "YYYY", nullptr, out);
  EXPECT_EQ(out, "") << "no 64-bit microseconds";
  EXPECT_NE(timestamp(9223372036854775, "YYYY"), "");
  EXPECT_EQ(timestamp(9223372036854776, "YYYY"), "");
}

TEST(PicturePrint, Zones) {
  const struct {
    long value;
    const char *zone, *picture, *text;
  } rows[] = {
      {kTime, "Europe/Paris", "HH24 TZH:TZM TZD TZR",
       "04 01:00 GMT+1 Central European Standard Time"},
      {kEvening, "Europe/Paris", "HH24 TZH:TZM", "23 02:00"},
      {kEvening, "America/New_York", "HH24 TZH:TZM TZD|TZR", "17 -04:00 EDT|Eastern Daylight Time"},
      {kTime, "America/New_York", "DD HH24 TZH TZD|TZR", "01 22 -05 EST|Eastern Standard Time"},
      {kTime, "America/St_Johns", "TZH:TZM FMTZH", "-03:30 -3"},
      {kTime, "", "HH24 TZH TZM TZD", "03 00 00 UTC"},
      {kTime, "Asia/Tokyo", "SE MIC MS", "1262433845 1262401445678000 1262433845678"},
  };
  const ScopedTimeZone utc("UTC");
  for (const auto& row : rows)
    EXPECT_EQ(timestamp(row.value, row.picture, row.zone), row.text) << row.picture;
}

TEST(PicturePrint, Units) {
  std::string out;
  DateToString(1262401445, "YYYY-MM-DD HH24:MI:SS.FF MIC MS", nullptr, out);
  EXPECT_EQ(out, "2010-01-02 03:04:05.000000 1262401445000000 1262401445000");
  BigDateTimeToString(1262401445678901, "SS.FF MIC MS SE FF", nullptr, out);
  EXPECT_EQ(out, "05.678901 1262401445678901 1262401445678 1262401445 678");
  // The same units where all fields are of fixed width, up to the last year of four digits.
  DateToString(253402300799, "YYYY-MM-DD HH24:MI:SS.FF", nullptr, out);
  EXPECT_EQ(out, "9999-12-31 23:59:59.000000");
  DateToString(253402300799, "YYYY-MM-DD HH24:MI:SS.FF1", "Asia/Tokyo", out);
  EXPECT_EQ(out, "10000-01-01 08:59:59.0");
  BigDateTimeToString(253402300799678901, "YYYY-MM-DD HH24:MI:SS.FF", nullptr, out);
  EXPECT_EQ(out, "9999-12-31 23:59:59.678901");
  BigDateTimeToString(1262401445678901, "YYYYMMDD HH24MISS FF7", "Asia/Kolkata", out);
  EXPECT_EQ(out, "20100102 083405 6789010");
}

struct ReadRow {
  const char *text, *picture;
  bool isOk;
  long millis;
};

void expectRead(const ReadRow& row) {
  long value = 77;
  EXPECT_EQ(TimestampFromString(row.text, row.picture, value), row.isOk)
      << row.text << " by " << row.picture;
  EXPECT_EQ(value, row.isOk ? row.millis : 77) << row.text << " by " << row.picture;
}

TEST(PictureRead, Accepted) {
  const ScopedTimeZone utc("UTC");
  constexpr long kDay = 1262390400000;  // 2010-01-02
  const ReadRow rows[] = {
      {"2010-01-02T03:04:05", "YYYY-MM-DD\"T\"HH24:MI:SS", true, kTime - 678},
      {"2010/1.2 3:4:5,678", "YYYY-MM-DD HH24:MI:SS.FF", true, kTime},
      {"  2010 - 01-02  ", "YYYY-MM-DD", true, kDay},
      {"20100102", "YYYYMMDD", true, kDay},
      {"2010-Jan-2", "YYYY-Mon-DD", true, kDay},
      {"2010 JANUARY 02", "YYYY MONTH DD", true, kDay},
      {"VIII 14 2010", "RM DD YYYY", true, 1281744000000},
      {"xii 14 2010", "rm DD YYYY", true, 1292284800000},
      {"Sat Saturday 2010-01-02", "Dy Day RRRR-MM-DD", true, kDay},
      {"2010-01-02 09:00 PM", "YYYY-MM-DD HH:MI AM", true, kDay + 75600000},
      {"2010-01-02 12:00 am", "YYYY-MM-DD HH12:MI pm", true, kDay},
      {"2010-01-02 12 Pm", "YYYY-MM-DD HH Am", true, kDay + 43200000},
      {"2010-01-02 11045", "YYYY-MM-DD SSSSS", true, kDay + 11045000},
      {"2010-01-02 .5", "YYYY-MM-DD .FF", true, kDay + 500},
      {"1262401445", "SE", true, 1262401445000},
      {"-1", "SE", true, -1000},
      {"00000000001262401445", "SE", true, 1262401445000},
      {"1262401445678", "MS", true, kTime},
      {"1262401445678.9", "MS.FF", true, kTime + 1000},
      {"-1500", "MS", true, -1000},
      {"-1500.6", "MS.FF", true, -2000},
      {"1262401445678901", "MIC", true, kTime},
      {"-9223372036854775808", "MIC", true, -9223372036854775},
      {"03:04", "HH24:MI", true, -2208977760000},  // 1900
      {"2010-01-02 00:00 +01:30", "YYYY-MM-DD HH24:MI TZH:TZM", true, kDay + 5400000},
      {"2010-01-02 00:00 -01:30", "YYYY-MM-DD HH24:MI TZH:TZM", true, kDay - 5400000},
      {"2010-01-02 00:00 -00:30", "YYYY-MM-DD HH24:MI TZH:TZM", true, kDay + 1800000},
      {"2010-01-02 00:00 +10", "YYYY-MM-DD HH24:MI TZH", true, kDay + 36000000},
      {"2010-01-02 86399", "YYYY-MM-DD SSSSS", true, kDay + 86399000},
      {"2010-01-02 1:59:59", "YYYY-MM-DD HH:MI:SS", true, kDay + 7199000},
      {"  Sat 2010-01-02", "Dy YYYY-MM-DD", true, kDay},
      {"0000", "YYYY", true, -62167219200000},
      {"9999", "YYYY", true, 253370764800000},
      {"2010-01-02 30", "YYYY-MM-DD TZM", true, kDay + 1800000},
      {"2010-01-02 Europe/Paris", "YYYY-MM-DD TZD", true, kDay + 3600000},
      {"2010-01-02 Europe/Paris", "YYYY-MM-DD TZR", true, kDay + 3600000},
      {"2010-01-02 Mars/Phobos", "YYYY-MM-DD TZR", true, kDay},
      {"2010-01-02 GMT+2", "YYYY-MM-DD TZR", true, kDay + 7200000},
      {"2010-01-02 Europe/Paris", "YYYY-MM-DD TZDTZR", true, kDay + 3600000},
      {"2010x01", "YYYY MM", true, 1262304000000},
      {"2010-01-02", "FXYYYY-MM-DD", true, kDay},
      {"2010-1-2", "FXFMYYYY-MM-DD", true, kDay},
      {"2010/1-2", "FXFXYYYY-MM-DD", true, kDay},
      {"2010-02-31", "YYYY-MM-DD", true, 1267574400000},
      {"", "", true, -2208988800000},
      {"2010 ", "YYYY  ", true, 1262304000000},
  };
  for (const auto& row : rows) expectRead(row);
}

TEST(PictureRead, Refused) {
  const char* const rows[][2] = {
      // clang-format off
      {"2010-01-02x", "YYYY-MM-DD"}, {"2010", "YYYY-MM"}, {"x", "YYYY"}, {"", "YYYY"},
      {"2010 2010", "YYYY YYYY"}, {"00", "DD"}, {"32", "DD"}, {"13", "MM"}, {"0", "MM"},
      {"13", "HH12"}, {"0", "HH"}, {"24", "HH24"}, {"60", "MI"}, {"60", "SS"}, {"86400", "SSSSS"},
      {"5 10", "MI SSSSS"}, {"5 10", "HH HH24"}, {"AM 10", "AM HH24"}, {"AM PM", "AM PM"},
      {"am", "AM"}, {"AM", "Am"}, {"january", "MONTH"}, {"01 JAN", "MM MON"}, {"SUN", "Dy"},
      {"2010 5", "YYYY SE"}, {"5 2010", "SE YYYY"}, {"5 6", "SE MS"}, {"5 6", "MIC SE"},
      {"5 6", "MM SE"}, {"5 6", "DD MS"}, {"5 6", "HH MIC"}, {"5 6", "SS SE"}, {"AM 6", "AM MS"},
      {"5 6", "FF SE"}, {"5 6", "HH SSSSS"}, {"5 6", "SS SSSSS"}, {"AM 6", "AM SSSSS"},
      {"5 6", "MIC YYYY"}, {"5 6", "FF FF"}, {"2010 5", "YYYY Y"}, {"2010 05", "YYYY RR"},
      {"5 6", "MS MIC"}, {"5 6", "MIC MIC"}, {"9223372036854775808", "MS"},
      {"-9223372036854775809", "MIC"}, {"9223372036854776", "SE"}, {"9223372036854775807", "SE"},
      {"000000000000000000005", "SE"}, {"-", "SE"}, {"-", "MIC"}, {"--5", "SE"},
      {"2010-01-02 Mars/Phobos", "YYYY-MM-DD TZD"}, {"+01 +02", "TZH TZH"}, {"x", "TZH"},
      {"2010-1-02", "FXYYYY-MM-DD"}, {"2010/01", "FXYYYY-MM"}, {"2010 ", "FXYYYY"},
      {"2010x01", "FXYYYY MM"}, {"2010", "YYYY\""}, {"2010x", "YYYYy"},
      {"2010 -01", "FXYYYY-MM"}, {"2010x01", "YYYY-MM"}, {"2010-01", "YYYYxMM"},
      {"201001", "FXYYYY MM"}, {"AM", "AMPM"}, {"000010", "SSSSS"}, {"105", "RR"}, {"012", "HH"},
      {"9223372036854775807.9", "MS.FF"}, {"9223372036855 UTC", "SE TZR"}, {"0 6", "FF FF"},
      {"2010 UTC", "YYYY TZDTZD"}, {"10 20", "TZM TZM"}, {"1", "D"}, {"1", "DDD"},
      {"1", "Q"}, {"1", "W"}, {"1", "WW"}, {"1", "FF3"}, {"1", "DAYS"}, {"1", "HOURS"},
      {"1", "MINUTES"}, {"1", "SECONDS"},
      // clang-format on
  };
  for (const auto& [text, picture] : rows) expectRead({text, picture, false, 0});
  long value = 77;
  EXPECT_FALSE(TimestampFromString(nullptr, "YYYY", value));
  EXPECT_FALSE(DateFromString("1", nullptr, value));
}

TEST(PictureRead, YearsWithoutCentury) {
  const ScopedTimeZone utc("UTC");
  const struct {
    int now;
    const char *text, *picture;
    int year;
  } rows[] = {{2026, "5", "Y", 2025},   {2026, "05", "YY", 2005}, {2026, "005", "YYY", 2005},
              {1999, "7", "Y", 1997},   {1999, "07", "YY", 1907}, {1999, "107", "YYY", 1107},
              {2026, "60", "RR", 1960}, {2026, "50", "RR", 1950}, {2026, "49", "RR", 2049},
              {2026, "05", "RR", 2005}, {2049, "50", "RR", 1950}, {2049, "49", "RR", 2049},
              {2050, "50", "RR", 2050}, {2050, "49", "RR", 4150}, {2075, "05", "RR", 4175},
              {1999, "99", "RR", 1999}, {1999, "00", "RR", 3999}};
  for (const auto& row : rows) {
    std::tm t{};
    t.tm_year = row.now - 1900;
    t.tm_mday = 1;
    setClock = timegm(&t);
    long read = 0;
    EXPECT_TRUE(DateFromString(row.text, row.picture, read)) << row.picture;
    gmtime_r(&read, &t);
    EXPECT_EQ(t.tm_year + 1900, row.year) << row.text << " by " << row.picture;
  }
  setClock = 0;
}

TEST(PictureRead, Units) {
  long value = 0;
  EXPECT_TRUE(DateFromString("1500", "MS", value));
  EXPECT_EQ(value, 1);
  EXPECT_TRUE(TimeFromString("1970-01-01 01:00:00.9", "YYYY-MM-DD HH24:MI:SS.FF", value));
  EXPECT_EQ(value, 3600);
  EXPECT_TRUE(
      BigDateTimeFromString("1970-01-01 00:00:01.000009", "YYYY-MM-DD HH24:MI:SS.FF", value));
  EXPECT_EQ(value, 1000009);
  EXPECT_TRUE(BigDateTimeFromString("5", "SE", value));
  EXPECT_EQ(value, 5000000);
  EXPECT_TRUE(BigDateTimeFromString("-7", "MIC", value));
  EXPECT_EQ(value, -7);
  EXPECT_TRUE(DateFromString("1999999", "MIC", value));
  EXPECT_EQ(value, 1);
  EXPECT_TRUE(DateFromString("67767976233532799", "SE", value)) << "the last second of an int year";
  EXPECT_EQ(value, 67767976233532799);
  EXPECT_FALSE(DateFromString("67767976233532800", "SE", value));
}

TEST(PictureRead, PrintedPicturesReadBack) {
  const char* const pictures[] = {"YYYY-MM-DD HH24:MI:SS.FF",
                                  "Day, DD Month YYYY HH12:MI:SS.FF AM",
                                  "RM/DD/YYYY SSSSS,FF",
                                  "FMDy Mon DD YYYY HH:MI:SS PMFM.FF",
                                  "MS",
                                  "FXYYYY\"year\"MM\"month\"DD HH24MISS FF"};
  for (const char* picture : pictures) {
    for (long value = 3; value < 4102444800000; value = value * 3 / 2 + 86399999) {
      const std::string text = timestamp(value, picture);
      long read = 0;
      ASSERT_TRUE(TimestampFromString(text.c_str(), picture, read)) << text << " by " << picture;
      ASSERT_EQ(read, value) << text << " by " << picture;
    }
  }
}

// The server may derive from the parser: a handler's slot is part of the contract.
template <class Handler>
std::size_t slotOf(Handler handler) {
  std::size_t word = 0;
  std::memcpy(&word, &handler, sizeof word);
  return (word - 1) / sizeof(void*);
}

TEST(TimeFormatParser, SlotOrder) {
  using P = TimeFormatParser;
  std::size_t slot = 0;
  EXPECT_EQ(slotOf(&P::OnFieldFM), slot++);
  EXPECT_EQ(slotOf(&P::IsDone), slot++);
  EXPECT_EQ(slotOf(&P::OnChar), slot++);
  for (const auto handler : {&P::OnFieldAM, &P::OnFieldPM}) EXPECT_EQ(slotOf(handler), slot++);
  for (const auto handler : {&P::OnFieldD, &P::OnFieldDD, &P::OnFieldDDD})
    EXPECT_EQ(slotOf(handler), slot++);
  for (const auto handler : {&P::OnFieldDAY, &P::OnFieldDY}) EXPECT_EQ(slotOf(handler), slot++);
  for (const auto handler : {&P::OnFieldHH, &P::OnFieldHH12, &P::OnFieldHH24, &P::OnFieldMI,
                             &P::OnFieldMIC, &P::OnFieldMM})
    EXPECT_EQ(slotOf(handler), slot++);
  for (const auto handler : {&P::OnFieldMON, &P::OnFieldMONTH}) EXPECT_EQ(slotOf(handler), slot++);
  EXPECT_EQ(slotOf(&P::OnFieldMS), slot++);
  EXPECT_EQ(slotOf(&P::OnFieldRM), slot++);
  for (const auto handler : {&P::OnFieldQ, &P::OnFieldSS, &P::OnFieldSE, &P::OnFieldFF})
    EXPECT_EQ(slotOf(handler), slot++);
  EXPECT_EQ(slotOf(&P::OnFieldFFn), slot++);
  for (const auto handler :
       {&P::OnFieldSSSSS, &P::OnFieldTZD, &P::OnFieldTZH, &P::OnFieldTZM, &P::OnFieldTZR,
        &P::OnFieldW, &P::OnFieldWW, &P::OnFieldRR, &P::OnFieldRRRR, &P::OnFieldY, &P::OnFieldYY,
        &P::OnFieldYYY, &P::OnFieldYYYY, &P::OnFieldDAYS, &P::OnFieldHOURS, &P::OnFieldMINUTES,
        &P::OnFieldSECONDS, &P::OnEndOfParse})
    EXPECT_EQ(slotOf(handler), slot++);
  EXPECT_EQ(slot, 43U);
}

}  // namespace
}  // namespace DataTypes
