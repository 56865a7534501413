#pragma once

#include "zuCore/CkImageMetadata.h"
#include "zuCore/SkPicBuf.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

class CkImageData;

/// What a recording says about itself, on its first page.
struct SkRecordingInfo {
    QString chainXml;         ///< the chain that the frames came from; empty when unknown
    QJsonObject viewSettings; ///< how the frames were looked at; empty when unknown
    QString software;         ///< who wrote the file, with version
};

/// Everything a page tells about its frame beside the samples, and its form as JSON.
///
/// Numbers are exact: whole numbers are written as such, 64-bit ones above 2^63 and values that are not
/// finite as texts ("nan", "inf", "-inf"). The text is plain ASCII.
struct SkFrameDescription {
    static constexpr char SchemaName[] = "zutof.frame";
    static constexpr int SchemaVersion = 1;

    SkPicBufInfo info; ///< rows packed
    SkPicAdditionalData additionalData;
    CkImageMetadata metadata;
    /// The object as it was read. Members that this version does not know are kept when it is written again.
    QJsonObject object;

    /// The text of the page; pRecording for the first one. What object says about a recording is left out on
    /// other pages.
    QByteArray toText(const SkRecordingInfo* pRecording = nullptr) const;

    /// Fills metadata, additional data and the parts of info that samples do not tell (size and sample type
    /// are left as they are). False, with nothing changed, for a text that is none of ours. Members that are
    /// missing or of another type count as their defaults, numbers out of range saturate.
    bool fromText(const QByteArray& text);

    /// What object holds beside the members that this version knows.
    QJsonObject foreignMembers() const;

    /// Of the first page; empty members where it says nothing.
    SkRecordingInfo recordingInfo() const;
};

/// What a recording said about a frame that CkImageMetadata has no place for. It goes with the frame through
/// a chain, so that it is not lost when the frame is recorded again.
class CkForeignMembers {
public:
    /// Empty for frames of cameras.
    static QJsonObject of(const CkImageData& frame);
    /// On the thread that made the frame.
    static void give(CkImageData& frame, const QJsonObject& members);
};
