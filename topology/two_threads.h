// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <future>
#include <iterator>
#include <span>
#include <utility>

namespace topology {

// The kernel takes most of the time of reading its files, and serves two threads at once.

/// Begins `work` on a thread of its own. Where the system lets this process start none, `get` of
/// the result does it. An exception of `work` comes out of `get`.
template <class Work>
auto OnThread(Work work) {
  return std::async(std::launch::async | std::launch::deferred, std::move(work));
}

/// The results of `read(part)` for both halves of `items`, in the order of the items. `read`
/// returns a vector, and is called on two threads at once.
template <class Item, class Read>
auto ReadInHalves(std::span<const Item> items, const Read& read) {
  const std::size_t half = items.size() / 2;
  auto others = OnThread([&read, last = items.subspan(half)] { return read(last); });
  auto results = read(items.first(half));
  auto last = others.get();
  results.insert(results.end(), std::make_move_iterator(last.begin()),
                 std::make_move_iterator(last.end()));
  return results;
}

}  // namespace topology
