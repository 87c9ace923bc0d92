// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <locale>
#include <string>

/// During its lifetime, the global locale groups the digits of numbers by three, with `separator`
/// between the groups: 65535 is "65,535".
class GroupingLocale final {
 public:
  explicit GroupingLocale(char separator)
      : before_(std::locale::global(std::locale(std::locale::classic(), new Grouping(separator)))) {
  }
  GroupingLocale(const GroupingLocale&) = delete;
  GroupingLocale& operator=(const GroupingLocale&) = delete;
  ~GroupingLocale() { std::locale::global(before_); }

 private:
  class Grouping final : public std::numpunct<char> {
   public:
    explicit Grouping(char separator) : separator_(separator) {}

   protected:
    char do_thousands_sep() const override { return separator_; }
    std::string do_grouping() const override { return "\3"; }

   private:
    char separator_;
  };

  std::locale before_;
};
