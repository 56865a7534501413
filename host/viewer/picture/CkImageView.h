#pragma once

#include "host/viewer/picture/PictureColours.h"
#include "host/viewer/picture/PictureStatistics.h"
#include "zuCoreGui/CkMdiView.h"

#include <QImage>
#include <QList>
#include <QString>

class CkColorLegend;
class CkImageCanvas;
class CkPictureSnapshot;
class QAction;
class QComboBox;
class QLabel;
class QToolBar;

/// Shows the pictures of any type that a block delivers, coloured by a look-up table, with zoom and pan.
///
/// Flag 1 of the view's table is automatic contrast (on: the window follows each frame; floats exactly from
/// their smallest to their largest value, integers without the half percent at each end), flag 2 marks
/// saturated samples red.
class CkImageView : public CkMdiView {
    Q_OBJECT

public:
    explicit CkImageView(CkChainable* pProvider);
    ~CkImageView() override;

    QString viewTitle() const override;
    /// In the shape of the picture.
    QSize sizeHint() const override;
    CkMdiView* clone(CkChainable* pProvider, CkChainable* pSecond) override;
    void setViewLut(CkLut* pLut, bool bFlag1, bool bFlag2, bool bUpdate) override;

    CkImageCanvas* canvas() const { return m_pCanvas; }

    /// Channel shown; -1: all, as colours.
    int channel() const { return m_iChannel; }
    void setChannel(int iChannel);
    /// Entries of the list of channels, "all as colours" included; 0 before the first picture.
    int channelCount() const;
    /// The next (1) or previous (-1) entry of the list of channels, round and round.
    void stepChannel(int iStep);

    bool showsLegend() const;
    void setShowsLegend(bool bShow);

    /// The values at the ends of the colours, in the unit of the channel.
    SkDisplayWindow window() const { return m_window; }
    /// Sets the window by hand and switches automatic contrast off. A reversed window is turned round.
    void setWindow(const SkDisplayWindow& window);
    void setAutoContrast(bool bAuto);
    bool autoContrast() const;
    /// The whole range of the picture's values by hand: all that an integer can hold, or what a float picture
    /// holds at the moment.
    void setFullRange();
    void setMarksSaturated(bool bMark);
    bool marksSaturated() const;
    /// Why saturated samples cannot be marked in the picture that is shown; empty when they can, or when
    /// there is no picture.
    QString saturationReason() const;
    void setGamma(double fGamma);
    double gamma() const;

    /// Of the frame that was painted last. All zero before the first.
    const SkPictureStatistics& statistics() const { return m_statistics; }
    /// Unit of the channel shown, may be empty.
    QString unit() const;
    bool showsColours() const { return m_iChannel < 0; }
    bool hasPicture() const;

    /// Darkens the picture: it is no longer what the camera sees.
    void setStale(bool bStale);
    /// Instead of the picture, as long as there is none.
    void setEmptyText(const QString& sText);

    /// The picture as it is on the screen, at its own size; colours it when that has not been done yet.
    const QImage& shownImage();

    /// What is on the screen at the moment, to be saved.
    CkPictureSnapshot snapshot();
    /// Asks for the file.
    void saveWithDialog();

signals:
    /// Text about the pixel under the mouse; empty when it left.
    void pixelTextChanged(const QString& sText);
    /// Window, range or histogram changed.
    void contrastChanged();

protected:
    void showFrame(std::unique_ptr<CkImageData> frame) override;
    void contextMenuEvent(QContextMenuEvent* pEvent) override;

private:
    void createToolBar();
    void adaptToFormat(const CkImageData& frame);
    void fillChannelBox(const CkImageData& frame);
    void refreshColours();
    void render();
    void updateLegend();
    void refresh();
    void hoverPixel(const QPoint& pixel);

    CkImageCanvas* m_pCanvas = nullptr;
    CkColorLegend* m_pLegend = nullptr;
    QToolBar* m_pToolBar = nullptr;
    QComboBox* m_pChannelBox = nullptr;
    QLabel* m_pZoomLabel = nullptr;
    QAction* m_pFitAction = nullptr;
    QAction* m_pLegendAction = nullptr;

    SkPicBufInfo m_format;
    QStringList m_channelNames;
    QList<QRgb> m_colours;
    SkDisplayWindow m_window;
    SkPictureStatistics m_statistics;
    QImage m_image;
    QPoint m_hovered{-1, -1};
    int m_iChannel = 0;
    bool m_bStale = true; ///< the image does not show the newest frame yet
    bool m_bColoured = false;
};
