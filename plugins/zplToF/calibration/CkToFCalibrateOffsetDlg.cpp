#include "calibration/CkToFCalibrateOffsetDlg.h"

#include "ui_CkToFCalibrateOffsetDlg.h"
#include "view3d/3dMdiView.h"
#include "view3d/CkToFViewSettings.h"
#include "zuCore/CkImageData.h"
#include "zuCoreGui/CkMdiView.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QKeyEvent>
#include <QLocale>
#include <QPushButton>
#include <QSettings>
#include <cmath>

namespace {
constexpr int s_iDefaultFrames = 5;
constexpr int s_iInches = 1;
constexpr float s_fCmPerInch = 2.54F;
constexpr float s_fCmPerMetre = 100.0F;
constexpr float s_fInchesPerMetre = 39.37008F;

// Tells a box that was dismissed, with Escape or its close button, from one that was acknowledged: with a
// single button the two have the same result.
class CkDismissal : public QObject {
public:
    bool bHappened = false;

    bool eventFilter(QObject*, QEvent* pEvent) override {
        bHappened = bHappened || pEvent->type() == QEvent::Close ||
                    (pEvent->type() == QEvent::KeyPress &&
                     static_cast<QKeyEvent*>(pEvent)->matches(QKeySequence::Cancel));
        return false;
    }
};
} // namespace

CkToFCalibrateOffsetDlg::CkToFCalibrateOffsetDlg(CkMdiView* pView, QWidget* pParent)
    : QDialog(pParent), m_ui(std::make_unique<Ui::CkToFCalibrateOffsetDlg>()), m_view(pView) {
    m_ui->setupUi(this);
    m_ui->spinAveraging->setValue(s_iDefaultFrames);
    m_ui->lbProgress->setText(QStringLiteral(" "));
    m_ui->label_2->setToolTip(m_ui->spinAveraging->toolTip());
    m_ui->lbDistance->setToolTip(m_ui->edDistance->toolTip());

    // adjustSize alone stops at two thirds of the screen, which cuts the dialog off at large scalings.
    adjustSize();
    const int iWidth = qMax(width(), sizeHint().width());
    setFixedSize(iWidth, layout()->totalHeightForWidth(iWidth));
}

CkToFCalibrateOffsetDlg::~CkToFCalibrateOffsetDlg() = default;

float CkToFCalibrateOffsetDlg::sumCentralPhaseShiftPixels(const SkPicBuf* pImage, int iChannel,
                                                          int iSquareSize, int& iCount) {
    return CkToFOffsetEstimator::sumCentralPhaseShiftPixels(pImage, iChannel, iSquareSize, iCount);
}

void CkToFCalibrateOffsetDlg::on_buttonBox_accepted() {
    const int iFramesToAverage = m_ui->spinAveraging->value();
    if (iFramesToAverage <= 0) {
        accept();
        return;
    }
    bool bNumber = false;
    float fDistance = QLocale().toFloat(m_ui->edDistance->text(), &bNumber);
    if (m_ui->cbUnit->currentIndex() == s_iInches) {
        fDistance *= s_fCmPerInch;
    }
    if (!bNumber || !std::isfinite(fDistance)) {
        showError(tr("Please set the distance as decimal number."));
        return;
    }
    m_iFramesToAverage = iFramesToAverage;
    m_fDistance = fDistance;
    m_estimator.reset();
    m_uiFramesDone = 0;
    m_ui->buttonBox->button(QDialogButtonBox::Ok)->setEnabled(false);
    if (m_view) {
        connect(m_view, SIGNAL(receivedFrame(qint32)), this, SLOT(on_viewFrameReceived(qint32)),
                Qt::ConnectionType(Qt::QueuedConnection | Qt::UniqueConnection));
    }
}

