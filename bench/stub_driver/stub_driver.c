/* An ODBC driver that answers constants, for measuring what lies above a driver. There is no
 * database; the text of a statement says what it does:
 *
 *   fetch ROWS KINDS   a result of that many rows, a column a letter of KINDS
 *   insert KINDS       takes parameters, a marker a letter of KINDS, and forgets them
 *
 * Kinds: i integer, b bigint, d double, s varchar(20), t timestamp(6), a decimal(18,4), f bit, and
 * x or X for a text of the length that follows the letter; the length of X is not told.
 * Any other text is a statement without a result. */

#include <sql.h>
#include <sqlext.h>
#include <stdlib.h>
#include <string.h>

/* Keeps the driver's own calls from going round through the driver manager. */
#define EXPORT __attribute__((visibility("protected")))

enum { MAX_COLUMNS = 128 };

typedef struct {
  char kind;
  const char* name;
  SQLSMALLINT sqlType;
  SQLULEN size;
  SQLSMALLINT digits;
  SQLLEN displaySize;
  const char* text;
} Kind;

static const Kind KINDS[] = {
    {'i', "number", SQL_INTEGER, 10, 0, 11, "1234567"},
    {'b', "big", SQL_BIGINT, 19, 0, 20, "1234567890123"},
    {'d', "real", SQL_DOUBLE, 15, 0, 24, "1234.5"},
    {'s', "text", SQL_VARCHAR, 20, 0, 20, "row number 12345"},
    {'t', "moment", SQL_TYPE_TIMESTAMP, 26, 6, 26, "2023-11-14 22:13:20.123456"},
    {'a', "amount", SQL_DECIMAL, 18, 4, 20, "12345678.1234"},
    {'f', "flag", SQL_BIT, 1, 0, 1, "1"},
    {'x', "long", SQL_LONGVARCHAR, 65535, 0, 65535, ""},
    {'X', "endless", SQL_LONGVARCHAR, 65535, 0, 65535, ""},
};

typedef struct {
  const Kind* kind;
  SQLLEN length; /* of the text in bytes */
  SQLLEN given;  /* how much of it the current row's reader has got; -1: all */
} Column;

typedef struct {
  SQLLEN rows;
  SQLLEN row;
  SQLSMALLINT columns;
  SQLSMALLINT parameters;
  SQLULEN batchRows;
  SQLUSMALLINT* batchStatus;
  SQLULEN* batchProcessed;
  Column column[MAX_COLUMNS];
} Statement;

static const Kind* kindOf(char letter) {
  for (size_t i = 0; i < sizeof KINDS / sizeof *KINDS; ++i)
    if (KINDS[i].kind == letter) return &KINDS[i];
  return NULL;
}

static SQLSMALLINT readKinds(Statement* s, const char* text) {
  SQLSMALLINT count = 0;
  while (*text != '\0' && count < MAX_COLUMNS) {
    const Kind* kind = kindOf(*text++);
    if (kind == NULL) break;
    Column* column = &s->column[count++];
    column->kind = kind;
    column->length = (SQLLEN)strlen(kind->text);
    if (kind->kind == 'x' || kind->kind == 'X') {
      char* end = NULL;
      column->length = strtol(text, &end, 10);
      text = end;
    }
  }
  return count;
}

static void parse(Statement* s, const char* sql) {
  s->columns = s->parameters = 0;
  if (strncmp(sql, "fetch ", 6) == 0) {
    char* end = NULL;
    s->rows = strtol(sql + 6, &end, 10);
    s->columns = readKinds(s, end + (*end == ' '));
  } else if (strncmp(sql, "insert ", 7) == 0) {
    s->parameters = readKinds(s, sql + 7);
  }
}

EXPORT SQLRETURN SQL_API SQLAllocHandle(SQLSMALLINT type, SQLHANDLE parent, SQLHANDLE* handle) {
  (void)parent;
  *handle = calloc(1, type == SQL_HANDLE_STMT ? sizeof(Statement) : 16);
  if (*handle == NULL) return SQL_ERROR;
  if (type == SQL_HANDLE_STMT) ((Statement*)*handle)->batchRows = 1;
  return SQL_SUCCESS;
}

