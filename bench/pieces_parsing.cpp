// SPDX-License-Identifier: Apache-2.0

// The texts that the plug-in reads: the kernel's list, the listing of lspci, raw listings.

#include <benchmark/benchmark.h>

#include "pci/address.h"
#include "pci/device_line.h"
#include "pci/lines.h"
#include "pci/listing_index.h"

namespace {

constexpr std::string_view kLine =
    "0300\t80861572\t10\t        a000000c\t               0\t               0\t        a100000c\t"
    "               0\t               0\t               0\t         1000000\t               0\t"
    "               0\t            8000\t               0\t               0\t           "
    "80000\ti40e";

PciAddress AddressOf(std::size_t place) {
  return {static_cast<std::uint8_t>(place / 256), static_cast<std::uint8_t>(place / 8 % 32),
          static_cast<std::uint8_t>(place % 8)};
}

std::string Listing(std::size_t lines) {
  std::string listing;
  for (std::size_t i = 0; i < lines; ++i) {
    listing += AddressOf(i).ListingKey() +
               " Ethernet controller: Intel Corporation Ethernet Controller X710 (rev 02)\n";
  }
  return listing;
}

void ParseLine(benchmark::State& state) {
  sPciDevices record;
  for (auto _ : state) benchmark::DoNotOptimize(ParseDeviceLine(kLine, &record));
}
BENCHMARK(ParseLine);

void IndexListing(benchmark::State& state) {
  const std::string listing = Listing(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(ListingIndex(listing).IsEmpty());
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(IndexListing)->Arg(64)->Arg(4096);

void FindInListing(benchmark::State& state) {
  const auto lines = static_cast<std::size_t>(state.range(0));
  const ListingIndex index(Listing(lines));
  const std::string key = AddressOf(lines / 2).ListingKey();
  for (auto _ : state) benchmark::DoNotOptimize(index.Find(key));
}
BENCHMARK(FindInListing)->Arg(64)->Arg(4096)->Arg(16384);

void SplitRawListing(benchmark::State& state) {
  std::string text;
  for (int i = 0; i < 4096; ++i) text += "40: 01 50 c3 c1 08 00 00 00 00 00 00 00 00 00 00 00\n";
  for (auto _ : state) benchmark::DoNotOptimize(SplitLines(text));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(SplitRawListing);

}  // namespace
