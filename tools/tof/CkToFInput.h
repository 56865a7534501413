#pragma once

#include "host/recording/CkRecordingReader.h"
#include "tools/tof/CkToFPageErrors.h"
#include "tools/tof/SkToFLimits.h"
#include "tools/tof/ToFConsole.h"

#include <vector>

/// Consecutive pages that are processed together: the images of a set, or a single page.
struct SkToFGroup {
    qint64 first = 0;
    qint64 count = 1;
    quint64 bytes = 0;       ///< of the pictures of all pages, at least the angle list that the set declares
    quint64 pixels = 0;      ///< of all pages
    quint64 largestPage = 0; ///< bytes of a page's picture
    quint32 width = 0;       ///< of the last page's picture
    bool maybeTof = false;   ///< a page may be a raw ToF, phase shift or depth picture

    void add(const SkFrameDescription& description);
};

/// The recording that a command reads, and its errors: each kind is printed once and counts for the exit
/// code.
class CkToFInput {
public:
    explicit CkToFInput(const SkToFLimits& limits) : m_limits(limits), m_reader(limits.reading) {}

    /// False, with an error message, when nothing can be read.
    bool open(const QString& sFileName);
    const CkRecordingReader& reader() const { return m_reader; }

    /// All pages in order; the separate phases or sections of a set form one group.
    std::vector<SkToFGroup> groups() const;

    quint64 memoryBytes() const { return m_limits.memoryBytes; }
    /// The error text when processing a group needs more memory than allowed; otherwise empty.
    QString tooMuchMemory(const SkToFGroup& group, quint64 uiBytes) const;

    /// Prints an error of a page; see CkToFPageErrors.
    void reportError(const QString& sMessage) { m_errors.add(sMessage); }
    /// ToFSuccess, or ToFDamaged after an error.
    int exitCode() const;

    /// True, with an error message, when writing sFileName would overwrite this input.
    bool isInput(const QString& sFileName) const;

private:
    SkToFLimits m_limits;
    CkRecordingReader m_reader;
    CkToFPageErrors m_errors;
};

/// A sentence, with a leading space, about a set without result; sMissing from CkToFPipeline::missingImages.
QString tofIncompleteSet(const SkToFGroup& group, const QString& sMissing);

/// Whether a recording may have this name: a TIFF suffix or none. Otherwise prints an error message.
bool tofMayBeRecording(const QString& sFileName);

/// Name and version of the program, for the files it writes.
QString tofSoftware();
