#include "plugins/zplToF/translations/CkToFTranslation.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTranslator>
#include <memory>

bool CkToFTranslation::install(const QLocale& locale, QObject* pOwner) {
    auto translator = std::make_unique<QTranslator>();
    // A language that stands before ours in the user's list is English or one we do not have; only the first
    // counts, otherwise an English user who reads German, too, would get German.
    if (!translator->load(QLocale(locale.language(), locale.territory()), QStringLiteral("zplToF"),
                          QStringLiteral("_"), QStringLiteral(":/zplToF/translations"))) {
        return false;
    }
    translator->setParent(pOwner);
    return QCoreApplication::installTranslator(translator.release());
}
