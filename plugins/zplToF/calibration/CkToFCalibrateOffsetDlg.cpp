#include "plugins/zplToF/calibration/CkToFCalibrateOffsetDlg.h"

#include "plugins/zplToF/view3d/ToFDistanceOffset.h"
#include "ui_CkToFCalibrateOffsetDlg.h"
#include "zuCore/CkImageData.h"
#include "zuCoreGui/CkMdiView.h"

#include <QKeyEvent>
#include <QLocale>
#include <QPushButton>
#include <cmath>

namespace {
constexpr int kDefaultFrames = 5;
constexpr int kInches = 1; // index in the list of units
constexpr float kCmPerInch = 2.54F;
constexpr float kCmPerMetre = 100.0F;
constexpr float kInchesPerMetre = 39.37008F;

// Recognises that a box was dismissed, with Escape or its close button. A box with a single button returns
// the same result then as when the button is pressed.
class CkToFDismissal : public QObject {
public:
    bool happened = false;

    bool eventFilter(QObject*, QEvent* pEvent) override {
        happened = happened || pEvent->type() == QEvent::Close ||
                   (pEvent->type() == QEvent::KeyPress &&
                    static_cast<QKeyEvent*>(pEvent)->matches(QKeySequence::Cancel));
        return false;
    }
};
} // namespace

CkToFCalibrateOffsetDlg::CkToFCalibrateOffsetDlg(CkMdiView* pView, QWidget* pParent)
    : QDialog(pParent), m_ui(std::make_unique<Ui::CkToFCalibrateOffsetDlg>()), m_view(pView) {
    m_ui->setupUi(this);
    m_ui->spinAveraging->setValue(kDefaultFrames);
    m_ui->lbProgress->setText(QStringLiteral(" "));
    m_ui->label_2->setToolTip(m_ui->spinAveraging->toolTip());
    m_ui->lbDistance->setToolTip(m_ui->edDistance->toolTip());

    // adjustSize alone limits the size to two thirds of the screen, which cuts the dialog off at large scale
    // factors.
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
    if (m_state == EkState::Done || isComplete()) {
        return;
    }
    bool bNumber = false;
    float fDistance = QLocale().toFloat(m_ui->edDistance->text(), &bNumber);
    if (m_ui->cbUnit->currentIndex() == kInches) {
        fDistance *= kCmPerInch;
    }
    if (!bNumber || !std::isfinite(fDistance)) {
        if (showError(tr("Please set the distance as decimal number.")) != EkBoxEnd::Deleted) {
            finishIfComplete();
        }
        return;
    }
    m_framesToAverage = iFramesToAverage;
    m_distance = fDistance;
    m_estimator.reset();
    m_framesDone = 0;
    m_state = EkState::Measuring;
    m_ui->buttonBox->button(QDialogButtonBox::Ok)->setEnabled(false);
    if (m_view) {
        connect(m_view, SIGNAL(receivedFrame(qint32)), this, SLOT(on_viewFrameReceived(qint32)),
                Qt::ConnectionType(Qt::QueuedConnection | Qt::UniqueConnection));
    }
}

void CkToFCalibrateOffsetDlg::on_viewFrameReceived(qint32 iFrameId) {
    if (m_state != EkState::Measuring || isComplete()) {
        return;
    }
    const CkImageData* frame = m_view ? m_view->imageData(iFrameId) : nullptr;
    if (frame == nullptr) {
        return;
    }
    if (m_estimator.addPicture(frame->picBuf(), &frame->metadata())) {
        m_modulationFreq = frame->metadata().modulationFrequency;
        ++m_framesDone;
        showProgress();
        finishIfComplete();
        return;
    }
    // One box at a time: the camera delivers the next wrong frame before the user has read it.
    const EkBoxEnd end =
        m_openBoxes > 0
            ? EkBoxEnd::Acknowledged
            : showError(
                  tr("Unexpected image format received. Calibration expects phase shift image as input."));
    if (end == EkBoxEnd::Deleted || m_state != EkState::Measuring) {
        return;
    }
    // With a camera that sends nothing else the next box opens before the user can reach Cancel.
    if (end == EkBoxEnd::Dismissed && m_framesDone == 0) {
        reject();
        return;
    }
    showProgress();
    finishIfComplete();
}

