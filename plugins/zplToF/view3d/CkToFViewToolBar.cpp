#include "plugins/zplToF/view3d/CkToFViewToolBar.h"

#include "plugins/zplToF/cloud/CkToFCloudBuilder.h"

#include <QAction>
#include <QLocale>
#include <QMenu>
#include <algorithm>

namespace {

QString metres(double value) {
    return QLocale().toString(value, 'f', 1);
}

} // namespace

CkToFViewToolBar::CkToFViewToolBar(QWidget* pView) : CkToFToolBar(pView) {
    connect(addAction(tr("Settings...")), SIGNAL(triggered()), pView, SLOT(showOpticalPathDlg()));

    auto* zoomMenu = new QMenu(this);
    for (const char* factor : {"0.2x", "0.5x", "1x", "2x", "5x", "10x", "20x", "50x", "100x"}) {
        connect(zoomMenu->addAction(QLatin1String(factor)), SIGNAL(triggered()), pView,
                SLOT(onZZoomChanged()));
    }
    addMenu(tr("Z-Zoom") + QLatin1Char(' '), zoomMenu);

    connect(addAction(tr("Screenshot")), SIGNAL(triggered()), pView, SLOT(saveScreenshot()));
    m_exportAction = addAction(tr("Export data"));
    m_exportAction->setEnabled(false);
    connect(m_exportAction, SIGNAL(triggered()), pView, SLOT(exportPointCould()));
    addSeparator();
    connect(addAction(tr("Default position")), SIGNAL(triggered()), pView, SLOT(moveToDefault3DPosition()));
    addSpace();
    addLabel();
}

void CkToFViewToolBar::showCloud(const CkToFCloudBuilder& cloud) {
    QString text;
    if (const auto size = cloud.dimensions()) {
        text = tr("Width: %1 m Height: %2 m Depth: %3 m")
                   .arg(metres(size->widthM), metres(size->heightM), metres(size->depthM));
    }
    setLabelText(text);
    m_exportAction->setEnabled(!cloud.exportPoints().empty());
}

float CkToFViewToolBar::zoomFactor(const QObject* pAction) {
    const auto* action = qobject_cast<const QAction*>(pAction);
    bool ok = false;
    const float factor =
        action != nullptr ? action->text().remove(QLatin1Char('x')).trimmed().toFloat(&ok) : 0.0F;
    return ok && float_is_positive(factor) ? factor : 0.0F;
}

int CkToFViewToolBar::width(const QObject* pAction) {
    const auto* action = qobject_cast<const QAction*>(pAction);
    return action != nullptr ? std::max(action->text().toInt(nullptr, 10), 0) : 0;
}
