// Recognises the form of a property list and turns every fault of a reader into a reason.
#include "Platform/Core/PropertyList.h"

#include "Platform/Core/PropertyListFormats.h"

#include <algorithm>
#include <exception>
#include <new>

namespace {

constexpr qsizetype maximumSize = qsizetype{256} << 20;

/// The first bytes without what an encoding may put before and between ASCII characters: a byte-order mark,
/// NULs.
QByteArray asciiOf(QByteArray firstBytes) {
    for (const char* mark : {"\xEF\xBB\xBF", "\xFF\xFE", "\xFE\xFF"}) {
        if (firstBytes.startsWith(mark)) {
            firstBytes.remove(0, static_cast<qsizetype>(qstrlen(mark)));
            break;
        }
    }
    return firstBytes.replace('\0', "").trimmed();
}

QVariant readAny(const QByteArray& bytes) {
    if (bytes.isEmpty())
        throw PropertyList::Malformed("it is empty");
    if (bytes.size() > maximumSize)
        throw PropertyList::Malformed("it is larger than 256 MiB");
    if (bytes.startsWith("bplist"))
        return PropertyList::readBinary(bytes);
    if (asciiOf(bytes.first(std::min<qsizetype>(bytes.size(), 512))).startsWith('<'))
        return PropertyList::readXml(bytes);
    throw PropertyList::Malformed("it is neither an XML nor a binary property list");
}

} // namespace

PropertyList::ReadResult PropertyList::read(const QByteArray& bytes) {
    try {
        return {.value = readAny(bytes), .error = {}};
    } catch (const std::bad_alloc&) {
        return {.value = std::nullopt, .error = QStringLiteral("there is not enough memory for it")};
    } catch (const std::exception& fault) {
        return {.value = std::nullopt, .error = QString::fromUtf8(fault.what())};
    }
}

bool PropertyList::looksLikePropertyList(const QByteArray& firstBytes) {
    if (firstBytes.startsWith("bplist0"))
        return true;
    const QByteArray text = asciiOf(firstBytes);
    return text.startsWith('<') && (text.contains("<plist") || text.contains("<!DOCTYPE plist"));
}
