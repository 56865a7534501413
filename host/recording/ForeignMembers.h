#pragma once

#include <QJsonObject>

class CkImageData;

/// The members of a recording's description of a frame that CkImageMetadata cannot hold. They accompany the
/// frame through a chain, so that they are preserved when the frame is recorded again.
namespace ForeignMembers {

/// Empty for frames of cameras.
QJsonObject of(const CkImageData& frame);
/// Replaces the members. Only on the thread that created the frame.
void set(CkImageData& frame, const QJsonObject& members);

} // namespace ForeignMembers
