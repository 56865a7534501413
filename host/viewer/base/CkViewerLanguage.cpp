#include "host/viewer/base/CkViewerLanguage.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>
#include <memory>

namespace {

// Only the first language of the user counts, as for the plug-ins, so that a window does not mix two.
void install(const QLocale& locale, const QString& name, const QString& folder) {
    auto translator = std::make_unique<QTranslator>();
    if (translator->load(QLocale(locale.language(), locale.territory()), name, QStringLiteral("_"), folder)) {
        translator->setParent(QCoreApplication::instance());
        QCoreApplication::installTranslator(translator.release());
    }
}

// Texts with a number need a singular and a plural in English too. Any other language goes on top.
void installEnglishPlurals() {
    install(QLocale(QLocale::English), QStringLiteral("zuviewer"), QStringLiteral(":/zuviewer/translations"));
}
Q_COREAPP_STARTUP_FUNCTION(installEnglishPlurals)

} // namespace

QStringList CkViewerLanguage::codes() {
    return {QStringLiteral("en"), QStringLiteral("de")};
}

QString CkViewerLanguage::wanted(const QStringList& arguments) {
    static const QString s_option = QStringLiteral("--language");
    QString code;
    for (qsizetype i = 1; i < arguments.size() && arguments[i] != QLatin1String("--"); ++i) {
        if (arguments[i] == s_option && i + 1 < arguments.size()) {
            code = arguments[++i];
        } else if (arguments[i].startsWith(s_option + QLatin1Char('='))) {
            code = arguments[i].mid(s_option.size() + 1);
        }
    }
    return codes().contains(code) ? code : QString();
}

QLocale CkViewerLanguage::apply(const QString& sCode) {
    // A user from Vienna who asks for German keeps the numbers of Vienna.
    if (codes().contains(sCode) && QLocale(sCode).language() != QLocale().language()) {
        QLocale::setDefault(QLocale(sCode));
    }
    const QLocale locale;
    install(locale, QStringLiteral("qtbase"), QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    install(locale, QStringLiteral("zuviewer"), QStringLiteral(":/zuviewer/translations"));
    return locale;
}
