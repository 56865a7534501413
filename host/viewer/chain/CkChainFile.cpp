#include "chain/CkChainFile.h"

#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkXmlReader.h"

#include <QDomDocument>
#include <QSaveFile>

namespace {

// What the chain itself writes is inside; the root only says what kind of file this is.
const QString kRoot = QStringLiteral("zuchainfile");
const QString kChain = QStringLiteral("chain");
constexpr int kVersion = 1;

bool parse(const QString& fileName, QDomDocument& doc, QString& error) {
    QString reason;
    if (!CkXmlReader::readFile(fileName, doc, reason)) {
        error = QStringLiteral("%1: %2").arg(fileName, reason);
        return false;
    }
    const QDomElement root = doc.documentElement();
    if (root.tagName() != kRoot || root.firstChildElement(kChain).isNull()) {
        error = CkChainFile::tr("%1: this is no chain file.").arg(fileName);
        return false;
    }
    if (root.attribute(QStringLiteral("version")).toInt() > kVersion) {
        error = CkChainFile::tr("%1: this chain file was written by a newer version of the program.")
                    .arg(fileName);
        return false;
    }
    return true;
}

// How a source notes its camera is the source's own business; its identifier is unique enough to be found.
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

bool CkChainFile::save(const CkChain* pChain, const QString& sFileName, QString& sError) {
    QDomDocument doc;
    doc.appendChild(doc.createProcessingInstruction(QStringLiteral("xml"),
                                                    QStringLiteral("version=\"1.0\" encoding=\"UTF-8\"")));
    QDomElement root = doc.createElement(kRoot);
    root.setAttribute(QStringLiteral("version"), kVersion);
    QDomElement chain = doc.createElement(kChain);
    if (pChain == nullptr || !pChain->save(doc, chain)) {
        sError = CkChainFile::tr("%1: the chain cannot be described.").arg(sFileName);
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

CkChain* CkChainFile::load(const QString& sFileName, QString& sError) {
    QDomDocument doc;
    if (!parse(sFileName, doc, sError)) {
        return nullptr;
    }
    CkChain* chain = CkChainManager::instance()->createChain();
    QString reason = CkChainFile::tr("no new chain can be made");
    if (chain == nullptr || !chain->load(doc.documentElement().firstChildElement(kChain), &reason)) {
        sError = QStringLiteral("%1: %2").arg(sFileName, reason);
        CkChainManager::instance()->closeChain(chain);
        return nullptr;
    }
    return chain;
}

QStringList CkChainFile::camerasIn(const QString& sFileName, const QStringList& cameraIds) {
    QDomDocument doc;
    QString error;
    QStringList found;
    if (!parse(sFileName, doc, error)) {
        return found;
    }
    collectCameras(doc.documentElement(), cameraIds, found);
    return found;
}

QList<CkChainable*> CkChainFile::ends(const CkChain* pChain) {
    QList<CkChainable*> result;
    for (CkChainable* block : pChain->blocks()) {
        if (pChain->successors(block).isEmpty()) {
            result.append(block);
        }
    }
    return result;
}
