#pragma once

namespace excelexp {

class SqliteConnection;

/// Adds the functions of the dialect that SQLite lacks to a connection:
///   NOW()          the moment of the statement as 'yyyy-mm-dd hh:mm:ss'
///   MONTHS(a, b)   whole months from date a to date b, times of day ignored: the greatest n for which b is
///   not
///                  before the day n months after a (the last of that month when a's day is missing there);
///                  negative when b is before a; NULL when either is NULL or ''
void RegisterDialectFunctions(SqliteConnection& connection);

}  // namespace excelexp
