#pragma once

#include <QByteArray>

#include <optional>

class CkViewArea;
class QMainWindow;

/// How much of a window the next start restores. A viewer that was started for named cameras or files keeps
/// the session of the user's usual window.
enum class EkSessionScope { Nothing, Layout, LayoutAndSession };

/// What the settings store of a window: its place, its panels, and what is open in it.
struct SkWindowLayout {
    QByteArray geometry;
    QByteArray state; ///< of the panels
    /// A text of SessionWriter; nothing leaves the stored one as it is.
    std::optional<QByteArray> session;
    bool arrange = true; ///< views are tiled automatically

    static SkWindowLayout of(const QMainWindow& window, const CkViewArea& area, EkSessionScope scope);

    /// From the settings, without the session.
    static SkWindowLayout load();
    void applyTo(QMainWindow& window, CkViewArea& area) const;

    /// Writes to the settings, atomically: a program that is killed meanwhile leaves either the old or the
    /// new. With pBefore only what differs from it.
    void save(const SkWindowLayout* pBefore = nullptr) const;

    bool operator==(const SkWindowLayout& other) const = default;
};
