// Reads a time of day out of the words, and a date from those that are left.
#include "Classes/Axes/TypedTime.h"

#include "Classes/Axes/Calendar.h"
#include "Platform/Core/TypedNumber.h"

#include <QDate>
#include <QLocale>
#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype longestText = 100;
constexpr int decimals = 6;
constexpr double perSecond = 1e6;

struct TimeOfDay {
    double seconds = 0;
    std::optional<int> utcOffset; ///< seconds; absent: the calendar's
};

QRegularExpressionMatch match(const QString& pattern, const QString& text) {
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern)).match(text);
}

std::optional<TimeOfDay> timeOf(const QString& word) {
    const QRegularExpressionMatch found =
        match(u"(\\d{1,2}):(\\d{2})(?::(\\d{2}(?:[.,]\\d{1,9})?))?(Z|UTC|([+-])(\\d{2}):?(\\d{2}))?"_s, word);
    if (!found.hasMatch())
        return {};
    const int hour = found.captured(1).toInt();
    const int minute = found.captured(2).toInt();
    const double second = found.captured(3).replace(u',', u'.').toDouble();
    if (hour > 23 || minute > 59 || second >= 60)
        return {};
    TimeOfDay time{hour * 3600 + minute * 60 + second, {}};
    if (found.hasCaptured(4)) {
        const int ahead = found.captured(6).toInt() * 3600 + found.captured(7).toInt() * 60;
        time.utcOffset = found.captured(5) == u"-" ? -ahead : ahead;
    }
    return time;
}

/// 1 to 12 for a month's name, long or short, as the calendar writes it; 0 for any other word.
int monthOf(QString word, const Calendar& calendar) {
    const auto bare = [](QString name) { return name.remove(u'.').toCaseFolded(); };
    word = bare(word);
    for (int month = 1; month <= 12; ++month) {
        const CalendarComponents of{1970, month, 1};
        if (word == bare(calendar.text(of, u"MMMM"_s)) || word == bare(calendar.text(of, u"MMM"_s)))
            return month;
    }
    return 0;
}

bool dayComesFirst(const QLocale& locale) {
    const QString format = locale.dateFormat(QLocale::ShortFormat);
    return format.indexOf(u'd') < format.indexOf(u'M');
}

QDate dateOfDigits(const QString& word, const Calendar& calendar) {
    if (const auto found = match(u"(\\d{4})([-/.])(\\d{1,2})(?:\\2(\\d{1,2}))?"_s, word); found.hasMatch()) {
        const int day = found.hasCaptured(4) ? found.captured(4).toInt() : 1;
        return {found.captured(1).toInt(), found.captured(3).toInt(), day};
    }
    const auto found = match(u"(\\d{1,2})([-/.])(\\d{1,2})\\2(\\d{4})"_s, word);
    if (!found.hasMatch())
        return {};
    int day = found.captured(1).toInt();
    int month = found.captured(3).toInt();
    if (!dayComesFirst(calendar.locale()))
        std::swap(day, month);
    return {found.captured(4).toInt(), month, day};
}

/// A month's name and a year of four digits in any order, with a day or without.
QDate dateOfWords(const QStringList& words, const Calendar& calendar) {
    int year = 0;
    int month = 0;
    int day = words.size() == 2 ? 1 : 0;
    for (const QString& word : words) {
        const auto number = match(u"(\\d{1,2})\\.?|(\\d{4})"_s, word);
        if (!number.hasMatch())
            month = monthOf(word, calendar);
        else if (number.hasCaptured(2))
            year = number.captured(2).toInt();
        else
            day = number.captured(1).toInt();
    }
    return year == 0 ? QDate() : QDate(year, month, day);
}

QDate dateOf(const QStringList& words, const Calendar& calendar) {
    if (words.size() == 1)
        return dateOfDigits(words.first(), calendar);
    return words.size() == 2 || words.size() == 3 ? dateOfWords(words, calendar) : QDate();
}

/// The words of a date and a time of day, with a zone joined to its time.
QStringList wordsOf(QString text) {
    text = text.simplified();
    text.replace(QRegularExpression(u"(?<=\\d)T(?=\\d)"_s), u" "_s);
    text.replace(QRegularExpression(u"(?<=\\d) (?=(Z|UTC)\\b)"_s), QString());
    QStringList words = text.split(u' ', Qt::SkipEmptyParts);
    for (QString& word : words)
        word.chop(word.endsWith(u',') ? 1 : 0);
    return words;
}

} // namespace

QString TypedTime::text(double seconds, const Calendar& calendar) {
    if (!Calendar::reaches(seconds))
        return TypedNumber::text(seconds);
    double whole = std::floor(seconds);
    double fraction = std::round((seconds - whole) * perSecond) / perSecond;
    if (fraction >= 1) {
        whole += 1;
        fraction = 0;
    }
    const CalendarComponents local = calendar.componentsOf(static_cast<std::int64_t>(whole));
    if (local.year < 1000 || local.year > 9999)
        return TypedNumber::text(seconds);
    const auto part = [](char before, std::int64_t number) {
        return QLatin1Char(before) + QString::number(number).rightJustified(2, u'0');
    };
    const bool hasSeconds = local.second != 0 || fraction > 0;
    QString text = QString::number(local.year) + part('-', local.month) + part('-', local.day);
    if (hasSeconds || local.hour != 0 || local.minute != 0)
        text += part(' ', local.hour) + part(':', local.minute);
    if (hasSeconds)
        text += part(':', local.second);
    if (fraction > 0) {
        text += QString::number(fraction, 'f', decimals).mid(1);
        while (text.endsWith(u'0'))
            text.chop(1);
    }
    return text;
}

std::optional<double> TypedTime::value(const QString& text, const Calendar& calendar) {
    if (text.size() > longestText)
        return {};
    if (const std::optional<double> seconds = TypedNumber::value(text, calendar.locale()))
        return seconds;
    QStringList words = wordsOf(text);
    TimeOfDay time;
    const auto clock = std::ranges::find_if(words, [](const QString& word) { return word.contains(u':'); });
    if (clock != words.end()) {
        const std::optional<TimeOfDay> found = timeOf(*clock);
        if (!found)
            return {};
        time = *found;
        words.erase(clock);
    }
    const QDate date = dateOf(words, calendar);
    if (!date.isValid())
        return {};
    const double whole = std::floor(time.seconds);
    const auto second = static_cast<std::int64_t>(whole);
    const std::int64_t instant =
        time.utcOffset ? QDate(1970, 1, 1).daysTo(date) * secondsPerDay + second - *time.utcOffset
                       : calendar.instantOf({date.year(), date.month(), date.day(), 0, 0, second});
    return static_cast<double>(instant) + (time.seconds - whole);
}
