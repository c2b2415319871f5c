// Marks and labels that are not there.
#include "Classes/Axes/XEmptyAxis.h"

std::unique_ptr<XAxis> XEmptyAxis::copy() const {
    return std::unique_ptr<XAxis>(new XEmptyAxis(*this));
}

XAxisTicks XEmptyAxis::ticks() const {
    return nullptr;
}

int XEmptyAxis::labelLines() const {
    return 0;
}
