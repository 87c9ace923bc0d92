// SPDX-License-Identifier: Apache-2.0
#include "tests/faults/answers.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string_view>

namespace {

using nlohmann::json;

// Removes the quoted value after each `key`. In references in paths, quotes are escaped.
std::string Without(std::string_view key, std::string path) {
  for (std::size_t begin; (begin = path.find(key)) != std::string::npos;) {
    const std::size_t open = path.find('"', begin);
    path.erase(begin, path.find('"', open + 1) + 1 - begin);
  }
  return path;
}

std::string WithoutSystemKeys(const std::string& path) {
  return Without("SystemName=", Without("SystemCreationClassName=", path));
}

// Returns an instance's text without the system keys.
json Normalized(json instance) {
  instance["path"] = WithoutSystemKeys(instance["path"]);
  for (const char* end : {"Antecedent", "Dependent"}) {
    json& properties = instance["properties"];
    if (properties.contains(end)) properties[end] = WithoutSystemKeys(properties[end]);
  }
  return instance;
}

using Paths = std::vector<std::string>;
using ByPath = std::map<std::string, json>;

class Comparison {
 public:
  Comparison(const Answer& now, const Answer& expected) : className_(expected.className) {
    const Paths before = Take(expected.instances, &expected_);
    const Paths after = Take(now.instances, &now_);
    CompareProperties();
    if (now_.size() != after.size()) Note("double");
    if (InBoth(before) != InBoth(after)) Note("order");
  }

  std::vector<Change> changes;

 private:
  static Paths Take(const std::vector<std::string>& instances, ByPath* byPath) {
    Paths paths;
    for (const std::string& text : instances) {
      const json instance = Normalized(json::parse(text));
      paths.push_back(instance["path"]);
      byPath->emplace(paths.back(), instance["properties"]);
    }
    return paths;
  }

  void Note(const std::string& what) { changes.push_back({className_, what}); }

  void CompareProperties() {
    for (const auto& [path, properties] : now_) {
      const auto found = expected_.find(path);
      if (found == expected_.end()) {
        Note("extra");
      } else {
        CompareProperties(properties, found->second);
      }
    }
    for (const auto& [path, properties] : expected_) {
      if (now_.count(path) == 0) Note("missing");
    }
  }

  void CompareProperties(const json& now, const json& expected) {
    std::set<std::string> names;
    for (const json& side : {now, expected}) {
      for (const auto& [name, value] : side.items()) names.insert(name);
    }
    for (const std::string& name : names) {
      if (now.value(name, json()) != expected.value(name, json())) Note(name);
    }
  }

  Paths InBoth(Paths paths) const {
    paths.erase(std::remove_if(paths.begin(), paths.end(),
                               [this](const std::string& path) {
                                 return now_.count(path) == 0 || expected_.count(path) == 0;
                               }),
                paths.end());
    return paths;
  }

  std::string className_;
  ByPath expected_;
  ByPath now_;
};

// Returns the text after `name` in an instance's text, with quotes and escapes; empty if there is
// none.
std::string TextBehind(const std::string& name, const std::string& instance) {
  const std::size_t place = instance.find("\"" + name + "\":\"");
  if (place == std::string::npos) return "";
  const std::size_t begin = place + name.size() + 4;
  std::size_t end = begin;
  while (instance[end] != '"') end += instance[end] == '\\' ? 2 : 1;
  return instance.substr(begin, end - begin);
}

void NoteDangling(const Answers& answers, std::vector<Change>* changes) {
  std::set<std::string> paths{""};
  for (const Answer& answer : answers) {
    for (const std::string& text : answer.instances) paths.insert(TextBehind("path", text));
  }
  for (const Answer& answer : answers) {
    for (const std::string& text : answer.instances) {
      for (const char* end : {"Antecedent", "Dependent"}) {
        if (paths.count(TextBehind(end, text)) == 0) {
          changes->push_back({answer.className, "dangling"});
        }
      }
    }
  }
}

}  // namespace

void WriteAnswers(const Answers& answers, const std::string& file) {
  json list = json::array();
  for (const Answer& answer : answers) {
    list.push_back({answer.className, answer.instances, answer.log, answer.thrown});
  }
  std::ofstream(file) << list;
}

Answers ReadAnswers(const std::string& file) {
  std::ifstream stream(file);
  Answers answers;
  for (const json& answer : json::parse(stream)) {
    answers.push_back({answer[0], answer[1], answer[2], answer[3]});
  }
  return answers;
}

std::vector<Change> ChangesIn(const Answers& now, const Answers& expected) {
  std::vector<Change> changes;
  bool same = true;
  for (std::size_t i = 0; i < expected.size(); ++i) {
    if (now[i].instances == expected[i].instances) continue;
    same = false;
    const Comparison comparison(now[i], expected[i]);
    changes.insert(changes.end(), comparison.changes.begin(), comparison.changes.end());
  }
  if (!same) NoteDangling(now, &changes);
  return changes;
}

std::vector<std::string> NewsIn(const Answer& now, const Answer& expected) {
  std::multiset<std::string> old(expected.log.begin(), expected.log.end());
  std::vector<std::string> news;
  for (const std::string& record : now.log) {
    const auto found = old.find(record);
    if (found == old.end()) {
      news.push_back(record);
    } else {
      old.erase(found);
    }
  }
  if (!now.thrown.empty()) news.push_back("! " + now.thrown);
  return news;
}
