#pragma once

#include <string>
#include <vector>

#include "host/formats/instance_writer.h"

namespace pciinfo {

/// Writes instances as JSON objects, which docs/formats.md describes.
class JsonObjects final {
 public:
  explicit JsonObjects(Output& output) : output_(output) {}

  /// The instances that follow are of that class.
  void BeginClass(const vtq::Class& cimClass);
  void Write(const vtq::Class& cimClass, const vtq::Instance& instance);

 private:
  Output& output_;
  // The same for all instances: made once.
  std::string head_;
  std::vector<std::string> names_;  // by their positions in the schema
};

/// One instance a line, each a JSON object.
class JsonLinesWriter final : public InstanceWriter {
 public:
  explicit JsonLinesWriter(Output& output) : output_(output), objects_(output) {}

  void BeginClass(const vtq::Class& cimClass) override { objects_.BeginClass(cimClass); }
  void Write(const vtq::Class& cimClass, const vtq::Instance& instance) override;

 private:
  Output& output_;
  JsonObjects objects_;
};

/// One JSON document, one instance a line in its array.
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
