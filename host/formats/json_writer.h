// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/formats/instance_writer.h"

namespace pciinfo {

/// Writes instances as JSON objects; docs/formats.md describes them.
class JsonObjects final {
 public:
  /// `head` are members that every object begins with, with a comma after each.
  explicit JsonObjects(Output& output, std::string head = "")
      : output_(output), firstMembers_(std::move(head)) {}

  /// Sets the class of the instances that follow.
  void BeginClass(const vtq::Class& cimClass);
  void Write(const vtq::Class& cimClass, const vtq::Instance& instance);

 private:
  Output& output_;
  std::string firstMembers_;
  // Made once for all instances of the class.
  std::string head_;
  std::vector<std::string> names_;  // by position in the schema
};

/// Writes one JSON object per line, one for each instance.
class JsonLinesWriter final : public InstanceWriter {
 public:
  JsonLinesWriter(Output& output, const std::string& head)
      : output_(output), objects_(output, head) {}

  void BeginClass(const vtq::Class& cimClass) override { objects_.BeginClass(cimClass); }
  void Write(const vtq::Class& cimClass, const vtq::Instance& instance) override;

 private:
  Output& output_;
  JsonObjects objects_;
};

/// Writes one JSON document with an array of instances, one per line.
class JsonWriter final : public InstanceWriter {
 public:
  explicit JsonWriter(Output& output) : output_(output), objects_(output) {}

  void Begin() override;
  void BeginClass(const vtq::Class& cimClass) override { objects_.BeginClass(cimClass); }
  void Write(const vtq::Class& cimClass, const vtq::Instance& instance) override;
  void End() override;

 private:
  Output& output_;
  JsonObjects objects_;
  bool first_ = true;
};

}  // namespace pciinfo
