#pragma once

#include <QJsonObject>

class CkImageView;
class CkMdiView;

/// The appearance of a picture view, as the JSON object that recordings and sessions store. Its members are
/// part of both file formats: "kind" ("picture"), "channel", "autoContrast", "low", "high", "gamma",
/// "colours" (name of a pseudo-colour table); in sessions also "saturated", "legend" and "zoom".
/// User-interface thread.
namespace ViewAppearance {

/// Channel, colours and contrast, as stored in recordings; empty for views other than picture views.
QJsonObject colours(const CkMdiView* pView);

/// The same with legend, marks and zoom, as stored in sessions, but without the limits of automatic contrast,
/// which follow the picture. Empty for a view without a picture, unless an appearance is pending for it.
QJsonObject whole(const CkImageView& view);

/// Members that are missing or out of range leave the view as it is.
void apply(CkImageView& view, const QJsonObject& appearance);

/// Applies an appearance right after the first picture, which sets the view's default channel and colours.
/// Until then it is pending: whole() returns it, so that it is not lost when the session ends before.
void applyAfterFirstPicture(CkImageView& view, const QJsonObject& appearance);

} // namespace ViewAppearance
