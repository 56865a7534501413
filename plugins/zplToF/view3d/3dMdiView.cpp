#include "plugins/zplToF/view3d/3dMdiView.h"

#include "plugins/zplToF/cloud/ToFPlyText.h"
#include "plugins/zplToF/opticalpath/CkToFOpticalPathSettingsDlg.h"
#include "plugins/zplToF/view3d/CkToFScene.h"
#include "plugins/zplToF/view3d/CkToFToolBar.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkLut.h"
#include "zuCoreGui/CkExportToolButton.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QAction>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QPointer>
#include <QSaveFile>
#include <QSettings>
#include <QThread>
#include <QVBoxLayout>
#include <Qt3DExtras/Qt3DWindow>
#include <Qt3DRender/QRenderCapture>

namespace {

constexpr float FarDepthThreshold = 1.0F;    // beyond it a threshold can only be meant for phase confidence
constexpr float DepthConfidenceLimit = 0.6F; // in its place for everything else

// Null outside an application.
std::unique_ptr<QSettings> hostSettings() {
    IkAppDelegate* host = IkAppDelegate::instance();
    return std::unique_ptr<QSettings>(host != nullptr ? host->settings() : nullptr);
}

void store(const char* key, const QVariant& value) {
    if (const auto settings = hostSettings()) {
        settings->setValue(QLatin1String(key), value);
    }
}

// The dialog shows micrometres; a value it did not change must not change on the way back either.
void takeOverCellSize(float& cellSizeMM, float micrometres) {
    if (micrometres != cellSizeMM * 1000.0F) {
        cellSizeMM = micrometres / 1000.0F;
    }
}

// "JPEG (*.jpg)" gives "jpg".
QString suffixOf(const QString& nameFilter) {
    return nameFilter.section(QLatin1String("*."), 1).section(QLatin1Char(')'), 0, 0);
}

// What QFileDialog::getSaveFileName does, which itself does not survive that its parent is closed meanwhile.
// A name without an extension gets the one of the chosen filter, for the extension decides the format.
QString askForFile(QWidget* parent, const QString& title, const QString& directory, const QString& filters) {
    const QPointer<QFileDialog> dialog = new QFileDialog(parent, title, directory, filters);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(suffixOf(dialog->selectedNameFilter()));
    QObject::connect(dialog, &QFileDialog::filterSelected, dialog,
                     [dialog](const QString& filter) { dialog->setDefaultSuffix(suffixOf(filter)); });
    const bool accepted = dialog->exec() == QDialog::Accepted;
    QString name = accepted && dialog ? dialog->selectedFiles().value(0) : QString();
    delete dialog;
    return name;
}

// Whoever waits for the file finds none, or the whole.
bool saveImage(const QImage& image, const QString& fileName) {
    QSaveFile file(fileName);
    const QByteArray format = QFileInfo(fileName).suffix().toLatin1();
    return !image.isNull() && file.open(QIODevice::WriteOnly) && image.save(&file, format.constData()) &&
           file.commit();
}

} // namespace

CkToF3DMdiView::CkToF3DMdiView(int iConnectedViewId, int iSecondViewId, CkChainable* pProvider,
                               CkChainable* pSecond)
    : CkMdiView(pProvider, pSecond), m_iConnectedViewId(iConnectedViewId), m_iSecondViewId(iSecondViewId),
      m_bUsePointPrimitives(CkToFScene::platformUsesPointPrimitives()) {
    // Qt 3D reads the variable in every window's constructor, and sets it to other values itself.
    if (m_bUsePointPrimitives) {
        qputenv("QT3D_RENDERER", "opengl");
    }
    if (const auto settings = hostSettings()) {
        m_options = SkToFViewSettings::read(*settings);
    }
    setWindowTitle(tr("ToF 3D view"));
    refreshTitle();
    connect(this, &CkMdiView::viewTitleChanged, this, &CkToF3DMdiView::refreshTitle);

    if (CkMdiView* connected = connectedView()) {
        connect(connected, &CkMdiView::viewTitleChanged, this, &CkToF3DMdiView::refreshTitle);
        updateDepthImage(connected->currentImage());
    }
    float& threshold = m_options.opticalPath.confidenceThreshold;
    if (m_frame.depthDataKind() != EkDepthDataType::PhaseShift && threshold > FarDepthThreshold) {
        threshold = DepthConfidenceLimit;
    }
    createOwnLut();
    updateGradientLutPic();

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    m_pToolBar = new CkToFToolBar(this);
    fillToolBar();
    layout->addWidget(m_pToolBar);
    layout->addWidget(sceneWidgetOrLabel(), 1);
    const bool ownWindow = (viewCaps() & NativeWindowCap) != 0;
    setMinimumSize(ownWindow ? QSize(800, 600) : QSize(192, 160));
}

