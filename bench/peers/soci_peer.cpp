// soci_peer DSN USER PASSWORD: rows into local variables.

#include <soci/odbc/soci-odbc.h>
#include <soci/soci.h>

#include <ctime>

#include "peer.h"

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  soci::session session(soci::odbc,
                        "DSN=" + std::string(argv[1]) + ";UID=" + argv[2] + ";PWD=" + argv[3]);
  return answerReads([&](const std::string& sql) {
    int number = 0;
    long long big = 0;
    double real = 0;
    std::string text;
    std::tm moment{};
    std::string amount;
    int flag = 0;
    soci::statement statement =
        (session.prepare << sql, soci::into(number), soci::into(big), soci::into(real),
         soci::into(text), soci::into(moment), soci::into(amount), soci::into(flag));
    statement.execute();
    int rows = 0;
    while (statement.fetch()) ++rows;
    return rows;
  });
}
