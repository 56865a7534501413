#pragma once

#include "zuCore/zuCoreGlobal.h"

#include <QByteArray>
#include <QString>

class QDomDocument;

/// What an XML document may hold at most.
struct SkXmlLimits {
    qint64 bytes = 16 * 1024 * 1024; ///< of the whole document
    qint64 tokenBytes = 1024 * 1024; ///< of one tag, text or comment
    int depth = 100;                 ///< of elements within each other, the root included
    int elements = 100'000;          ///< of the whole document
    int attributes = 1000;           ///< of one element
    int allAttributes = 100'000;     ///< of all elements together
};

/// Reads untrusted XML. Documents that would exhaust the stack, the memory or the patience of the user are
/// refused before a document is built of them; so are document type declarations, and with them entities of
/// the document's own. Stateless; any thread.
class ZUCORE_EXPORT CkXmlReader {
public:
    /// False, with sError naming the line, the column and the reason, and doc as it was.
    static bool read(const QByteArray& xml, QDomDocument& doc, QString& sError,
                     const SkXmlLimits& limits = SkXmlLimits());
    /// Of text that has been decoded: an encoding that it declares is not looked at.
    static bool read(const QString& sXml, QDomDocument& doc, QString& sError,
                     const SkXmlLimits& limits = SkXmlLimits());

    /// Pipes and devices are refused at once. sError does not name the file.
    static bool readFile(const QString& sFileName, QDomDocument& doc, QString& sError,
                         const SkXmlLimits& limits = SkXmlLimits());
};
