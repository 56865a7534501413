#pragma once

#include <QByteArray>

class CkViewArea;

namespace SessionWriter {

/// What is open, as a text that CkSessionReader restores: the cameras and whether they run, the recordings
/// with the frame they show, the chains of both, and the views on these with their places, channels, colours
/// and zoom. Empty when neither a camera nor a recording is open. A chain with a source of another kind is
/// left out. User-interface thread.
QByteArray write(const CkViewArea& area);

} // namespace SessionWriter
