// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/schema/class_file.h"

namespace pciinfo {

/// What the user says about plug-ins and classes, as names of files.
struct PluginOptions {
  std::vector<std::string> added;       ///< plug-ins besides those that are found
  std::vector<std::string> only;        ///< if any: plug-ins in the place of those that are found
  std::vector<std::string> classFiles;  ///< files that declare further classes
};

/// A plug-in, and the classes that the class file beside it declares.
struct PluginFile {
  std::string file;                  ///< an absolute path
  std::vector<std::string> classes;  ///< empty without a class file
};

/// The plug-ins of a run in the order of loading, and all declared classes.
struct PluginSet {
  std::vector<PluginFile> plugins;
  Declarations declared;
};

/// Returns the plug-ins of the first of `directories` that exists, in the order of their names,
/// then those that are added, and reads their class files. Loads nothing. Throws UsageError for a
/// plug-in that is named twice, ClassFileError, and std::runtime_error when no plug-in or class is
/// found.
PluginSet FindPlugins(const PluginOptions& options, const std::vector<std::string>& directories);

/// Does so with the directory of the running program.
PluginSet FindPlugins(const PluginOptions& options);

}  // namespace pciinfo
