#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QList>
#include <QStringList>

class CkMainWindow;
class CkMdiView;

/// What is open in the window, as a text that the next session can open again: the cameras, whether they ran,
/// the recordings with the frame they show, the chains behind both, and the views on these with their places,
/// channels, colours and zoom. Stateless; user-interface thread.
class CkSessionMemory {
    Q_DECLARE_TR_FUNCTIONS(CkSessionMemory)

public:
    struct SkRestored {
        /// What could not be opened again, in words; everything else is open. A recording that is missing
        /// keeps its view, which waits for another start.
        QStringList problems;
        /// Picture views that were followed by a 3D view. Opening that one is the plug-in's business.
        QList<int> viewsWith3d;
    };

    /// Empty when neither a camera nor a recording is open. Chains with a source of another kind are left
    /// out.
    static QByteArray describe(const CkMainWindow& window);

    /// The 3D view that was to follow this restored view is there, or cannot be; from now on the view is
    /// described by what follows it.
    static void followerOpened(CkMdiView& view);

    /// A text of somebody else's, or of a newer version, is a problem and opens nothing.
    static SkRestored restore(CkMainWindow& window, const QByteArray& text);
};
