// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <future>
#include <iterator>
#include <span>

namespace topology {

/// The results of `read(half)` for both halves of `items`, in the order of the items. `read`
/// returns a vector, and is called on two threads at once: the kernel takes most of the time of
/// reading its files, and serves two threads. Where the system lets this process start no thread,
/// one half is read after the other. Throws what `read` throws.
template <class Item, class Read>
auto ReadInHalves(std::span<const Item> items, const Read& read) {
  const std::size_t half = items.size() / 2;
  auto others = std::async(std::launch::async | std::launch::deferred,
                           [&read, last = items.subspan(half)] { return read(last); });
  auto results = read(items.first(half));
  auto last = others.get();
  results.insert(results.end(), std::make_move_iterator(last.begin()),
                 std::make_move_iterator(last.end()));
  return results;
}

}  // namespace topology
