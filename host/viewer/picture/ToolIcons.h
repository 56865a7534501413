#pragma once

#include <QIcon>

class QPalette;

/// Icons of the picture tool bar, drawn in the colours of the palette. Icons, because texts do not fit a
/// small view in every language. User-interface thread.
namespace ToolIcons {

/// A picture that fills its frame.
QIcon fit(const QPalette& palette);
/// A bar of colours with its scale.
QIcon legend(const QPalette& palette);
/// A sheet with an arrow into it.
QIcon save(const QPalette& palette);

} // namespace ToolIcons
