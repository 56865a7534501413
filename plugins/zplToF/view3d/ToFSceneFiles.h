#pragma once

#include "plugins/zplToF/cloud/SkToFPoint.h"

#include <span>

class QImage;
class QString;
class QWidget;

/// Files written from the scene. A file appears under its name only once it is complete; when
/// writing fails, an existing file is unchanged. User-interface thread.
namespace ToFSceneFiles {

/// The image format follows the extension of the name: PNG, JPEG or BMP. False for a null image and when the
/// file cannot be written.
bool saveImage(const QImage& image, const QString& sFileName);

/// Opens a file dialog in the host's last directory and saves the image under the chosen name; its
/// directory becomes the host's last one. Returns what went wrong, for the log; empty on success and when
/// the user cancels. The parent may be deleted while the dialog is open.
QString saveImageAs(const QImage& image, QWidget* pParent, const QString& sTitle);

/// The cloud as PLY text. False without points and when the file cannot be written.
bool savePly(std::span<const SkToFPoint> points, const QString& sFileName);

/// Hands the cloud as PLY text to the host's export, which lets the user choose the file. Returns what went
/// wrong, for the log; empty on success.
QString exportPly(std::span<const SkToFPoint> points, QWidget* pParent);

} // namespace ToFSceneFiles
