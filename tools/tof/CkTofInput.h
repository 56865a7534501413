#pragma once

#include "recording/CkRecordingReader.h"
#include "tof/CkTofConsole.h"

#include <vector>

/// Pages that have to be worked on together, one after the other: the images of a set, or a single one.
struct SkTofGroup {
    qint64 first = 0;
    qint64 count = 1;
};

/// A recording that a command reads, and what turned out to be wrong with it. Errors are said once each and
/// kept for the exit code.
class CkTofInput {
public:
    /// False, after saying why, when nothing can be read.
    bool open(const QString& sFileName);
    const CkRecordingReader& reader() const { return m_reader; }

    /// All pages in order, sets of separate phases or sections together.
    std::vector<SkTofGroup> groups() const;

    /// Says an error about a part of the input. The first few are shown, the others counted.
    void complain(const QString& sMessage);
    /// TofSuccess, or TofDamaged after a complaint.
    int exitCode() const;

    /// True, after saying so, when writing sFileName would destroy this input.
    bool isInput(const QString& sFileName) const;

private:
    CkRecordingReader m_reader;
    qint64 m_iComplaints = 0;
};

/// A sentence, with a space before it, on a set of which nothing came; sMissing as of
/// CkTofPipeline::missingImages.
QString tofIncompleteSet(const SkTofGroup& group, const QString& sMissing);

/// Whether a recording may be called so: without an ending, or with that of a TIFF file. Says why when not.
bool tofMayBeRecording(const QString& sFileName);

/// Who writes files: the program's name and version.
QString tofSoftware();
