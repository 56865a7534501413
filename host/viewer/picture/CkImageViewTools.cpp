// The image view's own tool bar, context menu and files.

#include "host/viewer/base/SaveFileName.h"
#include "host/viewer/picture/CkColorLegend.h"
#include "host/viewer/picture/CkImageCanvas.h"
#include "host/viewer/picture/CkImageView.h"
#include "host/viewer/picture/CkPictureSnapshot.h"
#include "host/viewer/picture/ToolIcons.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QComboBox>
#include <QContextMenuEvent>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QToolBar>

void CkImageView::createToolBar() {
    m_pToolBar = new QToolBar(this);
    // Signs where there are some, texts elsewhere.
    m_pToolBar->setToolButtonStyle(Qt::ToolButtonIconOnly);
    m_pToolBar->setIconSize(QSize(16, 16));
    m_pFitAction =
        m_pToolBar->addAction(ToolIcons::fit(palette()), tr("Fit"), m_pCanvas, &CkImageCanvas::zoomToFit);
    // The main window's menus have the same with shortcuts, for the active view.
    m_pFitAction->setObjectName(QStringLiteral("toolFit"));
    m_pFitAction->setCheckable(true);
    m_pFitAction->setChecked(true);
    m_pFitAction->setToolTip(tr("Show the whole picture (Ctrl+0, double click on the picture)"));
    m_pToolBar->addAction(QStringLiteral("1:1"), m_pCanvas, &CkImageCanvas::zoomToOriginal)
        ->setToolTip(tr("One screen pixel for each picture pixel (Ctrl+/, double click on the picture)"));
    m_pToolBar->addAction(QStringLiteral("\u2212"), m_pCanvas, &CkImageCanvas::zoomOut)
        ->setToolTip(tr("Smaller (Ctrl+-, mouse wheel)"));
    m_pToolBar->addAction(QStringLiteral("+"), m_pCanvas, &CkImageCanvas::zoomIn)
        ->setToolTip(tr("Larger (Ctrl++, mouse wheel)"));
    m_pZoomLabel = new QLabel(m_pToolBar);
    m_pZoomLabel->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral(" 6400 % ")));
    m_pToolBar->addWidget(m_pZoomLabel);
    m_pChannelBox = new QComboBox(m_pToolBar);
    m_pChannelBox->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    m_pChannelBox->setEnabled(false);
    m_pChannelBox->setToolTip(tr("There is no picture yet"));
    m_pToolBar->addWidget(m_pChannelBox);
    connect(m_pChannelBox, &QComboBox::activated, this,
            [this](int iIndex) { setChannel(m_pChannelBox->itemData(iIndex).toInt()); });
    m_pLegendAction = m_pToolBar->addAction(ToolIcons::legend(palette()), tr("Legend"));
    m_pLegendAction->setCheckable(true);
    m_pLegendAction->setChecked(true);
    m_pLegendAction->setToolTip(tr("Show what the colours stand for (Ctrl+L)"));
    connect(m_pLegendAction, &QAction::toggled, this,
            [this](bool bOn) { m_pLegend->setVisible(bOn && m_iChannel >= 0); });
    m_pToolBar->addAction(ToolIcons::save(palette()), tr("Save"), this, &CkImageView::saveWithDialog)
        ->setToolTip(tr("Save the picture to a file (Ctrl+P)"));
}

void CkImageView::contextMenuEvent(QContextMenuEvent* pEvent) {
    QMenu menu(this);
    menu.addActions(m_pToolBar->actions().mid(0, 4));
    menu.addSeparator();
    menu.addAction(m_pLegendAction);
    menu.addSeparator();
    menu.addAction(tr("Save Picture..."), this, &CkImageView::saveWithDialog);
    menu.exec(pEvent->globalPos());
}

CkPictureSnapshot CkImageView::snapshot() {
    return {shownImage(), currentImage(), m_iChannel, m_pChannelBox->currentText()};
}

void CkImageView::saveWithDialog() {
    // What is on the screen now: frames keep coming while the dialog is open.
    const CkPictureSnapshot picture = snapshot();
    const QList<CkPictureSnapshot::SkForm> forms = picture.forms();
    if (forms.isEmpty()) {
        return;
    }
    QList<SkSaveForm> offered;
    for (const CkPictureSnapshot::SkForm& form : forms) {
        offered.append(form.file);
    }
    IkAppDelegate* delegate = IkAppDelegate::instance();
    // The camera may be unplugged, and the view with it, while the dialog is open.
    const QPointer<CkImageView> self(this);
    int chosen = 0;
    const QString name =
        askSaveFileName(this, tr("Save Picture"), delegate != nullptr ? delegate->lastDirectory() : QString(),
                        offered, chosen, EkSaveEndings::Ours);
    if (!self || name.isEmpty()) {
        return;
    }
    const std::optional<CkPictureSnapshot::EkMeasured> measured = forms[chosen].measured;
    QString error;
    if (!(measured ? picture.saveAsMeasured(name, *measured, &error) : picture.saveAsSeen(name, &error))) {
        QMessageBox::warning(this, tr("Save Picture"), error);
    } else if (delegate != nullptr) {
        delegate->setLastDirectory(QFileInfo(name).absolutePath());
    }
}
