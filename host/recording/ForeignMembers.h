#pragma once

#include <QJsonObject>

class CkImageData;

/// What a recording says about a frame that CkImageMetadata has no member for. It travels with the frame
/// through a chain, so that it survives when the frame is recorded again.
namespace ForeignMembers {

/// Empty for frames of cameras.
QJsonObject of(const CkImageData& frame);
/// Only on the thread that made the frame.
void give(CkImageData& frame, const QJsonObject& members);

} // namespace ForeignMembers
