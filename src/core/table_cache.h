// The caches behind the table lock: tables by key in a growing array, found again without the lock by their size.
#pragma once

#include <atomic>
#include <cstdlib>
#include <optional>

#include "core/locks.h"
#include "core/vector.h"

namespace sigvex {

// A growing array of plain entries. A growth that fails loses the array but not the count; what follows treats the
// array as empty, so that no entry is read which is not there.
template <class Entry> struct EntryArray {
  Entry* entries;
  int32_t count;

  Entry* begin() const { return entries; }
  Entry* end() const { return entries + size(); }
  int32_t size() const { return entries ? count : 0; }

  // Room for one entry behind the last, or null; publish() counts it in.
  Entry* grow() {
    const size_t bytes = (static_cast<size_t>(size()) + 1) * sizeof(Entry);
    if (!entries) count = 0;
    Entry* const larger = static_cast<Entry*>(entries ? std::realloc(entries, bytes) : std::malloc(bytes));
    if (!larger) std::free(entries);
    entries = larger;
    return larger ? larger + count : nullptr;
  }
  void publish() { ++count; }
  void clear() {
    std::free(entries);
    entries = nullptr;
    count = 0;
  }
};

// What a cached table begins with. It lives in one block from malloc, what it holds behind it or in further blocks.
struct TableHead {
  TableHead* next;  // every table stays on its cache's list until the release, also when the array has lost it

  void release_parts() {}  // a table with further blocks hides this one with its own
};

// Tables are built under the table lock and shared read-only.
template <class Table> class TableCache {
 public:
  // The table of a slot (the logarithm of its length) if it may be used without the lock.
  const Table* published(int slot) const { return slots_[slot].load(); }

  // Under the table lock: the table of a key; built and added when absent; null when memory is exhausted.
  template <class Build> const Table* find_or_build(int32_t key, int slot, Build build) {
    for (const Entry& entry : array_) {
      if (entry.key == key) return entry.table;
    }
    Entry* const entry = array_.grow();
    Table* const table = entry ? build() : nullptr;
    if (!table) return nullptr;
    table->next = all_;
    all_ = table;
    *entry = {table, key};
    array_.publish();
    slots_[slot].store(table);
    return table;
  }

  // Nobody finds a table any more once its slot is empty, and who found one before is counted.
  void release() {
    const TableLock lock;
    for (auto& slot : slots_) slot.store(nullptr);
    InUse::wait_for_none();
    while (all_) {
      Table* const table = all_;
      all_ = static_cast<Table*>(table->next);
      table->release_parts();
      std::free(table);
    }
    array_.clear();
  }

 private:
  struct Entry {
    const Table* table;
    int32_t key;
  };
  EntryArray<Entry> array_{};
  Table* all_ = nullptr;
  std::atomic<const Table*> slots_[32] = {};
};

// A table in use: counted from before it is found until the end of the scope.
template <class Table> class Lease {
 public:
  template <class Build> Lease(TableCache<Table>& cache, int32_t key, int slot, Build build) : in_use_(std::in_place) {
    if ((table_ = cache.published(slot))) return;
    in_use_.reset();  // never wait for the lock while counted
    const TableLock lock;
    table_ = cache.find_or_build(key, slot, build);
    in_use_.emplace();
  }
  explicit operator bool() const { return table_ != nullptr; }
  const Table& operator*() const { return *table_; }
  const Table* operator->() const { return table_; }

 private:
  std::optional<InUse> in_use_;
  const Table* table_;
};

}  // namespace sigvex
