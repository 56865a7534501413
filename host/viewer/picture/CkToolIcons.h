#pragma once

#include <QIcon>

class QPalette;

/// Signs of the image view's tool bar, drawn in the colours of the palette: words would not fit beside a
/// small picture in every language. User-interface thread.
class CkToolIcons {
public:
    /// A picture that fills its frame.
    static QIcon fit(const QPalette& palette);
    /// A bar of colours with its scale.
    static QIcon legend(const QPalette& palette);
    /// A sheet with an arrow into it.
    static QIcon save(const QPalette& palette);
};
