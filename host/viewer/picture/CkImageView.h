#pragma once

#include "host/viewer/picture/CkImageCanvas.h"
#include "host/viewer/picture/CkPictureRenderer.h"
#include "host/viewer/picture/CkPictureToolBar.h"
#include "zuCoreGui/CkMdiView.h"

#include <QImage>
#include <QPoint>

class CkColorLegend;
class CkPictureSnapshot;

/// Shows the pictures of any sample type that a block delivers, coloured by a look-up table, with zoom and
/// pan. User-interface thread.
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
    /// With the aspect ratio of the picture.
    QSize sizeHint() const override;
    CkMdiView* clone(CkChainable* pProvider, CkChainable* pSecond) override;
    void setViewLut(CkLut* pLut, bool bFlag1, bool bFlag2, bool bUpdate) override;

    CkImageCanvas* canvas() const { return m_canvas; }

    /// Channel shown; -1: all, as colours.
    int channel() const { return m_renderer.channel(); }
    void setChannel(int iChannel);
    /// Entries of the list of channels, "all as colours" included; 0 before the first picture.
    int channelCount() const { return m_toolBar->channelCount(); }
    /// To the next (1) or previous (-1) entry of the list of channels, wrapping around.
    void stepChannel(int iStep);

    bool showsLegend() const { return m_toolBar->showsLegend(); }
    void setShowsLegend(bool bShow) { m_toolBar->setShowsLegend(bShow); }

    /// The values at the ends of the colours, in the unit of the channel.
    SkDisplayWindow window() const { return m_renderer.window(); }
    /// Sets a fixed window and switches automatic contrast off. The ends of a reversed window are swapped.
    void setWindow(const SkDisplayWindow& window);
    void setAutoContrast(bool bAuto);
    bool autoContrast() const { return table().contrast.automatic; }
    /// Fixes the window to the full range: all values that the integer samples can represent, or the present
    /// range of a float picture.
    void setFullRange();
    void setMarksSaturated(bool bMark);
    bool marksSaturated() const { return table().contrast.markSaturated; }
    /// Why saturated samples cannot be marked in the picture that is shown; empty when they can, or when
    /// there is no picture.
    QString saturationReason() const;
    void setGamma(double fGamma);
    double gamma() const;

    /// Of the frame painted last. All zero before the first.
    const SkPictureStatistics& statistics() const { return m_renderer.statistics(); }
    /// Unit of the channel shown, may be empty.
    QString unit() const { return m_renderer.unit(); }
    bool showsColours() const { return channel() < 0; }
    bool hasPicture() const { return frame() != nullptr; }

    /// Darkens an outdated picture.
    void setStale(bool bStale) { m_canvas->setDimmed(bStale); }
    /// The text shown as long as there is no picture.
    void setEmptyText(const QString& sText);

    /// The picture as it is on the screen, at its own size; colours it first when the newest frame has not
    /// been coloured yet. Null before the first picture and for a format that cannot be shown.
    const QImage& shownImage();

    /// The picture on the screen, to be saved.
    CkPictureSnapshot snapshot();
    /// Asks the user for a file and writes the picture to it.
    void saveWithDialog();

signals:
    /// Text about the pixel under the mouse; empty when the mouse has left the picture.
    void pixelTextChanged(const QString& sText);
    /// Window, range or histogram changed.
    void contrastChanged();

protected:
    void showFrame(std::unique_ptr<CkImageData> frame) override;
    void contextMenuEvent(QContextMenuEvent* pEvent) override;

private:
    /// The view's table with its two flags.
    struct SkTable {
        CkLut* lut = nullptr;
        CkPictureRenderer::SkContrast contrast;
    };
    SkTable table() const;
    const CkImageData* frame() const;

    void adaptToFormat(const CkImageData& frame);
    void refreshColours();
    void render();
    void updateLegend();
    void refresh();
    void hoverPixel(const QPoint& pixel);

    CkImageCanvas* m_canvas = nullptr;
    CkColorLegend* m_legend = nullptr;
    CkPictureToolBar* m_toolBar = nullptr;
    CkPictureRenderer m_renderer;
    QPoint m_hovered{-1, -1}; ///< pixel under the mouse; negative: none
    bool m_outdated = true;   ///< the image does not show the newest frame or settings yet
};
