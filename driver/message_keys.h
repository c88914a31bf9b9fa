#pragma once

// The keys under which the first generation logs. A key is a message number, a severity digit (3:
// the operation returns failure; 4: it goes on or still succeeds) and a name. docs/messages.md says
// what each means for a user.
namespace KORVEX::Zel::DB::keys {

inline constexpr char kOpeningConnection[] = "801000-3_ERROR_OPENING_DB_CONNECTION";
inline constexpr char kClosingConnection[] = "801001-4_ERROR_CLOSING_DB_CONNECTION";
inline constexpr char kCommitting[] = "801002-3_ERROR_COMMITTING_TRANSACTION";
inline constexpr char kRollingBack[] = "801003-3_ERROR_ROLLING_BACK_TRANSACTION";
inline constexpr char kCreatingStatement[] = "801004-3_ERROR_CREATING_STATEMENT";
inline constexpr char kGettingTableList[] = "801005-3_ERROR_GETTING_TABLE_LIST";
inline constexpr char kGettingColumnInfo[] = "801006-3_ERROR_GETTING_COLUMN_INFO";
inline constexpr char kGettingColumnCount[] = "801007-3_ERROR_GETTING_RESULT_SET_COLUMN_COUNT";
inline constexpr char kGettingColumnName[] = "801008-3_ERROR_GETTING_RESULT_SET_COLUMN_NAME";
inline constexpr char kGettingColumnType[] = "801009-3_ERROR_GETTING_RESULT_SET_COLUMN_TYPE";
inline constexpr char kIterating[] = "801012-3_ERROR_ITERATING_THROUGH_RESULT_SET";
inline constexpr char kGettingColumnValue[] = "801013-3_ERROR_GETTING_COLUMN_VALUE";
inline constexpr char kRowSkipped[] = "801014-4_COLUMN_VALUE_ERROR_RESULT_ROW_SKIPPED";
inline constexpr char kClosingStatement[] = "801015-4_ERROR_CLOSING_STATEMENT";
inline constexpr char kExecutingStatement[] = "801016-3_ERROR_EXECUTING_STATEMENT";
inline constexpr char kBindingParameters[] = "801017-3_ERROR_BINDING_PARAMETERS";
inline constexpr char kGettingResultSet[] = "801018-3_ERROR_GETTING_RESULT_SET";
inline constexpr char kClearingBatch[] = "801019-3_ERROR_CLEARING_BATCH";
inline constexpr char kAddingToBatch[] = "801020-3_ERROR_ADDING_TO_BATCH";
inline constexpr char kExecutingBatch[] = "801021-3_ERROR_EXECUTING_BATCH";
inline constexpr char kParsingColumnValue[] = "801032-3_ERROR_PARSING_COLUMN_VALUE";

}  // namespace KORVEX::Zel::DB::keys
