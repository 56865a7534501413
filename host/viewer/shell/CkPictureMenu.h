#pragma once

#include <QKeySequence>
#include <QList>
#include <QObject>

#include <functional>

class CkImageView;
class CkViewArea;
class QAction;
class QMenu;

/// Fills the Picture menu: zoom, contrast, channel and saving of the active picture view. User-interface
/// thread.
class CkPictureMenu : public QObject {
    Q_OBJECT

public:
    /// furtherActions, still owned by the caller, are appended to the menu.
    CkPictureMenu(QMenu* menu, CkViewArea* area, const QList<QAction*>& furtherActions, QObject* parent);

public slots:
    /// Updates the actions for the active view.
    void refresh();

signals:
    /// A menu entry changed the appearance of the active view.
    void viewChanged();

private:
    using Change = std::function<void(CkImageView&)>;
    QAction* add(QMenu* menu, const QString& text, const QKeySequence& key, const Change& change);
    void addZoomActions(QMenu* menu);
    void addContrastActions(QMenu* menu);
    void addChannelActions(QMenu* menu);
    CkImageView* activePicture() const;
    void refreshForPicture(const CkImageView& view);

    CkViewArea* m_area;
    QAction* m_autoContrast = nullptr;
    QAction* m_saturated = nullptr;
    QAction* m_legend = nullptr;
    QList<QAction*> m_pictureActions;  ///< need an active picture view
    QList<QAction*> m_contrastActions; ///< need one that shows a single channel
    QList<QAction*> m_channelActions;  ///< need one with several channels
};
