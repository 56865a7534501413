#include "plugins/zplToF/view3d/ToFSettingsDialog.h"

#include "plugins/zplToF/opticalpath/CkToFOpticalPathSettingsDlg.h"
#include "plugins/zplToF/view3d/CkToFCloudModel.h"
#include "plugins/zplToF/view3d/ToFHostSettings.h"

#include <QSettings>

namespace {

constexpr float kMicrometresPerMm = 1000.0F;

// An unedited value must not change by the conversion to micrometres and back.
void adoptCellSize(float& cellSizeMM, float micrometres) {
    if (micrometres != cellSizeMM * kMicrometresPerMm) {
        cellSizeMM = micrometres / kMicrometresPerMm;
    }
}

} // namespace

CkToFOpticalPathSettingsDlg* ToFSettingsDialog::create(const CkToFCloudModel& model,
                                                       const QColor& clBackground, QWidget* pView) {
    const EkDepthDataType kind = model.frame().depthDataKind();
    const SkPicBuf& confidence = model.frame().confidencePic();
    const bool hasConfidence = confidence.data != nullptr;
    float thresholdMax = hasConfidence ? confidence.maxValue : 0.0F;
    if (kind != EkDepthDataType::PhaseShift) {
        thresholdMax = 1.0F;
    }
    const SkToFViewSettings& options = model.options();
    const SkToFOpticalPath& path = options.opticalPath;
    auto* dialog = new CkToFOpticalPathSettingsDlg(
        kind, path.modulationFreqMHz, hasConfidence, path.confidenceThreshold, 0.0F, thresholdMax,
        path.compensateDistortion, path.lensFocalLengthMM, path.centerOffsetMM,
        path.chipCellSizeMM * kMicrometresPerMm, path.realDistanceOffsetM, path.orthoRadialCorrection,
        options.showBBox, clBackground.rgb() & RGB_MASK, options.regulateInputFps, options.maxInputFps,
        pView);
    QObject::connect(dialog, SIGNAL(dialogValuesChanged()), pView, SLOT(onOpticalPathDlgValueChanged()));
    QObject::connect(dialog, SIGNAL(confidenceThresholdChanged(float)), pView,
                     SLOT(onConfidenceThresholdChanged(float)));
    QObject::connect(dialog, SIGNAL(bboxVisibityChanged(bool)), pView, SLOT(showBoundingBox(bool)));
    QObject::connect(dialog, SIGNAL(bgColorChanged(uint)), pView, SLOT(selectBgColor(uint)));
    return dialog;
}

void ToFSettingsDialog::apply(const CkToFOpticalPathSettingsDlg& dialog, CkToFCloudModel& model) {
    SkToFViewSettings& options = model.options();
    SkToFOpticalPath& path = options.opticalPath;
    path.compensateDistortion = dialog.compensate();
    path.lensFocalLengthMM = dialog.lensFocalLength();
    path.centerOffsetMM = dialog.centerOffset();
    adoptCellSize(path.chipCellSizeMM, dialog.chipCellSize());
    path.modulationFreqMHz = dialog.modulationFreq();
    path.realDistanceOffsetM = dialog.realDistOffset();
    options.regulateInputFps = dialog.limitInputFps();
    options.maxInputFps = dialog.maxInputFps();
    model.cloud().freeOrthoFactorPic();
}

void ToFSettingsDialog::accept(const CkToFOpticalPathSettingsDlg& dialog, CkToFCloudModel& model) {
    apply(dialog, model);
    model.options().opticalPath.orthoRadialCorrection = dialog.orthoDistance();
    if (const auto settings = ToFHostSettings::open()) {
        model.options().writeDialogValues(*settings);
    }
}
