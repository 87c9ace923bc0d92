// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>

#include "host/record/machine_record.h"
#include "host/store/database.h"

namespace pciinfo {

/// The table `card_model`: each kind of function once.
class CardModels final {
 public:
  explicit CardModels(Database& database);

  /// Returns the key of a function's model, which is added if the table lacks it. Gives names to a
  /// model that has none. Must run in a transaction.
  std::string KeyOf(const RecordedFunction& function);

  /// Must be called when a transaction failed: what it had added is not there.
  void Forget() { known_.clear(); }

 private:
  struct Model {
    std::string key;
    Row names;
  };

  Model Find(const Row& ids, const Row& names);
  void AddNames(Model& model, const Row& names);

  Statement find_;
  Statement add_;
  Statement name_;
  std::map<Row, Model> known_;  ///< by their IDs
};

}  // namespace pciinfo
