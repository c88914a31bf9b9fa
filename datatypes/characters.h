#pragma once

// ASCII character classes, whatever the process's locale is.

namespace DataTypes {

constexpr bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

// What isspace accepts in the C locale.
constexpr bool isWhiteSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

constexpr bool isUpper(char c) {
  return c >= 'A' && c <= 'Z';
}

constexpr bool isLower(char c) {
  return c >= 'a' && c <= 'z';
}

constexpr bool isLetter(char c) {
  return isUpper(c) || isLower(c);
}

constexpr bool isPunctuation(char c) {
  return c > ' ' && c < '\x7f' && !isDigit(c) && !isLetter(c);
}

constexpr char toUpper(char c) {
  return isLower(c) ? static_cast<char>(c - 'a' + 'A') : c;
}

constexpr char toLower(char c) {
  return isUpper(c) ? static_cast<char>(c - 'A' + 'a') : c;
}

// Whether `text` begins with `word`, letters compared without case.
constexpr bool beginsWith(const char* text, const char* word) {
  for (; *word != '\0'; ++text, ++word)
    if (toLower(*text) != toLower(*word)) return false;
  return true;
}

}  // namespace DataTypes
