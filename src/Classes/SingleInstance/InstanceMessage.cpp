// Packs and unpacks frames.
#include "Classes/SingleInstance/InstanceMessage.h"

#include <QStringDecoder>
#include <QtEndian>

namespace InstanceMessage {
namespace {

constexpr char magic[] = {'V', 'l', 'q', 'n'};
constexpr quint16 version = 1;
constexpr qsizetype versionAt = sizeof magic;
constexpr qsizetype kindAt = versionAt + 2;
constexpr qsizetype lengthAt = kindAt + 2;
constexpr qsizetype headSize = lengthAt + 4;
constexpr quint32 greatestExitCode = 255;

template <class Number>
void append(QByteArray& bytes, Number number) {
    const Number bigEndian = qToBigEndian(number);
    bytes.append(reinterpret_cast<const char*>(&bigEndian), sizeof bigEndian);
}

void append(QByteArray& bytes, const QString& text) {
    const QByteArray utf8 = text.toUtf8();
    append(bytes, static_cast<quint32>(utf8.size()));
    bytes += utf8;
}

void append(QByteArray& bytes, const QStringList& texts) {
    append(bytes, static_cast<quint32>(texts.size()));
    for (const QString& text : texts)
        append(bytes, text);
}

QByteArray frameOf(Kind kind, const QByteArray& payload) {
    QByteArray bytes(magic, sizeof magic);
    append(bytes, version);
    append(bytes, static_cast<quint16>(kind));
    append(bytes, static_cast<quint32>(payload.size()));
    return bytes + payload;
}

/// Reads a payload from its start; the first thing that is wrong makes everything after it wrong.
class Unpacking {
  public:
    explicit Unpacking(const QByteArray& payload) : m_rest(payload) {}

    quint32 number() {
        const QByteArrayView bytes = take(sizeof(quint32));
        return m_isRight ? qFromBigEndian<quint32>(bytes.data()) : 0;
    }
    QString text() {
        const QByteArrayView bytes = take(number());
        QStringDecoder decoder(QStringDecoder::Utf8,
                               QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
        QString text = decoder(bytes);
        // A zero ends a file's name on its way to the system.
        m_isRight = m_isRight && !decoder.hasError() && !text.contains(QChar(0));
        return m_isRight ? text : QString();
    }
    QStringList texts() {
        QStringList texts;
        const quint32 count = number();
        for (quint32 i = 0; i < count && m_isRight; ++i)
            texts += text();
        return texts;
    }
    /// Everything was right, and nothing is left.
    bool isWhole() const { return m_isRight && m_rest.isEmpty(); }

  private:
    QByteArrayView take(qsizetype size) {
        m_isRight = m_isRight && size <= m_rest.size();
        if (!m_isRight)
            return {};
        const QByteArrayView taken = m_rest.first(size);
        m_rest = m_rest.sliced(size);
        return taken;
    }

    QByteArrayView m_rest;
    bool m_isRight = true;
};

} // namespace

Taken takeFrame(QByteArray& received, Frame& frame) {
    const QByteArrayView known(magic, std::min<qsizetype>(received.size(), sizeof magic));
    if (!received.startsWith(known))
        return Taken::Broken;
    if (received.size() < headSize)
        return Taken::Incomplete;
    const char* head = received.constData();
    const auto kind = qFromBigEndian<quint16>(head + kindAt);
    const auto length = qsizetype{qFromBigEndian<quint32>(head + lengthAt)};
    if (qFromBigEndian<quint16>(head + versionAt) != version || kind < quint16(Kind::Request) ||
        kind > quint16(Kind::Reply) || length > largestFrame - headSize)
        return Taken::Broken;
    if (received.size() < headSize + length)
        return Taken::Incomplete;
    frame = {static_cast<Kind>(kind), received.sliced(headSize, length)};
    received.remove(0, headSize + length);
    return Taken::Whole;
}

std::optional<QByteArray> encoded(const InstanceRequest& request) {
    QByteArray payload;
    append(payload, request.workingFolder);
    append(payload, request.activationToken);
    append(payload, request.startupId);
    append(payload, request.arguments);
    if (payload.size() > largestFrame - headSize)
        return std::nullopt;
    return frameOf(Kind::Request, payload);
}

QByteArray encoded(const InstanceReply& reply) {
    QByteArray payload;
    for (QStringList errors = reply.errors;; errors.removeLast()) {
        payload.clear();
        append(payload, static_cast<quint32>(reply.exitCode));
        append(payload, errors);
        if (payload.size() <= largestFrame - headSize)
            break;
    }
    return frameOf(Kind::Reply, payload);
}

QByteArray encodedAccepted() {
    return frameOf(Kind::Accepted, {});
}

std::optional<InstanceRequest> decodedRequest(const QByteArray& payload) {
    Unpacking unpacking(payload);
    InstanceRequest request;
    request.workingFolder = unpacking.text();
    request.activationToken = unpacking.text();
    request.startupId = unpacking.text();
    request.arguments = unpacking.texts();
    if (!unpacking.isWhole() || !request.workingFolder.startsWith(u'/'))
        return std::nullopt;
    return request;
}

std::optional<InstanceReply> decodedReply(const QByteArray& payload) {
    Unpacking unpacking(payload);
    const quint32 exitCode = unpacking.number();
    const QStringList errors = unpacking.texts();
    if (!unpacking.isWhole() || exitCode > greatestExitCode)
        return std::nullopt;
    return InstanceReply{static_cast<int>(exitCode), errors};
}

} // namespace InstanceMessage