void CkToFCalibrateOffsetDlg::on_viewFrameReceived(qint32 iFrameId) {
    if (qint64(m_uiFramesDone) >= m_iFramesToAverage) {
        return;
    }
    const CkImageData* frame = m_view ? m_view->imageData(iFrameId) : nullptr;
    if (frame == nullptr) {
        return;
    }
    bool bDismissed = false;
    if (m_estimator.addPicture(frame->picBuf(), &frame->metadata())) {
        m_fModulationFreq = frame->metadata().modulationFrequency;
        ++m_uiFramesDone;
    } else if (!showError(
                   tr("Unexpected image format received. Calibration expects phase shift image as input."),
                   &bDismissed)) {
        return;
    }
    if (m_iFramesToAverage == 0) {
        return; // closed while the box was open
    }
    // A camera that sends nothing else opens the next box before anyone can get at Cancel.
    if (bDismissed) {
        reject();
        return;
    }
    m_ui->lbProgress->setText(tr("Progresss: %1 / %2").arg(m_uiFramesDone).arg(m_iFramesToAverage));
    // Frames go on arriving while a box is open; the last one is settled by the call that opened the box.
    if (qint64(m_uiFramesDone) == m_iFramesToAverage && !m_bBoxOpen) {
        finish();
    }
}

void CkToFCalibrateOffsetDlg::done(int iResult) {
    stopMeasuring();
    QDialog::done(iResult);
}

void CkToFCalibrateOffsetDlg::stopMeasuring() {
    if (m_view) {
        disconnect(m_view, SIGNAL(receivedFrame(qint32)), this, SLOT(on_viewFrameReceived(qint32)));
    }
    // What is queued already finds nothing to do.
    m_iFramesToAverage = 0;
}

void CkToFCalibrateOffsetDlg::finish() {
    stopMeasuring();
    if (!(m_fModulationFreq >= CkToFOffsetEstimator::s_fMinModulationFreq) || std::isinf(m_fModulationFreq)) {
        if (showError(tr("Modulation frequency not present in image metadata."))) {
            accept();
        }
        return;
    }
    if (!m_estimator.hasMean()) {
        if (showError(
                tr("Unexpected image format received. Calibration expects phase shift image as input."))) {
            accept();
        }
        return;
    }
    const CkToFOffsetEstimator::SkResult result = m_estimator.result(m_fDistance, m_fModulationFreq);
    if (!showResult(result)) {
        return;
    }
    storeOffset(result.fOffset);
    if (auto* view3d = qobject_cast<CkToF3DMdiView*>(m_view.data())) {
        view3d->updateAfterDistanceOffsetChanged();
    }
    accept();
}

bool CkToFCalibrateOffsetDlg::showError(const QString& sText, bool* pbDismissed) {
    return showBox(QMessageBox::Critical, tr("Error"), sText, pbDismissed);
}

bool CkToFCalibrateOffsetDlg::showResult(const CkToFOffsetEstimator::SkResult& result) {
    const float fFactor = m_ui->cbUnit->currentIndex() == 0 ? s_fCmPerMetre : s_fInchesPerMetre;
    const QLocale locale;
    return showBox(QMessageBox::Information, tr("Result"),
                   tr("Measured distance: %1 %2\n\nCalculated offset: %3 %2")
                       .arg(locale.toString(double(result.fMeasuredDistance * fFactor), 'f', 2),
                            m_ui->cbUnit->currentText(),
                            locale.toString(double(fFactor * result.fOffset), 'f', 2)));
}

// The static functions of QMessageBox do not survive that their parent is deleted while they run.
bool CkToFCalibrateOffsetDlg::showBox(QMessageBox::Icon icon, const QString& sTitle, const QString& sText,
                                      bool* pbDismissed) {
    if (m_bBoxOpen) {
        return true;
    }
    m_bBoxOpen = true;
    const QPointer<CkToFCalibrateOffsetDlg> self(this);
    const QPointer<QMessageBox> box(new QMessageBox(icon, sTitle, sText, QMessageBox::Ok, this));
    CkDismissal dismissal;
    box->installEventFilter(&dismissal);
    box->exec();
    delete box;
    if (!self) {
        return false;
    }
    if (pbDismissed != nullptr) {
        *pbDismissed = dismissal.bHappened;
    }
    m_bBoxOpen = false;
    return true;
}

void CkToFCalibrateOffsetDlg::storeOffset(float fOffset) {
    IkAppDelegate* delegate = IkAppDelegate::instance();
    if (delegate == nullptr) {
        return;
    }
    const std::unique_ptr<QSettings> settings(delegate->settings());
    settings->setValue(QLatin1String(ToFSettingsKey::RealDistanceOffsetM), fOffset);
}
