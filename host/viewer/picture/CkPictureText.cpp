#include "host/viewer/picture/CkPictureText.h"

#include "host/viewer/base/pluralNumber.h"
#include "host/viewer/picture/CkDisplayTable.h"

#include <QStringList>
#include <algorithm>
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

QString CkPictureText::translated(const QString& sName) {
    // What the time-of-flight plug-in and the simulated cameras call their channels, and the colour maps.
    static const char* const s_known[] = {QT_TR_NOOP("Phase shift"),   QT_TR_NOOP("Confidence"),
                                          QT_TR_NOOP("Depth"),         QT_TR_NOOP("Grey"),
                                          QT_TR_NOOP("Inverted grey"), QT_TR_NOOP("Rainbow"),
                                          QT_TR_NOOP("Hot"),           QT_TR_NOOP("Violet to yellow"),
                                          QT_TR_NOOP("Spectrum"),      QT_TR_NOOP("Blue to red")};
    for (const char* name : s_known) {
        if (sName == QLatin1String(name)) {
            return tr(name);
        }
    }
    return sName;
}

QString CkPictureText::channelName(const SkPicBufInfo& info, const CkImageMetadata& metadata,
                                   quint32 uiChannel) {
    if (int(uiChannel) < metadata.channelNames.size() &&
        metadata.channelNames.size() == qsizetype(info.channels)) {
        return translated(metadata.channelNames[int(uiChannel)]);
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

QString CkPictureText::channelUnit(const SkPicBufInfo& info, const CkImageMetadata& metadata,
                                   quint32 uiChannel) {
    const QString name = metadata.channelNames.value(int(uiChannel));
    if (name == QLatin1String("Phase shift")) {
        return QStringLiteral("rad");
    }
    if (name == QLatin1String("Depth")) {
        return QStringLiteral("m");
    }
    const bool counts =
        info.channels > 0 && !isFloat(info.dataType) && !CkDisplayTable::isColourPicture(info);
    return counts ? tr("counts") : QString();
}

QLocale CkPictureText::locale() {
    QLocale user;
    user.setNumberOptions(user.numberOptions() | QLocale::OmitGroupSeparator);
    return user;
}

QString CkPictureText::number(const SkPicBufInfo& info, double fValue) {
    if (std::isnan(fValue)) {
        return QStringLiteral("NaN");
    }
    if (std::isinf(fValue)) {
        return fValue > 0 ? QStringLiteral("+Inf") : QStringLiteral("-Inf");
    }
    return isFloat(info.dataType) ? locale().toString(fValue, 'g', 5) : locale().toString(fValue, 'f', 0);
}

QString CkPictureText::pixel(const SkPicBuf& picBuf, const CkImageMetadata& metadata, int iX, int iY) {
    if (picBuf.data == nullptr || iX < 0 || iY < 0 || quint32(iX) >= picBuf.width ||
        quint32(iY) >= picBuf.height) {
        return {};
    }
    const quint32 shown = std::min(picBuf.channels, 8U);
    const QString first = channelUnit(picBuf, metadata, 0);
    bool same = true;
    for (quint32 channel = 1; channel < shown; ++channel) {
        same = same && channelUnit(picBuf, metadata, channel) == first;
    }
    QStringList values;
    for (quint32 channel = 0; channel < shown; ++channel) {
        const double value = CkDisplayTable::sampleValue(picBuf, quint32(iX), quint32(iY), channel);
        QString entry = channelName(picBuf, metadata, channel) + QLatin1Char(' ') + number(picBuf, value);
        const QString unit = channelUnit(picBuf, metadata, channel);
        // A unit that all share is said once, behind the last one.
        if (!unit.isEmpty() && (!same || channel + 1 == shown)) {
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
    const QString channels = tr("%n channel(s)", nullptr, pluralNumber(info.channels));
    return tr("%1 x %2, %3, %4 bit %5")
        .arg(info.width)
        .arg(info.height)
        .arg(channels)
        .arg(info.bitsPerChannel)
        .arg(kind);
}
