#include "host/recording/FrameFiles.h"

#include "host/recording/CkRecordingReader.h"

#include <QFile>
#include <QFileInfo>

#include <vector>

namespace {

constexpr qint64 kFirstBytes = 512;

struct SkFormat {
    std::function<bool(const QByteArray&)> recognises;
    FrameFiles::OpenFunction open;
};

std::vector<SkFormat>& formats() {
    static std::vector<SkFormat> all;
    return all;
}

QByteArray beginningOf(const QString& sFileName) {
    // Reading from a pipe might block forever.
    if (formats().empty() || !QFileInfo(sFileName).isFile()) {
        return {};
    }
    QFile file(sFileName);
    return file.open(QIODevice::ReadOnly) ? file.read(kFirstBytes) : QByteArray();
}

} // namespace

void FrameFiles::addFormat(std::function<bool(const QByteArray&)> recognises, OpenFunction open) {
    formats().push_back({std::move(recognises), std::move(open)});
}

std::shared_ptr<const IkFrameFile> FrameFiles::open(const QString& sFileName, QString* psError,
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
