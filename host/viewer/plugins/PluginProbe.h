#pragma once

#include <QString>

#include <chrono>
#include <optional>

/// Loads a plug-in in a short-lived separate process, to find out whether it crashes or hangs a program. For
/// a thread that may block.
namespace PluginProbe {

/// The program to run, located relative to this one; empty when it is missing.
QString program();

/// Loads the library in a child process, starts the plug-in, reads its texts and ends it, as the viewer
/// would. An empty text: the plug-in passed. Otherwise a message that names the library and what it did.
/// std::nullopt when the child process cannot be run, which says nothing about the library.
std::optional<QString> refusal(const QString& sLibrary, std::chrono::milliseconds timeLimit);

} // namespace PluginProbe
