#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace excelexp {

class SqliteConnection;

/// What the guard saw while a statement was compiled.
struct StatementTraits {
  bool is_volatile = false;      ///< calls a function whose answer changes while the data stays the same
  bool is_unrepeatable = false;  ///< and whose answer does not follow from the moment of the statement
  bool calls_stored = false;     ///< calls a function of the database, whatever that asks for
  bool reads_catalogue = false;  ///< reads SysTable or SysColumn
};

/// Makes a connection one on which no text can do more than read: SELECT only, tables and harmless functions
/// only, no further files, no settings, bounded lengths.
class SqliteGuard {
 public:
  /// Lives as long as the connection.
  explicit SqliteGuard(const SqliteConnection& connection);
  SqliteGuard(const SqliteGuard&) = delete;
  SqliteGuard& operator=(const SqliteGuard&) = delete;

  /// While one lives, statements of our own compile (BEGIN, PRAGMA data_version, the catalogue).
  class Pass {
   public:
    explicit Pass(SqliteGuard& guard) : guard_(guard) { ++guard_.passes_; }
    ~Pass() { --guard_.passes_; }
    Pass(const Pass&) = delete;
    Pass& operator=(const Pass&) = delete;

   private:
    SqliteGuard& guard_;
  };

  /// Starts a new account of what is compiled.
  void Begin() {
    traits_ = {};
    calls_date_ = false;
  }
  /// What was seen since Begin in the statement `sql`.
  StatementTraits Traits(std::string_view sql) const;

  /// True for a function that the library brings with it.
  bool IsBuiltIn(const std::string& folded_name) const { return functions_.contains(folded_name); }
  void Allow(const std::string& folded_name) { allowed_.insert(folded_name); }
  void Forbid(const std::string& folded_name) { allowed_.erase(folded_name); }

 private:
  static int Authorize(void* self, int action, const char* first, const char* second, const char* database,
                       const char* view);
  bool MayCall(const char* name, bool in_view);
  bool MayRead(const char* table);
  void ReadFunctions(const SqliteConnection& connection);

  int passes_ = 0;
  StatementTraits traits_;
  bool calls_date_ = false;
  std::set<std::string, std::less<>> functions_;
  std::set<std::string, std::less<>> allowed_;
};

}  // namespace excelexp
