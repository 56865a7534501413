#include "host/recording/CkTiffClient.h"

#include "host/recording/CkRecordingWriter.h"
#include "host/recording/CkTiffFile.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

CkTiffClient& self(thandle_t handle) {
    return *static_cast<CkTiffClient*>(handle);
}

} // namespace

CkTiffClient::CkTiffClient(const CkTiffFile& file, quint64 uiPageOffset)
    : m_file(file), m_headerBytes(file.headerFor(uiPageOffset, m_header)) {
    TIFFOpenOptions* const options =
        file.checkDirectory(uiPageOffset, m_error) ? TIFFOpenOptionsAlloc() : nullptr;
    if (options == nullptr) {
        return;
    }
    TIFFOpenOptionsSetMaxSingleMemAlloc(options, tmsize_t(CkRecordingWriter::kMaximumPictureBytes));
    TIFFOpenOptionsSetErrorHandlerExtR(options, onError, this);
    TIFFOpenOptionsSetWarningHandlerExtR(options, onWarning, this);
    // "m": no memory mapping, because files may shrink meanwhile. "c": no chopping of large strips.
    m_tif = TIFFClientOpenExt("page", "rmc", this, onRead, onWrite, onSeek, onClose, onSize, onMap, onUnmap,
                              options);
    TIFFOpenOptionsFree(options);
}

CkTiffClient::~CkTiffClient() {
    if (m_tif != nullptr) {
        TIFFClose(m_tif);
    }
}

tmsize_t CkTiffClient::onRead(thandle_t handle, void* bytes, tmsize_t count) {
    CkTiffClient& client = self(handle);
    if (count <= 0) {
        return 0;
    }
    auto* target = static_cast<quint8*>(bytes);
    auto wanted = quint64(count);
    tmsize_t done = 0;
    if (client.m_position < client.m_headerBytes) {
        const quint64 part = std::min(wanted, client.m_headerBytes - client.m_position);
        std::memcpy(target, client.m_header + client.m_position, size_t(part));
        client.m_position += part;
        target += part;
        wanted -= part;
        done = tmsize_t(part);
    }
    if (wanted > 0) {
        const qint64 got = client.m_file.readAt(target, wanted, client.m_position);
        if (got < 0) {
            return -1;
        }
        client.m_position += quint64(got);
        done += tmsize_t(got);
    }
    return done;
}

tmsize_t CkTiffClient::onWrite(thandle_t, void*, tmsize_t) {
    return -1;
}

toff_t CkTiffClient::onSeek(thandle_t handle, toff_t offset, int whence) {
    CkTiffClient& client = self(handle);
    const quint64 base = whence == SEEK_CUR   ? client.m_position
                         : whence == SEEK_END ? client.m_file.byteCount()
                                              : 0;
    client.m_position = base + offset;
    return client.m_position;
}

int CkTiffClient::onClose(thandle_t) {
    return 0;
}

toff_t CkTiffClient::onSize(thandle_t handle) {
    return self(handle).m_file.byteCount();
}

int CkTiffClient::onMap(thandle_t, void**, toff_t*) {
    return 0;
}

void CkTiffClient::onUnmap(thandle_t, void*, toff_t) {}

int CkTiffClient::onError(TIFF*, void* user, const char*, const char* format, va_list arguments) {
    // The first error is the cause, later ones are consequences.
    QString& error = static_cast<CkTiffClient*>(user)->m_error;
    if (error.isEmpty()) {
        char line[256];
        std::vsnprintf(line, sizeof(line), format, arguments);
        error = QString::fromLatin1(line);
    }
    return 1;
}

int CkTiffClient::onWarning(TIFF*, void*, const char*, const char*, va_list) {
    return 1;
}