EXPORT SQLRETURN SQL_API SQLFreeHandle(SQLSMALLINT type, SQLHANDLE handle) {
  (void)type;
  free(handle);
  return SQL_SUCCESS;
}

EXPORT SQLRETURN SQL_API SQLSetEnvAttr(SQLHENV env, SQLINTEGER attribute, SQLPOINTER value,
                                       SQLINTEGER length) {
  (void)env, (void)attribute, (void)value, (void)length;
  return SQL_SUCCESS;
}

EXPORT SQLRETURN SQL_API SQLConnect(SQLHDBC dbc, SQLCHAR* dsn, SQLSMALLINT dsnLength, SQLCHAR* user,
                                    SQLSMALLINT userLength, SQLCHAR* password,
                                    SQLSMALLINT passwordLength) {
  (void)dbc, (void)dsn, (void)dsnLength, (void)user, (void)userLength, (void)password;
  (void)passwordLength;
  return SQL_SUCCESS;
}

EXPORT SQLRETURN SQL_API SQLDriverConnect(SQLHDBC dbc, SQLHWND window, SQLCHAR* in,
                                          SQLSMALLINT inLength, SQLCHAR* out, SQLSMALLINT outBytes,
                                          SQLSMALLINT* outLength, SQLUSMALLINT completion) {
  (void)dbc, (void)window, (void)in, (void)inLength, (void)completion;
  if (out != NULL && outBytes > 0) *out = 0;
  if (outLength != NULL) *outLength = 0;
  return SQL_SUCCESS;
}

EXPORT SQLRETURN SQL_API SQLDisconnect(SQLHDBC dbc) {
  (void)dbc;
  return SQL_SUCCESS;
}

EXPORT SQLRETURN SQL_API SQLEndTran(SQLSMALLINT type, SQLHANDLE handle, SQLSMALLINT completion) {
  (void)type, (void)handle, (void)completion;
  return SQL_SUCCESS;
}

EXPORT SQLRETURN SQL_API SQLSetConnectAttr(SQLHDBC dbc, SQLINTEGER attribute, SQLPOINTER value,
                                           SQLINTEGER length) {
  (void)dbc, (void)attribute, (void)value, (void)length;
  return SQL_SUCCESS;
}

EXPORT SQLRETURN SQL_API SQLGetConnectAttr(SQLHDBC dbc, SQLINTEGER attribute, SQLPOINTER value,
                                           SQLINTEGER bytes, SQLINTEGER* length) {
  (void)dbc, (void)bytes;
  *(SQLUINTEGER*)value = attribute == SQL_ATTR_AUTOCOMMIT ? SQL_AUTOCOMMIT_ON : 0;
  if (length != NULL) *length = sizeof(SQLUINTEGER);
  return SQL_SUCCESS;
}

