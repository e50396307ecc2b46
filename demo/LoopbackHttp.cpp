#include "demo/LoopbackHttp.h"

#include <QtEndian>

#include <array>

namespace tickwise {

std::optional<QByteArray> LoopbackRequest::header(QByteArrayView name) const
{
    for (const auto &[key, value] : headers) {
        if (key.compare(name, Qt::CaseInsensitive) == 0)
            return value;
    }
    return std::nullopt;
}

namespace {

quint32 crc32(const QByteArray &bytes)
{
    quint32 sum = ~0U;
    for (const char byte : bytes) {
        sum ^= static_cast<quint8>(byte);
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum >> 1) ^ ((sum & 1U) != 0 ? 0xEDB88320U : 0U);
    }
    return ~sum;
}

QByteArray littleEndian(quint32 number)
{
    QByteArray bytes(4, '\0');
    qToLittleEndian(number, bytes.data());
    return bytes;
}

QByteArray blankPage(int status)
{
    return "<!DOCTYPE html><html><head><title>Error " + QByteArray::number(status) +
           "</title></head><body><h1>Request blocked</h1><p>This service is not available in your "
           "location.</p></body></html>";
}

Fault ending(LoopbackAnswer::Ending how, qint64 bytes, bool withHead)
{
    return [=](LoopbackAnswer &answer) {
        answer.ending = how;
        answer.endAfter = bytes;
        answer.withHead = withHead;
    };
}

} // namespace

// qCompress puts four bytes of length before a zlib stream, whose own frame takes two bytes in front and four behind.
QByteArray gzipped(const QByteArray &bytes)
{
    const QByteArray zlib = bytes.isEmpty() ? QByteArray("....xx\x03\x00....", 12) : qCompress(bytes, 9);
    const QByteArray head("\x1f\x8b\x08\x00\x00\x00\x00\x00\x02\x03", 10);
    return head + zlib.mid(6, zlib.size() - 10) + littleEndian(crc32(bytes)) +
           littleEndian(static_cast<quint32>(bytes.size()));
}

namespace faults {

Fault together(std::vector<Fault> parts)
{
    return [parts = std::move(parts)](LoopbackAnswer &answer) {
        for (const Fault &part : parts)
            part(answer);
    };
}

Fault delay(std::chrono::milliseconds time)
{
    return [=](LoopbackAnswer &answer) { answer.delay = time; };
}

Fault reset()
{
    return ending(LoopbackAnswer::Ending::reset, 0, false);
}

Fault resetAfter(qint64 bytes)
{
    return ending(LoopbackAnswer::Ending::reset, bytes, true);
}

Fault hang()
{
    return ending(LoopbackAnswer::Ending::stall, 0, false);
}

Fault stallAfter(qint64 bytes)
{
    return ending(LoopbackAnswer::Ending::stall, bytes, true);
}

Fault truncateAfter(qint64 bytes)
{
    return ending(LoopbackAnswer::Ending::close, bytes, true);
}

Fault status(int status, const QByteArray &body, const LoopbackHeaders &extra)
{
    return [=](LoopbackAnswer &answer) {
        answer.status = status;
        answer.body = body;
        answer.headers.insert(answer.headers.end(), extra.begin(), extra.end());
    };
}

Fault headers(const LoopbackHeaders &extra)
{
    return [=](LoopbackAnswer &answer) { answer.headers.insert(answer.headers.end(), extra.begin(), extra.end()); };
}

Fault body(const QByteArray &body, const QByteArray &contentType)
{
    return [=](LoopbackAnswer &answer) {
        answer.body = body;
        answer.contentType = contentType;
    };
}

Fault garbage()
{
    return body(QByteArray("\x00\xff{[<\x80 no JSON at all \xfe", 24));
}

Fault notHttp()
{
    return
        [](LoopbackAnswer &answer) { answer.raw = "220 mail.example ESMTP\r\n\r\nnot the service you look for\r\n"; };
}

Fault blockPage(int code)
{
    return together({status(code), body(blankPage(code), "text/html; charset=utf-8")});
}

Fault oversize(qint64 bytes)
{
    return [=](LoopbackAnswer &answer) {
        answer.body.clear();
        answer.filler = bytes;
    };
}

Fault gzipBomb(int mebibytes)
{
    return [=](LoopbackAnswer &answer) {
        answer.body = gzipped(QByteArray(1024LL * 1024, '\0')).repeated(mebibytes);
        answer.headers.emplace_back("Content-Encoding", "gzip");
    };
}

Fault chunked()
{
    return [](LoopbackAnswer &answer) { answer.framing = LoopbackAnswer::Framing::chunked; };
}

Fault gzip()
{
    return [](LoopbackAnswer &answer) {
        answer.body = gzipped(answer.body);
        answer.headers.emplace_back("Content-Encoding", "gzip");
    };
}

Fault redirect(const QUrl &target, int code)
{
    return status(code, {}, {{"Location", target.toEncoded()}});
}

Fault drip(qint64 bytes, std::chrono::milliseconds every)
{
    return [=](LoopbackAnswer &answer) {
        answer.dripBytes = bytes;
        answer.dripEvery = every;
    };
}

} // namespace faults

} // namespace tickwise
