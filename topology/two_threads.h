// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <iterator>
#include <span>
#include <vector>

#include "topology/second_thread.h"

namespace topology {

/// The results of `read(part)` for all parts of `items`, in the order of the items. `read` returns
/// a vector, and is called on two threads at once: the kernel takes most of the time of reading its
/// files, and serves two threads. The calling thread calls `meanwhile` first, and then reads the
/// parts that the other thread has not begun. Where the system lets this process start no thread,
/// the calling thread reads all parts. Throws what `read` and `meanwhile` throw.
template <class Item, class Read, class Meanwhile>
auto ReadOnTwoThreads(std::span<const Item> items, const Read& read, const Meanwhile& meanwhile) {
  // So few that both threads end at about the same time.
  constexpr std::size_t kItemsOfPart = 8;
  std::vector<decltype(read(items))> parts((items.size() + kItemsOfPart - 1) / kItemsOfPart);
  std::atomic<std::size_t> next = 0;
  const auto readParts = [&] {
    for (std::size_t i = next++; i < parts.size(); i = next++) {
      const auto left = items.subspan(i * kItemsOfPart);
      parts[i] = read(left.first(std::min(left.size(), kItemsOfPart)));
    }
  };
  SecondThread second(readParts);
  meanwhile();
  readParts();
  second.Finish();

  decltype(read(items)) results;
  results.reserve(items.size());
  for (auto& part : parts) {
    results.insert(results.end(), std::make_move_iterator(part.begin()),
                   std::make_move_iterator(part.end()));
  }
  return results;
}

template <class Item, class Read>
auto ReadOnTwoThreads(std::span<const Item> items, const Read& read) {
  return ReadOnTwoThreads(items, read, [] {});
}

}  // namespace topology