/* Texts where a program asks for one; numbers are 0 but for those that programs insist on. */
EXPORT SQLRETURN SQL_API SQLGetInfo(SQLHDBC dbc, SQLUSMALLINT what, SQLPOINTER value,
                                    SQLSMALLINT bytes, SQLSMALLINT* length) {
  static const struct {
    SQLUSMALLINT what;
    const char* text;
  } TEXTS[] = {{SQL_DBMS_NAME, "Stub"},          {SQL_DBMS_VER, "01.00.0000"},
               {SQL_DRIVER_NAME, "stub_driver"}, {SQL_DRIVER_ODBC_VER, "03.00"},
               {SQL_DRIVER_VER, "01.00.0000"},   {SQL_IDENTIFIER_QUOTE_CHAR, "\""},
               {SQL_DATABASE_NAME, "stub"},      {SQL_DESCRIBE_PARAMETER, "Y"},
               {SQL_NEED_LONG_DATA_LEN, "N"},    {SQL_CATALOG_NAME, "N"}};
  (void)dbc;
  for (size_t i = 0; i < sizeof TEXTS / sizeof *TEXTS; ++i) {
    if (TEXTS[i].what != what) continue;
    const size_t size = strlen(TEXTS[i].text);
    if (length != NULL) *length = (SQLSMALLINT)size;
    if (value != NULL && bytes > (SQLSMALLINT)size) memcpy(value, TEXTS[i].text, size + 1);
    return SQL_SUCCESS;
  }
  if (value != NULL && what == SQL_GETDATA_EXTENSIONS) {
    *(SQLUINTEGER*)value = SQL_GD_ANY_COLUMN | SQL_GD_ANY_ORDER;
  } else if (value != NULL) {
    memset(value, 0, 2);
    if (what == SQL_TXN_CAPABLE) *(SQLUSMALLINT*)value = SQL_TC_ALL;
  }
  if (length != NULL) *length = 2;
  return SQL_SUCCESS;
}

EXPORT SQLRETURN SQL_API SQLSetStmtAttr(SQLHSTMT stmt, SQLINTEGER attribute, SQLPOINTER value,
                                        SQLINTEGER length) {
  Statement* s = stmt;
  (void)length;
  if (attribute == SQL_ATTR_PARAMSET_SIZE) s->batchRows = (SQLULEN)value;
  if (attribute == SQL_ATTR_PARAM_STATUS_PTR) s->batchStatus = value;
  if (attribute == SQL_ATTR_PARAMS_PROCESSED_PTR) s->batchProcessed = value;
  return SQL_SUCCESS;
}

EXPORT SQLRETURN SQL_API SQLGetStmtAttr(SQLHSTMT stmt, SQLINTEGER attribute, SQLPOINTER value,
                                        SQLINTEGER bytes, SQLINTEGER* length) {
  static char descriptors[4];
  (void)stmt, (void)bytes, (void)length;
  if (attribute >= SQL_ATTR_APP_ROW_DESC && attribute <= SQL_ATTR_IMP_PARAM_DESC) {
    *(SQLPOINTER*)value = &descriptors[attribute - SQL_ATTR_APP_ROW_DESC];
  } else {
    *(SQLULEN*)value = 0;
  }
  return SQL_SUCCESS;
}

EXPORT SQLRETURN SQL_API SQLPrepare(SQLHSTMT stmt, SQLCHAR* sql, SQLINTEGER length) {
  (void)length;
  parse(stmt, (const char*)sql);
  return SQL_SUCCESS;
}

EXPORT SQLRETURN SQL_API SQLExecute(SQLHSTMT stmt) {
  Statement* s = stmt;
  s->row = 0;
  if (s->parameters > 0 && s->batchStatus != NULL)
    memset(s->batchStatus, SQL_PARAM_SUCCESS, s->batchRows * sizeof *s->batchStatus);
  if (s->parameters > 0 && s->batchProcessed != NULL) *s->batchProcessed = s->batchRows;
  return SQL_SUCCESS;
}

EXPORT SQLRETURN SQL_API SQLExecDirect(SQLHSTMT stmt, SQLCHAR* sql, SQLINTEGER length) {
  SQLPrepare(stmt, sql, length);
  return SQLExecute(stmt);
}

EXPORT SQLRETURN SQL_API SQLNumParams(SQLHSTMT stmt, SQLSMALLINT* count) {
  *count = ((Statement*)stmt)->parameters;
  return SQL_SUCCESS;
}

EXPORT SQLRETURN SQL_API SQLNumResultCols(SQLHSTMT stmt, SQLSMALLINT* count) {
  *count = ((Statement*)stmt)->columns;
  return SQL_SUCCESS;
}

