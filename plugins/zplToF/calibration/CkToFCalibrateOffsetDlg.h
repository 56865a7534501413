#pragma once

#include "plugins/zplToF/calibration/CkToFOffsetEstimator.h"

#include <QDialog>
#include <QMessageBox>
#include <QPointer>
#include <memory>

class CkMdiView;
namespace Ui {
class CkToFCalibrateOffsetDlg;
}

/// Dialog "Calibrate ToF Distance Offset": measures a wall at a known distance on the frames of a view and
/// stores the difference as the distance offset of the 3D view. User-interface thread.
///
/// OK starts measuring; the dialog closes itself when it is done. Cancel closes it at any time. So does
/// Escape in the box that reports a wrong frame, as long as no frame has been counted: a camera may send
/// nothing else. The view may be closed meanwhile; no more frames are received then.
class CkToFCalibrateOffsetDlg : public QDialog {
    Q_OBJECT

public:
    /// pView may be null.
    explicit CkToFCalibrateOffsetDlg(CkMdiView* pView, QWidget* pParent = nullptr);
    ~CkToFCalibrateOffsetDlg() override;

    /// See CkToFOffsetEstimator.
    static float sumCentralPhaseShiftPixels(const SkPicBuf* pImage, int iChannel, int iSquareSize,
                                            int& iCount);

public slots:
    void on_buttonBox_accepted();
    void on_viewFrameReceived(qint32 iFrameId);

protected:
    void done(int iResult) override;

private:
    enum class EkState { Idle, Measuring, Done };
    enum class EkBoxEnd {
        Acknowledged, ///< with its button or Enter
        Dismissed,    ///< with Escape or its close button
        Deleted       ///< together with the dialog; no member may be touched then
    };

    void stopMeasuring();
    bool isComplete() const;
    void showProgress();
    void finishIfComplete();
    void finish();
    EkBoxEnd showError(const QString& sText);
    EkBoxEnd showResult(const CkToFOffsetEstimator::SkResult& result);
    EkBoxEnd showBox(QMessageBox::Icon icon, const QString& sTitle, const QString& sText);

    std::unique_ptr<Ui::CkToFCalibrateOffsetDlg> m_ui;
    QPointer<CkMdiView> m_view;
    CkToFOffsetEstimator m_estimator;
    EkState m_state = EkState::Idle;
    unsigned int m_framesDone = 0;
    int m_framesToAverage = 0;
    float m_distance = 0.0F;       ///< cm
    float m_modulationFreq = 0.0F; ///< MHz, of the last frame counted
    int m_openBoxes = 0;
};
