// Reads the binary form of property lists; nothing in a hostile file makes it crash, hang or exhaust the
// memory.
#include "Platform/Core/PropertyListFormats.h"

#include <QDateTime>
#include <QHash>
#include <QtEndian>

#include <bit>
#include <span>

using PropertyList::Malformed;

namespace {

// The file: "bplist00", the objects, a table of their offsets, a trailer. An object is a marker byte, whose
// high half is the kind and whose low half the size, and a payload. Containers refer to their members by
// index in the table.
class BinaryReader {
  public:
    explicit BinaryReader(const QByteArray& file)
        : m_bytes(reinterpret_cast<const uchar*>(file.constData()), static_cast<std::size_t>(file.size())) {}

    QVariant readDocument() {
        constexpr std::size_t headerSize = 8;
        constexpr std::size_t trailerSize = 32;
        if (m_bytes.size() < headerSize + trailerSize)
            throw Malformed("its binary property list is cut off");
        const std::size_t trailer = m_bytes.size() - trailerSize;
        m_offsetSize = m_bytes[trailer + 6];
        m_referenceSize = m_bytes[trailer + 7];
        m_objectCount = unsignedAt(trailer + 8, 8);
        const quint64 rootIndex = unsignedAt(trailer + 16, 8);
        m_offsetTable = unsignedAt(trailer + 24, 8);
        const bool sizesFit =
            m_offsetSize >= 1 && m_offsetSize <= 8 && m_referenceSize >= 1 && m_referenceSize <= 8;
        if (!sizesFit || m_offsetTable > trailer || m_objectCount > (trailer - m_offsetTable) / m_offsetSize)
            throw Malformed("its binary property list is damaged");
        m_bytes = m_bytes.first(trailer);
        return readObject(rootIndex, 1);
    }

  private:
    /// The bytes of an object's payload; every access to the file goes through here or through `m_bytes` in
    /// bounds.
    std::span<const uchar> slice(quint64 from, quint64 count) const {
        if (from > m_bytes.size() || count > m_bytes.size() - from)
            throw Malformed("its binary property list is damaged");
        return m_bytes.subspan(from, count);
    }

    quint64 unsignedAt(quint64 from, quint64 size) const {
        quint64 value = 0;
        for (const uchar byte : slice(from, size))
            value = value << 8 | byte;
        return value;
    }

    /// Objects can be shared, so a small file can stand for an enormous value: all that is handed out is paid
    /// for.
    void pay(quint64 cost) {
        if (cost > m_budget)
            throw Malformed("its binary property list is too large");
        m_budget -= cost;
    }

    QVariant readObject(quint64 index, int depth) {
        constexpr quint64 costOfAValue = 64;
        if (depth > PropertyList::maximumDepth)
            throw Malformed("it is nested too deeply");
        if (index >= m_objectCount)
            throw Malformed("its binary property list is damaged");
        pay(costOfAValue);
        const quint64 position = unsignedAt(m_offsetTable + index * m_offsetSize, m_offsetSize);
        const uchar marker = slice(position, 1)[0];
        const int kind = marker >> 4;
        const int size = marker & 0x0F;
        switch (kind) {
        case 0x0:
            if (size == 8 || size == 9)
                return size == 9;
            break;
        case 0x1:
            return readInteger(position + 1, size);
        case 0x2:
            return readReal(position + 1, size);
        case 0x3:
            return readDate(position + 1);
        case 0x4:
        case 0x5:
        case 0x6:
            return readBytes(index, kind, position);
        case 0xA:
            return readArray(position, depth);
        case 0xD:
            return readDictionary(position, depth);
        default:
            break;
        }
        throw Malformed("its binary property list holds an object of an unknown kind");
    }

    struct Extent {
        quint64 payload; ///< where it begins
        quint64 count;
    };

    /// Sizes from 15 on stand in an integer object after the marker.
    Extent extentAt(quint64 position) const {
        const int size = slice(position, 1)[0] & 0x0F;
        if (size < 0x0F)
            return {position + 1, static_cast<quint64>(size)};
        const uchar marker = slice(position + 1, 1)[0];
        if (marker >> 4 != 0x1 || (marker & 0x0F) > 3)
            throw Malformed("its binary property list is damaged");
        const quint64 width = quint64{1} << (marker & 0x0F);
        return {position + 2 + width, unsignedAt(position + 2, width)};
    }

