#include "image/CkPictureText.h"

#include "image/CkDisplayTable.h"

#include <QLocale>
#include <QStringList>
#include <cmath>

namespace {

bool isFloat(EkImageDataType dataType) {
    return dataType == EkImageDataType::Float32 || dataType == EkImageDataType::Float64;
}

bool isSigned(EkImageDataType dataType) {
    return dataType == EkImageDataType::Int8 || dataType == EkImageDataType::Int16 ||
           dataType == EkImageDataType::Int32 || dataType == EkImageDataType::Int64;
}

} // namespace

QString CkPictureText::channelName(const SkPicBufInfo& info, const CkImageMetadata& metadata,
                                   quint32 uiChannel) {
    if (int(uiChannel) < metadata.channelNames.size() &&
        metadata.channelNames.size() == qsizetype(info.channels)) {
        return metadata.channelNames[int(uiChannel)];
    }
    if (info.colorFilterArray == EkColorFilterArray::RawX2AandB && info.channels == 2) {
        return uiChannel == 0 ? QStringLiteral("A") : QStringLiteral("B");
    }
    if (info.colorFilterArray == EkColorFilterArray::RawAminusB && info.channels == 1) {
        return QStringLiteral("A - B");
    }
    if (info.colorFilterArray == EkColorFilterArray::RawX3Hybrid && info.channels == 3) {
        return QStringLiteral("X%1").arg(uiChannel + 1);
    }
    if (CkDisplayTable::isColourPicture(info)) {
        const QStringList names = {tr("Blue"), tr("Green"), tr("Red"), tr("Alpha")};
        return names.value(int(uiChannel));
    }
    return info.channels == 1 ? tr("Value") : tr("Channel %1").arg(uiChannel + 1);
}

QString CkPictureText::channelUnit(const CkImageMetadata& metadata, quint32 uiChannel) {
    const QString name = metadata.channelNames.value(int(uiChannel));
    if (name == QLatin1String("Phase shift")) {
        return QStringLiteral("rad");
    }
    return name == QLatin1String("Depth") ? QStringLiteral("m") : QString();
}

QString CkPictureText::number(const SkPicBufInfo& info, double fValue) {
    if (std::isnan(fValue)) {
        return QStringLiteral("NaN");
    }
    if (std::isinf(fValue)) {
        return fValue > 0 ? QStringLiteral("+Inf") : QStringLiteral("-Inf");
    }
    return isFloat(info.dataType) ? QString::number(fValue, 'g', 5) : QString::number(fValue, 'f', 0);
}

QString CkPictureText::pixel(const SkPicBuf& picBuf, const CkImageMetadata& metadata, int iX, int iY) {
    if (picBuf.data == nullptr || iX < 0 || iY < 0 || quint32(iX) >= picBuf.width ||
        quint32(iY) >= picBuf.height) {
        return {};
    }
    QStringList values;
    for (quint32 channel = 0; channel < picBuf.channels && channel < 8; ++channel) {
        const double value = CkDisplayTable::sampleValue(picBuf, quint32(iX), quint32(iY), channel);
        QString entry = channelName(picBuf, metadata, channel) + QLatin1Char(' ') + number(picBuf, value);
        const QString unit = channelUnit(metadata, channel);
        if (!unit.isEmpty()) {
            entry += QLatin1Char(' ') + unit;
        }
        values.append(entry);
    }
    return QStringLiteral("x %1, y %2:  %3").arg(iX).arg(iY).arg(values.join(QStringLiteral(",  ")));
}

QString CkPictureText::format(const SkPicBufInfo& info) {
    QString kind = isFloat(info.dataType)    ? tr("float")
                   : isSigned(info.dataType) ? tr("signed")
                                             : tr("unsigned");
    const QString channels = info.channels == 1 ? tr("1 channel") : tr("%1 channels").arg(info.channels);
    return tr("%1 x %2, %3, %4 bit %5")
        .arg(info.width)
        .arg(info.height)
        .arg(channels)
        .arg(info.bitsPerChannel)
        .arg(kind);
}
