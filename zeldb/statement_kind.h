#pragma once

#include <string_view>

namespace zeldb {

// Whether a statement only changes things, judged by its first word: then the number of rows is
// asked for, not the rows. A statement with RETURNING has rows.
bool isUpdateStatement(std::string_view sql);

}  // namespace zeldb
