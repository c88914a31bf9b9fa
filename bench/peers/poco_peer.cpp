// poco_peer DSN USER PASSWORD: a row at a time into local variables.

#include <Poco/Data/DataException.h>
#include <Poco/Data/ODBC/Connector.h>
#include <Poco/Data/Session.h>
#include <Poco/Data/Statement.h>
#include <Poco/DateTime.h>

#include "peer.h"

int main(int argc, char** argv) {
  using namespace Poco::Data::Keywords;
  if (argc != 4) return 2;
  Poco::Data::ODBC::Connector::registerConnector();
  return answerReads([&](const std::string& sql) {
    static Poco::Data::Session session(
        "ODBC", "DSN=" + std::string(argv[1]) + ";UID=" + argv[2] + ";PWD=" + argv[3]);
    int number = 0;
    Poco::Int64 big = 0;
    double real = 0;
    std::string text;
    Poco::DateTime moment;
    std::string amount;
    bool flag = false;
    Poco::Data::Statement statement(session);
    statement << sql, into(number), into(big), into(real), into(text), into(moment), into(amount),
        into(flag), range(0, 1);
    int rows = 0;
    while (!statement.done()) rows += static_cast<int>(statement.execute());
    return rows;
  });
}
