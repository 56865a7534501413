#pragma once

#include <QByteArray>

#include <optional>

class CkViewArea;
class QMainWindow;

/// How much of a window the next start restores. A viewer that was started with cameras or files on its
/// command line does not replace the stored session.
enum class EkSessionScope { Nothing, Layout, LayoutAndSession };

/// The window state stored in the settings: geometry, panels, and session.
struct SkWindowLayout {
    QByteArray geometry;
    QByteArray state; ///< of the panels
    /// Written by SessionWriter; nullopt leaves the stored one unchanged.
    std::optional<QByteArray> session;
    bool arrange = true; ///< views are tiled automatically

    static SkWindowLayout of(const QMainWindow& window, const CkViewArea& area, EkSessionScope scope);

    /// From the settings, without the session.
    static SkWindowLayout load();
    void applyTo(QMainWindow& window, CkViewArea& area) const;

    /// Writes to the settings atomically: if the program is killed meanwhile, either the old or the new state
    /// remains. With pBefore only the differences are written.
    void save(const SkWindowLayout* pBefore = nullptr) const;

    bool operator==(const SkWindowLayout& other) const = default;
};
