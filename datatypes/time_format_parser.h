#pragma once

#include "datatypes/picture_names.h"

namespace DataTypes {

// Scans a date and time picture once, left to right, and calls a handler for each token and OnChar
// for every other character. What a token does is up to the subclass; a token that it does not
// handle is not allowed.
class TimeFormatParser {
 public:
  // The letter case in which a name token is written.
  enum Case { kMixed = kMixedCase, kUpper = kUpperCase, kLower = kLowerCase };

  // Returns whether the whole picture was handled. Stops at the first handler that fails.
  bool Parse(const char* picture, unsigned long length);

  // The virtual operations, in slot order.
  virtual void OnFieldFM();
  virtual bool IsDone() = 0;
  virtual void OnChar(char c) = 0;
  virtual void OnFieldAM(Case) { refuse(); }
  virtual void OnFieldPM(Case) { refuse(); }
  virtual void OnFieldD() { refuse(); }
  virtual void OnFieldDD() { refuse(); }
  virtual void OnFieldDDD() { refuse(); }
  virtual void OnFieldDAY(Case) { refuse(); }
  virtual void OnFieldDY(Case) { refuse(); }
  virtual void OnFieldHH() { refuse(); }
  virtual void OnFieldHH12() { refuse(); }
  virtual void OnFieldHH24() { refuse(); }
  virtual void OnFieldMI() { refuse(); }
  virtual void OnFieldMIC() { refuse(); }
  virtual void OnFieldMM() { refuse(); }
  virtual void OnFieldMON(Case) { refuse(); }
  virtual void OnFieldMONTH(Case) { refuse(); }
  virtual void OnFieldMS() { refuse(); }
  virtual void OnFieldRM(Case) { refuse(); }
  virtual void OnFieldQ() { refuse(); }
  virtual void OnFieldSS() { refuse(); }
  virtual void OnFieldSE() { refuse(); }
  virtual void OnFieldFF() { refuse(); }
  virtual void OnFieldFFn(char) { refuse(); }
  virtual void OnFieldSSSSS() { refuse(); }
  virtual void OnFieldTZD() { refuse(); }
  virtual void OnFieldTZH() { refuse(); }
  virtual void OnFieldTZM() { refuse(); }
  virtual void OnFieldTZR() { refuse(); }
  virtual void OnFieldW() { refuse(); }
  virtual void OnFieldWW() { refuse(); }
  virtual void OnFieldRR() { refuse(); }
  virtual void OnFieldRRRR() { refuse(); }
  virtual void OnFieldY() { refuse(); }
  virtual void OnFieldYY() { refuse(); }
  virtual void OnFieldYYY() { refuse(); }
  virtual void OnFieldYYYY() { refuse(); }
  virtual void OnFieldDAYS() { refuse(); }
  virtual void OnFieldHOURS() { refuse(); }
  virtual void OnFieldMINUTES() { refuse(); }
  virtual void OnFieldSECONDS() { refuse(); }
  virtual void OnEndOfParse() {}

 protected:
  TimeFormatParser() = default;
  // Never deleted through the base; a virtual destructor would take slots.
  ~TimeFormatParser() = default;

  // Stops the parse.
  void refuse() { success_ = false; }

  bool isFillMode() const { return fillMode_ != 0; }
  bool isExactMode() const { return exactMode_ != 0; }
  bool isSuccess() const { return success_; }

 private:
  // Where the scanner is.
  enum State { kBetweenTokens = 0, kInQuote = 1 };

  // Calls the handler of a step.
  void handle(const struct PictureStep& step);

  int state_ = kBetweenTokens;
  int fillMode_ = 0;   // FM: no padding
  int exactMode_ = 0;  // FX: the input has full widths
  bool success_ = true;
};

}  // namespace DataTypes
