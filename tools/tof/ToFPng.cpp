#include "tools/tof/ToFPng.h"

#include <QtEndian>

#include <array>

namespace {

std::array<quint32, 256> makeCrcTable() {
    std::array<quint32, 256> table{};
    for (quint32 i = 0; i < 256; ++i) {
        quint32 value = i;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value & 1U) != 0 ? 0xedb88320U ^ (value >> 1U) : value >> 1U;
        }
        table[i] = value;
    }
    return table;
}

quint32 crc(const QByteArray& bytes) {
    static const std::array<quint32, 256> table = makeCrcTable();
    quint32 value = 0xffffffffU;
    for (const char byte : bytes) {
        value = table[(value ^ quint8(byte)) & 0xffU] ^ (value >> 8U);
    }
    return value ^ 0xffffffffU;
}

void appendNumber(QByteArray& bytes, quint32 value) {
    const quint32 big = qToBigEndian(value);
    bytes.append(reinterpret_cast<const char*>(&big), sizeof(big));
}

void appendChunk(QByteArray& png, const char* name, const QByteArray& content) {
    appendNumber(png, quint32(content.size()));
    const QByteArray checked = QByteArray(name, 4) + content;
    png.append(checked);
    appendNumber(png, crc(checked));
}

} // namespace

QByteArray encodePng(quint32 uiWidth, quint32 uiHeight, int iBits, int iChannels, const QByteArray& samples) {
    const bool known = (iBits == 8 || iBits == 16) && (iChannels == 1 || iChannels == 3);
    const quint64 row = quint64(uiWidth) * quint64(iChannels) * quint64(iBits / 8);
    if (!known || uiWidth == 0 || uiHeight == 0 || quint64(samples.size()) % row != 0 ||
        quint64(samples.size()) / row != uiHeight) {
        return {};
    }
    QByteArray rows;
    rows.reserve(samples.size() + qsizetype(uiHeight));
    for (quint32 y = 0; y < uiHeight; ++y) {
        const char* const source = samples.constData() + y * row;
        rows.append('\0'); // no filter
        if (iBits == 8) {
            rows.append(source, qsizetype(row));
            continue;
        }
        for (quint64 i = 0; i < row; i += 2) {
            quint16 value;
            memcpy(&value, source + i, sizeof(value));
            rows.append(char(value >> 8U)).append(char(value & 0xffU));
        }
    }
    QByteArray header;
    appendNumber(header, uiWidth);
    appendNumber(header, uiHeight);
    header.append(char(iBits)).append(char(iChannels == 3 ? 2 : 0)).append(3, '\0');
    QByteArray png = QByteArray::fromHex("89504e470d0a1a0a");
    appendChunk(png, "IHDR", header);
    appendChunk(png, "IDAT", qCompress(rows).mid(4)); // a zlib stream without Qt's length in front
    appendChunk(png, "IEND", {});
    return png;
}