    QVariant readInteger(quint64 from, int sizeExponent) const {
        if (sizeExponent == 4) { // 16 bytes carry the integers that need the 64th bit
            const quint64 high = unsignedAt(from, 8);
            const quint64 low = unsignedAt(from + 8, 8);
            if (high == 0)
                return low;
            if (high == ~quint64{0} && static_cast<qint64>(low) < 0)
                return static_cast<qint64>(low);
        } else if (sizeExponent < 4) { // below 8 bytes they are unsigned
            return static_cast<qint64>(unsignedAt(from, quint64{1} << sizeExponent));
        }
        throw Malformed("it holds an integer of more than 64 bits");
    }

    double readReal(quint64 from, int sizeExponent) const {
        if (sizeExponent == 2)
            return double{std::bit_cast<float>(static_cast<quint32>(unsignedAt(from, 4)))};
        if (sizeExponent == 3)
            return std::bit_cast<double>(unsignedAt(from, 8));
        throw Malformed("its binary property list is damaged");
    }

    QDateTime readDate(quint64 from) const {
        constexpr double year2001 = 978307200; // seconds after 1970, where its dates begin
        constexpr double year1 = -62135596800; // what XML can say
        constexpr double year9999 = 253402300799;
        const double seconds = std::bit_cast<double>(unsignedAt(from, 8)) + year2001;
        if (!(seconds >= year1 && seconds <= year9999))
            throw Malformed("it holds a date out of range");
        return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(seconds * 1000), Qt::UTC);
    }

    /// Data and texts; each is decoded once, however often it is referred to.
    QVariant readBytes(quint64 index, int kind, quint64 position) {
        const auto [payload, count] = extentAt(position);
        const quint64 unitSize = kind == 0x6 ? 2 : 1;
        const std::span<const uchar> bytes =
            slice(payload, std::min<quint64>(count, m_bytes.size()) * unitSize);
        pay(bytes.size());
        if (const auto known = m_decoded.constFind(index); known != m_decoded.constEnd())
            return *known;
        const auto* characters = reinterpret_cast<const char*>(bytes.data());
        const auto size = static_cast<qsizetype>(count);
        QVariant value;
        if (kind == 0x4) {
            value = QByteArray(characters, size);
        } else if (kind == 0x5) {
            value = QString::fromLatin1(characters, size);
        } else {
            QString text(size, Qt::Uninitialized);
            qFromBigEndian<char16_t>(bytes.data(), size, text.data());
            value = text;
        }
        return *m_decoded.insert(index, value);
    }

    QVariantList readArray(quint64 position, int depth) {
        const auto [payload, count] = extentAt(position);
        slice(payload, std::min<quint64>(count, m_bytes.size()) * m_referenceSize);
        QVariantList array;
        for (quint64 i = 0; i < count; ++i)
            array.append(readObject(unsignedAt(payload + i * m_referenceSize, m_referenceSize), depth + 1));
        return array;
    }

    QVariantMap readDictionary(quint64 position, int depth) {
        const auto [payload, count] = extentAt(position);
        const quint64 size = std::min<quint64>(count, m_bytes.size()) * m_referenceSize;
        slice(payload, 2 * size);
        QVariantMap dictionary;
        for (quint64 i = 0; i < count; ++i) {
            const quint64 at = payload + i * m_referenceSize;
            const QVariant key = readObject(unsignedAt(at, m_referenceSize), depth + 1);
            if (key.typeId() != QMetaType::QString)
                throw Malformed("it holds a dictionary with a key that is no text");
            dictionary.insert(key.toString(), readObject(unsignedAt(at + size, m_referenceSize), depth + 1));
        }
        return dictionary;
    }

    std::span<const uchar> m_bytes;
    quint64 m_offsetSize = 0;
    quint64 m_referenceSize = 0;
    quint64 m_objectCount = 0;
    quint64 m_offsetTable = 0;
    quint64 m_budget = quint64{256} << 20;
    QHash<quint64, QVariant> m_decoded;
};

} // namespace

QVariant PropertyList::readBinary(const QByteArray& bytes) {
    return BinaryReader(bytes).readDocument();
}
