#pragma once

#include <QByteArray>

class CkViewArea;

/// Writes the contents of a session.
namespace SessionWriter {

/// The open documents, as a text that CkSessionReader restores: the cameras and whether they run, the
/// recordings with their current frame, the chains of both, and the views on these with their positions,
/// channels, colours and zoom. Empty when neither a camera nor a recording is open. A chain with a source of
/// another kind is left out. User-interface thread.
QByteArray write(const CkViewArea& area);

} // namespace SessionWriter
