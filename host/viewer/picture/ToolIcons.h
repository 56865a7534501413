#pragma once

#include <QIcon>

class QPalette;

/// Icons of the picture tool bar, drawn in the colours of the palette. Icons, because texts in some languages
/// are too long for a small view. User-interface thread.
namespace ToolIcons {

/// A picture that fills its frame.
QIcon fit(const QPalette& palette);
/// A bar of colours with its scale.
QIcon legend(const QPalette& palette);
/// An arrow into a tray.
QIcon save(const QPalette& palette);

} // namespace ToolIcons
