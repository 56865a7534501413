#include "host/viewer/picture/ToolIcons.h"

#include <QPainter>
#include <QPalette>
#include <QPolygonF>
#include <functional>

namespace {

constexpr int kSide = 16;

QPixmap drawn(const QColor& ink, int factor, const std::function<void(QPainter&)>& draw) {
    QPixmap pixmap(kSide * factor, kSide * factor);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(factor, factor);
    painter.setPen(QPen(ink, 1.4));
    draw(painter);
    painter.end();
    pixmap.setDevicePixelRatio(factor);
    return pixmap;
}

QIcon icon(const QPalette& palette, const std::function<void(QPainter&)>& draw) {
    QIcon result;
    for (const int factor : {1, 2}) {
        result.addPixmap(drawn(palette.color(QPalette::ButtonText), factor, draw));
        result.addPixmap(drawn(palette.color(QPalette::Disabled, QPalette::ButtonText), factor, draw),
                         QIcon::Disabled);
    }
    return result;
}

} // namespace

QIcon ToolIcons::fit(const QPalette& palette) {
    return icon(palette, [](QPainter& painter) {
        painter.drawRect(QRectF(1.5, 2.5, 13, 11));
        // Arrows into two corners.
        painter.drawLine(QPointF(7, 9), QPointF(4, 11.5));
        painter.drawPolyline(QPolygonF({{4, 8.7}, {4, 11.5}, {6.9, 11.5}}));
        painter.drawLine(QPointF(9, 7), QPointF(12, 4.5));
        painter.drawPolyline(QPolygonF({{9.1, 4.5}, {12, 4.5}, {12, 7.3}}));
    });
}

QIcon ToolIcons::legend(const QPalette& palette) {
    return icon(palette, [](QPainter& painter) {
        QLinearGradient colours(0, 14, 0, 2);
        colours.setColorAt(0.0, QColor(0x30, 0x40, 0xc0));
        colours.setColorAt(0.5, QColor(0x50, 0xc0, 0x60));
        colours.setColorAt(1.0, QColor(0xd8, 0x40, 0x28));
        painter.fillRect(QRectF(3, 1.5, 5, 13), colours);
        painter.drawRect(QRectF(3, 1.5, 5, 13));
        for (const double y : {3.0, 8.0, 13.0}) {
            painter.drawLine(QPointF(10, y), QPointF(13.5, y));
        }
    });
}

QIcon ToolIcons::save(const QPalette& palette) {
    return icon(palette, [](QPainter& painter) {
        painter.drawPolyline(QPolygonF({{2, 9.5}, {2, 14}, {14, 14}, {14, 9.5}}));
        painter.drawLine(QPointF(8, 1.5), QPointF(8, 10));
        painter.drawPolyline(QPolygonF({{4.8, 7}, {8, 10.4}, {11.2, 7}}));
    });
}
