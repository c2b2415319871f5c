// Takes versions apart and compares the parts.
#include "Classes/Updates/Version.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype longestVersion = 64;

bool isNumber(const QString& part) {
    return part.isEmpty() || part.front().isDigit();
}

/// Without leading zeros; "0" is empty. Numbers of any length compare as such texts.
QString significantDigits(const QString& digits) {
    qsizetype zeros = 0;
    while (zeros < digits.size() && digits[zeros] == u'0')
        ++zeros;
    return digits.mid(zeros);
}

std::weak_ordering comparePart(const QString& a, const QString& b) {
    if (isNumber(a) != isNumber(b))
        return isNumber(a) ? std::weak_ordering::less : std::weak_ordering::greater;
    if (isNumber(a) && a.size() != b.size())
        return a.size() <=> b.size();
    return a.compare(b) <=> 0;
}

std::weak_ordering compareParts(const QStringList& a, const QStringList& b) {
    for (qsizetype i = 0; i < std::min(a.size(), b.size()); ++i) {
        if (const auto order = comparePart(a[i], b[i]); std::is_neq(order))
            return order;
    }
    return a.size() <=> b.size();
}

} // namespace

std::optional<Version> Version::parse(const QString& text) {
    static const QRegularExpression form(
        u"^[vV]?(((?>\\d+(?:\\.\\d+)*))(?:[-~._]?([A-Za-z0-9][A-Za-z0-9._~-]*))?(?:\\+[A-Za-z0-9.-]+)?)$"_qs);
    static const QRegularExpression runs(u"\\d+|[a-z]+"_qs);
    const QString trimmed = text.size() > 2 * longestVersion ? QString() : text.trimmed();
    const QRegularExpressionMatch match = form.match(trimmed);
    if (trimmed.size() > longestVersion || !match.hasMatch())
        return std::nullopt;
    Version version;
    version.m_text = match.captured(1);
    for (const QString& number : match.captured(2).split(u'.'))
        version.m_numbers += significantDigits(number);
    while (!version.m_numbers.isEmpty() && version.m_numbers.last().isEmpty())
        version.m_numbers.removeLast();
    auto run = runs.globalMatch(match.captured(3).toLower());
    while (run.hasNext()) {
        const QString part = run.next().captured();
        version.m_suffix += isNumber(part) ? significantDigits(part) : part;
    }
    return version;
}

std::weak_ordering operator<=>(const Version& a, const Version& b) {
    if (const auto order = compareParts(a.m_numbers, b.m_numbers); std::is_neq(order))
        return order;
    if (a.m_suffix.isEmpty() || b.m_suffix.isEmpty())
        return b.m_suffix.size() <=> a.m_suffix.size();
    return compareParts(a.m_suffix, b.m_suffix);
}
