#pragma once

#include <cstddef>
#include <optional>

namespace tarn {

// The position of a record's GetFirst…/GetNext… walk. Every walk in the
// library follows the same rules:
// - First starts over; Next hands out the entry after the one handed out last.
// - At the end the walk stays there: Next keeps giving "nothing" (false or
//   null) and leaves the caller's out-values untouched, until First starts
//   over. A walk that was never started is at its end.
// - The cursor remembers the key handed out last, never an iterator, so
//   inserting or erasing entries between the calls cannot leave it dangling:
//   the walk goes on with the next key still present.
// - A copy of a record copies its walk: the copy goes on from the same key,
//   on its own entries, and the two walks never affect each other.
// Walks are mutable state of the record, so two walks of one record at once,
// or a walk from two threads, are not supported.
template <class Key>
class Cursor {
 public:
  Cursor() = default;

  // The walk takes no part in a record's equality.
  friend bool operator==(const Cursor& /*a*/, const Cursor& /*b*/) { return true; }

  // Puts the walk at its end; the next Next gives nothing.
  void Stop() noexcept {
    walking_ = false;
    last_.reset();
  }

  // Over an ordered map (anything with begin, end, upper_bound): the first
  // entry, or end() when the map is empty.
  template <class Map>
  auto First(Map& map) {
    walking_ = true;
    last_.reset();
    return Next(map);
  }
  // The entry after the one handed out last, or end() at the end.
  template <class Map>
  auto Next(Map& map) {
    if (!walking_) {
      return map.end();
    }
    auto it = last_ ? map.upper_bound(*last_) : map.begin();
    if (it == map.end()) {
      Stop();
      return it;
    }
    last_ = it->first;
    return it;
  }

  // Over a sequence of count entries (Key is an index type): the index of the
  // first entry, or nothing when the sequence is empty.
  std::optional<Key> FirstIndex(std::size_t count) {
    walking_ = true;
    last_.reset();
    return NextIndex(count);
  }
  // The index after the one handed out last, or nothing at the end.
  std::optional<Key> NextIndex(std::size_t count) {
    if (!walking_) {
      return std::nullopt;
    }
    const Key next = last_ ? static_cast<Key>(*last_ + 1) : Key{};
    if (static_cast<std::size_t>(next) >= count) {
      Stop();
      return std::nullopt;
    }
    last_ = next;
    return next;
  }

 private:
  std::optional<Key> last_;
  bool walking_ = false;
};

}  // namespace tarn
