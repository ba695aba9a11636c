#pragma once

#include <string>
#include <vector>

namespace thntfs {

/// A library that a program is built with, by its own name.
struct Library {
    std::string Name;
    std::string Version; ///< empty where the program was built without it
};

/// The libraries of the core, those that a build may lack too.
std::vector<Library> CoreLibraries();

/// What "--version" prints, lines of text, the last without its end: the product with its version, and its
/// libraries, which are those of the core and then `ofProgram`.
std::string VersionText(const std::vector<Library>& ofProgram);

/// The product's version, such as "2.0.1".
std::string ProductVersion();

} // namespace thntfs
