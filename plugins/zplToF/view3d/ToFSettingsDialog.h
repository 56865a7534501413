#pragma once

class CkToFCloudModel;
class CkToFOpticalPathSettingsDlg;
class QColor;
class QWidget;

/// The settings dialog, filled from what a 3D view shows, and the way of its values back. User-interface
/// thread.
namespace ToFSettingsDialog {

/// pView: parent, and receiver of the dialog's signals by the names of its slots. Owned by the caller, unless
/// the parent deletes it first.
CkToFOpticalPathSettingsDlg* create(const CkToFCloudModel& model, const QColor& clBackground, QWidget* pView);

/// Apply: takes over all values but the orthogonal correction, which takes effect with OK only.
void apply(const CkToFOpticalPathSettingsDlg& dialog, CkToFCloudModel& model);

/// OK: takes over all values and stores them in the settings.
void accept(const CkToFOpticalPathSettingsDlg& dialog, CkToFCloudModel& model);

} // namespace ToFSettingsDialog
