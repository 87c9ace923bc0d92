// SPDX-License-Identifier: Apache-2.0
#include "host/fleet/since.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <charconv>
#include <ctime>
#include <optional>
#include <string_view>

#include "host/base/errors.h"

namespace pciinfo {
namespace {

using std::chrono::sys_seconds;

std::string TimeText(sys_seconds time) {
  return fmt::format("{:%Y-%m-%d %H:%M:%S}",
                     fmt::gmtime(std::chrono::system_clock::to_time_t(time)));
}

std::optional<std::chrono::seconds> UnitOf(char letter) {
  switch (letter) {
    case 'm':
      return std::chrono::minutes(1);
    case 'h':
      return std::chrono::hours(1);
    case 'd':
      return std::chrono::days(1);
    case 'w':
      return std::chrono::weeks(1);
    default:
      return std::nullopt;
  }
}

/// "7d". Longer than a hundred years is a mistake.
std::optional<std::chrono::seconds> DurationOf(const std::string& text) {
  unsigned count = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
  if (error != std::errc() || end + 1 != text.data() + text.size()) return std::nullopt;
  const auto unit = UnitOf(text.back());
  constexpr std::chrono::seconds kMost = std::chrono::days(36525);
  if (!unit || count > kMost / *unit) return std::nullopt;
  return count * *unit;
}

/// "2024-05-06", "2024-05-06T07:08:09Z" or "2024-05-06 07:08:09".
std::optional<sys_seconds> DateOf(std::string_view text) {
  if (text.ends_with('Z')) text.remove_suffix(1);
  std::string whole = std::string(text) + (text.size() == 10 ? " 00:00:00" : "");
  if (whole.size() > 10 && whole[10] == 'T') whole[10] = ' ';
  std::tm date{};
  const char* const end = strptime(whole.c_str(), "%Y-%m-%d %H:%M:%S", &date);
  if (end == nullptr || *end != '\0') return std::nullopt;
  const sys_seconds time(std::chrono::seconds(timegm(&date)));
  // Fewer digits, and a day that the month does not have, do not come back.
  if (TimeText(time) != whole) return std::nullopt;
  return time;
}

}  // namespace

std::string SinceTime(const std::string& text, sys_seconds now) {
  if (const auto duration = DurationOf(text)) return TimeText(now - *duration);
  if (const auto date = DateOf(text)) return TimeText(*date);
  throw UsageError(fmt::format(
      "--since: \"{}\" is no time: use a duration such as 12h, 7d or 2w, a date such as "
      "2024-05-06, or a time in UTC such as 2024-05-06T07:08:09Z",
      text));
}

}  // namespace pciinfo
