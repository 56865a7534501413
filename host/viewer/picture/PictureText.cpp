#include "host/viewer/picture/PictureText.h"

#include "host/viewer/base/pluralNumber.h"
#include "host/viewer/picture/PictureColours.h"
#include "zuCore/ToFVocabulary.h"

#include <QCoreApplication>
#include <QStringList>
#include <algorithm>
#include <cmath>

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(PictureText)
};

} // namespace

QString PictureText::translated(const QString& sName) {
    // The names in ToFChannel that are words, and the colour maps of CkLut. Literals, for lupdate.
    static const char* const kKnown[] = {QT_TRANSLATE_NOOP("PictureText", "Phase shift"),
                                         QT_TRANSLATE_NOOP("PictureText", "Confidence"),
                                         QT_TRANSLATE_NOOP("PictureText", "Depth"),
                                         QT_TRANSLATE_NOOP("PictureText", "Grey"),
                                         QT_TRANSLATE_NOOP("PictureText", "Inverted grey"),
                                         QT_TRANSLATE_NOOP("PictureText", "Rainbow"),
                                         QT_TRANSLATE_NOOP("PictureText", "Hot"),
                                         QT_TRANSLATE_NOOP("PictureText", "Violet to yellow"),
                                         QT_TRANSLATE_NOOP("PictureText", "Spectrum"),
                                         QT_TRANSLATE_NOOP("PictureText", "Blue to red")};
    for (const char* name : kKnown) {
        if (sName == QLatin1String(name)) {
            return Texts::tr(name);
        }
    }
    return sName;
}

QString PictureText::channelName(const SkPicBufInfo& info, const CkImageMetadata& metadata,
                                 quint32 uiChannel) {
    if (int(uiChannel) < metadata.channelNames.size() &&
        metadata.channelNames.size() == qsizetype(info.channels)) {
        return translated(metadata.channelNames[int(uiChannel)]);
    }
    if (info.colorFilterArray == EkColorFilterArray::RawX2AandB && info.channels == 2) {
        return uiChannel == 0 ? ToFChannel::kA : ToFChannel::kB;
    }
    if (info.colorFilterArray == EkColorFilterArray::RawAminusB && info.channels == 1) {
        return QStringLiteral("A - B");
    }
    if (info.colorFilterArray == EkColorFilterArray::RawX3Hybrid && info.channels == 3) {
        return uiChannel == 0 ? ToFChannel::kX1 : uiChannel == 1 ? ToFChannel::kX2 : ToFChannel::kX3;
    }
    if (PictureColours::isColourPicture(info)) {
        const QStringList names = {Texts::tr("Blue"), Texts::tr("Green"), Texts::tr("Red"),
                                   Texts::tr("Alpha")};
        return names.value(int(uiChannel));
    }
    return info.channels == 1 ? Texts::tr("Value") : Texts::tr("Channel %1").arg(uiChannel + 1);
}

QString PictureText::channelUnit(const SkPicBufInfo& info, const CkImageMetadata& metadata,
                                 quint32 uiChannel) {
    const QString name = metadata.channelNames.value(int(uiChannel));
    if (name == ToFChannel::kPhaseShift) {
        return QStringLiteral("rad");
    }
    if (name == ToFChannel::kDepth) {
        return QStringLiteral("m");
    }
    const bool counts =
        info.channels > 0 && !isFloatType(info.dataType) && !PictureColours::isColourPicture(info);
    return counts ? Texts::tr("counts") : QString();
}

QLocale PictureText::locale() {
    QLocale user;
    user.setNumberOptions(user.numberOptions() | QLocale::OmitGroupSeparator);
    return user;
}

QString PictureText::number(const SkPicBufInfo& info, double fValue) {
    if (std::isnan(fValue)) {
        return QStringLiteral("NaN");
    }
    if (std::isinf(fValue)) {
        return fValue > 0 ? QStringLiteral("+Inf") : QStringLiteral("-Inf");
    }
    return isFloatType(info.dataType) ? locale().toString(fValue, 'g', 5) : locale().toString(fValue, 'f', 0);
}

QString PictureText::pixel(const SkPicBuf& picBuf, const CkImageMetadata& metadata, int iX, int iY) {
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
        const double value = PictureColours::sampleValue(picBuf, quint32(iX), quint32(iY), channel);
        QString entry = channelName(picBuf, metadata, channel) + QLatin1Char(' ') + number(picBuf, value);
        const QString unit = channelUnit(picBuf, metadata, channel);
        // A unit common to all channels is shown once, after the last value.
        if (!unit.isEmpty() && (!same || channel + 1 == shown)) {
            entry += QLatin1Char(' ') + unit;
        }
        values.append(entry);
    }
    return QStringLiteral("x %1, y %2:  %3").arg(iX).arg(iY).arg(values.join(QStringLiteral(",  ")));
}

QString PictureText::format(const SkPicBufInfo& info) {
    QString kind = isFloatType(info.dataType)           ? Texts::tr("float")
                   : isSignedIntegerType(info.dataType) ? Texts::tr("signed")
                                                        : Texts::tr("unsigned");
    const QString channels = Texts::tr("%n channel(s)", nullptr, pluralNumber(info.channels));
    return Texts::tr("%1 x %2, %3, %4 bit %5")
        .arg(info.width)
        .arg(info.height)
        .arg(channels)
        .arg(info.bitsPerChannel)
        .arg(kind);
}
