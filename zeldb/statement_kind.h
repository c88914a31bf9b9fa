#pragma once

#include <string_view>

namespace zeldb {

// Whether a statement only changes things, judged by its first word: then the number of rows is
// asked for, not the rows. A statement with RETURNING has rows.
bool isUpdateStatement(std::string_view sql);

// Whether a text is a statement rather than the name of a table: a word with a blank or a
// parenthesis behind it.
bool isStatement(std::string_view text);

}  // namespace zeldb
