#pragma once

#include "zuCore/CkImageMetadata.h"
#include "zuCore/SkPicBuf.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

/// Information about a recording as a whole, stored on its first page.
struct SkRecordingInfo {
    QString chainXml;         ///< the chain that the frames came from; empty when unknown
    QJsonObject viewSettings; ///< of the view that showed the frames; empty when unknown
    QString software;         ///< name and version of the program that wrote the file
};

/// Everything that a page stores about its frame except the samples, and its representation as JSON.
///
/// Numbers are exact: integers are written as such, 64-bit ones above 2^63 and non-finite values as strings
/// ("nan", "inf", "-inf"). The text is plain ASCII.
struct SkFrameDescription {
    static constexpr char kSchemaName[] = "zutof.frame";
    static constexpr int kSchemaVersion = 1;

    SkPicBufInfo info; ///< rows packed
    SkPicAdditionalData additionalData;
    CkImageMetadata metadata;
    /// The object as it was read. Members that this version does not know are preserved when it is written
    /// again.
    QJsonObject object;

    /// The text of the page; pRecording only for the first page of a file. On other pages, the recording
    /// member of object is omitted.
    QByteArray toText(const SkRecordingInfo* pRecording = nullptr) const;

    /// Fills metadata, additional data and the members of info that the TIFF tags do not hold (size and
    /// sample type stay). False, with nothing changed, for the text of another program. Missing members and
    /// those of another type take their defaults, numbers out of range saturate.
    bool fromText(const QByteArray& text);

    /// The members of object that this version does not know.
    QJsonObject foreignMembers() const;

    /// From the first page; missing members are empty.
    SkRecordingInfo recordingInfo() const;
};
