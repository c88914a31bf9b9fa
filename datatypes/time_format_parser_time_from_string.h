#pragma once

#include "datatypes/read_time.h"
#include "datatypes/time_format_parser_common_from_string.h"

namespace DataTypes {

// Reads a date and time by a picture into its fields. Handlers may throw when memory runs out.
class TimeFormatParser_TimeFromString final : public TimeFormatParser_CommonFromString {
 public:
  // `text` must outlive the parser.
  explicit TimeFormatParser_TimeFromString(std::string_view text)
      : TimeFormatParser_CommonFromString(text) {}

  ReadTime& result() { return read_; }

  void OnFieldAM(Case letterCase) override;
  void OnFieldPM(Case letterCase) override { OnFieldAM(letterCase); }
  void OnFieldDD() override;
  void OnFieldDAY(Case letterCase) override;
  void OnFieldDY(Case letterCase) override;
  void OnFieldHH() override { OnFieldHH12(); }
  void OnFieldHH12() override;
  void OnFieldHH24() override;
  void OnFieldMI() override;
  void OnFieldMIC() override;
  void OnFieldMM() override;
  void OnFieldMON(Case letterCase) override;
  void OnFieldMONTH(Case letterCase) override;
  void OnFieldMS() override;
  void OnFieldRM(Case letterCase) override;
  void OnFieldSS() override;
  void OnFieldSE() override;
  void OnFieldFF() override;
  void OnFieldSSSSS() override;
  void OnFieldTZD() override;
  void OnFieldTZH() override;
  void OnFieldTZM() override;
  void OnFieldTZR() override;
  void OnFieldRR() override;
  void OnFieldRRRR() override { OnFieldYYYY(); }
  void OnFieldY() override { shortYear(1, 10); }
  void OnFieldYY() override { shortYear(2, 100); }
  void OnFieldYYY() override { shortYear(3, 1000); }
  void OnFieldYYYY() override;

 private:
  // A numeric field of fixed width.
  struct NumberRow;
  static const NumberRow kDay, kHour, kMinute, kSecond, kMonth, kYear;

  // Skips white space; refuses at the end of the text and when a count excludes all fields.
  bool beginNumber();
  // Reads up to `width` digits, all of them in exact mode. Returns false after refusing.
  bool digits(int width, int& value, int& count);
  bool digits(int width, int& value);
  void field(const NumberRow& row);
  // A year of `width` digits; the current year gives the others.
  void shortYear(int width, int unit);
  // A signed count since the epoch of at most `width` digits.
  bool count(int width, long& value);
  void epochCount(int width, bool isExcluded, bool& isGiven, long& value);
  // An unsigned number of up to two digits of a zone offset.
  bool zoneNumber(bool isGiven, int& value);
  void zoneName(bool& isGiven, std::string& name);
  void monthName(const PictureName (&names)[12]);
  template <std::size_t Count>
  int readName(const PictureName (&names)[Count]);

  ReadTime read_;
};

}  // namespace DataTypes
