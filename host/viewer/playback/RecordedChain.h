#pragma once

#include "host/recording/SkFrameDescription.h"

#include <QDomDocument>

class CkChainable;
class CkMdiView;

/// The processing chain that a recording stores with its frames: written when the recording starts, and
/// turned into a chain that plays the recording when the file is opened. User-interface thread.
namespace RecordedChain {

/// The information stored with a recording of this block: the program, the block's chain, and the colours of
/// pView, which may be null.
SkRecordingInfo describe(const CkChainable* pBlock, const CkMdiView* pView);

/// The part of the stored chain that processed the recorded frames, with a CkVideoSource of these settings in
/// place of the block that was recorded. A null document when there is none: no chain, or no block after the
/// recorded one. sError is set when the stored chain cannot be read.
QDomDocument forPlayback(const SkRecordingInfo& info, const QDomElement& sourceSettings, QString& sError);

/// Titles of the blocks of such a chain, except for the source.
QStringList blockTitles(const QDomDocument& chain);

} // namespace RecordedChain
