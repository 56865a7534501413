#pragma once

#include "zuCore/CkImageMetadata.h"
#include "zuCore/SkPicBuf.h"

#include <QToolBar>

class CkImageCanvas;
class QAction;
class QComboBox;
class QLabel;

/// Tool bar of a picture view: zoom, channel, legend, save. Drives the canvas's zoom itself; reports
/// everything else to the view. User-interface thread.
class CkPictureToolBar : public QToolBar {
    Q_OBJECT

public:
    /// pCanvas outlives the tool bar. pView: the widget whose font and palette the tool bar is drawn with.
    CkPictureToolBar(CkImageCanvas* pCanvas, QWidget* pView);

    /// Fills the list of channels for pictures of this format; iChannel is the current one, -1: all, as
    /// colours.
    void setChannels(const SkPicBufInfo& info, const CkImageMetadata& metadata, int iChannel);
    /// Shows a channel of the list as the current one, without reporting it.
    void setChannel(int iChannel);
    /// Entries of the list of channels; 0 before the first picture.
    int channelCount() const;
    /// The channel iStep entries after the current one, wrapping around; the current one for a list of one.
    int channelAfter(int iStep) const;
    /// Name of the current channel.
    QString channelText() const;

    bool showsLegend() const;
    void setShowsLegend(bool bShow);

    /// Fit, 1:1, smaller and larger, for the view's context menu.
    QList<QAction*> zoomActions() const { return m_zoomActions; }
    QAction* legendAction() const { return m_legendAction; }

signals:
    /// The user chose a channel; -1: all, as colours.
    void channelChosen(int iChannel);
    void legendToggled(bool bOn);
    void saveRequested();

private:
    void createZoomActions(CkImageCanvas* pCanvas, const QWidget* pView);
    void createChannelBox();
    void showZoom(double fZoom, bool bFit);

    QList<QAction*> m_zoomActions;
    QAction* m_fitAction = nullptr;
    QLabel* m_zoomLabel = nullptr;
    QComboBox* m_channelBox = nullptr;
    QAction* m_legendAction = nullptr;
};
