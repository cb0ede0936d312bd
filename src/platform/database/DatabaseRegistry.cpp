#include "platform/database/DatabaseRegistry.h"

#include <atomic>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

namespace excelexp {
namespace {

std::atomic<std::uint64_t> generation = 0;

struct Connections {
  std::mutex mutex;
  std::map<std::string, std::shared_ptr<Database>, std::less<>> by_name;
};

Connections& All() {
  static Connections connections;
  return connections;
}

}  // namespace

void DatabaseRegistry::Register(std::string name, std::shared_ptr<Database> database) {
  ++generation;
  {
    const std::lock_guard lock(All().mutex);
    All().by_name[std::move(name)].swap(database);
  }
  // What was replaced closes here, outside the lock.
}

void DatabaseRegistry::Remove(std::string_view name) {
  ++generation;
  std::shared_ptr<Database> removed;
  const std::lock_guard lock(All().mutex);
  if (const auto found = All().by_name.find(name); found != All().by_name.end()) {
    removed = std::move(found->second);
    All().by_name.erase(found);
  }
}

std::shared_ptr<Database> DatabaseRegistry::Find(std::string_view name) {
  const std::lock_guard lock(All().mutex);
  const auto found = All().by_name.find(name);
  return found == All().by_name.end() ? nullptr : found->second;
}

std::uint64_t DatabaseRegistry::Generation() {
  return generation;
}

void DatabaseRegistry::NoteWrite() {
  ++generation;
  std::vector<std::shared_ptr<Database>> databases;
  {
    const std::lock_guard lock(All().mutex);
    for (const auto& [name, database] : All().by_name) databases.push_back(database);
  }
  for (const std::shared_ptr<Database>& database : databases) database->NoteWrite();
}

}  // namespace excelexp
