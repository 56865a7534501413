#pragma once

#include "host/recording/CkRecordingReader.h"
#include "tools/tof/CkToFComplaints.h"
#include "tools/tof/CkToFConsole.h"
#include "tools/tof/SkToFLimits.h"

#include <vector>

/// Pages that have to be worked on together, one after the other: the images of a set, or a single one.
struct SkToFGroup {
    qint64 first = 0;
    qint64 count = 1;
    quint64 bytes = 0;       ///< of the pictures of all pages, or of the set as it is said to be
    quint64 pixels = 0;      ///< of all pages
    quint64 largestPage = 0; ///< bytes of a page's picture
    quint32 width = 0;       ///< of the last page's picture
    bool maybeTof = false;   ///< a page may be a raw ToF, phase shift or depth picture

    void add(const SkFrameDescription& description);
};

/// A recording that a command reads, and what turned out to be wrong with it. Errors are said once each and
/// kept for the exit code.
class CkToFInput {
public:
    explicit CkToFInput(const SkToFLimits& limits) : m_limits(limits), m_reader(limits.reading) {}

    /// False, after saying why, when nothing can be read.
    bool open(const QString& sFileName);
    const CkRecordingReader& reader() const { return m_reader; }

    /// All pages in order, sets of separate phases or sections together.
    std::vector<SkToFGroup> groups() const;

    quint64 memoryBytes() const { return m_limits.memoryBytes; }
    /// Why work that takes so many bytes is not begun with a group; empty when it may be.
    QString tooMuchMemory(const SkToFGroup& group, quint64 uiBytes) const;

    /// Says an error about a part of the input, each kind once and with its number at the end.
    void complain(const QString& sMessage) { m_complaints.add(sMessage); }
    /// ToFSuccess, or ToFDamaged after a complaint.
    int exitCode() const;

    /// True, after saying so, when writing sFileName would destroy this input.
    bool isInput(const QString& sFileName) const;

private:
    SkToFLimits m_limits;
    CkRecordingReader m_reader;
    CkToFComplaints m_complaints;
};

/// A sentence, with a space before it, on a set of which nothing came; sMissing as of
/// CkToFPipeline::missingImages.
QString tofIncompleteSet(const SkToFGroup& group, const QString& sMissing);

/// Whether a recording may be called so: without an ending, or with that of a TIFF file. Says why when not.
bool tofMayBeRecording(const QString& sFileName);

/// Who writes files: the program's name and version.
QString tofSoftware();