CkToF3DMdiView::~CkToF3DMdiView() = default;

// Without a chain the title says what was shown last.
void CkToF3DMdiView::refreshTitle() {
    const CkChainable* provider = dataProvider();
    if (const CkChain* chain = provider != nullptr ? provider->chain() : nullptr) {
        setWindowTitle(chain->chainTitle(provider) + tr(" (ToF 3D)"));
    }
}

void CkToF3DMdiView::fillToolBar() {
    connect(m_pToolBar->addAction(tr("Settings...")), SIGNAL(triggered()), this, SLOT(showOpticalPathDlg()));

    auto* zoomMenu = new QMenu(m_pToolBar);
    for (const char* factor : {"0.2x", "0.5x", "1x", "2x", "5x", "10x", "20x", "50x", "100x"}) {
        connect(zoomMenu->addAction(QLatin1String(factor)), SIGNAL(triggered()), this,
                SLOT(onZZoomChanged()));
    }
    m_pToolBar->addMenu(tr("Z-Zoom") + QLatin1Char(' '), zoomMenu);

    connect(m_pToolBar->addAction(tr("Screenshot")), SIGNAL(triggered()), this, SLOT(saveScreenshot()));
    exportAction = m_pToolBar->addAction(tr("Export data"));
    exportAction->setEnabled(false);
    connect(exportAction, SIGNAL(triggered()), this, SLOT(exportPointCould()));
    m_pToolBar->addSeparator();
    connect(m_pToolBar->addAction(tr("Default position")), SIGNAL(triggered()), this,
            SLOT(moveToDefault3DPosition()));
    m_pToolBar->addSpace();
    m_pToolBar->addLabel();
}

QWidget* CkToF3DMdiView::sceneWidgetOrLabel() {
    QWidget* widget = nullptr;
    try {
        widget = createSceneWidget();
    } catch (...) {
        m_scene.reset();
        const auto thread = quintptr(QThread::currentThreadId());
        const QString detail = QStringLiteral("[%1] plugins/zplToF/3dMdiView:%2: "
                                              "Exception in 3D view createSceneWidget.")
                                   .arg(thread, 0, 16)
                                   .arg(__LINE__);
        qCritical().noquote() << QStringLiteral("CkToF3DMdiView::CkToF3DMdiView(): %1").arg(detail);
    }
    if (widget == nullptr) {
        auto* label = new QLabel(
            tr("Error creating 3D widget. Please make sure OpenGL drivers are avilable on your computer."));
        label->setAlignment(Qt::AlignCenter);
        label->setWordWrap(true);
        widget = label;
    }
    return widget;
}

QWidget* CkToF3DMdiView::createSceneWidget() {
    const auto settings = hostSettings();
    const QColor background =
        settings ? SkToFViewSettings::readBackground(*settings) : SkToFViewSettings::defaultBackground();
    m_scene = CkToFScene::create(m_bUsePointPrimitives, background);
    if (!m_scene) {
        return nullptr;
    }
    connect(m_scene.get(), SIGNAL(programLogChanged(QString)), this, SLOT(shaderProgramLogChanged(QString)));
    updatePointCloudGeometry();
    QWidget* container = m_scene->assemble(m_options.showBBox);
    m_scene->window()->installEventFilter(this);
    return container;
}

// ---- slots
// -------------------------------------------------------------------------------------------------

void CkToF3DMdiView::showBoundingBox(bool bShow) {
    m_options.showBBox = bShow;
    if (m_scene) {
        m_scene->setBoxVisible(bShow);
    }
    store(ToFSettingsKey::ShowBBox, bShow);
}

