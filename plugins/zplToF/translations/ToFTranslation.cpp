#include "plugins/zplToF/translations/ToFTranslation.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTranslator>
#include <memory>

bool ToFTranslation::install(const QLocale& locale, QObject* pOwner) {
    auto translator = std::make_unique<QTranslator>();
    // Language and territory alone: QTranslator tries all of a locale's user-interface languages in turn, and
    // an English user who lists German second would get German.
    if (!translator->load(QLocale(locale.language(), locale.territory()), QStringLiteral("zplToF"),
                          QStringLiteral("_"), QStringLiteral(":/zplToF/translations"))) {
        return false;
    }
    translator->setParent(pOwner);
    return QCoreApplication::installTranslator(translator.release());
}