void CkToFCalibrateOffsetDlg::done(int iResult) {
    stopMeasuring();
    QDialog::done(iResult);
}

void CkToFCalibrateOffsetDlg::stopMeasuring() {
    if (m_state != EkState::Measuring) {
        return;
    }
    // Notifications that are queued already are ignored in this state.
    m_state = EkState::Done;
    if (m_view) {
        disconnect(m_view, SIGNAL(receivedFrame(qint32)), this, SLOT(on_viewFrameReceived(qint32)));
    }
}

bool CkToFCalibrateOffsetDlg::isComplete() const {
    return m_state == EkState::Measuring && qint64(m_framesDone) >= m_framesToAverage;
}

void CkToFCalibrateOffsetDlg::showProgress() {
    m_ui->lbProgress->setText(tr("Progresss: %1 / %2").arg(m_framesDone).arg(m_framesToAverage));
}

// Frames are counted while a box is open, too; the result is shown after it is closed.
void CkToFCalibrateOffsetDlg::finishIfComplete() {
    if (isComplete() && m_openBoxes == 0) {
        stopMeasuring();
        finish();
    }
}

void CkToFCalibrateOffsetDlg::finish() {
    if (!(m_modulationFreq >= CkToFOffsetEstimator::kMinModulationFreq) || std::isinf(m_modulationFreq)) {
        if (showError(tr("Modulation frequency not present in image metadata.")) != EkBoxEnd::Deleted) {
            accept();
        }
        return;
    }
    if (!m_estimator.hasMean()) {
        if (showError(tr("Unexpected image format received. Calibration expects phase shift image as "
                         "input.")) != EkBoxEnd::Deleted) {
            accept();
        }
        return;
    }
    const CkToFOffsetEstimator::SkResult result = m_estimator.result(m_distance, m_modulationFreq);
    if (showResult(result) == EkBoxEnd::Deleted) {
        return;
    }
    ToFDistanceOffset::store(result.fOffset);
    accept();
}

CkToFCalibrateOffsetDlg::EkBoxEnd CkToFCalibrateOffsetDlg::showError(const QString& sText) {
    return showBox(QMessageBox::Critical, tr("Error"), sText);
}

CkToFCalibrateOffsetDlg::EkBoxEnd
CkToFCalibrateOffsetDlg::showResult(const CkToFOffsetEstimator::SkResult& result) {
    const float fFactor = m_ui->cbUnit->currentIndex() == 0 ? kCmPerMetre : kInchesPerMetre;
    const QLocale locale;
    return showBox(QMessageBox::Information, tr("Result"),
                   tr("Measured distance: %1 %2\n\nCalculated offset: %3 %2")
                       .arg(locale.toString(double(result.fMeasuredDistance * fFactor), 'f', 2),
                            m_ui->cbUnit->currentText(),
                            locale.toString(double(fFactor * result.fOffset), 'f', 2)));
}

// The static functions of QMessageBox crash when their parent is deleted while the box is open.
CkToFCalibrateOffsetDlg::EkBoxEnd
CkToFCalibrateOffsetDlg::showBox(QMessageBox::Icon icon, const QString& sTitle, const QString& sText) {
    ++m_openBoxes;
    const QPointer<CkToFCalibrateOffsetDlg> self(this);
    const QPointer<QMessageBox> box(new QMessageBox(icon, sTitle, sText, QMessageBox::Ok, this));
    CkToFDismissal dismissal;
    box->installEventFilter(&dismissal);
    box->exec();
    delete box;
    if (!self) {
        return EkBoxEnd::Deleted;
    }
    --m_openBoxes;
    return dismissal.happened ? EkBoxEnd::Dismissed : EkBoxEnd::Acknowledged;
}
