#pragma once

#include <string>

#include <QString>

namespace vantro {

/// The tool's version, from the information dictionary; empty when it has none. Any thread.
const std::string& APP_VERSION();

/// The operating system's name and version for people. Any thread.
const std::string& OS_VERSION();

/// The title of every alert and dialog, and of the main window until the first tab switch.
QString windowTitleWithVersion();

} // namespace vantro
