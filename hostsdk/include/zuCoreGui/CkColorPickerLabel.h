#pragma once

#include "zuCoreGui/zuCoreGuiGlobal.h"

#include <QColor>
#include <QLabel>

/// A colour swatch; a click, Space or Enter opens a colour dialog. User-interface thread.
class ZUCOREGUI_EXPORT CkColorPickerLabel : public QLabel {
    Q_OBJECT

public:
    explicit CkColorPickerLabel(QWidget* pParent = nullptr);
    ~CkColorPickerLabel() override;

    /// Emits no signal. The colour is made opaque.
    void setPickerColor(const QColor& clColor);
    QColor pickerColor() const { return m_clColor; } ///< The colour shown.

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    /// The user chose another colour.
    void colorChanged();

protected:
    void paintEvent(QPaintEvent* pEvent) override;
    void mouseReleaseEvent(QMouseEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;

private:
    void pick();

    QColor m_clColor = Qt::black;
};
