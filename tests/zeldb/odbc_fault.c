/* Preloaded before the driver manager: makes one ODBC call fail. ODBC_FAULT is "FUNCTION N STATE":
   the N-th call of the function (from 1) is made, answers SQL_ERROR and leaves this SQLSTATE; with
   N negative it is not made. */

#include <dlfcn.h>
#include <sql.h>
#include <sqlext.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static char pendingState[6];

/* The driver manager comes with a plug-in that keeps its libraries to itself: it is not the next
   in the process's own list. */
static void* realFunction(const char* name) {
  return dlsym(dlopen("libodbc.so.2", RTLD_LAZY), name);
}

/* Whether this call is the one that fails; `made` tells whether it is to be made all the same. */
static int isFault(const char* function, int* calls, int* made) {
  char name[32] = "";
  char state[6] = "";
  int number = 0;
  const char* text = getenv("ODBC_FAULT");
  pendingState[0] = '\0';
  *made = 1;
  if (text == NULL || sscanf(text, "%31s %d %5s", name, &number, state) != 3 ||
      strcmp(name, function) != 0 || ++*calls != abs(number)) {
    return 0;
  }
  memcpy(pendingState, state, sizeof state);
  *made = number > 0;
  return 1;
}

#define INTERPOSE(NAME, DECLARATION, ARGUMENTS)      \
  SQLRETURN NAME DECLARATION {                       \
    static SQLRETURN(*real) DECLARATION;             \
    static int calls;                                \
    int made;                                        \
    const int fault = isFault(#NAME, &calls, &made); \
    SQLRETURN result = SQL_ERROR;                    \
    if (real == NULL) {                              \
      *(void**)&real = realFunction(#NAME);          \
    }                                                \
    if (made) {                                      \
      result = real ARGUMENTS;                       \
    }                                                \
    return (SQLRETURN)(fault ? SQL_ERROR : result);  \
  }

INTERPOSE(SQLConnect,
          (SQLHDBC connection, UCHAR source[], SQLSMALLINT sourceLength, UCHAR user[],
           SQLSMALLINT userLength, UCHAR password[], SQLSMALLINT passwordLength),
          (connection, source, sourceLength, user, userLength, password, passwordLength))
INTERPOSE(SQLEndTran, (SQLSMALLINT type, SQLHANDLE handle, SQLSMALLINT how), (type, handle, how))
INTERPOSE(SQLExecute, (SQLHSTMT statement), (statement))
INTERPOSE(SQLFetch, (SQLHSTMT statement), (statement))

SQLRETURN SQLGetDiagRec(SQLSMALLINT type, SQLHANDLE handle, SQLSMALLINT record, SQLCHAR* state,
                        SQLINTEGER* native, SQLCHAR* text, SQLSMALLINT size, SQLSMALLINT* length) {
  static SQLRETURN (*real)(SQLSMALLINT, SQLHANDLE, SQLSMALLINT, SQLCHAR*, SQLINTEGER*, SQLCHAR*,
                           SQLSMALLINT, SQLSMALLINT*);
  if (real == NULL) {
    *(void**)&real = realFunction("SQLGetDiagRec");
  }
  if (pendingState[0] == '\0') {
    return real(type, handle, record, state, native, text, size, length);
  }
  if (record > 1) {
    return SQL_NO_DATA;
  }
  memcpy(state, pendingState, sizeof pendingState);
  *native = 7;
  *length = (SQLSMALLINT)snprintf((char*)text, (size_t)size, "injected");
  return SQL_SUCCESS;
}
