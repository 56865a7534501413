#include "host/recording/CkRecordingReader.h"
#include "host/recording/IkFrameFile.h"

#include <QFile>
#include <QFileInfo>

#include <vector>

namespace {

constexpr qint64 firstBytes = 512;

struct SkFormat {
    std::function<bool(const QByteArray&)> recognises;
    CkFrameFiles::OpenFunction open;
};

std::vector<SkFormat>& formats() {
    static std::vector<SkFormat> all;
    return all;
}

QByteArray beginningOf(const QString& sFileName) {
    // A pipe might never answer.
    if (formats().empty() || !QFileInfo(sFileName).isFile()) {
        return {};
    }
    QFile file(sFileName);
    return file.open(QIODevice::ReadOnly) ? file.read(firstBytes) : QByteArray();
}

} // namespace

void CkFrameFiles::addFormat(std::function<bool(const QByteArray&)> recognises, OpenFunction open) {
    formats().push_back({std::move(recognises), std::move(open)});
}

std::shared_ptr<const IkFrameFile> CkFrameFiles::open(const QString& sFileName, QString* psError,
                                                      const IkFrameFile::ProgressFunction& progress) {
    const QByteArray beginning = beginningOf(sFileName);
    for (const SkFormat& format : formats()) {
        if (!beginning.isEmpty() && format.recognises(beginning)) {
            return format.open(sFileName, psError);
        }
    }
    auto reader = std::make_shared<CkRecordingReader>();
    return reader->open(sFileName, psError, progress) ? reader : nullptr;
}