void CkToF3DMdiView::selectBgColor(uint uiColor) {
    store(ToFSettingsKey::BgColor, uiColor);
    if (m_scene) {
        m_scene->setClearColor(QColor(QRgb(uiColor)));
    }
}

void CkToF3DMdiView::showOpticalPathDlg() {
    const SkPicBuf& confidence = m_frame.confidencePic();
    const bool hasConfidence = confidence.data != nullptr;
    float thresholdMax = hasConfidence ? confidence.maxValue : 0.0F;
    if (m_frame.depthDataKind() != EkDepthDataType::PhaseShift) {
        thresholdMax = 1.0F;
    }
    const auto settings = hostSettings();
    QColor background =
        settings ? SkToFViewSettings::readBackground(*settings) : SkToFViewSettings::defaultBackground();
    if (m_scene) {
        background = m_scene->clearColor();
    }
    SkToFOpticalPath& path = m_options.opticalPath;
    // Frames keep coming while the dialog is open, and the host may close the view under it.
    const QPointer<CkToF3DMdiView> self(this);
    const QPointer<CkToFOpticalPathSettingsDlg> dialog = new CkToFOpticalPathSettingsDlg(
        m_frame.depthDataKind(), path.modulationFreqMHz, hasConfidence, path.confidenceThreshold, 0.0F,
        thresholdMax, path.compensateDistortion, path.lensFocalLengthMM, path.centerOffsetMM,
        path.chipCellSizeMM * 1000.0F, path.realDistanceOffsetM, path.orthoRadialCorrection,
        m_options.showBBox, background.rgb() & RGB_MASK, m_options.regulateInputFps, m_options.maxInputFps,
        this);
    connect(dialog, SIGNAL(dialogValuesChanged()), this, SLOT(onOpticalPathDlgValueChanged()));
    connect(dialog, SIGNAL(confidenceThresholdChanged(float)), this,
            SLOT(onConfidenceThresholdChanged(float)));
    connect(dialog, SIGNAL(bboxVisibityChanged(bool)), this, SLOT(showBoundingBox(bool)));
    connect(dialog, SIGNAL(bgColorChanged(uint)), this, SLOT(selectBgColor(uint)));
    const bool accepted = dialog->exec() == QDialog::Accepted;
    if (!self || !dialog) {
        return;
    }
    if (accepted) {
        takeOverDialogValues(*dialog);
        path.orthoRadialCorrection = dialog->orthoDistance();
        if (settings) {
            m_options.writeDialogValues(*settings);
        }
        updatePointCloudGeometry();
    }
    delete dialog;
}

void CkToF3DMdiView::onOpticalPathDlgValueChanged() {
    if (const auto* dialog = qobject_cast<CkToFOpticalPathSettingsDlg*>(sender())) {
        takeOverDialogValues(*dialog);
        updatePointCloudGeometry();
    }
}

// The orthogonal correction is not among them: it takes effect with OK only.
void CkToF3DMdiView::takeOverDialogValues(const CkToFOpticalPathSettingsDlg& dialog) {
    SkToFOpticalPath& path = m_options.opticalPath;
    path.compensateDistortion = dialog.compensate();
    path.lensFocalLengthMM = dialog.lensFocalLength();
    path.centerOffsetMM = dialog.centerOffset();
    takeOverCellSize(path.chipCellSizeMM, dialog.chipCellSize());
    path.modulationFreqMHz = dialog.modulationFreq();
    path.realDistanceOffsetM = dialog.realDistOffset();
    m_options.regulateInputFps = dialog.limitInputFps();
    m_options.maxInputFps = dialog.maxInputFps();
    m_cloud.freeOrthoFactorPic();
}

void CkToF3DMdiView::onConfidenceThresholdChanged(float fValue) {
    if (!(fValue > 0.0F)) {
        return;
    }
    m_options.opticalPath.confidenceThreshold = fValue;
    if (m_frame.confidencePic().data != nullptr) {
        updatePointCloudGeometry();
    }
}

void CkToF3DMdiView::onZZoomChanged() {
    const auto* action = qobject_cast<QAction*>(sender());
    if (action == nullptr) {
        return;
    }
    bool ok = false;
    const float factor = action->text().remove(QLatin1Char('x')).trimmed().toFloat(&ok);
    if (ok && float_is_positive(factor)) {
        m_fZZoom = factor;
        updatePointCloudGeometry();
    }
}

