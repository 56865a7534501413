#include "host/viewer/base/ViewerLanguage.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>
#include <memory>

namespace {

// Only the language and territory count, not the user's further preferred languages: plug-ins do the same, so
// that no window mixes two languages.
void install(const QLocale& locale, const QString& name, const QString& folder) {
    auto translator = std::make_unique<QTranslator>();
    if (translator->load(QLocale(locale.language(), locale.territory()), name, QStringLiteral("_"), folder)) {
        translator->setParent(QCoreApplication::instance());
        QCoreApplication::installTranslator(translator.release());
    }
}

// Texts with a count need a singular and a plural form in English, too. Translators installed later take
// precedence.
void installEnglishPlurals() {
    install(QLocale(QLocale::English), QStringLiteral("zuviewer"), QStringLiteral(":/zuviewer/translations"));
}
Q_COREAPP_STARTUP_FUNCTION(installEnglishPlurals)

} // namespace

QStringList ViewerLanguage::codes() {
    return {QStringLiteral("en"), QStringLiteral("de")};
}

QString ViewerLanguage::requested(const QStringList& arguments) {
    static const QString kOption = QStringLiteral("--language");
    QString code;
    for (qsizetype i = 1; i < arguments.size() && arguments[i] != QLatin1String("--"); ++i) {
        if (arguments[i] == kOption && i + 1 < arguments.size()) {
            code = arguments[++i];
        } else if (arguments[i].startsWith(kOption + QLatin1Char('='))) {
            code = arguments[i].mid(kOption.size() + 1);
        }
    }
    return codes().contains(code) ? code : QString();
}

QLocale ViewerLanguage::apply(const QString& sCode) {
    // Same language: keep the user's territory. With an Austrian locale, German keeps the Austrian number
    // format.
    if (codes().contains(sCode) && QLocale(sCode).language() != QLocale().language()) {
        QLocale::setDefault(QLocale(sCode));
    }
    const QLocale locale;
    install(locale, QStringLiteral("qtbase"), QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    install(locale, QStringLiteral("zuviewer"), QStringLiteral(":/zuviewer/translations"));
    return locale;
}
