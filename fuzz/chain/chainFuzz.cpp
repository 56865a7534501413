#include "fuzz/chain/chainFuzz.h"

#include "fuzz/FuzzBytes.h"
#include "fuzz/FuzzFile.h"
#include "host/recording/CkVideoSource.h"
#include "host/viewer/base/ChainFile.h"
#include "plugins/zplToF/chain/CkToFProcessCnbl.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"
#include "zuCore/CkRTTI.h"

#include <QCoreApplication>
#include <QDomDocument>

namespace {

/// The environment that blocks need.
void prepare() {
    static int count = 1;
    static char name[] = "fuzzChain";
    static char* arguments[] = {name, nullptr};
    static const QCoreApplication application(count, arguments);
    CkRTTI* const registry = CkRTTI::instance();
    const QString base = QStringLiteral("CkChainable");
    registry->registerClass(nullptr, &CkToFProcessCnbl::staticMetaObject, base);
    registry->registerClass(nullptr, &CkVideoSource::staticMetaObject, base);
}

/// A well-formed file of mostly valid blocks: random changes to a well-formed file rarely leave it
/// well-formed.
QByteArray composed(FuzzBytes& input) {
    static const char* const classes[] = {"com.orvane.Pictor.CkCameraSource", "CkToFProcessCnbl",
                                          "com.orvane.Pictor.CkToFProcessCnbl", "CkVideoSource", "QObject"};
    static const char* const names[] = {"transform", "state", "camera", "loop", "pace", "file", "number"};
    static const char* const values[] = {"1", "-1", "",  "99999999999", "nan", "/dev/null",
                                         ".", "0",  "4", "camera",      "7 7", "&#9;"};
    QByteArray xml = "<zuchainfile version=\"1\"><chain version=\"1\">";
    const int count = input.byte() % 20;
    for (int block = 0; block < count; ++block) {
        const int kind = input.byte();
        const char* const name = classes[block == 0 && kind < 250 ? kind % 2 * 3 : kind % 5];
        xml += QByteArray("<block class=\"") + name + "\" id=\"" + QByteArray::number(block) + "\"";
        xml += " predecessors=\"";
        for (int feeders = input.byte() % 3; feeders > 0 && block > 0; --feeders) {
            xml += QByteArray::number(input.smallOrAny(quint32(block))) + ' ';
        }
        xml += '"';
        const quint8 chosen = input.byte();
        for (int bit = 0; bit < 7; ++bit) {
            if ((chosen >> bit & 1) != 0) {
                xml += QByteArray(" ") + names[bit] + "=\"" + values[input.byte() % 12] + "\"";
            }
        }
        xml += input.byte() % 8 == 0 ? "><block/></block>" : "/>";
    }
    return xml + "</chain></zuchainfile>";
}

QByteArray saved(const CkChain& chain) {
    QDomDocument doc;
    QDomElement element;
    if (!chain.save(doc, element)) {
        return {};
    }
    doc.appendChild(element);
    return doc.toByteArray();
}

std::string checkSavedAgain(CkChain& chain) {
    const QByteArray first = saved(chain);
    if (first.isEmpty()) {
        return "a chain that was read cannot be written";
    }
    QDomDocument doc;
    QString error;
    if (!doc.setContent(first)) {
        return "what was written is no XML";
    }
    if (!chain.load(doc.documentElement(), &error)) {
        return "what was written is not read: " + error.toStdString();
    }
    return saved(chain) == first ? std::string() : "a chain changes when it is written again";
}

} // namespace

std::string checkChain(const uint8_t* bytes, size_t size) {
    static const bool prepared = (prepare(), true);
    static FuzzFile file;
    FuzzBytes input(bytes, size);
    const bool composes = input.byte() >= 0x80;
    const QByteArray made = composes ? composed(input) : QByteArray();
    if (!prepared ||
        !(composes ? file.write(reinterpret_cast<const uint8_t*>(made.constData()), size_t(made.size()))
                   : file.write(bytes, size))) {
        return "the bytes cannot be put into a file";
    }
    QString error;
    ChainFile::camerasIn(file.name(), {QStringLiteral("camera")});
    CkChain* const chain = ChainFile::load(file.name(), error);
    if (chain == nullptr) {
        if (!CkChainManager::instance()->chains().isEmpty()) {
            return "a refused file leaves a chain";
        }
        return error.contains(file.name()) ? std::string() : "a refused file is not named";
    }
    std::string broken = checkSavedAgain(*chain);
    CkChainManager::instance()->closeChain(chain);
    return broken;
}