void CkToF3DMdiView::onDepthResChanged() {
    const auto* action = qobject_cast<QAction*>(sender());
    if (action == nullptr) {
        return;
    }
    bool ok = false;
    const int width = action->text().toInt(&ok, 10);
    if (!ok || width <= 0) {
        return;
    }
    m_iDepthTexResolutionW = width;
    CkMdiView* connected = connectedView();
    updateWithConnectedImageData(connected != nullptr ? connected->currentImage() : nullptr, true);
    store(ToFSettingsKey::DepthTexResolutionW, width);
}

void CkToF3DMdiView::moveToDefault3DPosition() {
    if (m_scene) {
        m_scene->moveToDefaultPosition();
    }
}

// Queued: replies complete in the middle of Qt 3D's frame, where neither the file dialog's event loop may run
// nor the view be closed.
void CkToF3DMdiView::saveScreenshot() {
    if (Qt3DRender::QRenderCaptureReply* reply = m_scene ? m_scene->requestCapture() : nullptr) {
        connect(reply, SIGNAL(completed()), this, SLOT(onScreenshotRequestCompleted()), Qt::QueuedConnection);
    }
}

void CkToF3DMdiView::onScreenshotRequestCompleted() {
    auto* reply = qobject_cast<Qt3DRender::QRenderCaptureReply*>(sender());
    IkAppDelegate* host = IkAppDelegate::instance();
    if (reply == nullptr) {
        return;
    }
    reply->deleteLater();
    const QImage image = m_scene ? m_scene->picture(*reply) : QImage();
    const QString directory = host != nullptr ? host->lastDirectory() : QString();
    const QString name = askForFile(this, tr("Save Screenshot to File"), directory,
                                    QStringLiteral("PNG (*.png);;JPEG (*.jpg);;BMP Bitmaps (*.bmp)"));
    // The view may be gone by now; then there is no name.
    if (name.isEmpty()) {
        return;
    }
    if (!saveImage(image, name)) {
        qCritical().noquote()
            << QStringLiteral("CkToF3DMdiView::onScreenshotRequestCompleted(): %1")
                   .arg(image.isNull()
                            ? QStringLiteral("nothing was captured, \"%1\" is not written").arg(name)
                            : QStringLiteral("\"%1\" could not be written; choose a folder "
                                             "that can be written to, and an extension "
                                             "of .png, .jpg or .bmp")
                                  .arg(name));
    }
    if (host != nullptr) {
        host->setLastDirectory(QFileInfo(name).absolutePath());
    }
}

void CkToF3DMdiView::exportPointCould() {
    const QByteArray text = buildPlyText(m_cloud.exportPoints());
    if (text.isEmpty()) {
        qCritical().noquote() << QStringLiteral(
                                     "CkToF3DMdiView::exportPointCould(): not enough memory for the "
                                     "text of %1 points")
                                     .arg(m_cloud.pointCount());
        return;
    }
    CkExportToolButton::exportText(text, CkExportToolButton::File, this, QStringLiteral("PLY (*.ply)"));
}

bool CkToF3DMdiView::grabScene(const QString& sFileName) {
    Qt3DRender::QRenderCaptureReply* reply = m_scene ? m_scene->requestCapture() : nullptr;
    if (reply == nullptr) {
        return false;
    }
    const auto save = [this, reply, sFileName] {
        reply->deleteLater();
        saveImage(m_scene->picture(*reply), sFileName);
    };
    connect(reply, &Qt3DRender::QRenderCaptureReply::completed, this, save, Qt::QueuedConnection);
    return true;
}

bool CkToF3DMdiView::savePly(const QString& sFileName) {
    const QByteArray text = buildPlyText(m_cloud.exportPoints());
    QSaveFile file(sFileName);
    return !m_cloud.exportPoints().empty() && !text.isEmpty() && file.open(QIODevice::WriteOnly) &&
           file.write(text) == text.size() && file.commit();
}

void CkToF3DMdiView::shaderProgramLogChanged(const QString& sLog) {
    qCritical().noquote() << QStringLiteral("CkToF3DMdiView::shaderProgramLogChanged(): %1").arg(sLog);
}
