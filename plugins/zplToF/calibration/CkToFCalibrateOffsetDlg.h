#pragma once

#include "calibration/CkToFOffsetEstimator.h"

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
/// OK starts measuring; the dialog closes by itself when it is done. Cancel ends it at any time, and so does
/// Escape in the box that tells of a wrong frame, which may be followed by the next one at once. The view may
/// close meanwhile; no frame comes any more then.
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
    void stopMeasuring();
    void finish();
    // False when the dialog itself was deleted while the box was open: nothing of it may be touched then.
    bool showError(const QString& sText, bool* pbDismissed = nullptr);
    bool showResult(const CkToFOffsetEstimator::SkResult& result);
    bool showBox(QMessageBox::Icon icon, const QString& sTitle, const QString& sText,
                 bool* pbDismissed = nullptr);
    void storeOffset(float fOffset);

    std::unique_ptr<Ui::CkToFCalibrateOffsetDlg> m_ui;
    QPointer<CkMdiView> m_view;
    CkToFOffsetEstimator m_estimator;
    unsigned int m_uiFramesDone = 0;
    int m_iFramesToAverage = 0;
    float m_fDistance = 0.0F;       ///< cm
    float m_fModulationFreq = 0.0F; ///< MHz, of the frame counted last
    bool m_bBoxOpen = false;
};
