#include "host/recording/SkFrameDescription.h"

#include "zuCore/CkImageData.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QStringList>
#include <QVariant>

#include <cmath>
#include <limits>

namespace {

QJsonValue toJson(float value) {
    if (std::isnan(value)) {
        return QStringLiteral("nan");
    }
    if (std::isinf(value)) {
        return value > 0 ? QStringLiteral("inf") : QStringLiteral("-inf");
    }
    return double(value);
}

QJsonValue toJson(quint64 value) {
    return value <= quint64(std::numeric_limits<qint64>::max()) ? QJsonValue(qint64(value))
                                                                : QJsonValue(QString::number(value));
}

QJsonValue toJson(qint64 value) {
    return value;
}
QJsonValue toJson(qint32 value) {
    return qint64(value);
}
QJsonValue toJson(quint32 value) {
    return qint64(value);
}
QJsonValue toJson(bool value) {
    return value;
}
QJsonValue toJson(const QString& value) {
    return value;
}
QJsonValue toJson(const QStringList& value) {
    return QJsonArray::fromStringList(value);
}

void fromJson(const QJsonValue& json, float& value) {
    if (json.isDouble()) {
        value = float(json.toDouble());
    } else if (json == QLatin1String("nan")) {
        value = std::numeric_limits<float>::quiet_NaN();
    } else if (json == QLatin1String("inf") || json == QLatin1String("-inf")) {
        const float infinity = std::numeric_limits<float>::infinity();
        value = json == QLatin1String("inf") ? infinity : -infinity;
    }
}

void fromJson(const QJsonValue& json, quint64& value) {
    value = json.isString() ? json.toString().toULongLong() : quint64(std::max<qint64>(0, json.toInteger()));
}

void fromJson(const QJsonValue& json, qint64& value) {
    value = json.toInteger();
}

template <typename Whole>
Whole saturated(const QJsonValue& json) {
    const double number = json.toDouble();
    if (number >= double(std::numeric_limits<Whole>::max())) {
        return std::numeric_limits<Whole>::max();
    }
    return number <= double(std::numeric_limits<Whole>::min()) ? std::numeric_limits<Whole>::min()
                                                               : Whole(number);
}

void fromJson(const QJsonValue& json, qint32& value) {
    value = saturated<qint32>(json);
}
void fromJson(const QJsonValue& json, quint32& value) {
    value = saturated<quint32>(json);
}
void fromJson(const QJsonValue& json, bool& value) {
    value = json.toBool();
}
void fromJson(const QJsonValue& json, QString& value) {
    value = json.toString();
}
void fromJson(const QJsonValue& json, QStringList& value) {
    value.clear();
    for (const QJsonValue entry : json.toArray()) {
        value.append(entry.toString());
    }
}

// One list for reading and writing, so that neither can miss a member.
template <typename Metadata, typename Visit>
void visitMetadata(Metadata& m, const Visit& visit) {
    visit("channelNames", m.channelNames);
    visit("tofFormatCode", m.tofFormatCode);
    visit("colorFilterArray", m.colorFilterArray);
    visit("modulationFrequency", m.modulationFrequency);
    visit("phasesCount", m.phasesCount);
    visit("phaseSequenceLength", m.phaseSequenceLength);
    visit("phaseSequenceIndex", m.phaseSequenceIndex);
    visit("phaseAngle", m.phaseAngle);
    visit("hybridPulseDuration", m.hybridPulseDuration);
    visit("sectionIndex", m.sectionIndex);
    visit("sectionCount", m.sectionCount);
    visit("sectionMode", m.sectionMode);
    visit("lensFocalLength", m.lensFocalLength);
    visit("exposureTimeUs", m.exposureTimeUs);
    visit("frameRate", m.frameRate);
    visit("timestampNs", m.timestampNs);
    visit("frameNumber", m.frameNumber);
    visit("cameraName", m.cameraName);
    visit("cameraSerial", m.cameraSerial);
}

template <typename Additional, typename Visit>
void visitAdditional(Additional& a, const Visit& visit) {
    visit("frameNumber", a.frameNumber);
    visit("timestampNs", a.timestampNs);
}

/// Inserts members into an object that may already hold others.
class CkMemberWriter {
public:
    explicit CkMemberWriter(QJsonObject& members) : m_members(members) {}
    template <typename Value>
    void operator()(const char* name, const Value& value) const {
        m_members.insert(QLatin1String(name), toJson(value));
    }

private:
    QJsonObject& m_members;
};

class CkMemberReader {
public:
    explicit CkMemberReader(const QJsonObject& members) : m_members(members) {}
    template <typename Value>
    void operator()(const char* name, Value& value) const {
        const auto found = m_members.constFind(QLatin1String(name));
        if (found != m_members.constEnd()) {
            fromJson(*found, value);
        }
    }

private:
    const QJsonObject& m_members;
};

QByteArray toAscii(const QByteArray& utf8) {
    // TIFF defines the tag as ASCII; readers interpret other encodings differently.
    QByteArray ascii;
    ascii.reserve(utf8.size());
    const QString text = QString::fromUtf8(utf8);
    for (const QChar letter : text) {
        if (letter.unicode() < 0x80) {
            ascii.append(char(letter.unicode()));
        } else {
            ascii.append("\\u").append(QByteArray::number(letter.unicode(), 16).rightJustified(4, '0'));
        }
    }
    return ascii;
}

QStringList recordingNames() {
    return {QStringLiteral("chain"), QStringLiteral("view"), QStringLiteral("software")};
}

QJsonObject without(QJsonObject object, const QStringList& names) {
    for (const QString& name : names) {
        object.remove(name);
    }
    return object;
}

} // namespace

