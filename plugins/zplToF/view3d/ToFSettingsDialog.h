#pragma once

class CkToFCloudModel;
class CkToFOpticalPathSettingsDlg;
class QColor;
class QWidget;

/// Fills the settings dialog from the model of a 3D view, and the model from the dialog. User-interface
/// thread.
namespace ToFSettingsDialog {

/// pView: parent, and receiver of the dialog's signals by the names of its slots. Owned by the caller, unless
/// the parent deletes it first.
CkToFOpticalPathSettingsDlg* create(const CkToFCloudModel& model, const QColor& clBackground, QWidget* pView);

/// Apply: adopts all values but the orthogonal correction, which takes effect with OK only.
void apply(const CkToFOpticalPathSettingsDlg& dialog, CkToFCloudModel& model);

/// OK: adopts all values and stores them in the settings.
void accept(const CkToFOpticalPathSettingsDlg& dialog, CkToFCloudModel& model);

} // namespace ToFSettingsDialog
