// SPDX-License-Identifier: Apache-2.0
#include "host/store/times.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <ctime>
#include <iomanip>
#include <sstream>

#include "host/store/machine_store.h"

namespace pciinfo {
namespace {

using std::chrono::sys_seconds;

std::string TextOf(sys_seconds time) {
  return fmt::format("{:%Y-%m-%d %H:%M:%S}", fmt::gmtime(time.time_since_epoch().count()));
}

/// Reads digits, in the form that TextOf writes; other texts answer a time that it writes
/// otherwise.
sys_seconds Parse(const std::string& text) {
  std::tm time{};
  std::istringstream(text) >> std::get_time(&time, "%Y-%m-%d %H:%M:%S");
  return sys_seconds(std::chrono::seconds(timegm(&time)));
}

}  // namespace

std::string TimeOfRecord(const std::string& collected, sys_seconds now) {
  if (collected.empty()) return TextOf(now);
  std::string text = collected;
  if (text.size() == 20 && text[10] == 'T' && text[19] == 'Z') {
    text[10] = ' ';
    text.pop_back();
  }
  const sys_seconds time = Parse(text);
  if (TextOf(time) != text) {
    throw BadRecord(
        fmt::format("its time \"{}\" is not of the form 2024-05-06T07:08:09Z", collected));
  }
  if (time > now + std::chrono::hours(24)) {
    throw BadRecord(
        fmt::format("it was collected in the future, at {}: check the clock", collected));
  }
  return text;
}

std::string TimeOfDatabase(const std::string& time) { return time.substr(0, 19); }

}  // namespace pciinfo
