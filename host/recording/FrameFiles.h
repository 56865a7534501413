#pragma once

#include "host/recording/IkFrameFile.h"

#include <functional>
#include <memory>

/// Opens files of frames: recordings and other TIFF files, and further formats that the program adds.
namespace FrameFiles {

/// Null, with psError naming the file and the reason.
using OpenFunction =
    std::function<std::shared_ptr<const IkFrameFile>(const QString& sFileName, QString* psError)>;

/// Adds a format: files are opened with open when recognises returns true for their first bytes (at most
/// 512). Call it before the first thread opens a file.
void addFormat(std::function<bool(const QByteArray&)> recognises, OpenFunction open);

/// Null, with psError naming the file and the reason, when no frame can be read or progress returned false.
/// Any thread.
std::shared_ptr<const IkFrameFile> open(const QString& sFileName, QString* psError,
                                        const IkFrameFile::ProgressFunction& progress = {});

} // namespace FrameFiles
