// qt_peer DSN USER PASSWORD: rows forward only, each value as a variant.

#include <QCoreApplication>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include "peer.h"

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  const QCoreApplication application(argc, argv);
  QSqlDatabase database = QSqlDatabase::addDatabase("QODBC");
  database.setDatabaseName(argv[1]);
  database.setUserName(argv[2]);
  database.setPassword(argv[3]);
  return answerReads([&](const std::string& sql) {
    if (!database.isOpen() && !database.open()) {
      throw std::runtime_error(database.lastError().text().toStdString());
    }
    QSqlQuery query(database);
    query.setForwardOnly(true);
    if (!query.exec(QString::fromStdString(sql))) {
      throw std::runtime_error(query.lastError().text().toStdString());
    }
    int rows = 0;
    for (; query.next(); ++rows) {
      for (int column = 0; column < 7; ++column) static_cast<void>(query.value(column));
    }
    return rows;
  });
}
