// Versions of releases and their order.
#pragma once

#include <QString>
#include <QStringList>

#include <compare>
#include <optional>

/// Numbers with points between them, and what may follow them: "1.10", "v2", "1.1-beta2", "1.1rc1+build.5". A
/// value.
class Version {
  public:
    /// Nothing for text that is no version, or one of more than 64 characters.
    static std::optional<Version> parse(const QString& text);

    /// As it was written, without a leading "v". Letters, digits and . - ~ _ + alone.
    const QString& text() const { return m_text; }

    /// By number, of any length: 1.10 follows 1.9, and 1.0 is 1.0.0. "1.1-beta2" comes before "1.1"; what
    /// follows a "+" does not count.
    friend std::weak_ordering operator<=>(const Version& a, const Version& b);
    friend bool operator==(const Version& a, const Version& b) { return std::is_eq(a <=> b); }

  private:
    QString m_text;
    QStringList m_numbers; ///< digits without leading zeros, no zeros at the end
    QStringList m_suffix;  ///< runs of digits or of small letters; empty for a release
};
