// The header line of a read.
#include "EmbeddedPlugins/TextFile/TableBuilder.h"

#include "Platform/Core/Log.h"

#include <QStringDecoder>

#include <utility>

namespace {

/// What a name takes at the most: its bytes in a list that grows, and its UTF-16 text where it is shown.
std::uint64_t bytesOfName(std::string_view name) {
    return 4 * (name.size() + sizeof(std::string));
}

} // namespace

void TableBuilder::headerField(std::string_view text) {
    text = text.substr(0, text.find('\0'));
    m_table.addBytesBeside(bytesOfName(text));
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString name = decoder.decode(QByteArrayView(text.data(), static_cast<qsizetype>(text.size())));
    // A sequence that the text cuts short is only found when the decoder is asked for its rest.
    const bool complete = QString(decoder.decode(QByteArrayView(" "))).size() == 1;
    if (decoder.hasError() || !complete) {
        logMethod("-[XPDataReader startReading]",
                  QStringLiteral("Could not parse header field: %1").arg(name));
        text = "?";
    }
    m_columnNames.emplace_back(text);
}

void TableBuilder::headerLine() {
    m_table.setColumnNames(std::move(m_columnNames));
    m_inHeader = false;
}