EXPORT SQLRETURN SQL_API SQLDescribeParam(SQLHSTMT stmt, SQLUSMALLINT number, SQLSMALLINT* type,
                                          SQLULEN* size, SQLSMALLINT* digits,
                                          SQLSMALLINT* nullable) {
  const Kind* kind = ((Statement*)stmt)->column[number - 1].kind;
  if (type != NULL) *type = kind->sqlType;
  if (size != NULL) *size = kind->size;
  if (digits != NULL) *digits = kind->digits;
  if (nullable != NULL) *nullable = SQL_NULLABLE;
  return SQL_SUCCESS;
}

EXPORT SQLRETURN SQL_API SQLBindParameter(SQLHSTMT stmt, SQLUSMALLINT number, SQLSMALLINT direction,
                                          SQLSMALLINT cType, SQLSMALLINT sqlType, SQLULEN size,
                                          SQLSMALLINT digits, SQLPOINTER data, SQLLEN bytes,
                                          SQLLEN* indicators) {
  (void)stmt, (void)number, (void)direction, (void)cType, (void)sqlType, (void)size, (void)digits;
  (void)data, (void)bytes, (void)indicators;
  return SQL_SUCCESS;
}

EXPORT SQLRETURN SQL_API SQLDescribeCol(SQLHSTMT stmt, SQLUSMALLINT number, SQLCHAR* name,
                                        SQLSMALLINT bytes, SQLSMALLINT* length, SQLSMALLINT* type,
                                        SQLULEN* size, SQLSMALLINT* digits, SQLSMALLINT* nullable) {
  const Kind* kind = ((Statement*)stmt)->column[number - 1].kind;
  if (name != NULL && bytes > 0) strncpy((char*)name, kind->name, (size_t)bytes);
  if (length != NULL) *length = (SQLSMALLINT)strlen(kind->name);
  if (type != NULL) *type = kind->sqlType;
  if (size != NULL) *size = kind->size;
  if (digits != NULL) *digits = kind->digits;
  if (nullable != NULL) *nullable = SQL_NULLABLE;
  return SQL_SUCCESS;
}

EXPORT SQLRETURN SQL_API SQLColAttribute(SQLHSTMT stmt, SQLUSMALLINT number, SQLUSMALLINT field,
                                         SQLPOINTER text, SQLSMALLINT bytes, SQLSMALLINT* length,
                                         SQLLEN* value) {
  const Kind* kind = ((Statement*)stmt)->column[number - 1].kind;
  if (value != NULL) *value = 0;
  switch (field) {
    case SQL_DESC_NAME:
    case SQL_DESC_LABEL:
    case SQL_COLUMN_NAME:
      if (text != NULL && bytes > 0) strncpy(text, kind->name, (size_t)bytes);
      if (length != NULL) *length = (SQLSMALLINT)strlen(kind->name);
      break;
    case SQL_DESC_CONCISE_TYPE:
    case SQL_DESC_TYPE:
      *value = kind->sqlType;
      break;
    case SQL_DESC_DISPLAY_SIZE:
      *value = kind->displaySize;
      break;
    case SQL_DESC_LENGTH:
    case SQL_DESC_OCTET_LENGTH:
    case SQL_COLUMN_LENGTH:
    case SQL_DESC_PRECISION:
    case SQL_COLUMN_PRECISION:
      *value = (SQLLEN)kind->size;
      break;
    case SQL_DESC_SCALE:
    case SQL_COLUMN_SCALE:
      *value = kind->digits;
      break;
  }
  return SQL_SUCCESS;
}

EXPORT SQLRETURN SQL_API SQLFetch(SQLHSTMT stmt) {
  Statement* s = stmt;
  if (s->row == s->rows) return SQL_NO_DATA;
  ++s->row;
  for (SQLSMALLINT i = 0; i < s->columns; ++i) s->column[i].given = 0;
  return SQL_SUCCESS;
}

