// Document values to and from their property list.
#include "Classes/PlotModel/DocumentFile.h"

#include "Classes/PlotModel/PlistValues.h"
#include "Core/Assertions.h"

using namespace Qt::StringLiterals;

namespace {

// One table of the options for both directions.
struct TextKey {
    const char* key;
    std::optional<QString> PlotAreaOptions::*field;
};
struct RealKey {
    const char* key;
    std::optional<double> PlotAreaOptions::*field;
};
struct SwitchKey {
    const char* key;
    std::optional<bool> PlotAreaOptions::*field;
};

constexpr TextKey textKeys[] = {
    {"title", &PlotAreaOptions::title},           {"axisTitleX", &PlotAreaOptions::axisTitleX},
    {"axisTitleY", &PlotAreaOptions::axisTitleY}, {"axisX_type", &PlotAreaOptions::axisX_type},
    {"axisY_type", &PlotAreaOptions::axisY_type},
};
constexpr RealKey realKeys[] = {
    {"axisMaxX", &PlotAreaOptions::axisMaxX},
    {"axisMinX", &PlotAreaOptions::axisMinX},
    {"axisMaxY", &PlotAreaOptions::axisMaxY},
    {"axisMinY", &PlotAreaOptions::axisMinY},
};
constexpr SwitchKey switchKeys[] = {
    {"showOriginX", &PlotAreaOptions::showOriginX},
    {"showOriginY", &PlotAreaOptions::showOriginY},
    {"showHorizontalLines", &PlotAreaOptions::showHorizontalLines},
    {"showVerticalLines", &PlotAreaOptions::showVerticalLines},
    {"showLegend", &PlotAreaOptions::showLegend},
};

QString text(const char* key) {
    return QString::fromLatin1(key);
}

PlotAreaOptions optionsFromPlist(const QVariantMap& saved) {
    PlotAreaOptions options;
    for (const auto& [key, field] : textKeys)
        options.*field = PlistValues::string(saved.value(text(key)));
    for (const auto& [key, field] : realKeys) {
        if (const QVariant value = saved.value(text(key)); value.isValid())
            options.*field = PlistValues::real(value);
    }
    for (const auto& [key, field] : switchKeys) {
        if (const QVariant value = saved.value(text(key)); value.isValid())
            options.*field = PlistValues::boolean(value);
    }
    if (const QVariant value = saved.value(u"legendAlignment"_qs); value.isValid())
        options.legendAlignment = PlistValues::integer(value);
    if (const QVariantList margins = saved.value(u"legendMargins"_qs).toList(); margins.size() >= 2) {
        options.legendMargins = QSizeF(static_cast<double>(PlistValues::singleReal(margins[0])),
                                       static_cast<double>(PlistValues::singleReal(margins[1])));
    }
    return options;
}

QVariantMap optionsToPlist(const PlotAreaOptions& options) {
    QVariantMap saved;
    const auto insertIfSet = [&saved](const auto& table, const PlotAreaOptions& from) {
        for (const auto& [key, field] : table) {
            if (from.*field)
                saved.insert(text(key), *(from.*field));
        }
    };
    insertIfSet(textKeys, options);
    insertIfSet(realKeys, options);
    insertIfSet(switchKeys, options);
    if (options.legendAlignment)
        saved.insert(u"legendAlignment"_qs, *options.legendAlignment);
    if (options.legendMargins) {
        saved.insert(u"legendMargins"_qs,
                     QVariantList{options.legendMargins->width(), options.legendMargins->height()});
    }
    return saved;
}

std::vector<qint64> mapFromPlist(const QVariant& value, qsizetype curveCount, qsizetype sourceCount) {
    const QVariantList entries = value.toList();
    xAssert(value.typeId() == QMetaType::QVariantList, "DatasourcesMap is no array");
    xAssert(entries.size() <= curveCount, "DatasourcesMap has %ld entries for %ld curves", entries.size(),
            curveCount);
    std::vector<qint64> map;
    for (const QVariant& entry : entries) {
        xAssert(PlistValues::isNumber(entry), "DatasourcesMap holds an entry that is no number");
        const qint64 index = PlistValues::integer(entry);
        xAssert(index >= 0 && index < sourceCount, "DatasourcesMap names data source %ld of %ld", index,
                sourceCount);
        map.push_back(index);
    }
    return map;
}

} // namespace

DocumentValues DocumentFile::fromPlist(const QVariant& root) {
    xAssert(root.typeId() == QMetaType::QVariantMap, "its root is not a dictionary");
    const QVariantMap plist = root.toMap();
    xAssert(plist.contains(u"Datasources"_qs), "Bad documentPlist structure: no Datasources key");
    xAssert(plist.contains(u"Curves"_qs), "Bad documentPlist structure: no Curves key");
    xAssert(plist.contains(u"DatasourcesMap"_qs), "Bad documentPlist structure: no DatasourcesMap key");
    const QVariant curves = plist.value(u"Curves"_qs);
    xAssert(curves.typeId() == QMetaType::QVariantList, "Curves is no array");

    DocumentValues values;
    values.datasources = plist.value(u"Datasources"_qs);
    values.curves = curves.toList();
    values.datasourcesMap = mapFromPlist(plist.value(u"DatasourcesMap"_qs), values.curves.size(),
                                         values.datasources.toList().size());
    values.plotAreaOptions = optionsFromPlist(plist.value(u"PlotAreaOptions"_qs).toMap());
    return values;
}

QVariantMap DocumentFile::toPlist(const DocumentValues& values) {
    QVariantList map;
    for (const qint64 index : values.datasourcesMap)
        map.append(index);
    return {{u"Datasources"_qs, values.datasources},
            {u"Curves"_qs, values.curves},
            {u"DatasourcesMap"_qs, map},
            {u"PlotAreaOptions"_qs, optionsToPlist(values.plotAreaOptions)}};
}
