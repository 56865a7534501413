#pragma once

#include <QString>

#include <cstdarg>
#include <tiffio.h>

class CkTiffFile;

/// libtiff's view of a file: a synthetic header that makes one page the first one, followed by the file's own
/// bytes. One thread at a time; the file must outlive it.
class CkTiffClient {
public:
    CkTiffClient(const CkTiffFile& file, quint64 uiPageOffset);
    ~CkTiffClient();
    CkTiffClient(const CkTiffClient&) = delete;
    CkTiffClient& operator=(const CkTiffClient&) = delete;

    /// Null, with error, when the page's directory cannot be read or exceeds the limits.
    TIFF* tif() const { return m_tif; }
    const CkTiffFile& file() const { return m_file; }
    /// The first error that libtiff reported.
    const QString& error() const { return m_error; }
    void clearError() { m_error.clear(); }

private:
    static tmsize_t onRead(thandle_t handle, void* bytes, tmsize_t count);
    static tmsize_t onWrite(thandle_t handle, void* bytes, tmsize_t count);
    static toff_t onSeek(thandle_t handle, toff_t offset, int whence);
    static int onClose(thandle_t handle);
    static toff_t onSize(thandle_t handle);
    static int onMap(thandle_t handle, void** base, toff_t* size);
    static void onUnmap(thandle_t handle, void* base, toff_t size);
    static int onError(TIFF* tif, void* user, const char* module, const char* format, va_list arguments);
    static int onWarning(TIFF* tif, void* user, const char* module, const char* format, va_list arguments);

    const CkTiffFile& m_file;
    quint8 m_header[16] = {};
    quint64 m_headerBytes = 0;
    quint64 m_position = 0;
    TIFF* m_tif = nullptr;
    QString m_error;
};
