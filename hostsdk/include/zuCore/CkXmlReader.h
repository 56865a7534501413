#pragma once

#include "zuCore/zuCoreGlobal.h"

#include <QByteArray>
#include <QString>

class QDomDocument;

/// Limits for an XML document.
struct SkXmlLimits {
    qint64 bytes = 16 * 1024 * 1024; ///< of the whole document
    qint64 tokenBytes = 1024 * 1024; ///< of one tag, text or comment
    int depth = 100;                 ///< of elements within each other, the root included
    int elements = 100'000;          ///< of the whole document
    int attributes = 1000;           ///< of one element
    int allAttributes = 100'000;     ///< of all elements together
};

/// Reads untrusted XML. Documents that would exhaust the stack or the memory, or take too long to read, are
/// refused before a QDomDocument is built; so are document type declarations, and thus entities defined in
/// the document. Stateless; any thread.
class ZUCORE_EXPORT CkXmlReader {
public:
    /// False, with sError naming the line, the column and the reason, and doc unchanged.
    static bool read(const QByteArray& xml, QDomDocument& doc, QString& sError,
                     const SkXmlLimits& limits = SkXmlLimits());
    /// For text that has already been decoded: a declared encoding is ignored.
    static bool read(const QString& sXml, QDomDocument& doc, QString& sError,
                     const SkXmlLimits& limits = SkXmlLimits());

    /// Pipes and devices are refused at once. sError does not name the file.
    static bool readFile(const QString& sFileName, QDomDocument& doc, QString& sError,
                         const SkXmlLimits& limits = SkXmlLimits());
};