/* The next piece of a text; the length told is that of what remained before it. */
static SQLRETURN getText(Column* column, char* out, SQLLEN bytes, SQLLEN* indicator) {
  const char kind = column->kind->kind;
  if (column->given < 0) return SQL_NO_DATA;
  const SQLLEN left = column->length - column->given;
  const int fits = left < bytes;
  const SQLLEN piece = fits ? left : bytes - 1;
  if (kind == 'x' || kind == 'X') {
    memset(out, 'x', (size_t)piece);
  } else {
    memcpy(out, column->kind->text + column->given, (size_t)piece);
  }
  out[piece] = '\0';
  if (indicator != NULL) *indicator = fits || kind != 'X' ? left : SQL_NO_TOTAL;
  column->given = fits ? -1 : column->given + piece;
  return fits ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO;
}

static SQLRETURN getNumber(void* out, const void* number, SQLLEN bytes, SQLLEN* indicator) {
  memcpy(out, number, (size_t)bytes);
  if (indicator != NULL) *indicator = bytes;
  return SQL_SUCCESS;
}

EXPORT SQLRETURN SQL_API SQLGetData(SQLHSTMT stmt, SQLUSMALLINT number, SQLSMALLINT cType,
                                    SQLPOINTER data, SQLLEN bytes, SQLLEN* indicator) {
  static const SQLINTEGER INTEGER = 1234567;
  static const long BIG = 1234567890123L;
  static const double REAL = 1234.5;
  static const unsigned char FLAG = 1;
  static const TIMESTAMP_STRUCT MOMENT = {2023, 11, 14, 22, 13, 20, 123456000};
  switch (cType) {
    case SQL_C_LONG:
    case SQL_C_SLONG:
    case SQL_C_ULONG:
      return getNumber(data, &INTEGER, sizeof INTEGER, indicator);
    case SQL_C_SBIGINT:
      return getNumber(data, &BIG, sizeof BIG, indicator);
    case SQL_C_DOUBLE:
      return getNumber(data, &REAL, sizeof REAL, indicator);
    case SQL_C_BIT:
    case SQL_C_TINYINT:
      return getNumber(data, &FLAG, sizeof FLAG, indicator);
    case SQL_C_TIMESTAMP:
    case SQL_C_TYPE_TIMESTAMP:
      return getNumber(data, &MOMENT, sizeof MOMENT, indicator);
    default:
      return getText(&((Statement*)stmt)->column[number - 1], data, bytes, indicator);
  }
}

EXPORT SQLRETURN SQL_API SQLMoreResults(SQLHSTMT stmt) {
  (void)stmt;
  return SQL_NO_DATA;
}

EXPORT SQLRETURN SQL_API SQLRowCount(SQLHSTMT stmt, SQLLEN* count) {
  Statement* s = stmt;
  *count = s->parameters > 0 ? (SQLLEN)s->batchRows : -1;
  return SQL_SUCCESS;
}

EXPORT SQLRETURN SQL_API SQLFreeStmt(SQLHSTMT stmt, SQLUSMALLINT what) {
  (void)stmt, (void)what;
  return SQL_SUCCESS;
}

EXPORT SQLRETURN SQL_API SQLCloseCursor(SQLHSTMT stmt) {
  (void)stmt;
  return SQL_SUCCESS;
}

EXPORT SQLRETURN SQL_API SQLGetDiagRec(SQLSMALLINT type, SQLHANDLE handle, SQLSMALLINT record,
                                       SQLCHAR* state, SQLINTEGER* native, SQLCHAR* text,
                                       SQLSMALLINT bytes, SQLSMALLINT* length) {
  (void)type, (void)handle, (void)record, (void)state, (void)native, (void)text, (void)bytes;
  (void)length;
  return SQL_NO_DATA;
}

EXPORT SQLRETURN SQL_API SQLGetDiagField(SQLSMALLINT type, SQLHANDLE handle, SQLSMALLINT record,
                                         SQLSMALLINT field, SQLPOINTER value, SQLSMALLINT bytes,
                                         SQLSMALLINT* length) {
  (void)type, (void)handle, (void)record, (void)field, (void)value, (void)bytes, (void)length;
  return SQL_NO_DATA;
}