QByteArray SkFrameDescription::toText(const SkRecordingInfo* pRecording) const {
    QJsonObject root = object;
    root.insert(QLatin1String("schema"), QLatin1String(kSchemaName));
    root.insert(QLatin1String("schemaVersion"), kSchemaVersion);

    QJsonObject picture = root.value(QLatin1String("picture")).toObject();
    const CkMemberWriter writePicture(picture);
    writePicture("width", info.width);
    writePicture("height", info.height);
    writePicture("channels", info.channels);
    writePicture("bitsPerChannel", info.bitsPerChannel);
    writePicture("linePadding", info.linePadding);
    writePicture("dataType", quint32(info.dataType));
    writePicture("storageFormat", quint32(info.storageFormat));
    writePicture("colorFilterArray", quint32(info.colorFilterArray));
    writePicture("layoutFlag", info.layoutFlag);
    visitAdditional(additionalData, writePicture);
    root.insert(QLatin1String("picture"), picture);

    QJsonObject members = root.value(QLatin1String("metadata")).toObject();
    visitMetadata(metadata, CkMemberWriter(members));
    root.insert(QLatin1String("metadata"), members);

    if (pRecording != nullptr) {
        QJsonObject recording = root.value(QLatin1String("recording")).toObject();
        recording.insert(QLatin1String("chain"), pRecording->chainXml);
        recording.insert(QLatin1String("view"), pRecording->viewSettings);
        recording.insert(QLatin1String("software"), pRecording->software);
        root.insert(QLatin1String("recording"), recording);
    } else {
        // The frame was the first one of another recording, whose description it still carries.
        const QJsonObject rest = without(root.value(QLatin1String("recording")).toObject(), recordingNames());
        root.remove(QLatin1String("recording"));
        if (!rest.isEmpty()) {
            root.insert(QLatin1String("recording"), rest);
        }
    }
    return toAscii(QJsonDocument(root).toJson(QJsonDocument::Compact));
}

bool SkFrameDescription::fromText(const QByteArray& text) {
    const QJsonObject root = QJsonDocument::fromJson(text).object();
    if (root.value(QLatin1String("schema")).toString() != QLatin1String(kSchemaName)) {
        return false;
    }
    object = root;
    metadata = CkImageMetadata();
    additionalData = SkPicAdditionalData();
    const QJsonObject picture = root.value(QLatin1String("picture")).toObject();
    const QJsonObject members = root.value(QLatin1String("metadata")).toObject();
    const CkMemberReader readPicture(picture);
    quint32 storage = quint32(info.storageFormat);
    quint32 filter = quint32(info.colorFilterArray);
    readPicture("bitsPerChannel", info.bitsPerChannel);
    readPicture("linePadding", info.linePadding);
    readPicture("storageFormat", storage);
    readPicture("colorFilterArray", filter);
    readPicture("layoutFlag", info.layoutFlag);
    info.storageFormat = EkDataStorageFormat(storage);
    info.colorFilterArray = EkColorFilterArray(filter);
    // The TIFF tags cannot express "another two-byte type".
    if (info.dataType == EkImageDataType::UInt16 &&
        picture.value(QLatin1String("dataType")).toInt() == int(EkImageDataType::Other16)) {
        info.dataType = EkImageDataType::Other16;
    }
    visitAdditional(additionalData, readPicture);
    visitMetadata(metadata, CkMemberReader(members));
    return true;
}

SkRecordingInfo SkFrameDescription::recordingInfo() const {
    const QJsonObject recording = object.value(QLatin1String("recording")).toObject();
    return {recording.value(QLatin1String("chain")).toString(),
            recording.value(QLatin1String("view")).toObject(),
            recording.value(QLatin1String("software")).toString()};
}

QJsonObject SkFrameDescription::foreignMembers() const {
    static const QJsonObject known = QJsonDocument::fromJson(SkFrameDescription().toText()).object();
    QJsonObject foreign = without(object, known.keys());
    for (const QLatin1String part :
         {QLatin1String("picture"), QLatin1String("metadata"), QLatin1String("recording")}) {
        const QStringList names =
            part == QLatin1String("recording") ? recordingNames() : known.value(part).toObject().keys();
        const QJsonObject rest = without(object.value(part).toObject(), names);
        foreign.remove(part);
        if (!rest.isEmpty()) {
            foreign.insert(part, rest);
        }
    }
    return foreign;
}
