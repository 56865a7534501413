#pragma once

#include "host/recording/SkFrameDescription.h"

#include <QCoreApplication>
#include <QDomDocument>

class CkChainable;
class CkMdiView;
class CkViewArea;

/// What a recording says about where its frames come from and how they were looked at, and what the viewer
/// makes of that later. User-interface thread.
class CkRecordingNotes {
    Q_DECLARE_TR_FUNCTIONS(CkRecordingNotes)

public:
    /// The notes for a recording of a block; pView, which may be null, tells how it is looked at.
    static SkRecordingInfo of(const CkChainable* pBlock, const CkMdiView* pView);

    /// Colours and contrast of a picture view; empty for other views.
    static QJsonObject viewSettings(const CkMdiView* pView);
    /// Members that are missing or make no sense leave the view as it is.
    static void applyViewSettings(CkMdiView* pView, const QJsonObject& settings);

    /// The part of a recorded chain that worked on the frames that were recorded, with the recording in place
    /// of what was recorded. A null document when there is no such part: no chain, or nothing behind the
    /// block recorded. sError, which may be given with it, says what is wrong with a chain that cannot be
    /// read.
    static QDomDocument chainBehind(const SkRecordingInfo& info, const QDomElement& sourceSettings,
                                    QString& sError);

    /// Titles of the blocks of such a chain, for the question whether it is wanted.
    static QStringList blockTitles(const QDomDocument& chain);
};
