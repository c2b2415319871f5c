// Finds the regions of the selected page.
#include "Classes/WindowControllers/FocusRegions.h"

#include "Classes/TabBar/QXTabBar.h"
#include "Classes/WindowControllers/MoxDocumentWindow.h"
#include "Classes/WindowControllers/StatusLine.h"
#include "Platform/Core/XViewController.h"

#include <QList>

#include <algorithm>

namespace {

/// Parts of pages, by their outlets' names, in the order of the keyboard.
constexpr const char* partNames[] = {"leftView", "toolStrip", "plotViewContainer", "textView", "dataTable"};

bool holds(const QWidget* region, const QWidget* widget) {
    return widget != nullptr && (region == widget || region->isAncestorOf(widget));
}

QList<QWidget*> regionsOf(const MoxDocumentWindow& window) {
    QList<QWidget*> regions{window.isPlotSelected() ? &window.graphTabBar() : &window.dataSourcesTabBar()};
    if (XViewController* controller = window.selectedPage()) {
        QList<QWidget*> parts;
        for (const char* name : partNames) {
            auto* part = controller->view()->findChild<QWidget*>(QLatin1String(name));
            if (part != nullptr && part->isVisible())
                parts.append(part);
        }
        if (!window.isPlotSelected()) // what stands over its text and its table
            regions.append(controller->view());
        regions.append(parts);
    }
    regions.append(&window.statusLine());
    return regions;
}

/// What a key may reach first inside a region.
QWidget* firstStop(QWidget* region) {
    QWidget* widget = region;
    do {
        const bool takesKeys = (widget->focusPolicy() & Qt::TabFocus) != 0 && widget->focusProxy() == nullptr;
        if (takesKeys && widget->isVisible() && widget->isEnabled() && holds(region, widget))
            return widget;
        widget = widget->nextInFocusChain();
    } while (widget != region);
    return nullptr;
}

} // namespace

void FocusRegions::selectNext(MoxDocumentWindow& window, int step) {
    const QList<QWidget*> regions = regionsOf(window);
    const QWidget* focus = window.focusWidget();
    // The innermost one: a page lies around its parts.
    const auto current = std::find_if(regions.rbegin(), regions.rend(),
                                      [focus](const QWidget* region) { return holds(region, focus); });
    const qsizetype count = regions.size();
    qsizetype index =
        current == regions.rend() ? (step > 0 ? -1 : 0) : count - 1 - (current - regions.rbegin());
    for (qsizetype tries = 0; tries < count; ++tries) {
        index = (index + step + count) % count;
        if (QWidget* stop = firstStop(regions[index])) {
            window.activateWindow(); // the key may have come from a tool
            stop->setFocus(Qt::TabFocusReason);
            return;
        }
    }
}
