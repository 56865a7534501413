#pragma once

#include <QIcon>

class QPalette;

/// Signs of the image view's tool bar, drawn in the colours of the palette: words would not fit beside a
/// small picture in every language. User-interface thread.
namespace ToolIcons {

/// A picture that fills its frame.
QIcon fit(const QPalette& palette);
/// A bar of colours with its scale.
QIcon legend(const QPalette& palette);
/// A sheet with an arrow into it.
QIcon save(const QPalette& palette);

} // namespace ToolIcons
