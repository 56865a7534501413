#include "zuCore/CkXmlReader.h"

#include <QCoreApplication>
#include <QDomDocument>
#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>
#include <algorithm>

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(CkXmlReader)
};

// Characters or bytes that are fed to Qt's reader at a time.
constexpr qsizetype kPieceLength = 16 * 1024;
// QXmlStreamReader compares every attribute of a tag with all others before it reports any of them: two
// million would take hours. Such tags are detected while they are fed in, by counting '=' and quotes, some of
// which may also occur in a comment or a text.
constexpr qint64 kSignsPerAttribute = 10;

/// Feeds a document to QXmlStreamReader piece by piece and stops at the first limit.
///
/// The stream reader checks syntax, encoding and entities. It has no limits of its own on depth, elements,
/// attributes, or the length of a token, and the document that is built afterwards would overflow the stack
/// when a deep one is destroyed; that is what this class adds.
class CkXmlGuard {
public:
    explicit CkXmlGuard(const SkXmlLimits& limits) : m_limits(limits) {
        m_reader.setNamespaceProcessing(false);
    }

    template <class Text>
    bool accepts(const Text& text);
    QString error() const { return m_sError; }

private:
    bool fail(const QString& sReason);
    bool readTokens();
    bool checkElement();
    template <class Text>
    bool feedPiece(const Text& piece);

    SkXmlLimits m_limits;
    QXmlStreamReader m_reader;
    QString m_sError;
    int m_iDepth = 0;
    int m_iElements = 0;
    qint64 m_iAttributes = 0;
    bool m_bGotToken = false;
    // Fed since the last piece that completed a token.
    qint64 m_iPending = 0;
    qint64 m_iPendingEquals = 0;
    qint64 m_iPendingQuotes = 0;
};

bool CkXmlGuard::fail(const QString& sReason) {
    m_sError = Texts::tr("line %1, column %2: %3")
                   .arg(m_reader.lineNumber())
                   .arg(m_reader.columnNumber())
                   .arg(sReason);
    return false;
}

bool CkXmlGuard::checkElement() {
    if (++m_iDepth > m_limits.depth) {
        return fail(Texts::tr("elements are nested deeper than %1 levels").arg(m_limits.depth));
    }
    if (++m_iElements > m_limits.elements) {
        return fail(Texts::tr("there are more than %1 elements").arg(m_limits.elements));
    }
    const qint64 attributes = m_reader.attributes().size();
    if (attributes > m_limits.attributes) {
        return fail(Texts::tr("an element has more than %1 attributes").arg(m_limits.attributes));
    }
    m_iAttributes += attributes;
    return m_iAttributes <= m_limits.allAttributes ||
           fail(Texts::tr("there are more than %1 attributes").arg(m_limits.allAttributes));
}

bool CkXmlGuard::readTokens() {
    while (!m_reader.atEnd()) {
        const QXmlStreamReader::TokenType token = m_reader.readNext();
        m_bGotToken = m_bGotToken || token != QXmlStreamReader::Invalid;
        if (token == QXmlStreamReader::StartElement && !checkElement()) {
            return false;
        }
        if (token == QXmlStreamReader::EndElement) {
            --m_iDepth;
        }
        if (token == QXmlStreamReader::DTD) {
            return fail(Texts::tr("document type declarations are not read"));
        }
    }
    const QXmlStreamReader::Error error = m_reader.error();
    return error == QXmlStreamReader::NoError || error == QXmlStreamReader::PrematureEndOfDocumentError ||
           fail(m_reader.errorString());
}

template <class Text>
bool CkXmlGuard::feedPiece(const Text& piece) {
    m_bGotToken = false;
    m_reader.addData(piece);
    if (!readTokens()) {
        return false;
    }
    if (m_bGotToken) {
        m_iPending = m_iPendingEquals = m_iPendingQuotes = 0;
    }
    // A token may have begun anywhere in the piece.
    m_iPending += piece.size();
    m_iPendingEquals += piece.count('=');
    m_iPendingQuotes += piece.count('"') + piece.count('\'');
    if (std::min(m_iPendingEquals, m_iPendingQuotes / 2) > kSignsPerAttribute * m_limits.attributes) {
        return fail(Texts::tr("an element has more than %1 attributes").arg(m_limits.attributes));
    }
    return m_iPending <= m_limits.tokenBytes + kPieceLength ||
           fail(Texts::tr("a tag or text is longer than %1 bytes").arg(m_limits.tokenBytes));
}

template <class Text>
bool CkXmlGuard::accepts(const Text& text) {
    if (text.size() > m_limits.bytes) {
        m_sError = Texts::tr("it is larger than %1 bytes").arg(m_limits.bytes);
        return false;
    }
    for (qsizetype at = 0; at < text.size(); at += kPieceLength) {
        if (!feedPiece(text.mid(at, kPieceLength))) {
            return false;
        }
    }
    return m_reader.error() == QXmlStreamReader::NoError || fail(m_reader.errorString());
}

template <class Text>
bool readText(const Text& text, QDomDocument& doc, QString& sError, const SkXmlLimits& limits) {
    CkXmlGuard guard(limits);
    if (!guard.accepts(text)) {
        sError = guard.error();
        return false;
    }
    QDomDocument read;
    QString reason;
    int line = 0;
    int column = 0;
    if (!read.setContent(text, false, &reason, &line, &column)) {
        sError = Texts::tr("line %1, column %2: %3").arg(line).arg(column).arg(reason);
        return false;
    }
    doc = read;
    return true;
}

} // namespace

bool CkXmlReader::read(const QByteArray& xml, QDomDocument& doc, QString& sError, const SkXmlLimits& limits) {
    return readText(xml, doc, sError, limits);
}

bool CkXmlReader::read(const QString& sXml, QDomDocument& doc, QString& sError, const SkXmlLimits& limits) {
    return readText(sXml, doc, sError, limits);
}

bool CkXmlReader::readFile(const QString& sFileName, QDomDocument& doc, QString& sError,
                           const SkXmlLimits& limits) {
    const QFileInfo info(sFileName);
    if (info.exists() && !info.isFile()) {
        sError = Texts::tr("it is no ordinary file");
        return false;
    }
    QFile file(sFileName);
    if (!file.open(QIODevice::ReadOnly)) {
        sError = file.errorString();
        return false;
    }
    const QByteArray xml = file.read(limits.bytes + 1);
    if (file.error() != QFileDevice::NoError) {
        sError = file.errorString();
        return false;
    }
    return read(xml, doc, sError, limits);
}
