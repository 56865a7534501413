#include "host/viewer/playback/CkRecordingNotes.h"

#include "host/recording/CkVideoSource.h"
#include "host/viewer/picture/CkImageView.h"
#include "host/viewer/shell/CkCommandLine.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkLut.h"
#include "zuCore/CkRTTI.h"
#include "zuCore/CkXmlReader.h"

#include <QSet>

#include <algorithm>

namespace {

// Marks the block whose output was recorded.
const QString kRecorded = QStringLiteral("recorded");
const QString kId = QStringLiteral("id");
const QString kPredecessors = QStringLiteral("predecessors");

QStringList feedersOf(const QDomElement& block) {
    return block.attribute(kPredecessors).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

QList<QDomElement> blocksOf(const QDomElement& chain) {
    QList<QDomElement> blocks;
    for (QDomElement block = chain.firstChildElement(); !block.isNull(); block = block.nextSiblingElement()) {
        blocks.append(block);
    }
    return blocks;
}

} // namespace

SkRecordingInfo CkRecordingNotes::of(const CkChainable* pBlock, const CkMdiView* pView) {
    SkRecordingInfo info;
    info.software = CkCommandLine::versionText();
    info.viewSettings = viewSettings(pView);
    const CkChain* chain = pBlock != nullptr ? pBlock->chain() : nullptr;
    QDomDocument doc;
    QDomElement element;
    if (chain != nullptr && chain->save(doc, element)) {
        const auto place = chain->blocks().indexOf(const_cast<CkChainable*>(pBlock));
        QList<QDomElement> blocks = blocksOf(element);
        if (place >= 0 && place < blocks.size()) {
            blocks[place].setAttribute(kRecorded, 1);
        }
        doc.appendChild(element);
        info.chainXml = doc.toString(-1);
    }
    return info;
}

QJsonObject CkRecordingNotes::viewSettings(const CkMdiView* pView) {
    const auto* view = qobject_cast<const CkImageView*>(pView);
    if (view == nullptr) {
        return {};
    }
    QJsonObject settings;
    settings.insert(QLatin1String("kind"), QLatin1String("picture"));
    settings.insert(QLatin1String("channel"), view->channel());
    settings.insert(QLatin1String("autoContrast"), view->autoContrast());
    settings.insert(QLatin1String("low"), view->window().low);
    settings.insert(QLatin1String("high"), view->window().high);
    settings.insert(QLatin1String("gamma"), view->gamma());
    const CkLut* lut = const_cast<CkImageView*>(view)->viewLut(nullptr, nullptr, nullptr);
    if (lut != nullptr) {
        const QString name = CkLut::pseudoColorNames().value(lut->pseudoColorIndex());
        settings.insert(QLatin1String("colours"), name);
    }
    return settings;
}

void CkRecordingNotes::applyViewSettings(CkMdiView* pView, const QJsonObject& settings) {
    auto* view = qobject_cast<CkImageView*>(pView);
    if (view == nullptr || settings.value(QLatin1String("kind")).toString() != QLatin1String("picture")) {
        return;
    }
    bool automatic = true;
    bool saturation = false;
    CkLut* lut = view->viewLut(&automatic, &saturation, nullptr);
    const auto colours =
        CkLut::pseudoColorNames().indexOf(settings.value(QLatin1String("colours")).toString());
    if (lut != nullptr && colours >= 0) {
        lut->setPseudoColorIndex(int(colours));
        lut->allocRgbTable(0);
        view->setViewLut(lut, automatic, saturation, true);
    }
    view->setChannel(settings.value(QLatin1String("channel")).toInt(view->channel()));
    const double gamma = settings.value(QLatin1String("gamma")).toDouble(1.0);
    if (gamma >= 0.05 && gamma <= 20.0) {
        view->setGamma(gamma);
    }
    const QJsonValue low = settings.value(QLatin1String("low"));
    const QJsonValue high = settings.value(QLatin1String("high"));
    if (!settings.value(QLatin1String("autoContrast")).toBool(true) && low.isDouble() && high.isDouble()) {
        view->setWindow({low.toDouble(), high.toDouble()});
    }
}

QDomDocument CkRecordingNotes::chainBehind(const SkRecordingInfo& info, const QDomElement& sourceSettings,
                                           QString& sError) {
    if (info.chainXml.isEmpty()) {
        return {};
    }
    QDomDocument doc;
    QString reason = tr("it is no chain");
    if (!CkXmlReader::read(info.chainXml, doc, reason) ||
        doc.documentElement().tagName() != QLatin1String("chain")) {
        sError = tr("The chain in the recording cannot be read: %1.").arg(reason);
        return {};
    }
    QDomElement chain = doc.documentElement();
    const QList<QDomElement> blocks = blocksOf(chain);
    QDomElement recorded;
    for (const QDomElement& block : blocks) {
        // Programs that record a camera need not say so: it is what stands first.
        if (block.hasAttribute(kRecorded) || (recorded.isNull() && feedersOf(block).isEmpty())) {
            recorded = block;
        }
        if (block.hasAttribute(kRecorded)) {
            break;
        }
    }
    if (recorded.isNull()) {
        return {};
    }
    // What is fed by nothing but the recorded block, directly or over others, can be fed by the recording.
    const QString id = recorded.attribute(kId);
    QSet<QString> kept = {id};
    for (const QDomElement& block : blocks) {
        const QStringList feeders = feedersOf(block);
        const bool fed =
            !feeders.isEmpty() && std::all_of(feeders.begin(), feeders.end(),
                                              [&](const QString& feeder) { return kept.contains(feeder); });
        if (fed) {
            kept.insert(block.attribute(kId));
        } else if (block != recorded) {
            chain.removeChild(block);
        }
    }
    if (kept.size() < 2) {
        return {};
    }
    QDomElement source = doc.importNode(sourceSettings, true).toElement();
    source.setTagName(QStringLiteral("block"));
    source.setAttribute(QStringLiteral("class"), CkRTTI::uniqueId(&CkVideoSource::staticMetaObject));
    source.setAttribute(kId, id);
    source.setAttribute(kPredecessors, QString());
    chain.replaceChild(source, recorded);
    // Feeders come first, and so does the recording.
    chain.insertBefore(source, chain.firstChild());
    return doc;
}

QStringList CkRecordingNotes::blockTitles(const QDomDocument& chain) {
    QStringList titles;
    const QList<QDomElement> blocks = blocksOf(chain.documentElement());
    for (const QDomElement& block : blocks.mid(1)) {
        const QString name = block.attribute(QStringLiteral("class"));
        QString title = name;
        for (const SkRegisteredClass& known : CkRTTI::instance()->classes()) {
            if (known.uniqueId == name) {
                title = known.customName;
            }
        }
        titles.append(title);
    }
    return titles;
}
