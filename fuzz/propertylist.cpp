// Property lists: what was read is written and read again as the same.
#include "Platform/Core/PropertyList.h"
#include "FuzzedBytes.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const QByteArray text(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    PropertyList::looksLikePropertyList(text);
    const PropertyList::ReadResult first = PropertyList::read(text);
    require(first.value.has_value() != !first.error.isEmpty());
    if (!first.value)
        return 0;
    // The first writing may replace characters that XML cannot carry, in keys, too, whose order then changes;
    // from the second on nothing changes.
    const PropertyList::ReadResult second = PropertyList::read(PropertyList::writeXml(*first.value));
    require(second.value.has_value());
    const QByteArray written = PropertyList::writeXml(*second.value);
    const PropertyList::ReadResult third = PropertyList::read(written);
    require(third.value.has_value());
    require(PropertyList::writeXml(*third.value) == written);
    return 0;
}
