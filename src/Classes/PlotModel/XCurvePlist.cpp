// A curve's saved form: which keys are written, and how older files are read.
#include "Classes/PlotModel/XCurve.h"

#include "Classes/PlotModel/PlistValues.h"
#include "Classes/PlotView/XPointsLibrary.h"
#include "Classes/ValueEncodings/ColorEncoding.h"
#include "Core/Assertions.h"

using namespace Qt::StringLiterals;

namespace {

const XGraphPointDescription* shapeWithId(int identifier) {
    return XPointsLibrary::sharedLibrary().pointDescriptionWithId(identifier);
}

/// Older documents stored line types; the widths they stood for.
int lineWidthOfLegacyType(int type) {
    switch (type) {
    case 0:
        return 0;
    case 2:
        return 2;
    case 3:
        return 4;
    default:
        return 1;
    }
}

void loadPointMarker(XCurve& curve, const QVariantMap& saved) {
    if (!saved.contains(u"TicksType"_qs)) {
        curve.setTicksShape(shapeWithId(PlistValues::integer(saved.value(u"TicksShape"_qs))));
        curve.setTicksSize(PlistValues::integer(saved.value(u"TicksSize"_qs)));
        return;
    }
    const int legacyType = PlistValues::integer(saved.value(u"TicksType"_qs));
    curve.setTicksShape(shapeWithId(legacyType == 0 ? 0 : 1));
    if (legacyType == 1)
        curve.setTicksSize(2);
    else if (legacyType == 2)
        curve.setTicksSize(4);
}

void loadLineWidth(XCurve& curve, const QVariantMap& saved) {
    if (!saved.contains(u"LineType"_qs)) {
        curve.setLineWidth(PlistValues::integer(saved.value(u"LineWidth"_qs)));
        return;
    }
    const int width = PlistValues::integer(saved.value(u"LineType"_qs));
    // Kept: the legacy reading of the key comes first and is overwritten; observers see both.
    curve.setLineWidth(lineWidthOfLegacyType(width));
    curve.setLineWidth(width);
}

} // namespace

QVariantMap XCurve::plist() const {
    QVariantMap saved{
        {u"Title"_qs, title()},
        {u"Color"_qs, ColorEncoding::plist(color())},
        {u"ColorAlpha"_qs, colorAlpha()},
        {u"Visible"_qs, isVisible()},
        {u"TicksShape"_qs, ticksShape()->identifier()},
        {u"TicksSize"_qs, ticksSize()},
        {u"LineType"_qs, lineWidth()}, // the width, under the name that older documents gave it
    };
    const auto saveRole = [&](const QString& name, bool usesExpression,
                              const std::optional<QString>& expression, int index) {
        if (!usesExpression)
            saved.insert(name + u"_index"_qs, index);
        else if (expression)
            saved.insert(name + u"_expression"_qs, *expression);
    };
    saveRole(u"X_data"_qs, x_uses_expression(), x_data_expression(), x_data_index());
    saveRole(u"Y_data"_qs, y_uses_expression(), y_data_expression(), y_data_index());
    // Kept: the column of the point size is not saved.
    if (pointsize_uses_expression() && pointsize_data_expression())
        saved.insert(u"pointsize_data_expression"_qs, *pointsize_data_expression());
    return saved;
}

void XCurve::loadFromPlist(const QVariant& plist) {
    if (!xAssert(plist.typeId() == QMetaType::QVariantMap, "Wrong XCurve plist"))
        return;
    const QVariantMap saved = plist.toMap();
    setTitle(PlistValues::string(saved.value(u"Title"_qs)).value_or(QString()));
    setY_data_index(PlistValues::integer(saved.value(u"Y_data_index"_qs)));
    setColor(ColorEncoding::colorFromPlist(saved.value(u"Color"_qs)));
    setColorAlpha(PlistValues::singleReal(saved.value(u"ColorAlpha"_qs)));
    setIsVisible(PlistValues::boolean(saved.value(u"Visible"_qs)));
    loadPointMarker(*this, saved);
    loadLineWidth(*this, saved);
    setX_data_expression(PlistValues::string(saved.value(u"X_data_expression"_qs)));
    if (x_data_expression())
        setX_uses_expression(true);
    else
        setX_data_index(PlistValues::integer(saved.value(u"X_data_index"_qs)));
    setY_data_expression(PlistValues::string(saved.value(u"Y_data_expression"_qs)));
    if (y_data_expression())
        setY_uses_expression(true);
    else
        setY_data_index(PlistValues::integer(saved.value(u"Y_data_index"_qs)));
    setPointsize_data_expression(PlistValues::string(saved.value(u"pointsize_data_expression"_qs)));
    if (pointsize_data_expression())
        setPointsize_uses_expression(true);
}
