// Orders marks and describes them for logs.
#include "Classes/Axes/XAxisTick.h"

int XAxisTick::compare(const XAxisTick& other) const {
    if (other.value > value)
        return -1;
    return other.value == value ? 0 : 1;
}

QString XAxisTick::description() const {
    return QStringLiteral("%1 - %2").arg(title.value_or(QStringLiteral("(null)"))).arg(value, 0, 'f', 6);
}
