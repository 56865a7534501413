#include "host/viewer/base/ChainFile.h"

#include "zuCore/CkChainManager.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkXmlReader.h"

#include <QCoreApplication>
#include <QDomDocument>
#include <QSaveFile>
#include <algorithm>

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(ChainFile)
};

// The root identifies the kind of file; inside is what CkChain::save() writes.
const QString kRoot = QStringLiteral("zuchainfile");
const QString kChain = QStringLiteral("chain");
constexpr int kVersion = 1;
// More do not fit on a screen, and every further view slows down drawing.
constexpr qsizetype kMaximumViews = 16;

bool parse(const QString& fileName, QDomDocument& doc, QString& error) {
    QString reason;
    if (!CkXmlReader::readFile(fileName, doc, reason)) {
        error = QStringLiteral("%1: %2").arg(fileName, reason);
        return false;
    }
    const QDomElement root = doc.documentElement();
    if (root.tagName() != kRoot || root.firstChildElement(kChain).isNull()) {
        error = Texts::tr("%1: this is no chain file.").arg(fileName);
        return false;
    }
    if (root.attribute(QStringLiteral("version")).toInt() > kVersion) {
        error = Texts::tr("%1: this chain file was written by a newer version of the program.").arg(fileName);
        return false;
    }
    return true;
}

// Each kind of source names the attribute with its camera differently. Camera identifiers are distinctive
// enough to search all attributes for them.
void collectCameras(const QDomElement& element, const QStringList& cameraIds, QStringList& found) {
    const QDomNamedNodeMap attributes = element.attributes();
    for (int i = 0; i < attributes.count(); ++i) {
        const QString value = attributes.item(i).nodeValue();
        if (cameraIds.contains(value) && !found.contains(value)) {
            found.append(value);
        }
    }
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        collectCameras(child, cameraIds, found);
    }
}

} // namespace

bool ChainFile::save(const CkChain* pChain, const QString& sFileName, QString& sError) {
    QDomDocument doc;
    doc.appendChild(doc.createProcessingInstruction(QStringLiteral("xml"),
                                                    QStringLiteral("version=\"1.0\" encoding=\"UTF-8\"")));
    QDomElement root = doc.createElement(kRoot);
    root.setAttribute(QStringLiteral("version"), kVersion);
    QDomElement chain = doc.createElement(kChain);
    if (pChain == nullptr || !pChain->save(doc, chain)) {
        sError = Texts::tr("%1: the chain cannot be described.").arg(sFileName);
        return false;
    }
    root.appendChild(chain);
    doc.appendChild(root);
    const QByteArray bytes = doc.toByteArray(2);
    QSaveFile file(sFileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        sError = QStringLiteral("%1: %2").arg(sFileName, file.errorString());
        return false;
    }
    return true;
}

CkChain* ChainFile::load(const QString& sFileName, QString& sError, const CkChain::LoadProgress& progress) {
    QDomDocument doc;
    if (!parse(sFileName, doc, sError)) {
        return nullptr;
    }
    CkChain* chain = CkChainManager::instance()->createChain();
    QString reason = Texts::tr("no new chain can be made");
    if (chain == nullptr ||
        !chain->load(doc.documentElement().firstChildElement(kChain), &reason, progress)) {
        sError = QStringLiteral("%1: %2").arg(sFileName, reason);
        CkChainManager::instance()->closeChain(chain);
        return nullptr;
    }
    return chain;
}

QStringList ChainFile::camerasIn(const QString& sFileName, const QStringList& cameraIds) {
    QDomDocument doc;
    QString error;
    QStringList found;
    if (!parse(sFileName, doc, error)) {
        return found;
    }
    collectCameras(doc.documentElement(), cameraIds, found);
    return found;
}

QList<CkChainable*> ChainFile::ends(const CkChain* pChain) {
    QList<CkChainable*> result;
    for (CkChainable* block : pChain->blocks()) {
        if (pChain->successors(block).isEmpty()) {
            result.append(block);
        }
    }
    return result;
}

QList<CkChainable*> ChainFile::shownEnds(const CkChain* pChain, const QString& sFileName) {
    const QList<CkChainable*> all = ends(pChain);
    if (all.size() > kMaximumViews) {
        qWarning("%s", qUtf8Printable(Texts::tr("%1: the chain has %2 ends; the first %3 of them are shown.")
                                          .arg(sFileName)
                                          .arg(all.size())
                                          .arg(kMaximumViews)));
    }
    return all.first(std::min(all.size(), kMaximumViews));
}
